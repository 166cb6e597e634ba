#pragma once

#include <QColor>
#include <QPalette>

namespace vantro {

/// A colour by its meaning, resolved against the palette in force, so that it reads in a light and in a dark theme.
enum class NSColor
{
    /// The palette's own text colour.
    LabelColor,
    /// The red of error texts.
    Red
};

[[nodiscard]] QColor resolved(NSColor color, const QPalette& palette);

} // namespace vantro
