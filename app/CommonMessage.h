#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What several screens say: the texts of the string table "CommonMessage". Any thread.
struct CommonMessage
{
    CommonMessage() = delete;

    static QString ok() { return localizedString("CommonMessage", "ok"); }
    static QString cancel() { return localizedString("CommonMessage", "cancel"); }
    static QString caution() { return localizedString("CommonMessage", "caution"); }
    static QString warning() { return localizedString("CommonMessage", "warning"); }
    static QString close() { return localizedString("CommonMessage", "close"); }
    static QString noRegistrationYubiKey() { return localizedString("CommonMessage", "no_registration_yubiKey"); }
    static QString CRFailureAlert() { return localizedString("CommonMessage", "cr_failure_alert"); }
    static QString unexpectedChangeSetting() { return localizedString("CommonMessage", "unexpected_change_setting"); }
    static QString installAfterAlertMessage()
    {
        return localizedString("CommonMessage", "install_after_alert_message");
    }
    static QString installAfterAlertInfo() { return localizedString("CommonMessage", "install_after_alert_info"); }
    static QString doNotDisplay() { return localizedString("CommonMessage", "do_not_display"); }
};

} // namespace vantro
