#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <QPointer>
#include <QStringList>
#include <QTableView>

#include "ViewController/Main/KeyListViewController.h"
#include "app/AppFixture.h"
#include "appkit/NSStoryboard.h"
#include "appkit/StringTable.h"

namespace vantro::tests {

/// One of the three lists of keys with its two dialogs; what is not here follows from the name.
struct Screen
{
    /// "User"
    std::string name;
    const char* tab;
    /// The list's source file.
    const char* list;
    /// The string table of its messages.
    const char* messages;
    /// What the registration dialog does when the service has refused a token.
    enum class AfterRefusal
    {
        StayOpen,
        Close
    } afterRefusal;
    /// A document whose list has these keys, which are tester's where keys belong to accounts.
    VantroStandaloneSetting (*with)(const std::vector<YubiKey>& keys);
    /// The switch that nobody could pass any more without a key of this list.
    bool& (*demand)(VantroStandaloneSetting& content);

    [[nodiscard]] QString message(const char* key) const { return localizedString(messages, key); }
    /// The identifier of a dialog; `verb` is "Registration" or "Deletion".
    [[nodiscard]] std::string dialog(const std::string& verb) const { return verb + name + "KeyViewController"; }
    [[nodiscard]] std::string file(const std::string& verb) const
    {
        return "ViewController/Main/" + name + "/" + dialog(verb);
    }
    /// The same document with the switch on.
    [[nodiscard]] VantroStandaloneSetting demanding(VantroStandaloneSetting content) const
    {
        demand(content) = true;
        return content;
    }
};

std::ostream& operator<<(std::ostream& stream, const Screen& screen);

extern const std::vector<Screen> screens;

/// A test of each of the three lists; to be instantiated with allScreens().
class ScreenFixture : public AppFixture, public testing::WithParamInterface<Screen>
{
  protected:
    static const Screen& screen() { return GetParam(); }
    KeyListViewController& list() { return page<KeyListViewController>(screen().tab); }
    QTableView& table() { return *list().view()->findChild<QTableView*>(); }
    /// What the table shows, a row as its columns with a space between.
    QStringList rows();
    bool hasSelection() { return table().selectionModel()->hasSelection(); }

    /// Has another controller than the list present one of the list's dialogs.
    template <class Dialog>
    QPointer<Dialog> presentElsewhere(const std::string& verb)
    {
        auto& other = switchTo("Setting");
        other.presentAsModalWindow(NSStoryboard::named("Main").instantiateController(screen().dialog(verb)));
        return other.findChild<Dialog*>();
    }
};

/// The generator of the parameters, and the namer of the tests.
inline auto allScreens()
{
    return testing::ValuesIn(screens);
}
inline std::string nameOf(const testing::TestParamInfo<Screen>& instance)
{
    return instance.param.name;
}

} // namespace vantro::tests
