#include "service/PamModule.h"

#include <array>
#include <cstring>
#include <elf.h>
#include <fstream>
#include <link.h>
#include <string>
#include <string_view>
#include <system_error>

#include "foundation/DurableFile.h"

namespace vantro::service {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t moduleSizeLimit = std::size_t{16} * 1024 * 1024;

using Header = ElfW(Ehdr);

std::optional<Header> headerOf(std::string_view bytes)
{
    Header header = {};
    if (bytes.size() < sizeof header)
        return std::nullopt;
    std::memcpy(&header, bytes.data(), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return std::nullopt;
    return header;
}

/// The header of a program that this machine runs: the service's own.
std::optional<Header> ownHeader()
{
    std::array<char, sizeof(Header)> bytes = {};
    std::ifstream program("/proc/self/exe", std::ios::binary);
    program.read(bytes.data(), bytes.size());
    return program ? headerOf({bytes.data(), bytes.size()}) : std::nullopt;
}

bool isForThisMachine(const Header& header)
{
    const auto own = ownHeader();
    return own && header.e_type == ET_DYN && header.e_machine == own->e_machine &&
           header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] && header.e_ident[EI_DATA] == own->e_ident[EI_DATA];
}

} // namespace

std::optional<RequestFailure> moduleFailure(const std::filesystem::path& module)
{
    std::error_code error;
    const auto bytes = readFile(module, moduleSizeLimit, error);
    if (error == std::errc::no_such_file_or_directory)
        return RequestFailure{failure_reason::moduleMissing,
                              module.string() + " is not installed; a mandatory entry would lock everybody out."};
    const auto isUnusable = [&module](const std::string& why) {
        return RequestFailure{failure_reason::moduleUnusable,
                              module.string() + " " + why + "; a mandatory entry would lock everybody out."};
    };
    if (!bytes)
        return isUnusable("can't be read: " + error.message());
    const auto header = headerOf(*bytes);
    if (!header || !isForThisMachine(*header))
        return isUnusable("is no shared object of this machine");
    // The names of what an object exports stand in it as they are, each between two zeros.
    for (const auto entryPoint : {"\0pam_sm_authenticate\0"sv, "\0pam_sm_setcred\0"sv})
        if (bytes->find(entryPoint) == std::string::npos)
            return isUnusable("has no entry points of an authentication module");
    return std::nullopt;
}

} // namespace vantro::service
