#include "usb/ReportDescriptor.h"

#include <algorithm>
#include <map>
#include <vector>

namespace vantro {
namespace {

constexpr std::uint64_t reportBitLimit = std::uint64_t{16384} * 8;
constexpr unsigned int longItemPrefix = 0xfe;

/// Type and tag of a short item: its prefix without the size bits.
enum class ItemKind : unsigned int
{
    Input = 0x80,
    Collection = 0xa0,
    EndCollection = 0xc0,
    UsagePage = 0x04,
    ReportSize = 0x74,
    ReportId = 0x84,
    ReportCount = 0x94,
    Push = 0xa4,
    Pop = 0xb4,
    Usage = 0x08
};

struct Globals
{
    std::uint32_t usagePage = 0;
    std::uint32_t reportSize = 0;
    std::uint32_t reportCount = 0;
    std::uint32_t reportId = 0;
};

class Parser
{
  public:
    /// False when the item makes no sense.
    bool take(ItemKind kind, std::uint32_t value, std::size_t size)
    {
        switch (kind) {
        case ItemKind::UsagePage:
            globals_.usagePage = value;
            return true;
        case ItemKind::ReportSize:
            globals_.reportSize = value;
            return true;
        case ItemKind::ReportCount:
            globals_.reportCount = value;
            return true;
        case ItemKind::ReportId:
            globals_.reportId = value;
            return value != 0;
        case ItemKind::Push:
            pushed_.push_back(globals_);
            return true;
        case ItemKind::Pop:
            return pop();
        case ItemKind::Usage:
            // A usage of four bytes brings its own page.
            if (!usage_)
                usage_ = size == 4 ? value : (globals_.usagePage << 16) | (value & 0xffff);
            return true;
        case ItemKind::Input:
            usage_.reset();
            return addInput();
        case ItemKind::Collection:
            if (depth_++ == 0 && !topLevelUsage_)
                topLevelUsage_ = usage_.value_or(0);
            usage_.reset();
            return true;
        case ItemKind::EndCollection:
            usage_.reset();
            return depth_-- > 0;
        }
        // The other main items end the reach of a usage as well.
        if ((static_cast<unsigned int>(kind) & 0x0c) == 0)
            usage_.reset();
        return true;
    }

    [[nodiscard]] ReportDescriptor result() const
    {
        std::uint64_t largest = 0;
        for (const auto& [id, bits] : inputBits_)
            largest = std::max(largest, bits);
        const std::uint32_t usage = topLevelUsage_.value_or(0);
        return {static_cast<std::uint16_t>(usage >> 16), static_cast<std::uint16_t>(usage & 0xffff),
                static_cast<std::size_t>((largest + 7) / 8)};
    }

  private:
    bool pop()
    {
        if (pushed_.empty())
            return false;
        globals_ = pushed_.back();
        pushed_.pop_back();
        return true;
    }

    bool addInput()
    {
        auto& bits = inputBits_[globals_.reportId];
        bits += std::uint64_t{globals_.reportSize} * globals_.reportCount;
        return bits <= reportBitLimit;
    }

    Globals globals_;
    std::vector<Globals> pushed_;
    std::optional<std::uint32_t> usage_;
    std::optional<std::uint32_t> topLevelUsage_;
    std::map<std::uint32_t, std::uint64_t> inputBits_;
    int depth_ = 0;
};

} // namespace

std::optional<ReportDescriptor> parseReportDescriptor(std::string_view bytes)
{
    const auto byteAt = [&bytes](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
    Parser parser;
    std::size_t place = 0;
    while (place < bytes.size()) {
        const unsigned int prefix = byteAt(place++);
        if (prefix == longItemPrefix) {
            if (place >= bytes.size())
                return std::nullopt;
            place += std::size_t{2} + byteAt(place);
            if (place > bytes.size())
                return std::nullopt;
            continue;
        }
        const std::size_t size = (prefix & 3) == 3 ? 4 : prefix & 3;
        if (bytes.size() - place < size)
            return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < size; ++index)
            value |= static_cast<std::uint32_t>(byteAt(place + index)) << (8 * index);
        place += size;
        if (!parser.take(static_cast<ItemKind>(prefix & ~3U), value, size))
            return std::nullopt;
    }
    return parser.result();
}

} // namespace vantro
