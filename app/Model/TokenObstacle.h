#pragma once

#include <QString>

#include "ServiceFailure.h"
#include "foundation/NotificationCenter.h"

namespace vantro {

/// Posted on the main thread, without an object, when the reason may be another.
inline const NotificationName TokenObstacleChanged = "tokenObstacleChanged";

/// Why none of the tokens that are plugged in can be used: what the screens say below "no token is connected", which by
/// itself would be a lie then.
class TokenObstacle
{
  public:
    enum class Kind
    {
        None,
        /// The serial of the token that came last could not be read.
        SerialNotRead,
        /// A token has gone, and nobody knows the serial of the one that is left.
        AnotherPulledOut
    };

    /// Takes effect on the main thread, in the order of the calls; posts TokenObstacleChanged there. `cause` is why the
    /// serial could not be read. Any thread.
    void set(Kind kind, const ServiceFailure& cause = {});

    /// What is in the way and what to do; empty when nothing is. Main thread.
    [[nodiscard]] QString text() const;

  private:
    Kind kind_ = Kind::None;
    ServiceFailure cause_;
};

} // namespace vantro
