#include "ViewController/Main/Master/MasterKeyViewController.h"

#include <utility>

#include "AppDataSet.h"
#include "ui_MasterKeyView.h"

namespace vantro {

MasterKeyViewController::MasterKeyViewController()
    : KeyListViewController({.source = "ViewController/Main/Master/MasterKeyViewController",
                             .finishedViewDidLoad = "Finished viewDidLoad",
                             .startViewWillAppear = "Start viewWillAppear.",
                             .registrationDialog = "RegistrationMasterKeyViewController",
                             .deletionDialog = "DeletionMasterKeyViewController"})
{
}

std::unique_ptr<QWidget> MasterKeyViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::MasterKeyView outlets;
    outlets.setupUi(view.get());
    masterKeyArrayController = makeSerialColumn(masterKeyModels, "MasterKeyView");
    connectOutlets({outlets.masterKeyTable, masterKeyArrayController.get(), outlets.emptyLabel, outlets.registerButton,
                    outlets.deleteButton});
    return view;
}

void MasterKeyViewController::rebuildRows()
{
    std::vector<MasterKeyModel> rows;
    for (const YubiKey& key : AppDataSet::shared().vantroStandaloneSetting.masterKeySetting.masterKeys)
        rows.emplace_back(key.serial);
    masterKeyModels.set(std::move(rows));
}

} // namespace vantro
