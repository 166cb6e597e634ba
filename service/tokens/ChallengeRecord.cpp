#include "tokens/ChallengeRecord.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <span>

#include "foundation/Text.h"

namespace vantro::service {
namespace {

constexpr int rounds = 100000;
constexpr std::string_view header = "vantro-challenge-response 1\n";
constexpr std::string_view digits = "0123456789abcdef";

using Hash = decltype(ChallengeRecord::hash);

std::optional<Hash> hashOf(const Response& response, const decltype(ChallengeRecord::salt)& salt)
{
    Hash hash = {};
    std::array<char, sizeof(Response)> password = {};
    std::copy(response.begin(), response.end(), password.begin());
    const int result = PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), salt.data(),
                                         static_cast<int>(salt.size()), rounds, EVP_sha256(),
                                         static_cast<int>(hash.size()), hash.data());
    OPENSSL_cleanse(password.data(), password.size());
    return result == 1 ? std::optional(hash) : std::nullopt;
}

std::string hexadecimal(std::span<const std::uint8_t> bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xf];
    }
    return text;
}

bool readHexadecimal(std::string_view text, std::span<std::uint8_t> bytes)
{
    if (text.size() != 2 * bytes.size())
        return false;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const auto high = digits.find(text[2 * index]);
        const auto low = digits.find(text[2 * index + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos)
            return false;
        bytes[index] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return true;
}

/// Takes the line "NAME VALUE" off the text; nothing when another line stands there.
std::optional<std::string_view> takeValue(std::string_view& text, std::string_view name)
{
    const auto end = text.find('\n');
    if (end == std::string_view::npos || !text.starts_with(name) || end <= name.size() || text[name.size()] != ' ')
        return std::nullopt;
    const auto value = text.substr(name.size() + 1, end - name.size() - 1);
    text.remove_prefix(end + 1);
    return value;
}

} // namespace

std::optional<Challenge> makeChallenge()
{
    Challenge challenge = {};
    if (RAND_bytes(challenge.data(), static_cast<int>(challenge.size())) != 1)
        return std::nullopt;
    return challenge;
}

std::optional<ChallengeRecord> ChallengeRecord::make(std::uint64_t serial, Slot slot, const Challenge& challenge,
                                                     const Response& response)
{
    ChallengeRecord record{serial, slot, challenge, {}, {}};
    if (RAND_bytes(record.salt.data(), static_cast<int>(record.salt.size())) != 1)
        return std::nullopt;
    const auto hash = hashOf(response, record.salt);
    if (!hash)
        return std::nullopt;
    record.hash = *hash;
    return record;
}

bool ChallengeRecord::isMatchedBy(const Response& response) const
{
    const auto found = hashOf(response, salt);
    return found && CRYPTO_memcmp(found->data(), hash.data(), hash.size()) == 0;
}

std::string ChallengeRecord::formatted() const
{
    std::string text(header);
    text += "serial " + std::to_string(serial) + "\n";
    text += "slot " + std::to_string(static_cast<int>(slot)) + "\n";
    text += "challenge " + hexadecimal(challenge) + "\n";
    text += "salt " + hexadecimal(salt) + "\n";
    text += "hash " + hexadecimal(hash) + "\n";
    return text;
}

std::optional<ChallengeRecord> ChallengeRecord::parsed(std::string_view text)
{
    if (!text.starts_with(header))
        return std::nullopt;
    text.remove_prefix(header.size());
    const auto serial = takeValue(text, "serial");
    const auto slot = takeValue(text, "slot");
    const auto challenge = takeValue(text, "challenge");
    const auto salt = takeValue(text, "salt");
    const auto hash = takeValue(text, "hash");
    if (!serial || !slot || !challenge || !salt || !hash || !text.empty() || (*slot != "1" && *slot != "2"))
        return std::nullopt;

    ChallengeRecord record;
    record.serial = parseUInt64(*serial).value_or(0);
    record.slot = *slot == "1" ? Slot::One : Slot::Two;
    if (!readHexadecimal(*challenge, record.challenge) || !readHexadecimal(*salt, record.salt) ||
        !readHexadecimal(*hash, record.hash) || *serial != std::to_string(record.serial) || record.serial == 0)
        return std::nullopt;
    return record;
}

} // namespace vantro::service
