#include "common/ProductSettingsFixture.h"
#include "common/RecordingLogger.h"
#include "product/SOUtils.h"

using namespace Tarni;
using SparkODBC::SOUtils;

using ServiceDiscoveryModeConversion = Testing::ProductSettingsFixture;

TEST_F(ServiceDiscoveryModeConversion, NamesConvertAndTheRestGivesNoServiceDiscoveryWithAnErrorRecord)
{
    const struct
    {
        const char* settings;
        const char16_t* text;
        bool caseSensitive;
        unsigned mode;
        const char* error;  ///< the error record, nullptr: none
    } cases[] = {
        {"supported-service-discovery-modes=ZooKeeper,AOSS\n", u"0", true, 0, nullptr},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\n", u"No Service Discovery", true, 0, nullptr},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\n", u"ZooKeeper", true, 1, nullptr},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\n", u"aoss", false, 2, nullptr},
        {"", u"1", true, 0,
         "Unable to derive Service Discovery Mode from value \"1\". Using default Service Discovery Mode \"No "
         "Service Discovery\"."},
        {"", u"aoss", true, 0, "Unable to derive"},
        {"suppress-aoss=1\n", u"AOSS", true, 0,
         "Service discovery mode \"AOSS\" not supported. Using \"No Service Discovery\" instead."},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(Support::StringConverter::ToUtf8(c.text));
        UseProductSettings(c.settings);
        Testing::RecordingLogger log;
        EXPECT_EQ(c.mode, SOUtils::ConvertStrToServiceDiscoveryMode(c.text, &log, c.caseSensitive));
        if (c.error != nullptr)
        {
            EXPECT_TRUE(log.Contains(Support::LOG_ERROR, c.error));
        }
        else
        {
            EXPECT_FALSE(log.Contains(Support::LOG_ERROR, ""));
        }
    }
}
