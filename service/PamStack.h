#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "service/PamFile.h"

namespace vantro::service {

/// The PAM services of a folder as they include one another. Any thread that may use the finder.
class PamStack
{
  public:
    /// Gives a service's file by its name; null for one that is not there or that libpam would not read.
    using Finder = std::function<const PamFile*(const std::string& name)>;

    /// `folder` is what absolute names in includes begin with.
    PamStack(std::string folder, Finder finder) : folder_(std::move(folder)), finder_(std::move(finder)) {}

    /// Says why the setting's entry can't be changed where it stands: a jump leads over it. Nothing without an entry.
    [[nodiscard]] std::optional<PamFailure> ownJumpFailure(const PamFile& file, const PamSetting& setting) const;

    /// Says why the setting's service can't be changed: the service `includer` jumps over its include. Nothing when it
    /// does not include it.
    [[nodiscard]] std::optional<PamFailure> includerJumpFailure(const PamFile& includer,
                                                                const PamSetting& setting) const;

  private:
    /// Whether an entry is the place that is asked about; `depth` counts the includes on the way to it.
    using IsPlace = std::function<bool(const PamFile::Entry& entry, int depth)>;

    /// A module of a stack with its includes put in place, or the place itself.
    struct Step
    {
        std::size_t jump = 0;
        bool isPlace = false;
    };
    struct Walk
    {
        ModuleInterface interface = ModuleInterface::Auth;
        IsPlace isPlace;
        std::vector<Step> steps;
        std::size_t entriesSeen = 0;
    };

    void flatten(const PamFile& file, int depth, Walk& walk) const;
    [[nodiscard]] bool isJumpedOver(const PamFile& file, ModuleInterface interface, const IsPlace& isPlace) const;
    [[nodiscard]] std::string nameOf(std::string_view included) const;

    std::string folder_;
    Finder finder_;
};

} // namespace vantro::service
