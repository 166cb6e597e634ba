#pragma once

#include <QObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

#include "LabState.h"

namespace vantro::lab {

/// The programs that the lab runs: a bus of its own, which starts the service on the first request, and the tool. They
/// end before this object does. Main thread.
class LabPrograms : public QObject
{
    Q_OBJECT

  public:
    /// `state` must outlive the programs.
    explicit LabPrograms(const LabState& state);
    ~LabPrograms() override;

    /// Starts the bus and the tool; what is missing is told by statusText().
    void start();

    /// Starts the tool if it isn't running.
    void startTool();

    [[nodiscard]] bool isToolRunning() const { return tool_.state() != QProcess::NotRunning; }

    /// What runs and what doesn't, one line each.
    [[nodiscard]] QString statusText() const;

    /// The folder of the bus's socket.
    [[nodiscard]] QString socketFolder() const { return socketFolder_.path(); }

    /// What programs of the lab find in their environment.
    [[nodiscard]] QProcessEnvironment environment() const;

  Q_SIGNALS:
    void changed();
    /// The bus runs, and is the system bus of this process as well.
    void busStarted();

  private:
    void startBus();
    void writeBusConfiguration() const;
    [[nodiscard]] QString busAddress() const;
    void onToolEnded();

    const LabState& state_;
    QTemporaryDir socketFolder_;
    QProcess bus_;
    QProcess tool_;
    QString busFailure_;
    QString toolEnd_;
};

} // namespace vantro::lab
