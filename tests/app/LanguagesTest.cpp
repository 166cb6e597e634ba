// Every language says all that English says, in its own way of writing.

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFont>
#include <QLocale>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTranslator>
#include <gtest/gtest.h>

#include "app/AppFixture.h"
#include "app/StringTableFile.h"
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
    store({});
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
