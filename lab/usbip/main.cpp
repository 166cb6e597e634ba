#include <exception>
#include <iostream>
#include <poll.h>
#include <string>
#include <vector>

#include "usbip/CommandSocket.h"
#include "usbip/TokenTable.h"

namespace {

using namespace vantro::lab::usbip;

/// Lays the tokens on the table and serves until the process is ended, which pulls all of them out.
[[noreturn]] void serve(const std::string& path)
{
    TokenTable table;
    const CommandSocket commands(path);
    while (true) {
        std::vector<pollfd> polled{{commands.descriptor(), POLLIN, 0}};
        table.addTo(polled);
        if (::poll(polled.data(), polled.size(), table.pause()) < 0) {
            continue;
        }
        table.serve(polled);
        if (polled.front().revents != 0) {
            commands.serve([&table](const std::string& line) { return table.command(line); });
        }
    }
}

} // namespace

/// vantro-usb-tokens SOCKET: plugs the lab's tokens into the machine that it runs on, as the commands that come to the
/// socket say. vantro-usb-tokens SOCKET COMMAND…: sends one there and prints the answer.
int main(int count, char* arguments[])
try {
    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.empty()) {
        std::cerr << "usage: " << arguments[0] << " SOCKET [COMMAND...]\n";
        return 2;
    }
    if (words.size() == 1) {
        serve(words.front());
    }
    std::string line;
    for (std::size_t index = 1; index < words.size(); ++index) {
        line += (index > 1 ? " " : "") + words[index];
    }
    const std::string answer = ask(words.front(), line);
    std::cout << answer << '\n';
    return answer.starts_with("ok") ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
