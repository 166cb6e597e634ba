// Every screen can be made, has its outlets, and has a text for each of its keys.

#include <set>

#include <QAbstractButton>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include "Resources/Storyboards.h"
#include "app/AppFixture.h"
#include "app/StringTableFile.h"

namespace vantro::tests {
namespace {

TEST_F(AppFixture, EveryScreenLoadsAndShowsTextsInsteadOfKeys)
{
    store({});
    const QRegularExpression key(QStringLiteral("^[a-z]+(_[a-z]+)+$"));
    for (const NSStoryboard* const storyboard : {&mainStoryboard(), &alertStoryboard()}) {
        for (const auto& [identifier, factory] : storyboard->factories()) {
            SCOPED_TRACE(identifier);
            const auto controller = storyboard->instantiateController(identifier);
            QWidget* const view = controller->view();
            ASSERT_NE(view, nullptr);
            for (const auto* const label : view->findChildren<QLabel*>())
                EXPECT_FALSE(key.match(label->text()).hasMatch()) << label->text().toStdString();
            for (const auto* const button : view->findChildren<QAbstractButton*>())
                EXPECT_FALSE(key.match(button->text()).hasMatch()) << button->text().toStdString();
        }
    }
    EXPECT_THROW(static_cast<void>(mainStoryboard().instantiateController("Nobody")), std::logic_error);
}

/// The texts of an XML element's children of a name, below the whole document.
std::set<QString> keysOfForm(const QString& path)
{
    std::set<QString> keys;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    while (!reader.atEnd())
        if (reader.readNextStartElement() || !reader.atEnd())
            if (reader.isStartElement() && reader.name() == QLatin1String("string"))
                keys.insert(reader.readElementText());
    return keys;
}

TEST(StringTables, HaveEveryKeyOfEveryForm)
{
    const TableTexts texts = tableTexts(QStringLiteral("en"));
    int forms = 0;
    for (QDirIterator form(QStringLiteral(APP_RESOURCES), {QStringLiteral("*.ui")}); form.hasNext(); ++forms) {
        const QFileInfo information(form.next());
        for (const QString& key : keysOfForm(information.filePath()))
            EXPECT_TRUE(key.isEmpty() || texts.contains({information.baseName(), key}))
                << information.baseName().toStdString() << " lacks " << key.toStdString();
    }
    EXPECT_GE(forms, 12);
}

} // namespace
} // namespace vantro::tests
