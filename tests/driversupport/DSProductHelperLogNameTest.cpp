#include <gtest/gtest.h>

#include "driversupport/DSProductHelper.h"

using Tarni::DriverSupport::DSProductHelper;
using Tarni::DriverSupport::ProductIdentity;

TEST(DSProductHelper, LogNameIsTheShortDriverNameWithoutBlanksAndDriver)
{
    const ProductIdentity original = DSProductHelper::GetProductIdentity();
    EXPECT_EQ(u"TarniSparkODBC", DSProductHelper::GetLogName());

    // A new identity gives a new name; the cached one is not reused.
    ProductIdentity other = original;
    other.shortDriverName = u"Acme Hive  ODBC Driver ";
    DSProductHelper::SetProductIdentity(other);
    EXPECT_EQ(u"AcmeHiveODBC", DSProductHelper::GetLogName());
    other.shortDriverName = u"Driver";
    DSProductHelper::SetProductIdentity(other);
    EXPECT_EQ(u"Driver", DSProductHelper::GetLogName());
    DSProductHelper::SetProductIdentity(original);
}
