#pragma once

#include "ViewController/DialogViewController.h"

namespace vantro {

/// A dialog that one of the lists presents. Main thread.
class ListDialogViewController : public DialogViewController
{
  protected:
    using DialogViewController::DialogViewController;

    /// Whether the dialog was presented by the list that it belongs to; the others have nothing to work on.
    [[nodiscard]] virtual bool isPresentedByList() const = 0;
};

/// What a dialog of the list `List` is beyond `Dialog`, which knows no list's type.
template <class List, class Dialog>
class DialogOfList : public Dialog
{
  protected:
    using Dialog::Dialog;

    /// Null when another controller, or none, presented the dialog.
    [[nodiscard]] List* list() const { return qobject_cast<List*>(this->presentingViewController()); }

    [[nodiscard]] bool isPresentedByList() const override { return list() != nullptr; }
};

} // namespace vantro
