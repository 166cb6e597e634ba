// What the user key registration has beside the other two: the account pop-up.

#include <cstdlib>
#include <filesystem>

#include <QLabel>
#include <QTest>
#include <unistd.h>

#include "ViewController/Main/User/RegistrationUserKeyViewController.h"
#include "app/AppFixture.h"

namespace vantro::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class UserRegistration : public AppFixture
{
  protected:
    QPointer<RegistrationUserKeyViewController> open()
    {
        return qobject_cast<RegistrationUserKeyViewController*>(openRegistration("UserKey"));
    }
    static QStringList titles(const QComboBox& popUp)
    {
        QStringList texts;
        for (int index = 0; index < popUp.count(); ++index)
            texts += popUp.itemText(index);
        return texts;
    }
};

TEST_F(UserRegistration, AnAccountThatTheDirectoryDoesNotListIsTheLastItem)
{
    const auto dialog = open();
    ASSERT_TRUE(activate(*dialog->view()->window()));
    EXPECT_EQ(titles(*dialog->accountPopUpButton), (QStringList{"Zed", "adam", "tester"}));
    EXPECT_EQ(dialog->accountPopUpButton->currentText(), "tester");
    auto* const fullName = dialog->view()->findChild<QLabel*>("fullNameLabel");
    EXPECT_EQ(fullName->text(), "Test Person");
    forgetLog();
    QTest::keyClick(dialog->accountPopUpButton, Qt::Key_Up);
    ASSERT_EQ(dialog->accountPopUpButton->currentText(), "adam");
    EXPECT_FALSE(fullName->isVisible()) << "this account has no full name";
    EXPECT_THAT(log("ViewController/Main/User/RegistrationUserKeyViewController"),
                ElementsAre("onChangeAccount(_:) Called onChangeAccount", "updateDisplay() YubiKey is not connected."));
    QTest::keyClick(dialog->accountPopUpButton, Qt::Key_Home);
    EXPECT_EQ(fullName->text(), "Zed Zero");
    EXPECT_TRUE(fullName->isVisible());
}

TEST_F(UserRegistration, AnAccountThatTheDirectoryListsStaysInItsPlace)
{
    // The first record of a name is that name's, and any record of a user id tells its name.
    const char* const passwd = std::getenv("NSS_WRAPPER_PASSWD");
    writeFile(passwd, "Zed:x:1801:100:Zed Zero:/:/bin/sh\nZed:x:" + std::to_string(::geteuid()) +
                          ":100:Hidden:/:/bin/sh\nadam:x:1802:100::/:/bin/sh\n");
    // A change within the second would not be seen.
    std::filesystem::last_write_time(passwd, std::filesystem::last_write_time(passwd) + 10s);
    const auto dialog = open();
    EXPECT_EQ(titles(*dialog->accountPopUpButton), (QStringList{"Zed", "adam"}));
    EXPECT_EQ(dialog->accountPopUpButton->currentText(), "Zed");
    EXPECT_THAT(messages("ViewController/Main/User/RegistrationUserKeyViewController"),
                Not(Contains("Unable to connect to the active directory server, added a user.")));
}

TEST_F(UserRegistration, ATokenMayBelongToSeveralAccounts)
{
    prefix.store({.users = {{"tester", {12345}}},
                  .masterKeySetting = {.masterKeys = {12345}},
                  .adminSetting = {.adminKeys = {12345}}});
    plugIn(12345);
    const auto dialog = open();
    EXPECT_FALSE(dialog->OKButton->isEnabled());
    QTest::keyClick(dialog->accountPopUpButton, Qt::Key_Up);
    ASSERT_EQ(dialog->accountPopUpButton->currentText(), "adam");
    EXPECT_EQ(dialog->serialLabelModel.text(), "12345");
    forgetLog();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_THAT(messages("ViewController/Main/User/RegistrationUserKeyViewController"),
                ElementsAre("Called onClickOK.", "Allocate YubiKey.", "Create new user. [account: adam]",
                            "Append allocaetd key. [accout: adam, serial: 12345]"));
    EXPECT_EQ(stored(), (VantroStandaloneSetting{.users = {{"adam", {12345}}, {"tester", {12345}}},
                                                 .masterKeySetting = {.masterKeys = {12345}},
                                                 .adminSetting = {.adminKeys = {12345}}}));
    EXPECT_TRUE(isDismissed(dialog));
}

} // namespace
} // namespace vantro::tests
