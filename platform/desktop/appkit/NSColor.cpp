#include "appkit/NSColor.h"

namespace vantro {

QColor resolved(NSColor color, const QPalette& palette)
{
    if (color == NSColor::LabelColor)
        return palette.color(QPalette::WindowText);
    constexpr int middle = 128;
    const bool isDark = palette.color(QPalette::Window).lightness() < middle;
    // Both reach a contrast of 4.5:1 against the usual window colours.
    return isDark ? QColor(0xff, 0x8a, 0x80) : QColor(0xb0, 0x00, 0x20);
}

} // namespace vantro
