#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

#include "VantroStandalonePam/PamFile.h"

namespace vantro {

/// What libpam 1.5.2 makes of one PAM service for authenticating: the steps of the service with those of the files that
/// it includes. The files must outlive it.
class PamStack
{
  public:
    /// Gives the file that is included by this absolute path, the same object for the same file; null where libpam
    /// finds none.
    using Finder = std::function<const PamFile*(const std::filesystem::path& path)>;

    struct Step
    {
        enum class Kind
        {
            Module,
            /// In the place of an include that does not work out.
            Failing,
            /// The steps of one level more behind it are its own; jumps take them all for one.
            Substack
        };

        Kind kind = Kind::Module;
        const PamFile* file = nullptr;
        const PamFile::Entry* entry = nullptr;
        int level = 0;
    };

    /// `folder` is where relative names in includes lie.
    PamStack(const PamFile& service, std::filesystem::path folder, Finder finder);

    /// Those that libpam gets to.
    [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
    /// Unless it is whole, libpam lets nobody sign in with the service.
    [[nodiscard]] PamReading reading() const { return reading_; }

    using IsPlace = std::function<bool(const Step& step)>;
    [[nodiscard]] bool holds(const IsPlace& isPlace) const;
    /// Whether some answer of a module makes libpam jump over the place.
    [[nodiscard]] bool isJumpedOver(const IsPlace& isPlace) const;

  private:
    /// Whether a file is read for all interfaces, or only for auth.
    enum class Wanted
    {
        All,
        Auth
    };
    /// A file whose reading has begun.
    struct Frame
    {
        const PamFile* file;
        int level;
    };

    /// Both answer whether libpam goes on with the file that has the entry.
    bool append(const PamFile& file, int level, Wanted wanted);
    bool appendIncluded(const PamFile& file, const PamFile::Entry& entry, int level, Wanted wanted);
    /// Whether libpam got to the end of the included file.
    bool load(const PamFile::Entry& entry, int level, Wanted wanted);
    bool stop(PamReading reading);

    std::filesystem::path folder_;
    Finder finder_;
    std::vector<Step> steps_;
    std::vector<Frame> frames_;
    std::size_t entriesSeen_ = 0;
    PamReading reading_ = PamReading::Whole;
};

} // namespace vantro
