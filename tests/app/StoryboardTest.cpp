// Every screen can be made, has its outlets, and shows no key in place of a text.

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include <QAbstractButton>
#include <QLabel>
#include <QRegularExpression>

#include "app/AppFixture.h"
#include "appkit/NSStoryboard.h"

namespace vantro::tests {
namespace {

TEST_F(AppFixture, EveryScreenLoadsAndShowsTextsInsteadOfKeys)
{
    prefix.store({});
    const QRegularExpression key(QStringLiteral("^[a-z]+(_[a-z]+)*$"));
    for (const NSStoryboard* const storyboard : {&NSStoryboard::named("Main"), &NSStoryboard::named("Alert")}) {
        for (const auto& [identifier, factory] : storyboard->factories()) {
            SCOPED_TRACE(identifier);
            const auto controller = storyboard->instantiateController(identifier);
            QWidget* const view = controller->view();
            ASSERT_NE(view, nullptr);
            for (const auto* const widget : view->findChildren<QWidget*>()) {
                for (const char* const property : {"text", "accessibleName", "accessibleDescription"}) {
                    const QString text = widget->property(property).toString();
                    EXPECT_FALSE(key.match(text).hasMatch()) << text.toStdString();
                }
            }
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

} // namespace
} // namespace vantro::tests
