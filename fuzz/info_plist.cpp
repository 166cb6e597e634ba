#include "Fuzzer.h"

#include <filesystem>
#include <string>

#include "foundation/Bundle.h"
#include "support/TemporaryFolder.h"

namespace vantro::fuzz {
namespace {

std::string versionIn(std::string_view dictionary)
{
    static const tests::TemporaryFolder prefix;
    static const auto folder = prefix / "share/vantro-standalone";
    static const bool isMade = std::filesystem::create_directories(folder);
    expect(isMade);
    tests::writeFile(folder / "Info.plist", dictionary);
    return Bundle(prefix.path()).string(bundle_key::shortVersion);
}

} // namespace

/// An entry that was read reads the same where it stands alone.
void look(std::string_view bytes)
{
    const auto version = versionIn(bytes);
    std::string dictionary = "<plist><dict><key>" + std::string(bundle_key::shortVersion) + "</key><string>";
    for (const char letter : version)
        dictionary += letter < 0 ? std::string(1, letter) : "&#" + std::to_string(letter) + ";";
    expect(versionIn(dictionary + "</string></dict></plist>") == version);
}

} // namespace vantro::fuzz
