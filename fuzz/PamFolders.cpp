#include "PamFolders.h"

#include <algorithm>
#include <utility>

namespace vantro::fuzz {
namespace {

using Words = std::vector<std::string>;

/// In the order in which they include one another; "alias" is a link to "authorization".
const Words names = {"a", "b", "c", "alias", "authorization", "leaf"};
const Words types = {"auth",  "auth",   "auth",    "auth",     "auth",  "AUTH",
                     "-auth", "[auth]", "account", "-session", "bogus", "aut\\h"};
const Words controls = {"required",
                        "required",
                        "optional",
                        "OPTIONAL",
                        "[required]",
                        "requisite",
                        "sufficient",
                        "success=1",
                        "default=1",
                        "[success=1 default=ignore]",
                        "[success=1 default=ignore]",
                        "[success=2 default=bad]",
                        "[success=3 auth_err=1]",
                        "[default=2 success=ok]",
                        "[default=1]",
                        "[success=\v1]",
                        "[ success =\t1 ]",
                        "[success=1default=2]",
                        "[success=01]",
                        "[success=0]",
                        "[success=1 bogus=1]",
                        "[success]",
                        "[success=]",
                        "[success=ok default=die]",
                        "[success=done]",
                        "[default=reset]",
                        "[perm_denied=1 default=ignore]",
                        "[module_unknown=1]",
                        "[success=1\\]]",
                        "[default=ok \\\\]",
                        "[success=1 default=ignore",
                        "[]",
                        "[success=99999]",
                        "[SUCCESS=1]",
                        "[cred_err=1 cred_expired=2 default=ok]"};
const Words includeControls = {"include", "include", "substack", "substack", "[include]", "SUBSTACK", "[substack]"};
const Words fileIncludes = {"@include", "@include", "-@include", "@INCLUDE", "[@include]"};
constexpr std::string_view oddBytes("\\\n[]#=- \t\0\r\v", 12);

} // namespace

PamFolders::PamFolders(std::filesystem::path services, std::filesystem::path probe, std::uint64_t seed)
    : services_(std::move(services)), probe_(std::move(probe)), random_(seed)
{
}

std::size_t PamFolders::below(std::size_t count)
{
    return static_cast<std::size_t>(random_() % count);
}

std::map<std::string, std::string> PamFolders::next()
{
    modules_ = 0;
    std::map<std::string, std::string> texts;
    for (std::size_t file = 0; file < names.size(); ++file) {
        if (names[file] == "alias")
            continue;
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
    return texts;
}

std::string PamFolders::blank()
{
    static const Words blanks = {" ", "\t", "  ", "\\\n", " \\ \t\n", " \\\n# between \\\n", "\\\n\n  "};
    return isOneOf(8) ? any(blanks) : " ";
}

std::string PamFolders::line(std::size_t file)
{
    const auto kind = below(10);
    if (kind == 0)
        return comment();
    std::string text = isOneOf(10) ? blank() : "";
    text += kind < 5 && file + 1 < names.size() ? include(file) : module();
    static const Words ends = {"\n",   "\n", "\n", "\n", " \t\n", " # comment\n", "# comment \\\n", " \\ # comment\n",
                               "#\r\n"};
    return text + any(ends);
}

std::string PamFolders::module()
{
    auto text = any(types) + blank() + any(controls);
    if (isOneOf(40))
        return text;
    const auto path = isOneOf(20)   ? probe_.string() + "gone"
                      : isOneOf(10) ? "[" + probe_.string() + "]"
                                    : probe_.string();
    text += blank() + path + blank() + "m" + std::to_string(modules_++);
    // Somewhere around the end of libpam's buffer.
    if (isOneOf(40))
        text += " " + std::string(1023 - std::min<std::size_t>(text.size(), 1000) - 6 + below(12), 'x');
    return text;
}

std::string PamFolders::include(std::size_t file)
{
    const auto name = isOneOf(20) ? "missing" : names[file + 1 + below(names.size() - file - 1)];
    // The link's target is the file behind it.
    const auto safe = names[file] == "authorization" ? "leaf" : name;
    auto path = (services_ / (isOneOf(10) ? "." : "") / safe).string();
    if (isOneOf(10))
        path = "[" + path + "]";
    if (isOneOf(3))
        return any(fileIncludes) + blank() + path;
    return any(types) + blank() + any(includeControls) + blank() + path;
}

std::string PamFolders::comment()
{
    static const Words starts = {"", "#", "# one", "# \r", "#\\"};
    auto text = any(starts);
    if (text.starts_with('#') && isOneOf(3))
        text += std::string(1, isOneOf(2) ? '#' : '\0') + std::string(1000 + below(40), isOneOf(2) ? '#' : 'x');
    return text + "\n";
}

} // namespace vantro::fuzz
