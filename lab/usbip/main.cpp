#include <chrono>
#include <exception>
#include <iostream>
#include <poll.h>
#include <string>
#include <thread>
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

/// Sends one command and prints the answer; whether it was carried out.
bool send(const std::string& path, const std::string& line)
{
    const std::string answer = ask(path, line);
    std::cout << answer << '\n';
    return answer.starts_with("ok");
}

/// Sends each line that comes in; "pause" and a number waits so many milliseconds. Whether all were carried out.
bool sendAll(std::istream& lines, const std::string& path)
{
    const std::string pause = "pause ";
    bool areDone = true;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(pause)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoul(line.substr(pause.size()))));
        } else {
            areDone &= send(path, line);
        }
    }
    return areDone;
}

} // namespace

/// vantro-usb-tokens SOCKET: plugs the lab's tokens into the machine that it runs on, as the commands that come to the
/// socket say. vantro-usb-tokens SOCKET COMMAND…: sends one there and prints the answer; with "-" for a command, each
/// line of standard input.
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
    const bool isDone = line == "-" ? sendAll(std::cin, words.front()) : send(words.front(), line);
    return isDone ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
