// Compares what the service makes of PAM services with what libpam does with them. Over made-up folders: whether each
// service can be read, which modules it calls, and whether for any answers of theirs a jump leads over the add-on's
// entry that the service took for safe. Prints what differs, and ends with 1 then.
//
//   pam_stack FOLDERS SEED
//
// libpam 1.5.2 has faults that crash it or keep it busy for ever; what the service takes for one of them is left out.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <syslog.h>
#include <system_error>
#include <vector>

#include <security/pam_appl.h>

#include "VantroStandalonePam/PamServices.h"
#include "VantroStandalonePam/PamStack.h"
#include "support/TemporaryFolder.h"

namespace {

std::map<std::string, std::size_t> answers;
std::vector<std::string> called;

} // namespace

extern "C" int vantroProbe(const char* argument)
{
    called.emplace_back(argument);
    const auto answer = answers.find(argument);
    return answer == answers.end() ? PAM_SYSTEM_ERR : static_cast<int>(answer->second);
}

/// Stands for the audit library's, so that nothing of this is in the machine's records.
extern "C" int audit_open()
{
    errno = EPROTONOSUPPORT;
    return -1;
}

/// libpam itself leaks what it has read of a service when the rest can't be read.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "leak:libpam.so";
}

namespace vantro::fuzz {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;
using Step = PamStack::Step;

const PamSetting setting{"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};
/// What the module of the add-on's entry is called with: nothing.
const std::string entryArgument;

/// In the order in which they include one another; "alias" is a link to "authorization". None begins like another, so
/// that a byte that is changed makes no other of it.
const Words names = {"first", "second", "third", "alias", "authorization", "leaf"};

Words wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    Words words;
    for (std::string word; std::getline(stream, word, '|');)
        words.push_back(word);
    return words;
}

const Words types = wordsOf("auth|auth|auth|auth|auth|AUTH|-auth|[auth]|account|-session|bogus|aut\\h");
const Words controls = wordsOf(
    "required|required|optional|OPTIONAL|[required]|requisite|sufficient|success=1|default=1|[success=1 "
    "default=ignore]|"
    "[success=1 default=ignore]|[success=2 default=bad]|[success=3 auth_err=1]|[default=2 success=ok]|[default=1]|"
    "[success=\v1]|[ success =\t1 ]|[success=1default=2]|[success=01]|[success=0]|[success=1 "
    "bogus=1]|[success]|[success=]|"
    "[success=ok default=die]|[success=done]|[default=reset]|[perm_denied=1 default=ignore]|[module_unknown=1]|"
    "[success=1\\]]|[default=ok \\\\]|[success=1 default=ignore|[]|[success=99999]|[SUCCESS=1]|[cred_err=1 "
    "default=ok]");
const Words includeControls = wordsOf("include|include|substack|substack|[include]|SUBSTACK|[substack]");
const Words fileIncludes = wordsOf("@include|@include|-@include|@INCLUDE|[@include]");
const Words blanks = wordsOf("\t|  |\\\n| \\ \t\n| \\\n# between \\\n|\\\n\n  ");
const Words ends = wordsOf("\n|\n|\n|\n| \t\n| # comment\n|# comment \\\n| \\ # comment\n|#\r\n");
constexpr std::string_view oddBytes("\\\n[]#=- \t\0\r\v", 12);

/// Makes up folders of PAM services in plain and in odd syntax. None includes itself.
class Folders
{
  public:
    Folders(fs::path services, const fs::path& probe, std::uint64_t seed)
        : services_(std::move(services)), probe_(probe.string()), random_(seed)
    {
    }

    /// A number from 0 to count - 1.
    std::size_t below(std::size_t count) { return static_cast<std::size_t>(random_() % count); }

    /// Texts by name; a later name never includes an earlier one.
    std::map<std::string, std::string> next()
    {
        std::map<std::string, std::string> texts;
        for (std::size_t file = 0; file < names.size(); ++file) {
            auto& text = texts[names[file]];
            for (auto lines = below(6); lines > 0; --lines)
                text += line(file);
            if (!text.empty() && isOneOf(10))
                text.pop_back();
            if (!text.empty() && isOneOf(12))
                text[below(text.size())] = oddBytes[below(oddBytes.size())];
            if (isOneOf(60))
                text += "auth required \\";
        }
        texts.erase("alias");
        return texts;
    }

  private:
    const std::string& any(const Words& words) { return words[below(words.size())]; }
    bool isOneOf(std::size_t count) { return below(count) == 0; }
    std::string blank() { return isOneOf(9) ? any(blanks) : " "; }
    std::string bracketed(const std::string& word) { return isOneOf(10) ? "[" + word + "]" : word; }

    std::string line(std::size_t file)
    {
        if (isOneOf(10))
            return comment();
        const bool isInclude = isOneOf(2) && file + 1 < names.size();
        return (isOneOf(10) ? blank() : "") + (isInclude ? include(file) : module()) + any(ends);
    }

