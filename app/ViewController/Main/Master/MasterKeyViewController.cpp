#include "ViewController/Main/Master/MasterKeyViewController.h"

#include <utility>

#include "AppDataSet.h"

namespace vantro {

MasterKeyViewController::MasterKeyViewController()
    : KeyListViewController({.source = "ViewController/Main/Master/MasterKeyViewController",
                             .table = "MasterKeyView",
                             .finishedViewDidLoad = "Finished viewDidLoad",
                             .startViewWillAppear = "Start viewWillAppear.",
                             .registrationDialog = "RegistrationMasterKeyViewController",
                             .deletionDialog = "DeletionMasterKeyViewController"})
{
}

std::unique_ptr<QWidget> MasterKeyViewController::loadView()
{
    masterKeyArrayController = makeSerialColumn(masterKeyModels);
    return loadList(*masterKeyArrayController);
}

void MasterKeyViewController::rebuildRows()
{
    std::vector<MasterKeyModel> rows;
    for (const YubiKey& key : AppDataSet::shared().vantroStandaloneSetting.masterKeySetting.masterKeys)
        rows.emplace_back(key.serial);
    masterKeyModels.set(std::move(rows));
}

} // namespace vantro
