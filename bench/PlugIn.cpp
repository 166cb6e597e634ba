// From the event of a token's second interface until a dialog shows the token's serial: the real monitor, the real data
// set, the real registration dialog and the real service. The floor: a bare loop of libudev on a thread of its own that
// asks the service for the serial, and hands it to a label.
//
// Each of the two is a process with a bus, a service and a virtual token of its own, so that neither sees the other's
// tokens; a third one has them plug in, in turns.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <poll.h>
#include <string>
#include <string_view>
#include <thread>

#include <QApplication>
#include <QLabel>
#include <libudev.h>

#include "AppDataSet.h"
#include "CompositionRoot.h"
#include "Measure.h"
#include "Program.h"
#include "appkit/NSApplication.h"
#include "appkit/NSStoryboard.h"
#include "appkit/StringTable.h"
#include "emulation/Preload.h"
#include "foundation/Bundle.h"
#include "foundation/WakeEvent.h"
#include "service/ServiceFixture.h"
#include "support/TestProcess.h"

namespace {

using namespace vantro;

constexpr std::uint32_t ownSerial = 11;
constexpr const char* toolArgument = "tool";
constexpr const char* bareArgument = "bare";
constexpr const char* ready = "ready\n";
constexpr const char* measured = "measured ";

class PlugIn : public tests::ServiceFixture
{
  public:
    /// For each line of the standard input, plugs the token in and says in how many milliseconds it was shown.
    void serve(const QLabel& label)
    {
        const QString before = label.text();
        std::cout << ready << std::flush;
        for (std::string line; std::getline(std::cin, line);) {
            token_.plugIn();
            const auto start = bench::Clock::now();
            waitFor(label, QString::number(ownSerial));
            const double milliseconds = bench::millisecondsSince(start);
            token_.unplug();
            waitFor(label, before);
            while (client.getSerial() != 0)
                continue;
            std::cout << measured << milliseconds << '\n' << std::flush;
        }
    }

  protected:
    /// Starts the service.
    PlugIn() { static_cast<void>(client.getSerial()); }

  private:
    void TestBody() override {}

    static void waitFor(const QLabel& label, const QString& text)
    {
        while (label.text() != text)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    lab::VirtualToken token_{bed, tests::tokenOf(ownSerial)};
};

class ToolPlugIn : public PlugIn
{
  public:
    void serve()
    {
        Bundle::setMainPrefix(prefix.path());
        ::setenv("XDG_STATE_HOME", (prefix.path() / "tool").c_str(), 1);
        NSApplication::attachMainQueue();
        installStringTables(QStringLiteral(":/strings"));
        installStoryboards();
        AppDataSet::shared();
        const auto dialog = NSStoryboard::named("Main").instantiateController("RegistrationMasterKeyViewController");
        dialog->view()->show();
        PlugIn::serve(*dialog->view()->findChild<QLabel*>("serialLabel"));
    }
};

template <auto release>
struct Release
{
    template <class Object>
    void operator()(Object* object) const
    {
        release(object);
    }
};

class BarePlugIn : public PlugIn
{
  public:
    void serve()
    {
        QLabel label;
        label.show();
        const WakeEvent end;
        const std::jthread loop([&] { watch(label, end); });
        PlugIn::serve(label);
        end.wake();
    }

  private:
    static void watch(QLabel& label, const WakeEvent& end)
    {
        const std::unique_ptr<udev, Release<udev_unref>> context(udev_new());
        const std::unique_ptr<udev_monitor, Release<udev_monitor_unref>> monitor(
            udev_monitor_new_from_netlink(context.get(), "udev"));
        udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "hidraw", nullptr);
        udev_monitor_enable_receiving(monitor.get());
        tests::ServiceClient service;
        pollfd waits[] = {{udev_monitor_get_fd(monitor.get()), POLLIN, 0}, {end.fileDescriptor(), POLLIN, 0}};
        while (::poll(waits, std::size(waits), -1) >= 0 && waits[1].revents == 0) {
            const std::unique_ptr<udev_device, Release<udev_device_unref>> device(
                udev_monitor_receive_device(monitor.get()));
            if (!device || !isSecondInterface(device.get()))
                continue;
            const bool isThere = std::string_view(udev_device_get_action(device.get())) == "add";
            const QString text = isThere ? QString::number(service.getSerial()) : QString();
            QMetaObject::invokeMethod(&label, [&label, text] { label.setText(text); });
        }
    }

    static bool isSecondInterface(udev_device* device)
    {
        return std::string_view(udev_device_get_syspath(device)).find(":1.1/") != std::string_view::npos;
    }
};

void measure()
{
    constexpr int rounds = 41;
    const auto start = [](const char* argument) {
        auto program = std::make_unique<bench::Program>("/proc/self/exe", std::vector<std::string>{argument});
        program->readUntil(ready);
        return program;
    };
    const auto tool = start(toolArgument);
    const auto bare = start(bareArgument);
    const auto measureOnce = [](bench::Program& program) {
        program.writeLine();
        program.readUntil(measured);
        return std::stod(program.readUntil("\n"));
    };
    bench::printRow("plug-in to changed label",
                    bench::compareInTurns(
                        rounds, [&] { return measureOnce(*tool); }, [&] { return measureOnce(*bare); }),
                    "ms", 1.2);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 1)
        return bench::run(measure);
    lab::reexecuteUnderPreload(argv);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argc, argv);
    tests::endTests(bench::run([argv] {
        if (std::string_view(argv[1]) == toolArgument)
            ToolPlugIn().serve();
        else
            BarePlugIn().serve();
    }));
}
