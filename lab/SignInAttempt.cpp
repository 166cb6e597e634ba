#include "SignInAttempt.h"

#include <fstream>
#include <string>
#include <utility>

#include "ChildProcess.h"
#include "LabAccounts.h"

namespace vantro::lab {

namespace {

struct stat statusOf(const std::optional<std::filesystem::path>& path)
{
    struct stat status = {};
    if (path && ::stat(path->c_str(), &status) != 0) {
        status = {};
    }
    return status;
}

bool isSameFile(const struct stat& one, const struct stat& other)
{
    return one.st_ino == other.st_ino && one.st_mtim.tv_sec == other.st_mtim.tv_sec &&
           one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

} // namespace

SignInAttempt::SignInAttempt(const LabState& state) : state_(state)
{
    endWithParent(process_);
    connect(&process_, &QProcess::readyReadStandardOutput, this, [this] {
        while (process_.canReadLine()) {
            lastWords_ = QString::fromLocal8Bit(process_.readLine()).trimmed();
            Q_EMIT said(lastWords_);
        }
    });
    connect(&process_, &QProcess::finished, this, &SignInAttempt::onEnded);
}

SignInAttempt::~SignInAttempt()
{
    disconnect(&process_, nullptr, this, nullptr);
    end(process_);
}

void SignInAttempt::start(const QString& account, QProcessEnvironment environment)
{
    account_ = account;
    lastWords_.clear();
    acceptanceBefore_ = statusOf(acceptance());
    const QString preload = QStringLiteral("LD_PRELOAD");
    environment.insert(QStringLiteral("VANTRO_LAB_PAM_MODULES"), QString::fromStdString(state_.pamModules().string()));
    environment.insert(preload, QStringLiteral(LAB_MODULE_FOLDER_LIBRARY ":") + environment.value(preload));
    process_.setProcessEnvironment(environment);
    process_.setStandardErrorFile(QString::fromStdString((state_.folder() / "log" / "sign-in-errors.log").string()));
    process_.start(QStringLiteral(LAB_SIGN_IN_PROGRAM),
                   {account, QStringLiteral("sign-in"), QString::fromStdString(state_.pamServices().string())});
}

void SignInAttempt::giveUp()
{
    lastWords_ = tr("Given up.");
    end(process_);
}

void SignInAttempt::onEnded(int code, QProcess::ExitStatus status)
{
    if (status != QProcess::NormalExit || code != 0) {
        Q_EMIT denied(tr("%1: denied. %2").arg(account_, lastWords_)); // NOLINT(readability-misleading-indentation)
        return;
    }
    const auto path = acceptance();
    if (!path || isSameFile(statusOf(path), acceptanceBefore_)) {
        Q_EMIT accepted(
            tr("%1: signed in. No token was demanded.").arg(account_)); // NOLINT(readability-misleading-indentation)
        return;
    }
    std::string serial;
    std::ifstream(*path) >> serial;
    Q_EMIT accepted(tr("%1: signed in with token %2.").arg(account_, QString::fromStdString(serial)));
}

std::optional<std::filesystem::path> SignInAttempt::acceptance() const
{
    const auto user = userIdIn(state_.folder(), account_.toStdString());
    return user ? std::optional(state_.signedIn() / std::to_string(*user)) : std::nullopt;
}

} // namespace vantro::lab
