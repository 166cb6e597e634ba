#include "ViewController/Main/User/RegistrationUserKeyViewController.h"

#include <algorithm>

#include "AppDataSet.h"
#include "Model/KeySorting.h"
#include "SystemUsers.h"
#include "UserViewMessage.h"
#include "foundation/Identity.h"
#include "foundation/Text.h"
#include "ui_RegistrationUserKeyView.h"

namespace vantro {

RegistrationUserKeyViewController::RegistrationUserKeyViewController()
    : DialogOfList(
          "ViewController/Main/User/RegistrationUserKeyViewController",
          {"RegistrationUserKeyView", UserViewMessage::yubiKeyIsNotConnected, UserViewMessage::alreadyAllocatedKey},
          AfterRefusal::StayOpen)
{
}

std::unique_ptr<QWidget> RegistrationUserKeyViewController::loadView()
{
    Ui::RegistrationUserKeyView outlets;
    auto view = loadForm(outlets);
    accountPopUpButton = outlets.accountPopUpButton;
    fullNameLabel_ = outlets.fullNameLabel;
    connect(accountPopUpButton, &QComboBox::activated, this, [this] { onChangeAccount(accountPopUpButton); });
    return view;
}

void RegistrationUserKeyViewController::prepareDisplay()
{
    makeAccountModels();
    initAccountPopUpButton();
}

void RegistrationUserKeyViewController::makeAccountModels()
{
    constexpr auto function = "viewDidLoad()";
    for (const SystemUser& user : SYSTEM_USERS())
        accountModels.push_back({user.fullName, user.accountName});

    const std::string ownName = NSUserName();
    if (std::any_of(accountModels.begin(), accountModels.end(),
                    [&](const AccountModel& account) { return isCanonicallyEqual(account.accountName, ownName); }))
        return;
    logger.info("Unable to connect to the active directory server, added a user.", function);
    logger.info("[Full name: " + NSFullUserName() + ", Accout name: " + ownName + "]", function);
    accountModels.push_back({NSFullUserName(), ownName});
}

void RegistrationUserKeyViewController::initAccountPopUpButton()
{
    QStringList names;
    qsizetype longest = 0;
    for (const AccountModel& account : accountModels) {
        names += QString::fromStdString(account.accountName);
        longest = std::max(longest, names.last().size());
    }
    // Wide enough for every name, without the toolkit's look at how wide each of ten thousand is.
    accountPopUpButton->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    accountPopUpButton->setMinimumContentsLength(static_cast<int>(longest));
    accountPopUpButton->addItems(names);
    const std::string ownName = NSUserName();
    const auto own = std::find_if(accountModels.begin(), accountModels.end(), [&](const AccountModel& account) {
        return isCanonicallyEqual(account.accountName, ownName);
    });
    accountPopUpButton->setCurrentIndex(own == accountModels.end() ? -1
                                                                   : static_cast<int>(own - accountModels.begin()));
    showFullName();
}

void RegistrationUserKeyViewController::showFullName()
{
    const int index = accountPopUpButton->currentIndex();
    const std::string fullName = index < 0 ? std::string() : accountModels[static_cast<std::size_t>(index)].fullName;
    fullNameLabel_->setText(QString::fromStdString(fullName));
    fullNameLabel_->setVisible(!fullName.empty());
}

std::string RegistrationUserKeyViewController::selectedAccount() const
{
    return accountPopUpButton->currentText().toStdString();
}

void RegistrationUserKeyViewController::onChangeAccount(QObject* /*sender*/)
{
    logger.info("Called onChangeAccount", "onChangeAccount(_:)");
    showFullName();
    updateDisplay();
}

bool RegistrationUserKeyViewController::isAllocated(std::uint64_t serial) const
{
    return AppDataSet::shared().vantroStandaloneSetting.isAllcatedUserKey(selectedAccount(), serial);
}

bool RegistrationUserKeyViewController::isAllocatedMeanwhile(std::uint64_t /*serial*/) const
{
    // The button can only be pressed while the account lacks the token, and nothing else adds one meanwhile.
    return false;
}

void RegistrationUserKeyViewController::logRequest(std::uint64_t /*serial*/) const
{
    logger.info("Allocate YubiKey.", "onClickOK(_:)");
}

void RegistrationUserKeyViewController::addToSetting(std::uint64_t serial)
{
    constexpr auto function = "onClickOK(_:)";
    const std::string account = selectedAccount();
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    if (setting.user(account) == nullptr)
        logger.info("Create new user. [account: " + account + "]", function);
    logger.info("Append allocaetd key. [accout: " + account + ", serial: " + std::to_string(serial) + "]", function);
    setting.addUserKey(account, serial);
    setting.write();
}

void RegistrationUserKeyViewController::addToList(std::uint64_t serial)
{
    appendSorted(list()->userKeyModels, UserKeyModel(selectedAccount(), serial));
    list()->clearTableSelection();
}

} // namespace vantro
