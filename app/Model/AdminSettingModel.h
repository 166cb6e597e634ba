#pragma once

#include "Model/KeyModels.h"
#include "Model/SettingCheckButtonModel.h"
#include "appkit/KeyValueArray.h"

namespace vantro {

/// What the administrator key page shows. Main thread.
struct AdminSettingModel
{
    /// Posted when the state of the check box has changed.
    inline static const NotificationName toolLoginAuthStateChanged = "toolLoginAuthStateChanged";

    SettingCheckButtonModel authCheckButtonModel{toolLoginAuthStateChanged};
    KeyValueArray<AdminKeyModel> adminKeyModels;
};

} // namespace vantro
