#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "foundation/XML.h"

namespace vantro {

/// What an element of the file holds beyond what this version knows: elements and comments of another program or a
/// hand. Kept, and written back behind the known content of the element. Where a list of keys is an element of its own,
/// foreignKeys is what that list holds. Copies share the nodes, which are all in one document: one an element would
/// cost pages of memory each.
struct ForeignNodes
{
    std::shared_ptr<const pugi::xml_document> owner;
    /// The foreign nodes are its children; null where there are none.
    pugi::xml_node parent;
};

/// One token.
struct YubiKey
{
    explicit YubiKey(std::uint64_t number) : serial(number) {}

    /// Never 0 in a valid document.
    std::uint64_t serial;
    ForeignNodes foreign;
};

/// A local account and its tokens.
struct UserSetting
{
    explicit UserSetting(std::string name) : account(std::move(name)) {}

    /// The login name.
    std::string account;
    std::vector<YubiKey> keys;
    ForeignNodes foreign;
    ForeignNodes foreignKeys;
};

/// The two switches of the sign-in.
struct SwitchSetting
{
    /// Forced token logon: a token is mandatory at sign-in and unlock.
    bool secureMode = false;
    bool screenLock = false;
    ForeignNodes foreign;
};

struct MasterKeySetting
{
    /// The tokens that open any account.
    std::vector<YubiKey> masterKeys;
    ForeignNodes foreign;
    ForeignNodes foreignKeys;
};

struct AdminSetting
{
    /// The tool asks for an administrator token at its start.
    bool toolLoginAuth = false;
    std::vector<YubiKey> adminKeys;
    ForeignNodes foreign;
    ForeignNodes foreignKeys;
};

/// The settings document: the whole configuration of the add-on. The constructors read, write() stores; in between it
/// is plain data. Used on the main thread only.
class VantroStandaloneSetting
{
  public:
    /// A new document: no keys, every switch off.
    VantroStandaloneSetting() = default;

    /// The document of a parsed file. What can't be read is left at its default and makes isValid() false.
    explicit VantroStandaloneSetting(const XMLAccessor& accessor);

    SwitchSetting switchSetting;
    std::vector<UserSetting> users;
    MasterKeySetting masterKeySetting;
    AdminSetting adminSetting;

    /// False only where the document as read would misrepresent the file: not well-formed, another root element or a
    /// newer format version, a section missing or twice, a switch that is neither true nor false, a serial that is no
    /// unsigned 64-bit number or 0, an account name that is empty or holds control characters.
    [[nodiscard]] bool isValid() const { return isValid_; }

    /// Whether some token opens an account: a key of any user, or a master key.
    [[nodiscard]] bool isAllocatedKey() const;

    /// The name of the document's file.
    static constexpr const char* fileName = "VantroStandaloneSetting.xml";

    /// The document's file: the name in the settings folder of the information dictionary.
    static const std::filesystem::path& url();

    /// Replaces the file whole and durably and keeps its mode. A file that is there and can't be read (a link, a file
    /// of several names, one that is larger than readXML() takes, one that the account may not read) is kept aside in
    /// the instant in which the new one takes its place, under the name with ".unreadable" appended (or the first free
    /// "…-1" and so on behind it). One that could not be read before and now can is left alone, and so is one where
    /// nothing can be kept aside: then nothing is written. Nor is anything that could not be read again. A failure is
    /// logged and leaves the old file, and posts DocumentNotWritten.
    void write() const;

    /// Keeps the document's file, which is no valid document, as the one with ".invalid" appended: a copy, or the file
    /// itself where it can't be copied. What stood there is first moved to a free name (".invalid-old", "…-1"). An
    /// error means that it is not kept.
    [[nodiscard]] static std::error_code keepInvalid();

    /// Whether the document was read with anything in it that this version does not know.
    [[nodiscard]] bool hasForeignNodes() const { return hasForeignNodes_; }

    /// Why the document's file could not be read when it was asked for last, or can't be read at the moment, a file
    /// that is missing included; no error where it can.
    [[nodiscard]] static std::error_code readability();

    /// Why write() could not replace the file at the moment, as far as its folder tells; no error where it could.
    [[nodiscard]] static std::error_code writability();

    /// Where this process's last write() moved a file that could not be read; empty when it never had to.
    [[nodiscard]] static const std::filesystem::path& keptAside();

  private:
    friend class SettingReader;
    bool isValid_ = true;
    bool hasForeignNodes_ = false;
    ForeignNodes foreign_;
    ForeignNodes foreignUsers_;
    /// What lies beside the root element.
    ForeignNodes foreignBeside_;
    friend std::string serialised(const VantroStandaloneSetting& setting);
};

/// Posted by write(), without an object, when the document could not be stored.
inline const NotificationName DocumentNotWritten = "document_not_written";

/// The document's file as text: one element a key, serials in plain decimal.
[[nodiscard]] std::string serialised(const VantroStandaloneSetting& setting);

/// The bytes of the document's file; nothing when it is missing or can't be read, or is larger than 256 MiB.
[[nodiscard]] std::optional<std::string> readXML(const std::filesystem::path& url);

/// The newest format version that this program reads, and the one that it writes.
inline constexpr unsigned int settingFormatVersion = 1;

} // namespace vantro
