#include "Fuzzer.h"

#include <string>

#include "VantroStandalonePam/PamFile.h"
#include "VantroStandalonePam/PamStack.h"

/// An entry that was put into a text is there once and can be taken out again. A new one stands first, out of the reach
/// of jumps; one that takes another's place may not, which the store looks at.
void vantro::fuzz::look(std::string_view bytes)
{
    const PamSetting setting{"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};
    const PamFile file{std::string(bytes)};
    for (const auto& entry : file.entries())
        expect(entry.begin < entry.end && entry.end <= bytes.size());
    const auto with = file.withEntry(setting);
    if (!with)
        return;
    const PamFile changed(*with);
    const auto again = changed.withEntry(setting);
    expect(changed.hasEntryOf(setting) && again && *again == *with);
    const auto without = changed.withoutEntry(setting);
    expect(without && !PamFile(*without).hasEntryOf(setting));
    if (file.hasEntryOf(setting))
        return;
    expect(*without == bytes || *without == std::string(bytes) + '\n');
    const PamStack stack(changed, "/", [](const auto&) { return nullptr; });
    expect(
        !stack.isJumpedOver([&](const auto& step) { return step.entry && PamFile::isEntryOf(setting, *step.entry); }));
}
