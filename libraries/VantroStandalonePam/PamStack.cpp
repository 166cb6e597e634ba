#include "VantroStandalonePam/PamStack.h"

#include <algorithm>
#include <utility>

namespace vantro {
namespace {

using Kind = PamFile::Entry::Kind;

/// libpam's own limit for substacks inside of substacks.
constexpr int levelLimit = 16;
/// Services that include one another many times over end here.
constexpr std::size_t entryLimit = 10000;

} // namespace

PamStack::PamStack(const PamFile& service, std::filesystem::path folder, Finder finder)
    : folder_(std::move(folder)), finder_(std::move(finder))
{
    if (!append(service, 0, Wanted::All))
        stop(PamReading::GivesUp);
}

bool PamStack::stop(PamReading reading)
{
    reading_ = std::max(reading_, reading);
    return false;
}

bool PamStack::append(const PamFile& file, int level, Wanted wanted)
{
    frames_.push_back({&file, level});
    for (const auto& entry : file.entries()) {
        if (++entriesSeen_ > entryLimit)
            return stop(PamReading::Unknown);
        if (entry.kind == Kind::Module)
            steps_.push_back({Step::Kind::Module, &file, &entry, level});
        else if (!appendIncluded(file, entry, level, wanted))
            return false;
    }
    frames_.pop_back();
    if (file.reading() > PamReading::GivesUp)
        stop(file.reading());
    return file.reading() == PamReading::Whole;
}

bool PamStack::appendIncluded(const PamFile& file, const PamFile::Entry& entry, int level, Wanted wanted)
{
    const bool isSubstack = entry.kind == Kind::Substack;
    if (isSubstack)
        steps_.push_back({Step::Kind::Substack, &file, &entry, level});
    const auto depth = frames_.size();
    const bool isIncludeAll = entry.kind == Kind::IncludeAll;
    if (load(entry, isSubstack ? level + 1 : level, isIncludeAll ? wanted : Wanted::Auth))
        return true;
    frames_.resize(depth);
    if (reading_ > PamReading::GivesUp)
        return false;
    if (isIncludeAll && wanted == Wanted::All)
        return false;
    // What this step does after its failure libpam leaves to what its memory happened to hold.
    if (isIncludeAll)
        return stop(PamReading::Breaks);
    steps_.push_back({Step::Kind::Failing, &file, &entry, level});
    return true;
}

bool PamStack::load(const PamFile::Entry& entry, int level, Wanted wanted)
{
    if (level >= levelLimit)
        return false;
    const auto* const file =
        finder_(entry.target.starts_with('/') ? std::filesystem::path(entry.target) : folder_ / entry.target);
    if (file == nullptr)
        return false;
    // libpam goes round in such a circle until it crashes; one through a substack ends at the limit of levels.
    const bool isCircle = std::any_of(frames_.begin(), frames_.end(), [file, level](const Frame& frame) {
        return frame.file == file && frame.level == level;
    });
    if (isCircle)
        return stop(PamReading::Breaks);
    return append(*file, level, wanted);
}

bool PamStack::holds(const IsPlace& isPlace) const
{
    return std::any_of(steps_.begin(), steps_.end(), isPlace);
}

bool PamStack::isJumpedOver(const IsPlace& isPlace) const
{
    // A jump leads over steps of its own level; what stands in a substack goes with the substack.
    for (std::size_t from = 0; from < steps_.size(); ++from) {
        const auto& jumping = steps_[from];
        auto left = jumping.kind == Step::Kind::Module ? jumping.entry->jump() : 0;
        for (std::size_t step = from + 1; step < steps_.size() && steps_[step].level >= jumping.level; ++step) {
            if (step == from + 1 || steps_[step].level == jumping.level) {
                if (left == 0)
                    break;
                --left;
            }
            if (isPlace(steps_[step]))
                return true;
        }
    }
    return false;
}

} // namespace vantro
