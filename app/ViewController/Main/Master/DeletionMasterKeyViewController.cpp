#include "ViewController/Main/Master/DeletionMasterKeyViewController.h"

#include "AppDataSet.h"
#include "CommonMessage.h"
#include "MasterKeyViewMessage.h"

namespace vantro {

DeletionMasterKeyViewController::DeletionMasterKeyViewController()
    : DeletionFromListViewController(
          "ViewController/Main/Master/DeletionMasterKeyViewController",
          {"DeletionMasterKeyView", MasterKeyViewMessage::notSelectedForDeletion, CommonMessage::noRegistrationYubiKey})
{
}

bool DeletionMasterKeyViewController::isLastKeyDeletion()
{
    return AppDataSet::shared().vantroStandaloneSetting.areLastMasterKeys(selectedRows().size());
}

void DeletionMasterKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    logger.info("Update setting.", function);
    for (const MasterKeyModel& row : selectedRows()) {
        logger.info("Remove master key. [Serial: " + row.serial() + "]", function);
        removeSerial(setting.masterKeySetting.masterKeys, row.serialUInt());
    }
    setting.write();
}

} // namespace vantro
