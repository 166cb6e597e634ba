#include "LabScreens.h"

#include "LabAccounts.h"

namespace vantro::lab {

void LabScreens::start()
{
    std::vector<StandInLogind::Session> sessions;
    for (const LabAccount& account : labAccounts()) {
        if (const auto user = userIdIn(state_.folder(), account.name)) {
            sessions.push_back({.id = account.name, .userId = *user, .user = account.name});
        }
    }
    try {
        // From another thread: it becomes a signal of the main one.
        logind_ = std::make_unique<StandInLogind>(
            sessions, [this] { QMetaObject::invokeMethod(this, &LabScreens::changed, Qt::QueuedConnection); });
    } catch (const sdbus::Error& error) {
        failure_ = QString::fromStdString(error.getMessage());
    }
    Q_EMIT changed();
}

void LabScreens::unlock(const QString& account)
{
    if (logind_) {
        logind_->unlock(account.toStdString());
    }
}

QString LabScreens::statusText() const
{
    if (!failure_.isEmpty()) {
        return tr("The screens are dark: %1.").arg(failure_);
    }
    QStringList screens;
    for (const LabAccount& account : labAccounts()) {
        const bool isLocked = logind_ && logind_->isLocked(account.name);
        screens << (isLocked ? tr("%1's screen is locked.") : tr("%1's screen is open."))
                       .arg(QString::fromStdString(account.fullName).section(QLatin1Char(' '), 0, 0));
    }
    return screens.join(QLatin1Char(' '));
}

} // namespace vantro::lab
