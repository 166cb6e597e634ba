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

class OneTool : public AppFixture
{
  protected:
    const std::filesystem::path lockFile = prefix.settings() / "VantroStandaloneSetting.lock";

    void expectRefused(const QString& message, const QString& information)
    {
        EXPECT_FALSE(applicationStoryboard().mayLaunch());
        expectAlerts({{message, information, {CommonMessage::close()}, NSAlert::Style::Critical}});
        EXPECT_FALSE(std::filesystem::exists(prefix.settingsDocument()));
        EXPECT_EQ(takeWrites(), 0);
    }
};

TEST_F(OneTool, ASecondStartByAnotherAccountSaysWhoseTheFirstIs)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can start a process of another account";
    constexpr uid_t adam = 1802;
    const LockHolder first(lockFile, adam);
    expectRefused(StartMessage::alreadyOpenHeading(), StartMessage::alreadyOpenBy().arg(QStringLiteral("adam")));
}

TEST_F(OneTool, NoneOpensWhereNothingTellsWhetherAnotherIs)
{
    std::filesystem::create_directory(lockFile);
    expectRefused(
        StartMessage::lockUnusableHeading(),
        StartMessage::lockUnusable().arg(QString::fromStdString(lockFile.string()), QStringLiteral("Is a directory")));
}

using DocumentAtStart = AppFixture;

TEST_F(DocumentAtStart, ThatCantBeReadEndsTheTool)
{
    const auto launch = [this] {
        whileAlert = [this] { std::cerr << alerts.back().information.toStdString() << '\n'; };
        AppDelegate().applicationDidFinishLaunching();
    };
    std::filesystem::remove_all(prefix.settings());
    // Each launch has an installation of its own, so that the paths differ.
    const QString behindPath = StartMessage::documentUnreadable().section(QStringLiteral("%2"), 1);
    EXPECT_EXIT(launch(), testing::ExitedWithCode(EXIT_SUCCESS),
                testing::HasSubstr("No such file or directory" + behindPath.toStdString()));
}

TEST_F(DocumentAtStart, ThatIsInvalidAndCantBeKeptEndsTheTool)
{
    const auto open = [this] {
        writeFile(prefix.settingsDocument(), "<Setting/>");
        dataSet();
        std::filesystem::remove_all(prefix.settings());
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
    prefix.store({.users = {{"adam", {1}}}});
    dataSet();
    if (isSoAtStart)
        std::filesystem::remove_all(prefix.settings());
    EXPECT_TRUE(window().isVisible());
    std::filesystem::remove_all(prefix.settings());
    for (int change = 0; change < 2; ++change) {
        dataSet().vantroStandaloneSetting.write();
        bool isQueueEmpty = false;
        DispatchQueue::main().async([&] { isQueueEmpty = true; });
        ASSERT_TRUE(spinUntil([&] { return isQueueEmpty; }));
    }
    expectAlerts(
        {{StartMessage::documentNotWrittenHeading(),
          StartMessage::documentNotWritten().arg(QString::fromStdString(prefix.settingsDocument().string()))}});
}

} // namespace
} // namespace vantro::tests
