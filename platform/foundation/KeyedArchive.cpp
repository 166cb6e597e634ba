#include "foundation/KeyedArchive.h"

namespace vantro::keyed_archive {
namespace {
constexpr const char* classKey = "$class";
}

std::optional<ArchiveData> encode(std::string_view className, const Fields& fields)
{
    Fields archive = {{classKey, className}};
    archive.update(fields);
    try {
        // CBOR takes any bytes as text; a dump is where the library checks them.
        static_cast<void>(archive.dump());
    } catch (const nlohmann::json::type_error&) {
        return std::nullopt;
    }
    ArchiveData data = Fields::to_cbor(archive);
    if (data.size() > sizeLimit)
        return std::nullopt;
    return data;
}

std::optional<Fields> decode(const ArchiveData& data, std::string_view className)
{
    if (data.size() > sizeLimit)
        return std::nullopt;
    Fields archive;
    try {
        archive = Fields::from_cbor(data);
    } catch (const Fields::exception&) {
        // Asked not to throw, the library still does for some counts, so it is let throw for everything.
        return std::nullopt;
    }
    if (!archive.is_object() || archive.empty() || archive.begin().key() != classKey)
        return std::nullopt;
    if (!archive.begin()->is_string() || archive.begin()->get_ref<const std::string&>() != className)
        return std::nullopt;
    // One object has one archive: no entry twice, no other form of a number or a text.
    if (Fields::to_cbor(archive) != data)
        return std::nullopt;
    archive.erase(archive.begin());
    return archive;
}

} // namespace vantro::keyed_archive
