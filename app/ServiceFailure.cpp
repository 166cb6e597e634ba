#include "ServiceFailure.h"

#include "appkit/StringTable.h"

namespace vantro {
namespace {

const char* wordOf(NSXPCConnectionError code)
{
    switch (code) {
    case NSXPCConnectionError::AccessDenied:
        return "access-denied";
    case NSXPCConnectionError::ServiceMissing:
        return "service-missing";
    case NSXPCConnectionError::ConnectionInvalid:
        return "bus-missing";
    case NSXPCConnectionError::ReplyInvalid:
        break;
    }
    return "";
}

} // namespace

ServiceFailure::ServiceFailure(const NSError& error) : word_(wordOf(error.code)) {}

QString ServiceFailure::sentence() const
{
    if (word_.empty())
        return {};
    // A text that the table lacks is answered by its key.
    const QString text = localizedString("ServiceFailure", word_.c_str());
    return text.toStdString() == word_ ? QString() : text;
}

QString ServiceFailure::below(const QString& text) const
{
    const QString reason = sentence();
    return reason.isEmpty() ? text : text + QStringLiteral("\n\n") + reason;
}

} // namespace vantro
