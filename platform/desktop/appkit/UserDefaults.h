#pragma once

#include <optional>

#include <QSettings>
#include <QString>

namespace vantro {

/// The tool's own few values that outlive it: one file, vantro-standalone/defaults.ini, in the user's configuration
/// folder ($XDG_CONFIG_HOME, else ~/.config). Main thread. Every store reaches the file before the call returns; a file
/// that can't be written loses the value and nothing else.
class UserDefaults
{
  public:
    static UserDefaults& standard();

    /// The stored Boolean; nothing when there is no such entry, which is another answer than false.
    [[nodiscard]] std::optional<bool> object(const QString& key) const;

    /// The stored Boolean; false when there is no such entry.
    [[nodiscard]] bool boolean(const QString& key) const { return object(key).value_or(false); }

    /// False when the file can't be written.
    bool set(const QString& key, bool value);

    /// The file's path.
    [[nodiscard]] QString file() const { return settings_.fileName(); }

  private:
    UserDefaults();
    QSettings settings_;
};

} // namespace vantro
