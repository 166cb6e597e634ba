#include "LabPrograms.h"

#include <fstream>

#include <unistd.h>

#include <QDir>
#include <QFileInfo>

#include "ChildProcess.h"

namespace vantro::lab {

namespace {

constexpr int busPatienceMilliseconds = 10000;
constexpr const char* busVariable = "DBUS_SYSTEM_BUS_ADDRESS";

QString text(const std::filesystem::path& path)
{
    return QString::fromStdString(path.string());
}

bool isThere(const std::filesystem::path& program)
{
    return QFileInfo(text(program)).isExecutable();
}

} // namespace

LabPrograms::LabPrograms(const LabState& state)
    : state_(state), socketFolder_(QDir::tempPath() + QStringLiteral("/vantro-lab.XXXXXX"))
{
    adoptDescendants();
    endWithParent(bus_);
    endWithParent(tool_);
    connect(&tool_, &QProcess::finished, this, &LabPrograms::onToolEnded);
    connect(&tool_, &QProcess::errorOccurred, this, &LabPrograms::onToolEnded);
    connect(&bus_, &QProcess::finished, this, &LabPrograms::changed);
}

LabPrograms::~LabPrograms()
{
    disconnect(&tool_, nullptr, this, nullptr);
    disconnect(&bus_, nullptr, this, nullptr);
    end(tool_);
    end(bus_);
    endDescendants();
}

void LabPrograms::start()
{
    startBus();
    startTool();
}

QString LabPrograms::busAddress() const
{
    return QStringLiteral("unix:path=%1/bus").arg(socketFolder_.path());
}

QProcessEnvironment LabPrograms::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : state_.environment()) {
        environment.insert(QString::fromStdString(name), QString::fromStdString(value));
    }
    environment.insert(QLatin1String(busVariable), busAddress());
    return environment;
}

void LabPrograms::writeBusConfiguration() const
{
    const std::filesystem::path services = state_.folder() / "services";
    std::ofstream(services / "com.vantro.Standalone1.service", std::ios::trunc)
        << "[D-BUS Service]\nName=com.vantro.Standalone1\nUser=" << ::getuid() << "\nExec=\""
        << state_.service().string() << "\"\n";

    // Denies as the system's bus does, then takes in the policy that is installed with the service, then adds the
    // account that runs the lab.
    std::ofstream(state_.busConfiguration(), std::ios::trunc)
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig>\n"
           "  <type>system</type>\n"
        << "  <listen>" << busAddress().toStdString() << "</listen>\n"
        << "  <auth>EXTERNAL</auth>\n"
        << "  <servicedir>" << services.string() << "</servicedir>\n"
        << "  <policy context=\"default\">\n"
           "    <allow user=\"*\"/>\n"
           "    <deny own=\"*\"/>\n"
           "    <deny send_type=\"method_call\"/>\n"
           "    <allow send_type=\"signal\"/>\n"
           "    <allow send_requested_reply=\"true\" send_type=\"method_return\"/>\n"
           "    <allow send_requested_reply=\"true\" send_type=\"error\"/>\n"
           "    <allow receive_type=\"method_call\"/>\n"
           "    <allow receive_type=\"method_return\"/>\n"
           "    <allow receive_type=\"error\"/>\n"
           "    <allow receive_type=\"signal\"/>\n"
           "    <allow send_destination=\"org.freedesktop.DBus\" send_interface=\"org.freedesktop.DBus\"/>\n"
           "    <allow send_destination=\"org.freedesktop.DBus\" "
           "send_interface=\"org.freedesktop.DBus.Introspectable\"/>\n"
           "  </policy>\n"
        << "  <include>" << LAB_BUS_POLICY << "</include>\n"
        << "  <policy user=\"" << ::getuid() << "\">\n"
        << "    <allow own=\"com.vantro.Standalone1\"/>\n"
           "    <allow send_destination=\"com.vantro.Standalone1\"/>\n"
           "    <allow own=\"org.freedesktop.login1\"/>\n"
           "    <allow send_destination=\"org.freedesktop.login1\"/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

void LabPrograms::startBus()
{
    writeBusConfiguration();
    bus_.setProcessEnvironment(environment());
    bus_.setStandardErrorFile(text(state_.serviceLog()), QIODevice::Append);
    bus_.start(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--config-file=") + text(state_.busConfiguration()), QStringLiteral("--nofork"),
                QStringLiteral("--nopidfile"), QStringLiteral("--nosyslog"), QStringLiteral("--print-address=1")});
    // It prints its address once it listens.
    if (!bus_.waitForReadyRead(busPatienceMilliseconds)) {
        busFailure_ = bus_.errorString();
        return;
    }
    qputenv(busVariable, busAddress().toLocal8Bit());
    Q_EMIT busStarted();
}

void LabPrograms::startTool()
{
    if (isToolRunning() || !isThere(state_.tool())) {
        return;
    }
    toolEnd_.clear();
    tool_.setProcessEnvironment(environment());
    tool_.setStandardOutputFile(QProcess::nullDevice());
    tool_.setStandardErrorFile(text(state_.folder() / "log" / "tool-errors.log"));
    tool_.start(text(state_.tool()), QStringList());
    Q_EMIT changed();
}

void LabPrograms::onToolEnded()
{
    if (tool_.error() == QProcess::FailedToStart) {
        toolEnd_ = tr("it could not be started: %1").arg(tool_.errorString());
    } else if (tool_.exitStatus() == QProcess::CrashExit) {
        toolEnd_ = tr("it ended by signal %1").arg(tool_.exitCode());
    } else {
        toolEnd_ = tr("it ended with status %1").arg(tool_.exitCode());
    }
    Q_EMIT changed(); // NOLINT(readability-misleading-indentation): the macro is empty
}

QString LabPrograms::statusText() const
{
    QStringList lines;
    if (!isThere(state_.tool())) {
        lines << tr("The tool is missing: %1 has not been built.").arg(text(state_.tool()));
    } else if (isToolRunning()) {
        lines << tr("The tool is running.");
    } else {
        lines << tr("The tool is not running: %1.").arg(toolEnd_);
    }
    if (!isThere(state_.service())) {
        lines << tr("The service is missing: %1 has not been built.").arg(text(state_.service()));
    } else if (bus_.state() == QProcess::NotRunning || !busFailure_.isEmpty()) {
        lines << tr("The bus is not running: %1.").arg(busFailure_.isEmpty() ? bus_.errorString() : busFailure_);
    } else {
        lines << tr("The service starts with the tool's first request.");
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace vantro::lab
