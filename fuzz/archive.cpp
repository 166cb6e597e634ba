#include "Fuzzer.h"

#include "VantroStandaloneSetting/PamSetting.h"

/// An archive that is taken is the one that its object is written as.
void vantro::fuzz::look(std::string_view bytes)
{
    const ArchiveData archive(bytes.begin(), bytes.end());
    if (const auto setting = PamSetting::unarchived(archive))
        expect(setting->archived() == archive);
}
