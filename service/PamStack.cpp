#include "service/PamStack.h"

#include <algorithm>
#include <filesystem>

namespace vantro::service {
namespace {

/// Services that include one another in a circle end here.
constexpr int depthLimit = 16;
constexpr std::size_t entryLimit = 10000;

} // namespace

std::string PamStack::nameOf(std::string_view included) const
{
    const auto path = std::filesystem::path(included).lexically_normal();
    if (path.is_relative())
        return path.string();
    const auto folder = std::filesystem::path(folder_).lexically_normal();
    return path.parent_path() == folder ? path.filename().string() : std::string();
}

void PamStack::flatten(const PamFile& file, int depth, Walk& walk) const
{
    for (const auto& entry : file.entries()) {
        if (++walk.entriesSeen > entryLimit)
            return;
        if (walk.isPlace(entry, depth))
            walk.steps.push_back({0, true});
        const auto included = entry.includedService(walk.interface);
        const PamFile* const found = included && depth < depthLimit ? finder_(nameOf(*included)) : nullptr;
        if (found != nullptr)
            flatten(*found, depth + 1, walk);
        else if (entry.isModuleOf(walk.interface))
            walk.steps.push_back({entry.jump(), false});
    }
}

bool PamStack::isJumpedOver(const PamFile& file, ModuleInterface interface, const IsPlace& isPlace) const
{
    Walk walk{interface, isPlace, {}, 0};
    flatten(file, 0, walk);
    // How many of the coming modules the jumps so far lead over.
    std::size_t reach = 0;
    for (const auto& step : walk.steps) {
        if (step.isPlace && reach > 0)
            return true;
        if (!step.isPlace)
            reach = std::max(reach > 0 ? reach - 1 : 0, step.jump);
    }
    return walk.entriesSeen > entryLimit;
}

std::optional<PamFailure> PamStack::ownJumpFailure(const PamFile& file, const PamSetting& setting) const
{
    const auto own = file.entryOf(setting);
    if (!own)
        return own.failure();
    if (!*own)
        return std::nullopt;
    const bool isInside =
        isJumpedOver(file, setting.moduleInterface, [place = (*own)->begin](const PamFile::Entry& entry, int depth) {
            return depth == 0 && entry.begin == place;
        });
    return isInside ? std::optional(PamFailure::EntryInsideJump) : std::nullopt;
}

std::optional<PamFailure> PamStack::includerJumpFailure(const PamFile& includer, const PamSetting& setting) const
{
    const bool isSpanned =
        isJumpedOver(includer, setting.moduleInterface, [this, &setting](const PamFile::Entry& entry, int /*depth*/) {
            const auto included = entry.includedService(setting.moduleInterface);
            return included && nameOf(*included) == setting.fileName;
        });
    return isSpanned ? std::optional(PamFailure::JumpSpansInclude) : std::nullopt;
}

} // namespace vantro::service
