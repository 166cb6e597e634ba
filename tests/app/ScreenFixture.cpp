#include "app/ScreenFixture.h"

namespace vantro::tests {

const std::vector<Screen> screens = {
    {"User", "UserKey", "ViewController/Main/User/UserViewController", "UserViewMessage",
     Screen::AfterRefusal::StayOpen,
     [](const std::vector<YubiKey>& keys) {
         return keys.empty() ? VantroStandaloneSetting{} : VantroStandaloneSetting{.users = {{"tester", keys}}};
     },
     [](VantroStandaloneSetting& content) -> bool& { return content.switchSetting.secureMode; }},
    {"Master", "MasterKey", "ViewController/Main/Master/MasterKeyViewController", "MasterKeyViewMessage",
     Screen::AfterRefusal::StayOpen,
     [](const std::vector<YubiKey>& keys) { return VantroStandaloneSetting{.masterKeySetting = {.masterKeys = keys}}; },
     [](VantroStandaloneSetting& content) -> bool& { return content.switchSetting.secureMode; }},
    {"Admin", "Admin", "ViewController/Main/Admin/AdminViewContorller", "AdminViewMessage", Screen::AfterRefusal::Close,
     [](const std::vector<YubiKey>& keys) { return VantroStandaloneSetting{.adminSetting = {.adminKeys = keys}}; },
     [](VantroStandaloneSetting& content) -> bool& { return content.adminSetting.toolLoginAuth; }},
};

std::ostream& operator<<(std::ostream& stream, const Screen& screen)
{
    return stream << screen.name;
}

QStringList ScreenFixture::rows()
{
    const QAbstractItemModel& model = *table().model();
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList columns;
        for (int column = 0; column < model.columnCount(); ++column)
            columns += model.index(row, column).data().toString();
        rows += columns.join(' ');
    }
    return rows;
}

} // namespace vantro::tests
