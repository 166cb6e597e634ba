#include "foundation/Bundle.h"

#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#include <pugixml.hpp>

namespace vantro {
namespace {

std::mutex mainPrefixMutex;
std::optional<std::filesystem::path> mainPrefix;
bool mainIsMade = false;

std::filesystem::path takeMainPrefix()
{
    const std::lock_guard lock(mainPrefixMutex);
    mainIsMade = true;
    if (mainPrefix)
        return *mainPrefix;
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    return executable.parent_path().parent_path();
}

} // namespace

Bundle::Bundle(std::filesystem::path prefix) : prefix_(std::move(prefix))
{
    pugi::xml_document document;
    if (!document.load_file((resourceFolder() / "Info.plist").c_str()))
        return;
    for (const auto key : document.child("plist").child("dict").children("key")) {
        const auto value = key.next_sibling();
        if (std::string_view(value.name()) == "string")
            entries_.emplace(key.text().get(), value.text().get());
    }
}

const Bundle& Bundle::main()
{
    static const Bundle bundle(takeMainPrefix());
    return bundle;
}

bool Bundle::setMainPrefix(const std::filesystem::path& prefix)
{
    const std::lock_guard lock(mainPrefixMutex);
    if (mainIsMade)
        return false;
    mainPrefix = prefix;
    return true;
}

std::string Bundle::string(std::string_view key) const
{
    const auto entry = entries_.find(key);
    return entry == entries_.end() ? std::string() : entry->second;
}

std::filesystem::path Bundle::resourceFolder() const
{
    return prefix_ / "share" / "vantro-standalone";
}

} // namespace vantro
