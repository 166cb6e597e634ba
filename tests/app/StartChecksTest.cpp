// What stands in the way of a start: another tool that is open, a document that can't be read or written.

#include <filesystem>
#include <iostream>

#include <unistd.h>

#include "AppDelegate.h"
#include "CommonMessage.h"
#include "CompositionRoot.h"
#include "StartMessage.h"
#include "app/AppFixture.h"
#include "support/LockHolder.h"

namespace vantro::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OneTool : public AppFixture
{
  protected:
    const std::filesystem::path lockFile = prefix.settingsFolder() / "VantroStandaloneSetting.lock";

    void expectNothingTouched()
    {
        EXPECT_FALSE(std::filesystem::exists(prefix.settingsDocument()));
        EXPECT_EQ(takeWrites(), 0);
    }
};

TEST_F(OneTool, ASecondStartByAnotherAccountSaysWhoseTheFirstIs)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can start a process of another account";
    constexpr uid_t daemon = 1;
    const LockHolder first(lockFile, daemon);
    EXPECT_FALSE(applicationStoryboard().mayLaunch());
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0].message, StartMessage::alreadyOpenHeading());
    // The machine's accounts are the tests' own, and this one may not be among them.
    EXPECT_TRUE(alerts[0].information == StartMessage::alreadyOpenBy().arg(QStringLiteral("daemon")) ||
                alerts[0].information == StartMessage::alreadyOpen());
    EXPECT_THAT(alerts[0].buttons, ElementsAre(CommonMessage::close()));
    expectNothingTouched();
}

TEST_F(OneTool, NoneOpensWhereNothingTellsWhetherAnotherIs)
{
    std::filesystem::create_directory(lockFile);
    EXPECT_FALSE(applicationStoryboard().mayLaunch());
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0].message, StartMessage::lockUnusableHeading());
    EXPECT_EQ(alerts[0].information, StartMessage::lockUnusable().arg(QString::fromStdString(lockFile.string()),
                                                                      QStringLiteral("Is a directory")));
    expectNothingTouched();
}

using DocumentAtStart = AppFixture;

TEST_F(DocumentAtStart, ThatCantBeReadEndsTheTool)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto launch = [this] {
        whileAlert = [this] { std::cerr << alerts.back().information.toStdString() << '\n'; };
        AppDelegate().applicationDidFinishLaunching();
    };
    std::filesystem::remove_all(prefix.settingsFolder());
    // Each launch has an installation of its own, so that the paths differ.
    const QString behindPath = StartMessage::documentUnreadable().section(QStringLiteral("%2"), 1);
    EXPECT_EXIT(launch(), testing::ExitedWithCode(EXIT_SUCCESS),
                testing::HasSubstr("No such file or directory" + behindPath.toStdString()));
}

TEST_F(DocumentAtStart, ThatIsInvalidAndCantBeKeptEndsTheTool)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto open = [this] {
        writeFile(prefix.settingsDocument(), "<Setting/>");
        dataSet();
        std::filesystem::remove_all(prefix.settingsFolder());
        whileAlert = [this] {
            std::cerr << alerts.back().message.toStdString() << "; services asked: " << service->pamCalls().size();
        };
        window();
    };
    EXPECT_EXIT(open(), testing::ExitedWithCode(EXIT_SUCCESS),
                testing::HasSubstr(StartMessage::documentNotKeptHeading().toStdString() + "; services asked: 0"));
}

class DocumentNotStored : public AppFixture, public testing::WithParamInterface<bool>
{
};

INSTANTIATE_TEST_SUITE_P(At, DocumentNotStored, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Start" : "Change"; });

TEST_P(DocumentNotStored, IsToldOnce)
{
    const bool isSoAtStart = GetParam();
    store({.users = {{"adam", {1}}}});
    dataSet();
    if (isSoAtStart)
        std::filesystem::remove_all(prefix.settingsFolder());
    EXPECT_TRUE(window().isVisible());
    std::filesystem::remove_all(prefix.settingsFolder());
    for (int change = 0; change < 2; ++change) {
        dataSet().vantroStandaloneSetting.write();
        bool isQueueEmpty = false;
        DispatchQueue::main().async([&] { isQueueEmpty = true; });
        ASSERT_TRUE(spinUntil([&] { return isQueueEmpty; }));
    }
    ASSERT_EQ(alerts.size(), 1U);
    EXPECT_EQ(alerts[0].message, StartMessage::documentNotWrittenHeading());
    EXPECT_EQ(alerts[0].information,
              StartMessage::documentNotWritten().arg(QString::fromStdString(prefix.settingsDocument().string())));
}

} // namespace
} // namespace vantro::tests
