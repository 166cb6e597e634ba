#include "tokens/RegisteredKeys.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "support/ServicePrefix.h"

namespace vantro::service {
namespace {

using testing::ElementsAre;
using testing::Optional;

TEST(RegisteredKeysTest, AnAccountIsOpenedByItsKeysAndTheMasterKeysHoweverItsNameIsWritten)
{
    constexpr const char* composed = "ren\u00e9";
    constexpr const char* decomposed = "rene\u0301";
    constexpr std::uint64_t manyKeys = 100'000;
    VantroStandaloneSetting setting;
    setting.switchSetting.secureMode = true;
    setting.users.emplace_back(composed).keys.emplace_back(manyKeys + 3);
    auto& other = setting.users.emplace_back("rene");
    for (std::uint64_t serial = 1; serial <= manyKeys; ++serial)
        other.keys.emplace_back(serial);
    setting.users.emplace_back(decomposed).keys.emplace_back(manyKeys + 4);
    setting.masterKeySetting.masterKeys.emplace_back(manyKeys + 2);

    const tests::ServicePrefix prefix;
    const RecordStore records(prefix.records(),
                              LoggerManager::logger("test", LoggerManager::Destination::StandardError));
    const RegisteredKeys keys(prefix.settings() / SettingFile::fileName, records);
    prefix.store(setting);
    for (const char* const name : {composed, decomposed})
        EXPECT_THAT(*keys.openersOf(name), Optional(ElementsAre(manyKeys + 2, manyKeys + 3))) << name;
    EXPECT_EQ((*keys.openersOf("rene"))->size(), manyKeys + 1);
    EXPECT_THAT(*keys.openersOf("Rene"), Optional(ElementsAre(manyKeys + 2)));
}

} // namespace
} // namespace vantro::service
