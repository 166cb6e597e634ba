#pragma once

#include <QString>

class QWidget;

namespace vantro {

/// The text of `key` in the string table `table` for the user's language; in English where that language lacks it, and
/// the key itself where the table lacks it altogether. Any thread, once the tables are installed.
[[nodiscard]] QString localizedString(const char* table, const char* key);

/// The same for a text that speaks of `count` things, in the form that the language has for that number; the number
/// itself takes the place of "%n". Any thread, once the tables are installed.
[[nodiscard]] QString localizedString(const char* table, const char* key, int count);

/// Replaces the keys that a form without a string table of its own holds as texts, names and descriptions of the
/// widgets in `view` by their texts in `table`; so several screens share a form. Main thread, right after the form is
/// set up.
void localizeForm(const QWidget& view, const char* table);

/// Installs the string tables that the program carries in its resources below `folder`: English as the base, and above
/// it the first language of the user's that is there, with the toolkit's own texts in that language where the system
/// has them. Main thread, once, after the application was made.
void installStringTables(const QString& folder);

} // namespace vantro
