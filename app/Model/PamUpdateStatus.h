#pragma once

namespace vantro {

/// How the last change of the add-on's PAM entries ended, wherever in the tool it was made: the settings page shows it,
/// since such a failure has no alert. Main thread.
class PamUpdateStatus
{
  public:
    enum class Outcome
    {
        Fine,
        /// A change of the forced logon switch was refused; nothing has changed.
        ChangeFailed,
        /// The last token was deleted and the entries could not be set back.
        ResetFailed
    };

    static PamUpdateStatus& shared()
    {
        static PamUpdateStatus status;
        return status;
    }

    [[nodiscard]] Outcome outcome() const { return outcome_; }
    void set(Outcome outcome) { outcome_ = outcome; }

  private:
    PamUpdateStatus() = default;
    Outcome outcome_ = Outcome::Fine;
};

} // namespace vantro
