#include "ViewController/Main/Master/RegistrationMasterKeyViewController.h"

#include <string>

#include "AppDataSet.h"
#include "MasterKeyViewMessage.h"
#include "Model/KeySorting.h"

namespace vantro {
namespace {

std::vector<YubiKey>& masterKeys()
{
    return AppDataSet::shared().vantroStandaloneSetting.masterKeySetting.masterKeys;
}

} // namespace

RegistrationMasterKeyViewController::RegistrationMasterKeyViewController()
    : DialogOfList("ViewController/Main/Master/RegistrationMasterKeyViewController",
                   {"RegistrationMasterKeyView", MasterKeyViewMessage::yubiKeyIsNotConnected,
                    MasterKeyViewMessage::alreadyAllocatedKey},
                   AfterRefusal::StayOpen)
{
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
    addSorted(masterKeys(), serial);
    AppDataSet::shared().vantroStandaloneSetting.write();
    logger.info("Update setting.", "onClickOK(_:)");
}

void RegistrationMasterKeyViewController::addToList(std::uint64_t serial)
{
    appendSorted(list()->masterKeyModels, MasterKeyModel(serial));
    list()->clearTableSelection();
}

} // namespace vantro
