#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace vantro {

/// An archive's bytes, as they are sent to the privileged service.
using ArchiveData = std::vector<std::uint8_t>;

/// The secure keyed archive: one object as a CBOR map (RFC 8949) whose first entry, "$class", names its class, followed
/// by one entry a field. Whoever decodes names the one class that it expects.
namespace keyed_archive {

using Fields = nlohmann::ordered_json;

/// No archive of this system comes near this many bytes; a larger one is refused unread.
inline constexpr std::size_t sizeLimit = 1024;

/// `fields` must be an object. Nothing when a field's text is no valid UTF-8 or the archive would be too large.
[[nodiscard]] std::optional<ArchiveData> encode(std::string_view className, const Fields& fields);

/// The fields of an object of exactly `className`; nothing for another class, for bytes that are not exactly
/// what encode() makes of such an object, and for an archive that is too large. Types and ranges of the fields are the
/// caller's.
[[nodiscard]] std::optional<Fields> decode(const ArchiveData& data, std::string_view className);

} // namespace keyed_archive
} // namespace vantro
