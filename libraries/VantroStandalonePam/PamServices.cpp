#include "VantroStandalonePam/PamServices.h"

#include <system_error>
#include <utility>

#include "foundation/DurableFile.h"

namespace vantro {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t serviceCountLimit = 4096;

bool isMissing(std::error_code error)
{
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory ||
           error == std::errc::too_many_symbolic_link_levels || error == std::errc::filename_too_long;
}

PamFile fileAt(const fs::path& path)
{
    std::error_code error;
    // What libpam reads from a folder is an empty text.
    if (fs::is_directory(path, error))
        return PamFile(std::string());
    auto text = readFile(path, pamServiceSizeLimit, error);
    return text ? PamFile(std::move(*text)) : PamFile::unreadable();
}

} // namespace

const PamFile* PamServices::at(const fs::path& path)
{
    std::error_code error;
    const auto place = fs::canonical(path, error);
    if (isAssumptionLost_)
        return &unreadable_;
    if (error)
        return isMissing(error) ? nullptr : &unreadable_;
    const auto known = files_.find(place);
    return &(known != files_.end() ? known : files_.emplace(place, fileAt(place)).first)->second;
}

void PamServices::assume(const fs::path& path, std::string text)
{
    std::error_code error;
    const auto place = fs::weakly_canonical(path, error);
    isAssumptionLost_ = isAssumptionLost_ || error;
    files_.emplace(place, PamFile(std::move(text)));
}

PamServices::ServicesByName PamServices::all()
{
    ServicesByName services;
    addServicesOf(folder_, services);
    addServicesOf(vendorFolder_, services);
    return services;
}

void PamServices::addServicesOf(const fs::path& folder, ServicesByName& services)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (services.size() >= serviceCountLimit) {
            error = std::make_error_code(std::errc::argument_list_too_long);
            break;
        }
        if (const auto* const file = at(entry->path()))
            services.try_emplace(entry->path().filename(), Service{entry->path(), file});
    }
    if (error && !isMissing(error))
        services.insert_or_assign(folder, Service{folder, &unreadable_});
}

} // namespace vantro
