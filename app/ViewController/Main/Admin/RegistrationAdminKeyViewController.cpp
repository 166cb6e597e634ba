#include "ViewController/Main/Admin/RegistrationAdminKeyViewController.h"

#include "AdminViewMessage.h"
#include "AppDataSet.h"
#include "Model/KeySorting.h"

namespace vantro {
namespace {

std::vector<YubiKey>& adminKeys()
{
    return AppDataSet::shared().vantroStandaloneSetting.adminSetting.adminKeys;
}

} // namespace

RegistrationAdminKeyViewController::RegistrationAdminKeyViewController()
    : DialogOfList(
          "ViewController/Main/Admin/RegistrationAdminKeyViewController",
          {"RegistrationAdminKeyView", AdminViewMessage::yubiKeyIsNotConnected, AdminViewMessage::alreadyAllocatedKey},
          AfterRefusal::Close)
{
}

bool RegistrationAdminKeyViewController::isAllocated(std::uint64_t serial) const
{
    return containsSerial(adminKeys(), serial);
}

void RegistrationAdminKeyViewController::addToSetting(std::uint64_t serial)
{
    addSorted(adminKeys(), serial);
    AppDataSet::shared().vantroStandaloneSetting.write();
}

void RegistrationAdminKeyViewController::addToList(std::uint64_t serial)
{
    appendSorted(list()->adminModel.adminKeyModels, AdminKeyModel(serial));
    list()->clearTableSelection();
    list()->adminModel.authCheckButtonModel.setIsEnabled(true);
}

} // namespace vantro
