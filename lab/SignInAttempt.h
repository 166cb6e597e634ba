#pragma once

#include <filesystem>
#include <optional>

#include <sys/stat.h>

#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>

#include "LabState.h"

namespace vantro::lab {

/// Somebody of the lab who tries to sign in: libpam's conversation with the lab's PAM services and the real login
/// module, in a process of its own. One at a time. Main thread.
class SignInAttempt : public QObject
{
    Q_OBJECT

  public:
    /// `state` must outlive this.
    explicit SignInAttempt(const LabState& state);
    ~SignInAttempt() override;

    /// `environment` is that of the lab's programs.
    void start(const QString& account, QProcessEnvironment environment);
    /// As somebody does who walks away.
    void giveUp();
    [[nodiscard]] bool isUnderWay() const { return process_.state() != QProcess::NotRunning; }
    [[nodiscard]] const QString& account() const { return account_; }

  Q_SIGNALS:
    /// What the login module wants, in the language of the desktop.
    void said(const QString& text);
    void accepted(const QString& text);
    void denied(const QString& text);

  private:
    void onEnded(int code, QProcess::ExitStatus status);
    /// Where the service notes with which token the account was accepted; nothing for one that it does not know.
    [[nodiscard]] std::optional<std::filesystem::path> acceptance() const;

    const LabState& state_;
    QProcess process_;
    QString account_;
    QString lastWords_;
    struct stat acceptanceBefore_ = {};
};

} // namespace vantro::lab
