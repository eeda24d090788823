#include "common/ProductSettingsFixture.h"
#include "common/RecordingLogger.h"
#include "product/SOUtils.h"

using namespace Tarni;
using SparkODBC::SOUtils;

class ServiceDiscoveryModeConversion : public Testing::ProductSettingsFixture
{
protected:
    Testing::RecordingLogger m_log;
};

TEST_F(ServiceDiscoveryModeConversion, NamesAndZeroConvert)
{
    UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\n");
    EXPECT_EQ(0u, SOUtils::ConvertStrToServiceDiscoveryMode(u"0", &m_log, true));
    EXPECT_EQ(0u, SOUtils::ConvertStrToServiceDiscoveryMode(u"No Service Discovery", &m_log, true));
    EXPECT_EQ(1u, SOUtils::ConvertStrToServiceDiscoveryMode(u"ZooKeeper", &m_log, true));
    EXPECT_EQ(2u, SOUtils::ConvertStrToServiceDiscoveryMode(u"aoss", &m_log, false));
    EXPECT_FALSE(m_log.Contains(Support::LOG_ERROR, ""));
}

TEST_F(ServiceDiscoveryModeConversion, UnknownTextGivesNoServiceDiscoveryWithAnErrorRecord)
{
    EXPECT_EQ(0u, SOUtils::ConvertStrToServiceDiscoveryMode(u"1", &m_log, true));
    EXPECT_TRUE(m_log.Contains(Support::LOG_ERROR,
                               "Unable to derive Service Discovery Mode from value \"1\". Using default Service "
                               "Discovery Mode \"No Service Discovery\"."));
    m_log.records.clear();
    EXPECT_EQ(0u, SOUtils::ConvertStrToServiceDiscoveryMode(u"aoss", &m_log, true));
    EXPECT_TRUE(m_log.Contains(Support::LOG_ERROR, "Unable to derive"));
}

TEST_F(ServiceDiscoveryModeConversion, ModeTheProductDoesNotOfferGivesNoServiceDiscovery)
{
    UseProductSettings("suppress-aoss=1\n");
    EXPECT_EQ(0u, SOUtils::ConvertStrToServiceDiscoveryMode(u"AOSS", &m_log, true));
    EXPECT_TRUE(m_log.Contains(Support::LOG_ERROR,
                               "Service discovery mode \"AOSS\" not supported. Using \"No Service Discovery\" instead."));
}
