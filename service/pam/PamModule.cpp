#include "pam/PamModule.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>

#include <gelf.h>
#include <libelf.h>

#include "foundation/FileDescriptor.h"

namespace vantro::service {
namespace {

struct ElfDeleter
{
    void operator()(Elf* elf) const { ::elf_end(elf); }
};
using ElfFile = std::unique_ptr<Elf, ElfDeleter>;

ElfFile elfOf(const FileDescriptor& file)
{
    ::elf_version(EV_CURRENT);
    return ElfFile(::elf_begin(file.get(), ELF_C_READ, nullptr));
}

/// Whether a process like this one could load it.
bool isSharedObjectOfThisMachine(Elf* elf)
{
    const FileDescriptor program(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
    const ElfFile own = elfOf(program);
    GElf_Ehdr expected;
    GElf_Ehdr header;
    if (::gelf_getehdr(own.get(), &expected) == nullptr || ::gelf_getehdr(elf, &header) == nullptr)
        return false;
    return header.e_type == ET_DYN && header.e_machine == expected.e_machine &&
           header.e_ident[EI_CLASS] == expected.e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == expected.e_ident[EI_DATA];
}

bool exports(Elf* elf, std::string_view function)
{
    for (Elf_Scn* section = ::elf_nextscn(elf, nullptr); section != nullptr; section = ::elf_nextscn(elf, section)) {
        GElf_Shdr header;
        if (::gelf_getshdr(section, &header) == nullptr || header.sh_type != SHT_DYNSYM)
            continue;
        Elf_Data* const symbols = ::elf_getdata(section, nullptr);
        GElf_Sym symbol;
        for (int index = 0; ::gelf_getsym(symbols, index, &symbol) != nullptr; ++index) {
            const char* const name = ::elf_strptr(elf, header.sh_link, symbol.st_name);
            if (name != nullptr && name == function && symbol.st_shndx != SHN_UNDEF)
                return true;
        }
    }
    return false;
}

} // namespace

std::optional<RequestFailure> pamModuleFailure(const std::filesystem::path& path)
{
    const auto unusable = [&path](const std::string& what) {
        return RequestFailure{failure_reason::moduleUnusable,
                              path.string() + " " + what + "; a mandatory entry would lock everybody out."};
    };
    // O_NONBLOCK keeps a pipe that lies there from holding up the caller.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT)
        return RequestFailure{failure_reason::moduleMissing,
                              path.string() + " is not installed; a mandatory entry would lock everybody out."};
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0)
        return unusable(std::string("can't be read: ") + std::strerror(errno));
    if (!S_ISREG(status.st_mode))
        return unusable("is no regular file");
    const ElfFile elf = elfOf(file);
    if (!isSharedObjectOfThisMachine(elf.get()))
        return unusable("is no shared object for this machine");
    for (const char* const function : {"pam_sm_authenticate", "pam_sm_setcred"})
        if (!exports(elf.get(), function))
            return unusable(std::string("has no ") + function);
    return std::nullopt;
}

} // namespace vantro::service
