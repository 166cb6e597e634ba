// The settings tool with many keys and accounts. Its window, its dialogs and its document are the real ones; the
// service is one that answers at once, since what a token takes depends on nothing here.
//
// Without an argument: a registration into a document of 100,000 keys, from the press of the button until the document
// is written, the dialog has gone and the list is painted with the new row. The floor: the same document is written.
//
// With a number: how long a person waits for the same with that many keys, and as many accounts (10,000 at most).

#include <cstdlib>
#include <stdexcept>

#include <QComboBox>
#include <unistd.h>

#include "CompositionRoot.h"
#include "Many.h"
#include "Measure.h"
#include "ViewController/Main/User/RegistrationUserKeyViewController.h"
#include "app/AppFixture.h"
#include "emulation/Preload.h"
#include "support/Accounts.h"
#include "support/TestProcess.h"

namespace {

using namespace vantro;

constexpr std::size_t keyCount = 100'000;
constexpr int rounds = 11;
constexpr std::uint64_t newKey = 4'000'000'000;
/// Before all others, so that every row and every account makes room.
constexpr const char* ownAccount = "aaron";

class Tool : public tests::AppFixture
{
  public:
    explicit Tool(std::size_t keys)
    {
        prefix.store(bench::documentOf(keys));
        plugIn(newKey);
        window();
    }

    double openList()
    {
        switchTo("MasterKey");
        settle();
        return bench::millisecondsOf([this] {
            switchTo("UserKey");
            settle();
        });
    }

    double openDialog()
    {
        const double milliseconds = bench::millisecondsOf([this] {
            open();
            settle();
        });
        close();
        return milliseconds;
    }

    double openPopUp()
    {
        open();
        settle();
        const double milliseconds = bench::millisecondsOf([this] {
            dialog_->accountPopUpButton->showPopup();
            settle();
        });
        dialog_->accountPopUpButton->hidePopup();
        close();
        return milliseconds;
    }

    double registerKey()
    {
        open();
        settle();
        const double milliseconds = bench::millisecondsOf([this] {
            dialog_->OKButton->click();
            settle();
        });
        require(isDismissed(dialog_) && setting().isAllcatedUserKey(ownAccount, newKey));
        setting().removeUserKey(ownAccount, newKey);
        setting().removeUsersWithoutKeys();
        static_cast<void>(openList());
        return milliseconds;
    }

    double writeDocument()
    {
        return bench::millisecondsOf([this] { setting().write(); });
    }

  private:
    void TestBody() override {}

    static void require(bool condition)
    {
        if (!condition)
            throw std::runtime_error("the tool does not do what it is to do");
    }

    /// Until all is painted that is to be.
    static void settle() { QApplication::processEvents(); }

    SettingDocument& setting() { return dataSet().vantroStandaloneSetting; }

    void open()
    {
        dialog_ = qobject_cast<RegistrationUserKeyViewController*>(openRegistration("UserKey"));
        require(dialog_ != nullptr && dialog_->accountPopUpButton->currentText() == QLatin1String(ownAccount));
    }

    void close()
    {
        dialog_->cancelOperation();
        require(isDismissed(dialog_));
    }

    QPointer<RegistrationUserKeyViewController> dialog_;
};

void measureRegistration()
{
    Tool tool(keyCount);
    bench::printRow("a registration into a document of 100,000 keys",
                    bench::compareInTurns(
                        rounds, [&tool] { return tool.registerKey(); }, [&tool] { return tool.writeDocument(); }),
                    "ms", 1.5);
}

void measureGrowth(std::size_t count)
{
    Tool tool(count);
    if (count <= bench::accountLimit) {
        bench::printGrowth("the dialog with the accounts", count,
                           bench::measureRounds(rounds, [&tool] { return tool.openDialog(); }));
        bench::printGrowth("its pop-up of the accounts", count,
                           bench::measureRounds(rounds, [&tool] { return tool.openPopUp(); }));
    }
    bench::printGrowth("the list of the keys", count,
                       bench::measureRounds(rounds, [&tool] { return tool.openList(); }));
    bench::printGrowth("a registration", count, bench::measureRounds(rounds, [&tool] { return tool.registerKey(); }));
}

} // namespace

int main(int argc, char** argv)
{
    const std::size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 0;
    if (!lab::isUnderPreload()) {
        tests::replaceAccounts(bench::accountsOf(ownAccount, ::geteuid(), count));
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
    }
    lab::reexecuteUnderPreload(argv, {NSS_WRAPPER_LIBRARY});
    installStoryboards();
    const int result = bench::run([count] {
        if (count == 0)
            measureRegistration();
        else
            measureGrowth(count);
    });
    tests::removeAccounts();
    tests::endTests(result);
}
