#include "StartChecks.h"

#include <filesystem>

#include <QString>

#include <unistd.h>

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "CommonMessage.h"
#include "StartMessage.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "appkit/NSAlert.h"
#include "appkit/NSApplication.h"
#include "foundation/Identity.h"
#include "foundation/ProcessLock.h"

namespace vantro {
namespace {

void sayGoodbye(const QString& message, const QString& informativeText)
{
    NSAlert alert;
    alert.windowTitle = windowTitleWithVersion();
    alert.alertStyle = NSAlert::Style::Critical;
    alert.messageText = message;
    alert.informativeText = informativeText;
    alert.addButton(CommonMessage::close());
    alert.runModal();
}

QString shownPath(const std::filesystem::path& path)
{
    return QString::fromStdString(path.string());
}

} // namespace

bool isOnlyTool()
{
    std::filesystem::path lockFile = SettingFile().url();
    lockFile.replace_extension("lock");
    // Never closed: the kernel would take the lock back.
    static const auto* const lock = new ProcessLock(lockFile);
    if (const auto failure = lock->failure()) {
        sayGoodbye(StartMessage::lockUnusableHeading(),
                   StartMessage::lockUnusable().arg(shownPath(lockFile), QString::fromStdString(failure.message())));
        return false;
    }
    if (!lock->isHeldByAnother())
        return true;

    const auto user = lock->holder();
    if (user == ::geteuid()) {
        lock->signalHolder(NSApplication::activationSignal);
        return false;
    }
    const auto name = user ? loginName(*user) : std::nullopt;
    sayGoodbye(StartMessage::alreadyOpenHeading(),
               name ? StartMessage::alreadyOpenBy().arg(QString::fromStdString(*name)) : StartMessage::alreadyOpen());
    return false;
}

void quitUnlessInvalidDocumentIsKept()
{
    const SettingFile& file = AppDataSet::shared().vantroStandaloneSetting.file();
    const auto error = file.keepInvalid();
    if (!error)
        return;
    AppDataSet::shared()
        .logger.inFile("StartChecks")
        .error("The invalid settings document can't be kept: " + error.message() + ". The tool closes.",
               "quitUnlessInvalidDocumentIsKept()");
    sayGoodbye(StartMessage::documentNotKeptHeading(),
               StartMessage::documentNotKept().arg(shownPath(file.url()), QString::fromStdString(error.message())));
    NSApplication::terminate();
}

void quitUnlessDocumentCanBeRead()
{
    const SettingFile& file = AppDataSet::shared().vantroStandaloneSetting.file();
    const auto& aside = file.keptAside();
    const auto error = file.readability();
    if (!error && aside.empty())
        return;
    AppDataSet::shared()
        .logger.inFile("StartChecks")
        .error("The settings document could not be read. The tool closes.", "quitUnlessDocumentCanBeRead()");
    const QString& text = error ? StartMessage::documentUnreadable() : StartMessage::documentKeptAside();
    // Both at once: a path may hold what looks like a place for the second.
    sayGoodbye(StartMessage::documentUnreadableHeading(),
               text.arg(shownPath(file.url()), error ? QString::fromStdString(error.message()) : shownPath(aside)));
    NSApplication::terminate();
}

} // namespace vantro
