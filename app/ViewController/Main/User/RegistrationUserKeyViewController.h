#pragma once

#include <string>
#include <vector>

#include <QComboBox>
#include <QLabel>
#include <QPointer>

#include "Model/AccountModel.h"
#include "ViewController/Main/RegistrationKeyViewController.h"
#include "ViewController/Main/User/UserViewController.h"

namespace vantro {

/// Assigns the plugged-in token to one local account. A token may belong to several accounts; it is refused only for an
/// account that has it. Beyond its base: the account pop-up. Main thread.
class RegistrationUserKeyViewController : public DialogOfList<UserViewController, RegistrationKeyViewController>
{
    Q_OBJECT

  public:
    RegistrationUserKeyViewController();

    /// Action of the account pop-up; `sender` is not used.
    void onChangeAccount(QObject* sender);

    QPointer<QComboBox> accountPopUpButton;
    std::vector<AccountModel> accountModels;

  protected:
    std::unique_ptr<QWidget> loadView() override;
    void prepareDisplay() override;
    [[nodiscard]] bool isAllocated(std::uint64_t serial) const override;
    [[nodiscard]] bool isAllocatedMeanwhile(std::uint64_t serial) const override;
    void logRequest(std::uint64_t serial) const override;
    void addToSetting(std::uint64_t serial) override;
    void addToList(std::uint64_t serial) override;

  private:
    void makeAccountModels();
    void initAccountPopUpButton();
    void showFullName();
    [[nodiscard]] std::string selectedAccount() const;

    QPointer<QLabel> fullNameLabel_;
};

} // namespace vantro
