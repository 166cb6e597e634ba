#pragma once

#include <optional>

#include <sys/types.h>

#include "Faults.h"
#include "Subject.h"
#include "foundation/FileDescriptor.h"

namespace vantro::torture {

/// A process that carries out operations, one after the other, with the product's code, and that can be killed.
class Victim
{
  public:
    /// Throws std::system_error when it can't be started.
    Victim(const Folders& folders, const Logger& logger, Faults& faults);
    /// Ends it.
    ~Victim();
    Victim(const Victim&) = delete;
    Victim& operator=(const Victim&) = delete;

    enum class Kill
    {
        No,
        /// At the call that the plan says.
        AtACall,
        /// So long after its beginning; see carryOut().
        AtATime
    };
    struct Result
    {
        /// Nothing where it has not answered any more.
        std::optional<Answer> answer;
        bool hasLeaked = false;
        bool isAlive = true;
        /// Whether it has ended otherwise than by the kill that was ordered.
        bool hasCrashed = false;
    };

    /// Has an operation carried out under the plan, and waits for its end.
    [[nodiscard]] Result carryOut(const Operation& operation, Kill kill, unsigned int killMicroseconds);

  private:
    FileDescriptor orders_;
    FileDescriptor answers_;
    pid_t process_ = -1;
};

} // namespace vantro::torture
