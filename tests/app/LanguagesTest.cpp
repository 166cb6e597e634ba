// Every language says all that English says, in its own way of writing.

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QLocale>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTranslator>
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "app/AppFixture.h"
#include "appkit/StringTable.h"

namespace vantro::tests {
namespace {

/// How a language is written.
struct Language
{
    QString code;
    qsizetype pluralForms;
};

const QString english = QStringLiteral("en");

std::vector<Language> languages()
{
    return {{english, 2}, {QStringLiteral("de"), 2}, {QStringLiteral("ja"), 1}};
}

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

/// The texts of all string tables of a language.
TableTexts tableTexts(const QString& language)
{
    TableTexts texts;
    pugi::xml_document file;
    const std::string path = APP_RESOURCES "/strings/vantro_" + language.toStdString() + ".ts";
    EXPECT_TRUE(file.load_file(path.c_str(), pugi::parse_default | pugi::parse_ws_pcdata)) << path;
    for (const auto& context : file.child("TS").children("context")) {
        for (const auto& message : context.children("message")) {
            const auto translation = message.child("translation");
            TableText text{{},
                           message.attribute("numerus").value() == std::string_view("yes"),
                           translation.attribute("type").empty()};
            if (text.counts)
                for (const auto& form : translation.children("numerusform"))
                    text.forms += form.child_value();
            else
                text.forms += translation.child_value();
            const std::pair place(context.child_value("name"), message.child_value("source"));
            EXPECT_TRUE(texts.emplace(place, text).second) << "twice: " << place.first << ' ' << place.second;
        }
    }
    return texts;
}

std::set<QString> matches(const QString& text, const char* pattern)
{
    std::set<QString> found;
    for (auto match = QRegularExpression(pattern).globalMatch(text); match.hasNext();)
        found.insert(match.next().captured());
    return found;
}

class LanguageOf : public AppFixture, public testing::WithParamInterface<Language>
{
};

INSTANTIATE_TEST_SUITE_P(Tables, LanguageOf, testing::ValuesIn(languages()),
                         [](const auto& language) { return language.param.code.toStdString(); });

TEST_P(LanguageOf, SaysAllThatEnglishSaysInItsOwnFormsAndLetters)
{
    const TableTexts originals = tableTexts(english);
    const TableTexts texts = tableTexts(GetParam().code);
    EXPECT_EQ(texts.size(), originals.size());
    std::map<QString, std::set<QString>> lettersOfScreens;
    for (const auto& [place, text] : texts) {
        SCOPED_TRACE(place.first.toStdString() + ' ' + place.second.toStdString());
        const auto found = originals.find(place);
        ASSERT_NE(found, originals.end()) << "not in English";
        const TableText& original = found->second;
        EXPECT_TRUE(text.isFinished);
        EXPECT_EQ(text.counts, original.counts);
        ASSERT_EQ(text.forms.size(), text.counts ? GetParam().pluralForms : 1);
        for (const QString& form : text.forms) {
            EXPECT_EQ(form, form.trimmed());
            EXPECT_FALSE(form.isEmpty());
        }
        EXPECT_EQ(matches(text.forms.back(), "%(\\d+|n)"), matches(original.forms.back(), "%(\\d+|n)"));
        const auto letters = matches(text.forms.front().toLower(), "&\\w");
        EXPECT_EQ(letters.size(), original.forms.front().count(QLatin1Char('&')));
        for (const QString& letter : letters)
            EXPECT_TRUE(lettersOfScreens[place.first].insert(letter).second) << "presses two: " << letter.toStdString();
    }
    EXPECT_FALSE(lettersOfScreens.empty());
}

TEST_P(LanguageOf, HasASentenceForEveryReasonOfAFailure)
{
    const TableTexts texts = tableTexts(GetParam().code);
    QFile words(QStringLiteral(APP_RESOURCES "/../../libraries/VantroStandaloneXPCSupport/FailureReason.h"));
    ASSERT_TRUE(words.open(QIODevice::ReadOnly));
    const QRegularExpression definition(QStringLiteral("string_view (\\w+) = \"(.*)\";"));
    int count = 0;
    for (auto match = definition.globalMatch(QString::fromUtf8(words.readAll())); match.hasNext(); ++count) {
        const auto word = match.next();
        EXPECT_EQ(texts.contains({QStringLiteral("ServiceFailure"), word.captured(2)}),
                  word.captured(1) != QLatin1String("none"))
            << word.captured().toStdString();
    }
    EXPECT_GT(count, 20);
}

TEST_P(LanguageOf, IsCarriedByTheProgramUnderItsOwnName)
{
    // By the name the toolkit chooses among the plural forms.
    QTranslator carried;
    ASSERT_TRUE(carried.load(QStringLiteral(":/strings/vantro_%1.qm").arg(GetParam().code)));
    EXPECT_EQ(carried.language(), GetParam().code);
}

TEST_P(LanguageOf, HasPagesAsWideAsItsWindowEvenWithALargeFont)
{
    QLocale::setDefault(QLocale(GetParam().code));
    installStringTables(QStringLiteral(":/strings"));
    prefix.store({});
    QApplication::setFont(QFont(QStringLiteral("Sans"), 14));
    for (const char* const identifier : {"Setting", "UserKey", "MasterKey", "Admin"}) {
        const auto* const page = switchTo(identifier).view()->parentWidget()->parentWidget();
        const auto* const area = qobject_cast<const QScrollArea*>(page);
        ASSERT_NE(area, nullptr);
        QApplication::processEvents();
        EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << identifier;
    }
}

TEST(Languages, AreAllKnownHere)
{
    QStringList known;
    for (const Language& language : languages())
        known += QStringLiteral("vantro_%1.ts").arg(language.code);
    QStringList there = QDir(QStringLiteral(APP_RESOURCES "/strings")).entryList({QStringLiteral("*.ts")});
    std::sort(known.begin(), known.end());
    std::sort(there.begin(), there.end());
    EXPECT_EQ(there, known);
}

TEST(StringTables, HaveEveryKeyOfEveryFormOfOneScreen)
{
    const TableTexts texts = tableTexts(QStringLiteral("en"));
    int forms = 0;
    for (QDirIterator form(QStringLiteral(APP_RESOURCES), {QStringLiteral("*.ui")}); form.hasNext(); ++forms) {
        const QFileInfo information(form.next());
        pugi::xml_document file;
        ASSERT_TRUE(file.load_file(information.filePath().toUtf8().constData()));
        for (const auto& node : file.select_nodes("//string[not(@notr)]/text()"))
            EXPECT_TRUE(texts.contains({information.baseName(), node.node().value()}))
                << information.baseName().toStdString() << " lacks " << node.node().value();
    }
    EXPECT_GE(forms, 8);
}

struct User
{
    const char* name;
    const char* locale;
    const char* quit;
    const char* scroll;
};

class LanguageOfUser : public testing::TestWithParam<User>
{
};

TEST_P(LanguageOfUser, IsThatOfTheToolAndOfTheToolkitsOwnTexts)
{
    int count = 1;
    char name[] = "vantro-standalone";
    char* arguments[] = {name, nullptr};
    QLocale::setDefault(QLocale(QLatin1String(GetParam().locale)));
    const QApplication application(count, arguments);
    installStringTables(QStringLiteral(":/strings"));
    EXPECT_EQ(localizedString("LoginAuthAlertView", "quit_button"), QString::fromUtf8(GetParam().quit));

    EXPECT_EQ(QCoreApplication::translate("QScrollBar", "Scroll here"), QString::fromUtf8(GetParam().scroll))
        << "is qt6-translations-l10n installed?";
}

INSTANTIATE_TEST_SUITE_P(Users, LanguageOfUser,
                         testing::Values(User{"American", "en_US", "&Quit", "Scroll here"},
                                         User{"Austrian", "de_AT", "&Beenden", "Hierher scrollen"},
                                         User{"Japanese", "ja_JP", "終了(&Q)", "ここにスクロール"},
                                         // Both in one language, also where the toolkit would know another.
                                         User{"French", "fr_FR", "&Quit", "Scroll here"}),
                         [](const auto& user) { return user.param.name; });

} // namespace
} // namespace vantro::tests
