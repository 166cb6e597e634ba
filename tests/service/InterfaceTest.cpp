// What the documents say about the service, against the running one.

#include <algorithm>
#include <array>
#include <regex>
#include <sstream>
#include <vector>

#include <gmock/gmock.h>
#include <pugixml.hpp>
#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneSetting/PamSetting.h"
#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

using testing::IsEmpty;
using testing::Not;

/// The methods of the service's own interfaces, an argument a line: "com.vantro.Standalone1 Validate in t serial".
std::vector<std::string> methodsOf(const std::string& introspection)
{
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(introspection.c_str())) << introspection;
    std::vector<std::string> lines;
    for (const auto& interface : document.child("node").children("interface")) {
        const std::string name = interface.attribute("name").value();
        if (!name.starts_with(label))
            continue;
        for (const auto& method : interface.children("method"))
            for (const auto& argument : method.children("arg"))
                lines.push_back(name + " " + method.attribute("name").value() + " " +
                                argument.attribute("direction").value() + " " + argument.attribute("type").value() +
                                " " + argument.attribute("name").value());
    }
    return lines;
}

struct Call
{
    std::string command;
    std::string output;
};

/// What stands in a page's blocks of the language "console": commands behind "$ " or "# ", each with its output below.
std::vector<Call> callsIn(const std::string& page)
{
    std::vector<Call> calls;
    std::istringstream text(page);
    bool isConsole = false;
    for (std::string line; std::getline(text, line);) {
        if (line.starts_with("```"))
            isConsole = line == "```console";
        else if (isConsole && (line.starts_with("$ ") || line.starts_with("# ")))
            calls.push_back({line.substr(2), {}});
        else if (isConsole && !calls.empty())
            calls.back().output += line + "\n";
    }
    return calls;
}

/// Makes a page's calls, each of which must print what the page shows.
void expectAsShown(const std::string& page)
{
    const auto calls = callsIn(page);
    EXPECT_THAT(calls, Not(IsEmpty()));
    for (const auto& call : calls)
        EXPECT_EQ(outputOf("cd '" VANTRO_SOURCE_FOLDER "'; " + call.command), call.output) << call.command;
}

using InterfaceTest = ServiceFixture;

TEST_F(InterfaceTest, InstalledFileDescribesTheRunningService)
{
    const auto connection = sdbus::createSystemBusConnection();
    const auto proxy = sdbus::createProxy(*connection, label, serviceObjectPath);
    std::string answer;
    proxy->callMethod("Introspect").onInterface("org.freedesktop.DBus.Introspectable").storeResultsTo(answer);
    const auto described = methodsOf(contentOf(VANTRO_SOURCE_FOLDER "/packaging/com.vantro.Standalone1.xml"));
    EXPECT_THAT(described, Not(IsEmpty()));
    EXPECT_THAT(described, testing::UnorderedElementsAreArray(methodsOf(answer)));
}

TEST_F(InterfaceTest, HasNoConnectionThatTheBusPolicyDoesNotCover)
{
    EXPECT_EQ(client.getSerial(), 0U) << "which asked the bus about its caller";
    const auto connection = sdbus::createSystemBusConnection();
    const auto proxy = sdbus::createProxy(*connection, "org.freedesktop.DBus", "/org/freedesktop/DBus");
    std::vector<std::string> names;
    proxy->callMethod("ListNames").onInterface("org.freedesktop.DBus").storeResultsTo(names);
    EXPECT_EQ(std::count_if(names.begin(), names.end(),
                            [&](const std::string& name) {
                                std::uint32_t process = 0;
                                proxy->callMethod("GetConnectionUnixProcessID")
                                    .onInterface("org.freedesktop.DBus")
                                    .withArguments(name)
                                    .storeResultsTo(process);
                                return name.starts_with(':') && static_cast<pid_t>(process) == bus.servicePid();
                            }),
              1)
        << "what anybody sends to a connection without a name piles up there";
}

TEST_F(InterfaceTest, DocumentedRecoveryTakesTheEntriesOut)
{
    const std::string comment = "# To be included.\n";
    prefix.makeDemandable();
    constexpr std::array services = {"authorization", "screensaver", "screensaver_new"};
    for (const char* const service : services)
        writeFile(prefix.pamServices() / service, comment);
    for (const char* const service : services) {
        const PamSetting setting{service, ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};
        ASSERT_TRUE(client.savePamSetting(setting.archived().value()));
    }
    expectAsShown(std::regex_replace(contentOf(VANTRO_SOURCE_FOLDER "/docs/security.md"), std::regex("/etc/pam\\.d"),
                                     prefix.pamServices().string()));
    for (const auto& entry : std::filesystem::directory_iterator(prefix.pamServices()))
        EXPECT_EQ(contentOf(entry.path()), comment) << entry.path();
}

TEST_F(InterfaceTest, DocumentedCallsAnswerAsShown)
{
    writeFile(prefix.pamServices() / "authorization", "# Empty.\n");
    lab::VirtualToken token(bed, tokenOf(12345678));
    token.plugIn();
    expectAsShown(contentOf(VANTRO_SOURCE_FOLDER "/docs/service.md"));
}

} // namespace
} // namespace vantro::tests
