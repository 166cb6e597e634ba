#include "ViewController/Main/Master/RegistrationMasterKeyViewController.h"

#include <string>
#include <utility>

#include "AppDataSet.h"
#include "MasterKeyViewMessage.h"
#include "Model/KeySorting.h"
#include "ViewController/Main/Master/MasterKeyViewController.h"
#include "ui_RegistrationMasterKeyView.h"

namespace vantro {
namespace {

std::vector<YubiKey>& masterKeys()
{
    return AppDataSet::shared().vantroStandaloneSetting.masterKeySetting.masterKeys;
}

} // namespace

RegistrationMasterKeyViewController::RegistrationMasterKeyViewController()
    : RegistrationKeyViewController(
          "ViewController/Main/Master/RegistrationMasterKeyViewController",
          {MasterKeyViewMessage::yubiKeyIsNotConnected, MasterKeyViewMessage::alreadyAllocatedKey},
          AfterRefusal::StayOpen)
{
}

std::unique_ptr<QWidget> RegistrationMasterKeyViewController::loadView()
{
    Ui::RegistrationMasterKeyView outlets;
    return loadForm(outlets, "RegistrationMasterKeyView");
}

bool RegistrationMasterKeyViewController::isPresentedByList() const
{
    return qobject_cast<MasterKeyViewController*>(presentingViewController()) != nullptr;
}

bool RegistrationMasterKeyViewController::isAllocated(std::uint64_t serial) const
{
    return containsSerial(masterKeys(), serial);
}

void RegistrationMasterKeyViewController::logRequest(std::uint64_t serial) const
{
    logger.info("Serial: " + std::to_string(serial), "onClickOK(_:)");
}

void RegistrationMasterKeyViewController::addToSetting(std::uint64_t serial)
{
    masterKeys().emplace_back(serial);
    sortBySerial(masterKeys());
    AppDataSet::shared().vantroStandaloneSetting.write();
    logger.info("Update setting.", "onClickOK(_:)");
}

void RegistrationMasterKeyViewController::addToList(std::uint64_t serial)
{
    auto* const list = qobject_cast<MasterKeyViewController*>(presentingViewController());
    appendSorted(list->masterKeyModels, MasterKeyModel(serial));
    list->clearTableSelection();
}

} // namespace vantro
