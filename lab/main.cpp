#include <array>
#include <csignal>
#include <exception>
#include <iostream>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QSocketNotifier>

#include "LabPrograms.h"
#include "LabScreens.h"
#include "LabState.h"
#include "LabTokens.h"
#include "LabWindow.h"
#include "SignInAttempt.h"
#include "emulation/Preload.h"
#include "emulation/TokenBed.h"

namespace vantro::lab {

namespace {

/// Written to by the signal handler, read by the event loop.
std::array<int, 2> signalPipe{-1, -1};

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

/// Lets SIGTERM and SIGINT close the lab as a person would.
std::unique_ptr<QSocketNotifier> watchSignals()
{
    if (::pipe(signalPipe.data()) != 0) {
        return nullptr;
    }
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    auto notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    return notifier;
}

int run(const QString& stateFolder)
{
    LabState state = stateFolder.isEmpty() ? LabState() : LabState(stateFolder.toStdString());
    state.prepare();
    const auto signals = watchSignals();
    int status = EXIT_FAILURE;
    {
        // In this order, for the programs end before the tokens and the bed that they use.
        TokenBed bed;
        std::vector<LabToken> tokens = makeLabTokens(bed);
        LabPrograms programs(state);
        state.noteTemporaryFolders({bed.rootFolder(), programs.socketFolder().toStdString()});
        LabScreens screens(state);
        QObject::connect(&programs, &LabPrograms::busStarted, &screens, &LabScreens::start);
        SignInAttempt attempt(state);
        LabWindow window(state, programs, attempt, screens, tokens);
        window.show();
        programs.start();
        status = QApplication::exec();
    }
    state.removeTemporaryFolders();
    return status;
}

} // namespace

} // namespace vantro::lab

int main(int argc, char** argv)
{
    // The service refuses folders in which others may write.
    ::umask(022);
    // The accounts of the lab come with the further library; it does nothing in this process.
    vantro::lab::reexecuteUnderPreload(argv, {"libnss_wrapper.so"});
    // What looks for graphics devices looks among the emulated ones, in vain.
    qputenv("QT_XCB_GL_INTEGRATION", "none");

    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantro-token-lab"));
    QCommandLineParser arguments;
    arguments.setApplicationDescription(
        QApplication::translate("main", "Runs Vantro Standalone with virtual tokens, on a bus of its own."));
    arguments.addHelpOption();
    const QCommandLineOption stateOption(
        QStringLiteral("state"),
        QApplication::translate("main", "Keep everything in <folder> instead of the build tree's lab/state."),
        QStringLiteral("folder"));
    arguments.addOption(stateOption);
    arguments.process(application);
    try {
        return vantro::lab::run(arguments.value(stateOption));
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        QMessageBox::critical(nullptr, QStringLiteral("Token Lab"), QString::fromUtf8(error.what()));
        return EXIT_FAILURE;
    }
}
