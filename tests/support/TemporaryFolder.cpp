#include "support/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>

#include <sys/stat.h>

namespace vantro::tests {

TemporaryFolder::TemporaryFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "vantro-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

void writeFile(const std::filesystem::path& path, const std::string& content, unsigned int mode)
{
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file << content << std::flush;
    std::filesystem::permissions(path, static_cast<std::filesystem::perms>(mode));
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::system_error(errno, std::generic_category(), path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

unsigned int modeOf(const std::filesystem::path& path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0)
        throw std::system_error(errno, std::generic_category(), path.string());
    return status.st_mode & 07777;
}

} // namespace vantro::tests
