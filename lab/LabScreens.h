#pragma once

#include <memory>

#include <QObject>
#include <QString>

#include "LabState.h"
#include "emulation/StandInLogind.h"

namespace vantro::lab {

/// The screens of the lab's people, each in a session of their own, which the service may lock. Main thread.
class LabScreens : public QObject
{
    Q_OBJECT

  public:
    /// `state` must outlive this.
    explicit LabScreens(const LabState& state) : state_(state) {}

    /// Lights the screens, on the system bus of this process, which runs by now.
    void start();

    /// What unlocking a screen does once somebody has signed in at it.
    void unlock(const QString& account);

    /// Which of them are locked, or why that is not known.
    [[nodiscard]] QString statusText() const;

  Q_SIGNALS:
    void changed();

  private:
    const LabState& state_;
    QString failure_;
    std::unique_ptr<StandInLogind> logind_;
};

} // namespace vantro::lab
