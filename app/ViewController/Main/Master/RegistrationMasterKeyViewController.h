#pragma once

#include "ViewController/Main/Master/MasterKeyViewController.h"
#include "ViewController/Main/RegistrationKeyViewController.h"

namespace vantro {

/// Makes the plugged-in token a master key, which opens every account. Stays open after a refusal. Main thread.
class RegistrationMasterKeyViewController : public DialogOfList<MasterKeyViewController, RegistrationKeyViewController>
{
    Q_OBJECT

  public:
    RegistrationMasterKeyViewController();

  protected:
    [[nodiscard]] bool isAllocated(std::uint64_t serial) const override;
    void logRequest(std::uint64_t serial) const override;
    void addToSetting(std::uint64_t serial) override;
    void addToList(std::uint64_t serial) override;
};

} // namespace vantro
