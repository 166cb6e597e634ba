#include "foundation/Text.h"

#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/XML.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {
namespace {

using namespace std::string_literals;

TEST(Text, KnowsUTF8AndControlCharacters)
{
    const struct
    {
        std::string text;
        bool isValid;
        bool hasControl;
    } cases[] = {
        {"", true, false},          {"é 漢 😀", true, false},        {"a\0b"s, true, true},
        {"\x1f", true, true},       {"\x7f", true, true},           {"\xc2\x80", true, true},
        {"\xc2\x9f", true, true},   {"\xc2\xa0", true, false},      {"\xff", false, false},
        {"\xc0\x80", false, false}, {"\xed\xa0\x80", false, false}, {"\xf4\x90\x80\x80", false, false},
        {"abc\xc3", false, false},  {"\xff\n", false, true},
    };
    for (const auto& [text, isValid, hasControl] : cases) {
        EXPECT_EQ(isValidUTF8(text), isValid) << testing::PrintToString(text);
        EXPECT_EQ(hasControlCharacters(text), hasControl) << testing::PrintToString(text);
        // Plain text is passed over in blocks; whatever stands between, before or behind some is seen.
        for (std::size_t length = 60; length < 70; ++length) {
            const std::string plain(length, 'a');
            EXPECT_EQ(isValidUTF8(plain + text + plain), isValid) << length << testing::PrintToString(text);
        }
    }
}

TEST(Text, ComparesByCodePointsOfNormalisationFormC)
{
    const struct
    {
        std::string left;
        std::string right;
        std::strong_ordering order;
    } cases[] = {
        {"", "", std::strong_ordering::equal},
        {"adam", "adam ", std::strong_ordering::less},
        {"Zed", "adam", std::strong_ordering::less},
        {"zed", "\u00e9mile", std::strong_ordering::less},
        {"\u00e9mile", "e\u0301mile", std::strong_ordering::equal},
        {"e\u0301", "f", std::strong_ordering::greater},
        {"\uac00", "\u1100\u1161", std::strong_ordering::equal},
        // In UTF-16 a surrogate would come before U+FF5E.
        {"\uff5e", "\U0001f600", std::strong_ordering::less},
        {"\xff", "\xff", std::strong_ordering::equal},
        {"\xff", "\u00ff", std::strong_ordering::greater},
        {"e\u0301\xff", "\u00e9\xff", std::strong_ordering::less},
    };
    for (const auto& [left, right, order] : cases) {
        EXPECT_EQ(compareCanonically(left, right), order) << left << " " << right;
        EXPECT_EQ(std::is_lt(compareCanonically(right, left)), std::is_gt(order)) << left << " " << right;
        EXPECT_EQ(isCanonicallyEqual(left, right), std::is_eq(order)) << left << " " << right;
    }
    EXPECT_EQ(canonicallyNormalised("e\u0301"), "\u00e9");
}

TEST(Text, ParsesUnsignedNumbers)
{
    const std::pair<std::string, std::optional<std::uint64_t>> cases[] = {
        {"0", 0U},     {"5", 5U},    {"+5", 5U},  {"007", 7U}, {"18446744073709551615", UINT64_MAX},
        {"", {}},      {"+", {}},    {"++5", {}}, {"+-5", {}}, {"18446744073709551616", {}},
        {" 5", {}},    {"5 ", {}},   {"5\n", {}}, {"-1", {}},  {"99999999999999999999999999", {}},
        {"-0", {}},    {"0x10", {}}, {"1e3", {}}, {"5.", {}},  {"5\0"s, {}},
        {"\u0665", {}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseUInt64(text), expected) << testing::PrintToString(text);
}

TEST(XML, JudgesWhetherTheBytesAreOneDocument)
{
    const std::pair<std::string, bool> cases[] = {
        {"<r/>", true},
        {"\xef\xbb\xbf<?xml version=\"1.0\"?>\n<!-- a --><!DOCTYPE r>\n<r> é </r>\n<?pi?><!-- b -->\n", true},
        {"", false},
        {"   ", false},
        {"<!-- only -->", false},
        {"text", false},
        {"<r>", false},
        {"<r></s>", false},
        {"<r", false},
        {"<r/><r/>", false},
        {"x<r/>", false},
        {"<r/>x", false},
        {"<r/><![CDATA[x]]>", false},
        {"<r>\0</r>"s, false},
        {"<r/>\0"s, false},
        {"<r>&#9;&#x10ffff;&#;&#x;&#12a;&# 0;&#0</r>", true},
        {"<r>&#0;</r>", false},
        {"<r>&#x000;</r>", false},
        {"<r>&#xd800;</r>", false},
        {"<r>&#x110000;</r>", false},
        {"<r a=\"&#x100000000;\"/>", false},
        {"<r>\xff</r>", false},
        {"<r>\xc0\xaf</r>", false},
        {"<\0r\0/\0>\0"s, false}};
    for (const auto& [bytes, isWellFormed] : cases)
        EXPECT_EQ(XML::parse(bytes).isWellFormed(), isWellFormed) << testing::PrintToString(bytes);
}

TEST(XML, KeepsTextsAndPrefixesAndReadsNothingElse)
{
    const TemporaryFolder folder;
    writeFile(folder / "secret", "secret");
    const auto document = XML::parse("<!DOCTYPE r [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;&a;\">"
                                     "<!ENTITY s SYSTEM \"file://" +
                                     (folder / "secret").string() +
                                     "\">]>"
                                     "<r><x:t>  a &lt;&#x4e00;&amp;\t</x:t><bomb>&b;</bomb><out>&s;</out></r>");
    EXPECT_STREQ(document.root().child("x:t").text().get(), "  a <一&\t");
    EXPECT_STREQ(document.root().child("bomb").text().get(), "&b;");
    EXPECT_STREQ(document.root().child("out").text().get(), "&s;");

    constexpr int depth = 200'000;
    std::string deep;
    for (int level = 0; level < depth; ++level)
        deep += "<a>";
    for (int level = 0; level < depth; ++level)
        deep += "</a>";
    EXPECT_TRUE(XML::parse(deep).isWellFormed());
}

} // namespace
} // namespace vantro::tests
