#include "usb/OtpFrame.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <gtest/gtest.h>

namespace vantro::otp {
namespace {

template <std::size_t size>
using Bytes = std::array<std::uint8_t, size>;

TEST(OtpFrameTest, ChecksumIsTheStandardOne)
{
    // The check value of CRC-16/MCRF4XX, which has the same parameters.
    constexpr std::string_view digits = "123456789";
    const std::vector<std::uint8_t> bytes(digits.begin(), digits.end());
    EXPECT_EQ(checksum(bytes), 0x6f91) << "the service and the emulated token would err alike";
}

TEST(OtpFrameTest, AnswerEndsInItsComplementedChecksum)
{
    // Of a token with the serial 12345678.
    std::vector<std::uint8_t> bytes = {0x00, 0xbc, 0x61, 0x4e, 0xc8, 0x04};
    EXPECT_TRUE(endsInChecksum(bytes));
    bytes[2] ^= 1;
    EXPECT_FALSE(endsInChecksum(bytes));
}

TEST(OtpFrameTest, CommandsAndFlagsAreTheTokens)
{
    EXPECT_EQ((std::array{command::serial, command::slotOne, command::slotTwo}), (Bytes<3>{0x10, 0x30, 0x38}));
    EXPECT_EQ((std::array{flag::answer, flag::write, flag::touch, flag::sequence, flag::reset}),
              (Bytes<5>{0x40, 0x80, 0x20, 0x1f, 0x8f}));
}

TEST(OtpFrameTest, ReportsOfZerosInTheMiddleAreLeftOut)
{
    Payload payload = {};
    payload[20] = 0xaa; // chunk 2
    const auto reports = reportsOf(0x10, payload);

    std::array<std::uint8_t, 70> frame = {};
    std::vector<unsigned int> flags;
    for (const auto& report : reports) {
        flags.push_back(report.back());
        std::copy_n(report.begin(), chunkSize, frame.begin() + (report.back() & flag::sequence) * chunkSize);
    }
    EXPECT_EQ(flags, (std::vector<unsigned int>{0x80, 0x82, 0x89}));
    EXPECT_TRUE(std::equal(payload.begin(), payload.end(), frame.begin()));
    EXPECT_EQ(frame[64], 0x10);
    EXPECT_EQ(frame[65] | frame[66] << 8, checksum(payload));
}

} // namespace
} // namespace vantro::otp
