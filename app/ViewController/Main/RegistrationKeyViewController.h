#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Model/LabelModel.h"
#include "ViewController/Main/ListDialog.h"
#include "appkit/StringTable.h"

namespace vantro {

/// What the three registration dialogs have in common: they show the serial of the token that is plugged in, or why it
/// can't be registered, follow tokens coming and going, and on OK have the token's challenge-response file written
/// before anything else changes. The serial that is registered is the text of the label, which holds a bare number
/// exactly while OK is enabled. Main thread.
class RegistrationKeyViewController : public ListDialogViewController
{
    Q_OBJECT

  public:
    void viewDidLoad() override;
    void viewWillAppear() override;
    void onClickOK(QObject* sender) override;

    LabelModel serialLabelModel;
    /// Below the serial: why a token that is plugged in can't be registered.
    LabelModel obstacleLabelModel{LabelModel::Visibility::Hidden};

  protected:
    /// What becomes of the dialog when OK did not register anything.
    enum class AfterRefusal
    {
        StayOpen,
        Close
    };

    struct Texts
    {
        /// The string table of what the form shows.
        const char* table;
        /// What the serial label shows in place of or below a serial.
        std::function<QString()> isNotConnected;
        std::function<QString()> isAlreadyAllocated;
    };

    RegistrationKeyViewController(const LogSource& source, Texts texts, AfterRefusal afterRefusal);

    std::unique_ptr<QWidget> loadView() override;

    /// Makes the view of `Form` and connects the outlets that every form of a registration has.
    template <class Form>
    std::unique_ptr<QWidget> loadForm(Form& outlets)
    {
        auto view = std::make_unique<QWidget>();
        outlets.setupUi(view.get());
        serialLabelModel.bindTo(outlets.serialLabel);
        obstacleLabelModel.bindTo(outlets.obstacleLabel);
        addButtons(outlets.buttonBox, localizedString(texts_.table, "register_button"),
                   localizedString(texts_.table, "cancel_button"), DefaultButton::OK);
        return view;
    }

    /// Brings label and OK button up to date with the token that is plugged in.
    void updateDisplay();

    /// Called before the first display; for what a dialog has beside the serial.
    virtual void prepareDisplay() {}

    /// Whether the token can't be registered (again), by what the dialog shows.
    [[nodiscard]] virtual bool isAllocated(std::uint64_t serial) const = 0;

    /// Whether the token was registered in the meantime; asked when its file has been written.
    [[nodiscard]] virtual bool isAllocatedMeanwhile(std::uint64_t serial) const { return isAllocated(serial); }

    /// Called right before the request for the token's file.
    virtual void logRequest(std::uint64_t /*serial*/) const {}

    /// Adds the token to the document, in order, and writes it.
    virtual void addToSetting(std::uint64_t serial) = 0;

    /// Adds the token's row to the presenting list, in order, and clears the list's selection.
    virtual void addToList(std::uint64_t serial) = 0;

  private:
    void observeTokens();
    void showNotConnected();
    void showObstacle();
    [[nodiscard]] bool registerToken();

    const Texts texts_;
    const AfterRefusal afterRefusal_;
};

} // namespace vantro
