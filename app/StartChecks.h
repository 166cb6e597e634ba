#pragma once

namespace vantro {

/// Whether no other tool is open for the same settings document; from a true answer on this process is the one, until
/// it ends. Otherwise brings the other's window to the front, or, when that is another account's, says whose it is.
/// Touches no settings and no log. Main thread, at the start, once.
[[nodiscard]] bool isOnlyTool();

/// After the start sequence: ends the process, with an alert that says what to do, when the settings document can't be
/// read or had to be kept aside because it couldn't. A window would show no keys then and ask nobody to sign in. Main
/// thread.
void quitUnlessDocumentCanBeRead();

/// Before a document that is no valid one is replaced: keeps it beside the new one. Ends the process, with an alert
/// that says what to do, when it can't be kept. Main thread.
void quitUnlessInvalidDocumentIsKept();

} // namespace vantro
