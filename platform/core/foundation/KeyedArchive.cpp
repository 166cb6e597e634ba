#include "foundation/KeyedArchive.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace vantro::keyed_archive {
namespace {
constexpr const char* classKey = "$class";

/// Goes through an archive and stops at the first value that is nested in another one than the object itself.
class FlatObject : public nlohmann::json_sax<Fields>
{
  public:
    bool null() override { return true; }
    bool boolean(bool /*value*/) override { return true; }
    bool number_integer(number_integer_t /*value*/) override { return true; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
    bool string(string_t& /*value*/) override { return true; }
    bool binary(binary_t& /*value*/) override { return true; }
    bool start_object(std::size_t /*count*/) override { return !std::exchange(isInside_, true); }
    bool key(string_t& /*value*/) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t /*count*/) override { return false; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*error*/) override
    {
        return false;
    }

  private:
    bool isInside_ = false;
};
} // namespace

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
        // The library calls itself for each level, as deep as the bytes say.
        FlatObject flat;
        if (!Fields::sax_parse(data, &flat, Fields::input_format_t::cbor))
            return std::nullopt;
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
