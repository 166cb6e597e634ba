#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What several screens say: the texts of the string table "CommonMessage". Each is looked up once and kept. Any
/// thread.
struct CommonMessage
{
    CommonMessage() = delete;

    static const QString& ok() { return message<"CommonMessage", "ok">(); }
    static const QString& cancel() { return message<"CommonMessage", "cancel">(); }
    static const QString& caution() { return message<"CommonMessage", "caution">(); }
    static const QString& warning() { return message<"CommonMessage", "warning">(); }
    static const QString& close() { return message<"CommonMessage", "close">(); }
    static const QString& noRegistrationYubiKey() { return message<"CommonMessage", "no_registration_yubiKey">(); }
    static const QString& CRFailureAlert() { return message<"CommonMessage", "cr_failure_alert">(); }
    static const QString& unexpectedChangeSetting() { return message<"CommonMessage", "unexpected_change_setting">(); }
    static const QString& installAfterAlertMessage()
    {
        return message<"CommonMessage", "install_after_alert_message">();
    }
    static const QString& installAfterAlertInfo() { return message<"CommonMessage", "install_after_alert_info">(); }
    static const QString& doNotDisplay() { return message<"CommonMessage", "do_not_display">(); }
};

} // namespace vantro
