#include "SettingDocument.h"

#include <string>
#include <sys/types.h>
#include <utility>

#include "foundation/FileManager.h"
#include "foundation/Identity.h"

namespace vantro {
namespace {
constexpr mode_t openDocumentMode = 0666;
}

SettingDocument& SettingDocument::operator=(VantroStandaloneSetting setting)
{
    VantroStandaloneSetting::operator=(std::move(setting));
    return *this;
}

bool SettingDocument::load()
{
    auto setting = file_.read();
    if (!setting)
        return false;
    *this = *std::move(setting);
    return true;
}

std::error_code SettingDocument::openUpFilePermissions() const
{
    std::error_code error;
    const auto item = FileManagerItem::open(file_.url(), error);
    if (!item)
        return error;
    const std::string userName = NSUserName();
    const auto owner = item->ownerAccountName();
    if (!owner || (*owner != userName && userName != "root"))
        return {};
    return item->setPosixPermissions(openDocumentMode);
}

} // namespace vantro
