#include "VantroStandaloneSetting/PamSetting.h"

#include <array>
#include <cstdint>

#include <nlohmann/json.hpp>

#include "foundation/Text.h"

namespace vantro {
namespace {

constexpr const char* className = "PamSetting";
constexpr const char* fileNameKey = "fileName";
constexpr const char* moduleInterfaceKey = "moduleInterface";
constexpr const char* controlFlagKey = "controlFlag";
constexpr const char* moduleNameKey = "moduleName";
constexpr std::size_t fieldCount = 4;
constexpr std::size_t textLimit = 255;

constexpr std::array moduleInterfaceKeywords = {"account", "auth", "password", "session"};
constexpr std::array controlFlagKeywords = {"required", "requisite", "sufficient", "optional"};

bool isAcceptable(const std::string& text)
{
    return !text.empty() && text.size() <= textLimit && isValidUTF8(text);
}

std::optional<std::string> textField(const keyed_archive::Fields& fields, const char* key)
{
    const auto field = fields.find(key);
    if (field == fields.end() || !field->is_string() || !isAcceptable(field->get_ref<const std::string&>()))
        return std::nullopt;
    return field->get<std::string>();
}

template <class Position>
std::optional<Position> positionField(const keyed_archive::Fields& fields, const char* key, std::size_t count)
{
    const auto field = fields.find(key);
    if (field == fields.end() || !field->is_number_unsigned() || field->get<std::uint64_t>() >= count)
        return std::nullopt;
    return static_cast<Position>(field->get<std::uint64_t>());
}

} // namespace

std::optional<ArchiveData> PamSetting::archived() const
{
    if (!isAcceptable(fileName) || !isAcceptable(moduleName))
        return std::nullopt;
    return keyed_archive::encode(className, {{fileNameKey, fileName},
                                             {moduleInterfaceKey, static_cast<std::uint64_t>(moduleInterface)},
                                             {controlFlagKey, static_cast<std::uint64_t>(controlFlag)},
                                             {moduleNameKey, moduleName}});
}

std::optional<PamSetting> PamSetting::unarchived(const ArchiveData& data)
{
    const auto fields = keyed_archive::decode(data, className);
    if (!fields || fields->size() != fieldCount)
        return std::nullopt;
    const auto file = textField(*fields, fileNameKey);
    const auto interface = positionField<ModuleInterface>(*fields, moduleInterfaceKey, moduleInterfaceKeywords.size());
    const auto flag = positionField<ControlFlag>(*fields, controlFlagKey, controlFlagKeywords.size());
    const auto module = textField(*fields, moduleNameKey);
    if (!file || !interface || !flag || !module)
        return std::nullopt;
    return PamSetting{*file, *interface, *flag, *module};
}

std::string pamKeyword(ModuleInterface moduleInterface)
{
    return moduleInterfaceKeywords.at(static_cast<std::size_t>(moduleInterface));
}

std::string pamKeyword(ControlFlag controlFlag)
{
    return controlFlagKeywords.at(static_cast<std::size_t>(controlFlag));
}

} // namespace vantro
