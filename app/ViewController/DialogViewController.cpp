#include "ViewController/DialogViewController.h"

#include <QDialogButtonBox>

#include "AppDataSet.h"
#include "ApplicationVersion.h"

namespace vantro {

DialogViewController::DialogViewController(const char* sourceFile)
    : logger(AppDataSet::shared().logger.inFile(sourceFile))
{
    setTitle(windowTitleWithVersion());
}

void DialogViewController::onClickCancel(QObject* /*sender*/)
{
    logger.info("Called onClickCancel.", "onClickCancel(_:)");
    dismissController();
}

void DialogViewController::addButtons(QDialogButtonBox* box, const QString& okTitle, const QString& cancelTitle,
                                      DefaultButton isDefault)
{
    OKButton = box->addButton(okTitle, QDialogButtonBox::AcceptRole);
    QPushButton* const cancelButton = box->addButton(cancelTitle, QDialogButtonBox::RejectRole);
    // Without this the button that has the focus takes Enter over.
    OKButton->setAutoDefault(false);
    cancelButton->setAutoDefault(false);
    QPushButton* const defaultButton = isDefault == DefaultButton::OK ? OKButton.data() : cancelButton;
    defaultButton->setDefault(true);
    connect(OKButton, &QPushButton::clicked, this, [this] { onClickOK(OKButton); });
    connect(cancelButton, &QPushButton::clicked, this, [this, cancelButton] { onClickCancel(cancelButton); });
}

} // namespace vantro
