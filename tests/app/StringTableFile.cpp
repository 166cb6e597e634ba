#include "app/StringTableFile.h"

#include <QFile>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace vantro::tests {

TableTexts tableTexts(const QString& language)
{
    TableTexts texts;
    QFile file(QStringLiteral(APP_RESOURCES "/strings/vantro_%1.ts").arg(language));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    QXmlStreamReader reader(&file);
    QString table;
    QString key;
    TableText text;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        const auto name = reader.name();
        if (token == QXmlStreamReader::StartElement) {
            if (name == QLatin1String("name"))
                table = reader.readElementText();
            else if (name == QLatin1String("source"))
                key = reader.readElementText();
            else if (name == QLatin1String("message"))
                text = {{}, reader.attributes().value(QLatin1String("numerus")) == QLatin1String("yes"), true};
            else if (name == QLatin1String("translation"))
                text.isFinished = !reader.attributes().hasAttribute(QLatin1String("type"));
            if (name == (text.counts ? QLatin1String("numerusform") : QLatin1String("translation")))
                text.forms += reader.readElementText();
        } else if (token == QXmlStreamReader::EndElement && name == QLatin1String("message")) {
            const bool isNew = texts.emplace(std::pair(table, key), text).second;
            EXPECT_TRUE(isNew) << "twice: " << table.toStdString() << ' ' << key.toStdString();
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return texts;
}

} // namespace vantro::tests
