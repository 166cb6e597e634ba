#include "LabState.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>

#include "LabAccounts.h"
#include "VantroStandaloneNames.h"
#include "foundation/DurableFile.h"
#include "foundation/LastError.h"

namespace vantro::lab {

namespace {

namespace fs = std::filesystem;

/// The folders of the dictionary and what they are called in a state of its own.
struct NamedFolder
{
    std::string_view key;
    std::string_view name;
};

constexpr std::array<NamedFolder, 5> namedFolders{{{bundle_key::settingsFolder, "settings"},
                                                   {bundle_key::challengeResponseFolder, "challenge-response"},
                                                   {bundle_key::signedInFolder, "signed-in"},
                                                   {bundle_key::pamServicesFolder, "pam.d"},
                                                   {bundle_key::pamModulesFolder, "security"}}};

constexpr auto temporaryNote = "temporary-folders";
constexpr std::size_t dictionarySizeLimit = 1 << 20;

fs::path folderOf(const Bundle& bundle, std::string_view key)
{
    fs::path folder = bundle.string(key);
    if (!folder.is_absolute()) {
        throw std::runtime_error("The information dictionary in " + bundle.resourceFolder().string() +
                                 " does not name the folder " + std::string(key) + ".");
    }
    return folder;
}

void write(const fs::path& path, std::string_view text)
{
    std::ofstream file(path, std::ios::trunc);
    if (!(file << text << std::flush)) {
        throw std::runtime_error(path.string() + " can't be written.");
    }
}

void writeIfAbsent(const fs::path& path, std::string_view text)
{
    if (!fs::exists(path)) {
        write(path, text);
    }
}

/// The same program at another place: what it finds from its own path is found there.
void placeProgram(const fs::path& from, const fs::path& to)
{
    fs::remove(to);
    if (!fs::exists(from)) {
        return;
    }
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (error) {
        fs::copy_file(from, to);
    }
}

} // namespace

LabState::LabState()
    : hasOwnPrefix_(false), folder_(fs::path(LAB_BUILD_PREFIX) / "lab" / "state"), bundle_(LAB_BUILD_PREFIX)
{
}

LabState::LabState(const fs::path& folder)
    : hasOwnPrefix_(true), folder_(fs::absolute(folder).lexically_normal()), bundle_(folder_ / "prefix")
{
}

void LabState::prepare()
{
    fs::create_directories(folder_);
    takeLock();
    if (hasOwnPrefix_) {
        makePrefix();
        bundle_ = Bundle(folder_ / "prefix");
    }
    makeFolders();
    makePamFolders();
    makeDefaults();
    writeAccountList(folder_);
}

void LabState::takeLock()
{
    lock_ = FileDescriptor(::open((folder_ / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!lock_ || ::flock(lock_.get(), LOCK_EX | LOCK_NB) != 0) {
        throw std::runtime_error(errno == EWOULDBLOCK
                                     ? "Another token lab is already using " + folder_.string() + "."
                                     : folder_.string() + " can't be used: " + lastError().message() + ".");
    }
}

void LabState::makePrefix() const
{
    const Bundle built(LAB_BUILD_PREFIX);
    fs::create_directories(bundle_.resourceFolder());
    fs::create_directories(tool().parent_path());
    fs::create_directories(service().parent_path());
    placeProgram(built.prefix() / "bin" / tool().filename(), tool());
    placeProgram(built.prefix() / "libexec" / service().filename(), service());
    fs::copy(built.resourceFolder(), bundle_.resourceFolder(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);

    const fs::path dictionary = bundle_.resourceFolder() / "Info.plist";
    std::error_code error;
    std::string text = readFile(dictionary, dictionarySizeLimit, error).value_or("");
    for (const NamedFolder& named : namedFolders) {
        const std::string element = "<string>" + folderOf(built, named.key).string() + "</string>";
        const std::size_t position = text.find(element);
        if (position == std::string::npos) {
            throw std::runtime_error(dictionary.string() + " can't be made to name other folders.");
        }
        text.replace(position, element.size(), "<string>" + (folder_ / named.name).string() + "</string>");
    }
    write(dictionary, text);
}

void LabState::makeFolders() const
{
    for (const NamedFolder& named : namedFolders) {
        fs::create_directories(folderOf(bundle_, named.key));
    }
    fs::permissions(folderOf(bundle_, bundle_key::challengeResponseFolder), fs::perms::owner_all);
    fs::permissions(signedIn(), fs::perms::owner_all);
    fs::create_directories(toolLog().parent_path());
    fs::create_directories(folder_ / "services");
}

void LabState::makePamFolders() const
{
    for (const std::string_view service : names::pamServices) {
        writeIfAbsent(pamServices() / service,
                      "# Included by the services that authenticate with a token:\n#   @include " +
                          std::string(service) + "\n");
    }
    // What a program has that asks for a password, once the add-on's profile is enabled. libpam looks for a name
    // without a folder in its own alone.
    write(pamServices() / "sign-in",
          "auth\trequired\tpam_permit.so\nauth\tinclude\t" + (pamServices() / "authorization").string() + "\n");
    fs::copy_file(LAB_LOGIN_MODULE, pamModules() / names::pamModule, fs::copy_options::overwrite_existing);
}

void LabState::makeDefaults() const
{
    const fs::path defaults = folder_ / "config" / "vantro-standalone" / "defaults.ini";
    fs::create_directories(defaults.parent_path());
    writeIfAbsent(defaults, "[General]\nsuppression=true\nisFirstStart=false\n");
}

void LabState::noteTemporaryFolders(const std::vector<fs::path>& folders) const
{
    removeTemporaryFolders();
    std::string note;
    for (const fs::path& folder : folders) {
        note += folder.string() + '\n';
    }
    write(folder_ / temporaryNote, note);
}

void LabState::removeTemporaryFolders() const
{
    std::ifstream note(folder_ / temporaryNote);
    std::error_code ignored;
    for (std::string line; std::getline(note, line);) {
        const fs::path left = line;
        const std::string name = left.filename().string();
        if (left.parent_path() == fs::temp_directory_path() &&
            (name.starts_with("umockdev.") || name.starts_with("vantro-lab."))) {
            fs::remove_all(left, ignored);
        }
    }
    fs::remove(folder_ / temporaryNote, ignored);
}

fs::path LabState::document() const
{
    return folderOf(bundle_, bundle_key::settingsFolder) / "VantroStandaloneSetting.xml";
}

fs::path LabState::pamServices() const
{
    return folderOf(bundle_, bundle_key::pamServicesFolder);
}

fs::path LabState::pamModules() const
{
    return folderOf(bundle_, bundle_key::pamModulesFolder);
}

fs::path LabState::signedIn() const
{
    return folderOf(bundle_, bundle_key::signedInFolder);
}

std::map<std::string, std::string> LabState::environment() const
{
    return {{"XDG_CONFIG_HOME", (folder_ / "config").string()},
            {"XDG_STATE_HOME", (folder_ / "log").string()},
            {"NSS_WRAPPER_PASSWD", (folder_ / "passwd").string()},
            {"NSS_WRAPPER_GROUP", (folder_ / "group").string()}};
}

} // namespace vantro::lab
