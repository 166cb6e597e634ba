#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vantro::fuzz {

/// Makes up folders of PAM services that include one another, in plain and in odd syntax. None includes itself.
class PamFolders
{
  public:
    /// Includes name files below `services`; modules are `probe`, each with an argument of its own.
    PamFolders(std::filesystem::path services, std::filesystem::path probe, std::uint64_t seed);

    /// Texts by name; a later name never includes an earlier one.
    [[nodiscard]] std::map<std::string, std::string> next();

    /// A number from 0 to count - 1.
    [[nodiscard]] std::size_t below(std::size_t count);

  private:
    template <class Value>
    const Value& any(const std::vector<Value>& choices)
    {
        return choices[below(choices.size())];
    }
    [[nodiscard]] bool isOneOf(std::size_t count) { return below(count) == 0; }
    [[nodiscard]] std::string blank();
    [[nodiscard]] std::string line(std::size_t file);
    [[nodiscard]] std::string module();
    [[nodiscard]] std::string include(std::size_t file);
    [[nodiscard]] std::string comment();

    const std::filesystem::path services_;
    const std::filesystem::path probe_;
    std::mt19937_64 random_;
    int modules_ = 0;
};

} // namespace vantro::fuzz
