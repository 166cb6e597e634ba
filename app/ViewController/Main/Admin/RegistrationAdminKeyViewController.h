#pragma once

#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ViewController/Main/RegistrationKeyViewController.h"

namespace vantro {

/// Makes the plugged-in token an administrator key, which opens the tool. Closes with every OK, and lets the sign-in
/// switch be used. Main thread.
class RegistrationAdminKeyViewController : public DialogOfList<AdminViewContorller, RegistrationKeyViewController>
{
    Q_OBJECT

  public:
    RegistrationAdminKeyViewController();

  protected:
    [[nodiscard]] bool isAllocated(std::uint64_t serial) const override;
    void addToSetting(std::uint64_t serial) override;
    void addToList(std::uint64_t serial) override;
};

} // namespace vantro
