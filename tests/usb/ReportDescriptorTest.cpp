#include "usb/ReportDescriptor.h"

#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace vantro {
namespace {

std::string bytes(std::initializer_list<unsigned int> values)
{
    std::string text;
    for (const unsigned int value : values)
        text += static_cast<char>(value);
    return text;
}

const std::string keyboard = tests::contentOf(SEEDS "/keyboard");

struct Case
{
    std::string name;
    std::string descriptor;
    unsigned int usagePage;
    unsigned int usage;
    std::size_t inputSize;
};

class ReportDescriptorTest : public testing::TestWithParam<Case>
{
};

TEST_P(ReportDescriptorTest, TellsUsageAndInputSize)
{
    const auto found = parseReportDescriptor(GetParam().descriptor);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->usagePage, GetParam().usagePage);
    EXPECT_EQ(found->usage, GetParam().usage);
    EXPECT_EQ(found->maximumInputReportSize, GetParam().inputSize);
}

INSTANTIATE_TEST_SUITE_P(
    Descriptors, ReportDescriptorTest,
    testing::Values(
        Case{"Keyboard", keyboard, 0x01, 0x06, 8}, Case{"Fido", tests::contentOf(SEEDS "/fido"), 0xf1d0, 0x01, 64},
        Case{"UsageOfFourBytes", bytes({0x05, 0x01, 0x0b, 0x01, 0x00, 0xd0, 0xf1, 0xa1, 0x01, 0xc0}), 0xf1d0, 0x01, 0},
        Case{"LargestOfSeveralReportIds",
             bytes({0x05, 0x01, 0x09, 0x02, 0xa1, 0x01, 0x75, 0x08, 0x85, 0x01, 0x95, 0x03, 0x81, 0x02,
                    0x85, 0x02, 0x95, 0x05, 0x81, 0x02, 0x85, 0x01, 0x95, 0x01, 0x81, 0x02, 0xc0}),
             0x01, 0x02, 5},
        Case{"PushAndPopOfGlobals",
             bytes({0x05, 0x01, 0x09, 0x02, 0xa1, 0x01, 0x75, 0x08, 0x95, 0x02, 0xa4, 0x75, 0x10, 0x95, 0x10, 0xb4,
                    0x81, 0x02, 0xc0}),
             0x01, 0x02, 2},
        Case{"BitsAreRoundedUp", bytes({0x05, 0x01, 0x09, 0x02, 0xa1, 0x01, 0x75, 0x01, 0x95, 0x09, 0x81, 0x02, 0xc0}),
             0x01, 0x02, 2},
        Case{"FirstTopLevelCollectionCounts", bytes({0x05, 0x01, 0x09, 0x06, 0xa1, 0x01, 0x05, 0x07, 0x09, 0x01, 0xa1,
                                                     0x00, 0xc0, 0xc0, 0x05, 0x0c, 0x09, 0x01, 0xa1, 0x01, 0xc0}),
             0x01, 0x06, 0},
        Case{"LongItemIsPassedOver", bytes({0xfe, 0x02, 0x10, 0x81, 0x81, 0x05, 0x01, 0x09, 0x06, 0xa1, 0x01, 0xc0}),
             0x01, 0x06, 0},
        Case{"Empty", "", 0, 0, 0}),
    [](const auto& test) { return test.param.name; });

TEST(BrokenReportDescriptorTest, IsRefused)
{
    const std::string broken[] = {
        keyboard.substr(0, keyboard.size() - 2), // cut short within an item
        bytes({0xfe}),                           // a long item without length
        bytes({0xfe, 0x04, 0x10, 0x00}),         // and one without all of its data
        bytes({0xb4}),                           // a pop without a push
        bytes({0xc0}),                           // an end without a collection
        bytes({0x85, 0x00}),                     // report id 0 is reserved
        bytes({0x77, 0xff, 0xff, 0xff, 0xff, 0x97, 0xff, 0xff, 0xff, 0xff, 0x81, 0x02}), // larger than any report
    };
    for (const auto& descriptor : broken)
        EXPECT_FALSE(parseReportDescriptor(descriptor)) << testing::PrintToString(descriptor);
}

} // namespace
} // namespace vantro
