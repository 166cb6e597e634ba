#include "Alerts.h"

#include "ApplicationVersion.h"
#include "CommonMessage.h"

namespace vantro {

NSAlert createOKButtonOnlyAlert(NSAlert::Style style, const QString& message, const QString& informativeText)
{
    NSAlert alert;
    alert.windowTitle = windowTitleWithVersion();
    alert.alertStyle = style;
    alert.messageText = message;
    alert.informativeText = informativeText;
    alert.addButton(CommonMessage::ok());
    return alert;
}

} // namespace vantro
