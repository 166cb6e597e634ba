// The road from a token to the data set with nothing pretended but the token: the real monitor, the real service.

#include <cstdlib>
#include <memory>

#include <gmock/gmock.h>

#include "AppDataSet.h"
#include "LoggerManager/LoggerManager.h"
#include "LoginAuthentication.h"
#include "ServiceRequests.h"
#include "foundation/Bundle.h"
#include "service/ServiceFixture.h"

namespace vantro::tests {
namespace {

using AuthResult = LoginAuthentication::AuthResult;
using lab::VirtualToken;
using testing::HasSubstr;

class RealTokens : public ServiceFixture
{
  protected:
    RealTokens()
    {
        Bundle::setMainPrefix(prefix.path());
        ::setenv("XDG_STATE_HOME", (prefix.path() / "tool").c_str(), 1);
    }
    static AppDataSet& dataSet() { return AppDataSet::shared(); }
    [[nodiscard]] static bool reaches(std::int64_t count, std::optional<std::uint64_t> serial)
    {
        const bool isReached = waitUntil(
            [&] { return dataSet().connectedYubiKeyCount() == count && dataSet().connectedYubiKeySerial() == serial; });
        EXPECT_EQ(dataSet().connectedYubiKeyCount(), count);
        EXPECT_EQ(dataSet().connectedYubiKeySerial(), serial);
        return isReached;
    }
    static std::string toolLog() { return contentOf(LoggerManager::logFile("VantroStandalone")); }
};

TEST_F(RealTokens, AreCountedWithTheirSerials)
{
    VirtualToken first(bed, tokenOf(11));
    first.plugIn();
    EXPECT_TRUE(reaches(1, 11)) << "was there before the start";

    VirtualToken second(bed, tokenOf(4294967295U));
    second.plugIn();
    EXPECT_TRUE(reaches(2, 4294967295U));
    first.unplug();
    EXPECT_TRUE(reaches(1, {})) << "which one is left is not known";
    second.unplug();
    EXPECT_TRUE(reaches(0, {}));
    second.plugIn();
    EXPECT_TRUE(reaches(1, 4294967295U));
}

TEST_F(RealTokens, ForeignDevicesAreNotSeen)
{
    EXPECT_TRUE(reaches(0, {}));
    auto otherVendor = tokenOf(1);
    otherVendor.vendorId = 0x1234;
    auto otherProduct = tokenOf(2);
    otherProduct.productId = 0x0120;
    auto otherSize = tokenOf(3);
    otherSize.fidoReportSize = 32;
    auto otherModel = tokenOf(44);
    otherModel.productId = 0x0116;
    VirtualToken vendor(bed, otherVendor);
    VirtualToken product(bed, otherProduct);
    VirtualToken size(bed, otherSize);
    VirtualToken token(bed, otherModel);
    vendor.plugIn();
    product.plugIn();
    size.plugIn();
    // Events come in order: when the token has been counted, the others have been passed over.
    token.plugIn();
    EXPECT_TRUE(reaches(1, 44));
    vendor.unplug();
    product.unplug();
    token.unplug();
    EXPECT_TRUE(reaches(0, {}));
}

TEST_F(RealTokens, ComeAndGoInSequence)
{
    std::vector<std::unique_ptr<VirtualToken>> tokens;
    for (const std::uint32_t serial : {1U, 2U, 3U})
        tokens.push_back(std::make_unique<VirtualToken>(bed, tokenOf(serial)));
    EXPECT_TRUE(reaches(0, {}));
    for (int round = 0; round < 10; ++round) {
        std::int64_t count = 0;
        for (const auto& token : tokens) {
            token->plugIn();
            ++count;
            ASSERT_TRUE(reaches(count, token->profile().otp.serial));
        }
        for (const auto& token : tokens) {
            token->unplug();
            ASSERT_TRUE(reaches(--count, {}));
        }
    }
}

TEST_F(RealTokens, AServiceThatIsKilledIsStartedForTheNextToken)
{
    VirtualToken first(bed, tokenOf(11));
    VirtualToken second(bed, tokenOf(12));
    first.plugIn();
    EXPECT_TRUE(reaches(1, 11));
    ASSERT_TRUE(bus.endService(SIGKILL));
    EXPECT_TRUE(waitUntil([] { return toolLog().find("Connection has been interrupted.") != std::string::npos; }));
    second.plugIn();
    EXPECT_TRUE(reaches(2, 12));
}

TEST_F(RealTokens, OpenTheToolOnceTheirFileIsWritten)
{
    VirtualToken token(bed, tokenOf(11));
    token.plugIn();
    EXPECT_TRUE(reaches(1, 11));
    dataSet().vantroStandaloneSetting.adminSetting.adminKeys.emplace_back(11);
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure) << "there is no file yet";
    EXPECT_TRUE(createCRSettingFile(11));
    EXPECT_FALSE(createCRSettingFile(12)) << "this token is not there";
    const std::string record = contentOf(recordOf(11));
    EXPECT_NE(record, "");
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::Success);
    EXPECT_TRUE(waitUntil([&] { return contentOf(recordOf(11)) != record; })) << "the challenge is a new one";

    token.unplug();
    EXPECT_TRUE(reaches(0, {}));
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::NotConnected);
    auto other = tokenOf(11);
    other.otp.slots[1].key = lab::SlotKey{9, 9, 9};
    VirtualToken forged(bed, other);
    forged.plugIn();
    EXPECT_TRUE(reaches(1, 11));
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure) << "the same serial, another secret";
}

TEST_F(RealTokens, ATokenWhoseSerialCannotBeReadIsCountedOnly)
{
    auto mute = tokenOf(11);
    mute.interfaces = {lab::TokenInterface::fido};
    VirtualToken token(bed, mute);
    dataSet();
    token.plugIn();
    EXPECT_TRUE(reaches(1, {}));
    EXPECT_TRUE(waitUntil([] { return toolLog().find("Serial is nil or 0. [Optional(0)]") != std::string::npos; }));
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::SerialAcquisitionError);
}

} // namespace
} // namespace vantro::tests
