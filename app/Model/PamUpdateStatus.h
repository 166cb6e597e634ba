#pragma once

#include <array>
#include <optional>

#include <QString>
#include <QStringList>

#include "ServiceRequests.h"
#include "VantroStandaloneNames.h"

namespace vantro {

/// How the last change of the add-on's PAM entries ended, wherever in the tool it was made: the settings page shows it,
/// since such a failure has no alert. Main thread.
class PamUpdateStatus
{
  public:
    enum class Change
    {
        /// Forced logon was switched on or off.
        Switch,
        /// The last token was deleted, and the entries were set back.
        Reset
    };

    static PamUpdateStatus& shared();

    /// Takes down how a change ended that asked for `asked`. Before the document follows the change: where the service
    /// changed nothing, an entry is taken to be as the document says.
    void record(Change change, ControlFlag asked, const PamUpdateResults& results);

    /// What there is to say about the last change when it failed: what is not done, which entries demand a token by now
    /// when the document says otherwise, why, and what to do. By the document as it is: empty once a token is
    /// registered again and nothing is left to mend.
    [[nodiscard]] QString text() const;

  private:
    PamUpdateStatus() = default;

    [[nodiscard]] bool isAsInDocument() const;
    [[nodiscard]] QString demandingEntries() const;
    /// What is not as it should be and what to do, a line each.
    [[nodiscard]] QStringList whatIsLeft() const;

    struct Failed
    {
        Change change;
        ServiceFailure failure;
        /// Whether the entry in each of names::pamServices demands a token.
        std::array<bool, names::pamServices.size()> isDemanding;
    };
    /// The last change, when it failed.
    std::optional<Failed> failed_;
};

} // namespace vantro