    std::string module()
    {
        auto text = any(types) + blank() + any(controls);
        if (isOneOf(40))
            return text;
        text += blank() + bracketed(probe_ + (isOneOf(20) ? "gone" : "")) + blank() + "m" + std::to_string(modules_++);
        // Somewhere around the end of libpam's buffer.
        if (isOneOf(40))
            text += " " + std::string(1023 - std::min<std::size_t>(text.size(), 1000) - 6 + below(12), 'x');
        return text;
    }

    std::string include(std::size_t file)
    {
        // What the link leads to includes only what its own file may.
        const auto first = names[file] == "alias" ? file + 2 : file + 1;
        const auto name = isOneOf(20) ? "missing" : names[first + below(names.size() - first)];
        const auto path = bracketed((services_ / (isOneOf(10) ? "." : "") / name).string());
        if (isOneOf(3))
            return any(fileIncludes) + blank() + path;
        return any(types) + blank() + any(includeControls) + blank() + path;
    }

    std::string comment()
    {
        const std::string filling(1000 + below(40), isOneOf(2) ? '#' : 'x');
        return "#" + (isOneOf(2) ? "\r" : isOneOf(2) ? std::string(1, '\0') : "") + (isOneOf(3) ? filling : "") + "\n";
    }

    const fs::path services_;
    const std::string probe_;
    std::mt19937_64 random_;
    std::uint64_t modules_ = 0;
};

bool isEntryOfSetting(const Step& step)
{
    return PamFile::isEntryOf(setting, *step.entry);
}

/// A step with what it does for each answer, which is always the same where libpam does not call the probe.
struct Call
{
    explicit Call(const Step& step) : isEntry(isEntryOfSetting(step))
    {
        std::error_code error;
        const auto& entry = *step.entry;
        if (step.kind != Step::Kind::Module)
            actions = uniformPamActions(step.kind == Step::Kind::Failing ? pam_action::bad : pam_action::ignore);
        else if (entry.isMalformed || !fs::equivalent(entry.target, VANTRO_PAM_PROBE, error))
            actions = uniformPamActions(entry.actions[entry.isMalformed ? PAM_PERM_DENIED : PAM_MODULE_UNKNOWN]);
        else
            isProbe = true, actions = entry.actions;
        for (const auto& line : pamLinesOf(step.file->text()).lines)
            if (const auto words = pamWordsOf(line.text, 4); line.begin == entry.begin && words.size() == 4)
                argument = words.back();
    }

    bool isEntry;
    bool isProbe = false;
    PamActions actions;
    std::string argument = entryArgument;
};

bool isEnd(int action)
{
    return action == pam_action::done || action == pam_action::die;
}

/// One with which the stack goes on to the next step, where there is one.
std::size_t quietAnswer(const Call& call)
{
    const auto quiet = std::find_if(call.actions.begin(), call.actions.end() - 1,
                                    [](int action) { return action <= 0 && !isEnd(action); });
    return static_cast<std::size_t>(quiet - call.actions.begin()) % PAM_INCOMPLETE;
}

std::size_t farthestAnswer(const Call& call)
{
    return static_cast<std::size_t>(std::max_element(call.actions.begin(), call.actions.end() - 1) -
                                    call.actions.begin());
}

class Comparer
{
  public:
    explicit Comparer(std::uint64_t seed) : folders_(services_.path(), modules_ / "probe.so", seed)
    {
        fs::create_symlink(VANTRO_PAM_PROBE, modules_ / "probe.so");
        fs::create_symlink(VANTRO_PAM_PROBE, modules_ / setting.moduleName);
        fs::create_symlink("authorization", services_ / "alias");
    }

    bool isFolderAlike()
    {
        auto texts = folders_.next();
        auto& own = texts["authorization"];
        if (folders_.below(4) == 0)
            own += "auth optional " + (modules_ / setting.moduleName).string() + "\n";
        if (const auto changed = PamFile(own).withEntry(setting)) {
            own = *changed;
            const auto entry = own.find("\t" + setting.moduleName + "\n") + 1;
            own.replace(entry, setting.moduleName.size(), (modules_ / setting.moduleName).string());
        }
        for (const auto& [name, text] : texts)
            tests::writeFile(services_ / name, text);
        // libpam also stumbles over what it includes for other interfaces, which the service does not follow.
        const bool isAnyBreaking = std::any_of(texts.begin(), texts.end(), [](const auto& file) {
            return PamFile(file.second).reading() > PamReading::GivesUp;
        });
        PamServices services(services_.path(), services_.path());
        for (const auto& [name, service] : services.all()) {
            const PamStack stack(*service.file, services_.path(),
                                 [&services](const fs::path& path) { return services.at(path); });
            if (isAnyBreaking || stack.reading() > PamReading::GivesUp) {
                ++leftOut_;
            } else if (!isServiceAlike(name, stack)) {
                std::cout << "in the service " << name << " of\n";
                for (const auto& [file, text] : texts)
                    std::cout << "--- " << file << '\n' << text << '\n';
                return false;
            }
        }
        return true;
    }

