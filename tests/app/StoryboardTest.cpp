// Every screen can be made, has its outlets, and has a text for each of its keys.

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <QAbstractButton>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include "app/AppFixture.h"
#include "app/StringTableFile.h"
#include "appkit/NSStoryboard.h"

namespace vantro::tests {
namespace {

TEST_F(AppFixture, EveryScreenLoadsAndShowsTextsInsteadOfKeys)
{
    store({});
    const QRegularExpression key(QStringLiteral("^[a-z]+(_[a-z]+)+$"));
    for (const NSStoryboard* const storyboard : {&NSStoryboard::named("Main"), &NSStoryboard::named("Alert")}) {
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
    EXPECT_THROW(static_cast<void>(NSStoryboard::named("Main").instantiateController("Nobody")), std::logic_error);

    // What a record says of its source holds: a statement that ends there logs, or names the file that others log for.
    const std::regex place(R"( (\S+):(\d+) )");
    std::istringstream records(wholeLog());
    for (std::string record; std::getline(records, record);) {
        std::smatch found;
        ASSERT_TRUE(std::regex_search(record, found, place)) << record;
        std::ifstream source(APP_SOURCE "/" + found.str(1) + ".cpp");
        std::string statement;
        for (int left = std::stoi(found[2]); left > 0; --left) {
            std::string line;
            EXPECT_TRUE(std::getline(source, line)) << record;
            constexpr int linesOfAStatement = 4;
            statement += left <= linesOfAStatement ? line : "";
        }
        EXPECT_TRUE(std::regex_search(statement, std::regex("log|" + found.str(1)))) << record << "\n" << statement;
    }
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
