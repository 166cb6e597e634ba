#pragma once

#include <map>
#include <utility>

#include <QString>
#include <QStringList>

namespace vantro::tests {

/// A text as its string table's source has it.
struct TableText
{
    /// One, or one for each plural form where the text counts things.
    QStringList forms;
    bool counts = false;
    bool isFinished = true;
};

/// Table and key of each text.
using TableTexts = std::map<std::pair<QString, QString>, TableText>;

/// The texts of all string tables of a language ("de"); a test failure when they can't be read.
[[nodiscard]] TableTexts tableTexts(const QString& language);

} // namespace vantro::tests
