#include "emulation/LabProfiles.h"

#include <cstdint>

namespace vantro::lab {

namespace {

/// A secret that differs from token to token; nothing in the lab is worth a better one.
SlotKey keyOf(std::uint32_t serial)
{
    SlotKey key{};
    for (std::size_t index = 0; index < key.size(); ++index) {
        key.at(index) = static_cast<std::uint8_t>((serial >> (index % 4 * 8)) + index * 29);
    }
    return key;
}

TokenProfile profile(std::uint32_t serial, std::uint16_t productId)
{
    TokenProfile token;
    token.otp.serial = serial;
    token.productId = productId;
    token.otp.slots[1].key = keyOf(serial);
    return token;
}

} // namespace

std::vector<LabProfile> labProfiles()
{
    constexpr std::uint16_t fullProduct = 0x0407;
    constexpr std::uint16_t olderProduct = 0x0116;
    TokenProfile empty = profile(7654321, fullProduct);
    empty.otp.slots[1].key.reset();
    TokenProfile touched = profile(999, fullProduct);
    touched.otp.slots[1].needsTouch = true;

    return {{"product 0407, slot 2 set up", profile(5550101, fullProduct)},
            {"product 0116, slot 2 set up", profile(12345678, olderProduct)},
            {"product 0407, no slot set up", empty},
            {"product 0407, slot 2 answers after a touch", touched}};
}

} // namespace vantro::lab
