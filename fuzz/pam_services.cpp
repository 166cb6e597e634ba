#include "Fuzzer.h"

#include <filesystem>
#include <string>
#include <vector>

#include "VantroStandalonePam/PamFile.h"
#include "VantroStandalonePam/PamStack.h"

/// The input is three services, cut at record separators, that can include one another as a, b and c. A service that is
/// nothing but an include of another is read as that one.
void vantro::fuzz::look(std::string_view bytes)
{
    std::vector<PamFile> files;
    for (int count = 0; count < 3; ++count) {
        const auto end = bytes.find('\x1e');
        files.emplace_back(std::string(bytes.substr(0, end)));
        bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
    }
    const auto at = [&files](const std::filesystem::path& path) -> const PamFile* {
        const auto place = std::string_view("abc").find(path.filename().string());
        return path.parent_path() == "/s" && path.filename().string().size() == 1 && place < 3 ? &files[place]
                                                                                               : nullptr;
    };
    const PamStack stack(files[0], "/s", at);
    const PamFile wrapper("@include a\n");
    const PamStack wrapped(wrapper, "/s", at);
    if (stack.reading() != PamReading::Whole || wrapped.reading() != PamReading::Whole)
        return;
    expect(stack.steps().size() == wrapped.steps().size());
    for (const auto& file : files) {
        const auto isPlace = [&file](const PamStack::Step& step) { return step.file == &file; };
        expect(stack.holds(isPlace) == wrapped.holds(isPlace));
        expect(stack.isJumpedOver(isPlace) == wrapped.isJumpedOver(isPlace));
        expect(stack.holds(isPlace) || !stack.isJumpedOver(isPlace));
    }
}