    /// Whether enough of it was compared for the result to mean something.
    bool isTelling() const
    {
        std::cout << read_ << " services read by both, " << refused_ << " with a jump over the entry, which " << taken_
                  << " of them take; " << givenUp_ << " given up by both, " << leftOut_ << " left out\n";
        return taken_ * 10 >= refused_ * 8 && refused_ * 50 >= read_ && leftOut_ * 40 <= read_;
    }

  private:
    bool isServiceAlike(const std::string& name, const PamStack& stack)
    {
        const pam_conv conversation = {[](int, const pam_message**, pam_response**, void*) { return PAM_CONV_ERR; },
                                       nullptr};
        pam_handle_t* handle = nullptr;
        const int result = ::pam_start_confdir(name.c_str(), "root", &conversation, services_.path().c_str(), &handle);
        if ((result == PAM_SUCCESS) != (stack.reading() == PamReading::Whole)) {
            std::cout << "read by one alone\n";
            return false;
        }
        if (result != PAM_SUCCESS) {
            ++givenUp_;
            return true;
        }
        ++read_;
        const bool isAlike = isCallingAlike(handle, stack);
        ::pam_end(handle, PAM_SUCCESS);
        return isAlike;
    }

    bool isCallingAlike(pam_handle_t* handle, const PamStack& stack)
    {
        const std::vector<Call> calls(stack.steps().begin(), stack.steps().end());
        // An end that nothing can prevent hides what comes behind it, and another module without an argument the entry.
        if (std::any_of(calls.begin(), calls.end(), [](const Call& call) {
                return isEnd(call.actions[quietAnswer(call)]) ||
                       (call.isProbe && !call.isEntry && call.argument == entryArgument);
            }))
            return true;
        Words expected;
        for (const auto& call : calls)
            if (call.isProbe)
                expected.push_back(call.argument);
        const auto entries = std::count(expected.begin(), expected.end(), entryArgument);

        const bool isRefused = stack.isJumpedOver(isEntryOfSetting);
        bool isTaken = false;
        // Each jump alone, then whatever comes, then none.
        for (std::size_t run = 0; run < calls.size() + 3; ++run) {
            answers.clear();
            for (std::size_t index = 0; index < calls.size(); ++index) {
                const auto& call = calls[index];
                auto answer = quietAnswer(call);
                if (index == run)
                    answer = farthestAnswer(call);
                else if (run == calls.size() || run == calls.size() + 1)
                    answer = folders_.below(PAM_INCOMPLETE);
                answers.emplace(call.argument, isEnd(call.actions[answer]) ? quietAnswer(call) : answer);
            }
            // Two steps may have the same argument, and so one answer.
            std::vector<int> actions;
            actions.reserve(calls.size());
            for (const auto& call : calls)
                actions.push_back(call.actions[answers.at(call.argument)]);
            if (std::any_of(actions.begin(), actions.end(), isEnd))
                continue;
            const bool isPlain = std::all_of(actions.begin(), actions.end(), [](int action) { return action <= 0; });
            called.clear();
            ::pam_authenticate(handle, 0);
            const bool isMissing = std::count(called.begin(), called.end(), entryArgument) < entries;
            isTaken |= isMissing;
            if ((isPlain && called != expected) || (isMissing && !isRefused)) {
                std::cout << (isPlain ? "other modules are called\n" : "a jump over the entry is not seen\n");
                return false;
            }
        }
        refused_ += isRefused ? 1 : 0;
        taken_ += isTaken ? 1 : 0;
        return true;
    }

    tests::TemporaryFolder services_;
    tests::TemporaryFolder modules_;
    Folders folders_;
    std::size_t read_ = 0;
    std::size_t refused_ = 0;
    std::size_t taken_ = 0;
    std::size_t givenUp_ = 0;
    std::size_t leftOut_ = 0;
};

} // namespace
} // namespace vantro::fuzz

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3) {
        std::cerr << "Usage: pam_stack FOLDERS SEED\n";
        return EXIT_FAILURE;
    }
    // libpam complains to the system's log of each line that it does not understand.
    ::setlogmask(LOG_MASK(LOG_DEBUG));
    vantro::fuzz::Comparer comparer(std::strtoull(arguments[2], nullptr, 10));
    const auto folders = std::strtoull(arguments[1], nullptr, 10);
    for (std::uint64_t folder = 0; folder < folders; ++folder)
        if (!comparer.isFolderAlike()) {
            std::cout << "Folder " << folder << " differs.\n";
            return EXIT_FAILURE;
        }
    return comparer.isTelling() ? EXIT_SUCCESS : EXIT_FAILURE;
}
