// The table of transports allowed for a server type and mechanism: what the
// main dialog relies on when it switches server types, and the shape every
// row must have.
#include "product/SOAllowedTransports.h"

#include <gtest/gtest.h>

#include "product/SOConfigurationTables.h"

using Tarni::SparkODBC::SOAllowedTransports;
using T = Tarni::SparkODBC::SOConfigurationTables;

namespace
{
using List = std::vector<unsigned>;

TEST(SOAllowedTransports, EveryRowIsANonEmptyListInListOrderWhoseFirstEntryIsTheDefault)
{
    for (unsigned type = 0; type <= 5; ++type)
    {
        for (unsigned mech = 0; mech <= T::AUTH_END; ++mech)
        {
            const List& allowed = SOAllowedTransports::Get(type, mech);
            ASSERT_FALSE(allowed.empty()) << type << "/" << mech;
            for (std::size_t i = 0; i < allowed.size(); ++i)
            {
                EXPECT_LE(allowed[i], T::TRANSPORT_HTTP);
                EXPECT_TRUE(i == 0 || allowed[i - 1] < allowed[i]) << "list order for " << type << "/" << mech;
                EXPECT_TRUE(SOAllowedTransports::IsAllowed(type, mech, allowed[i]));
            }
            EXPECT_EQ(SOAllowedTransports::GetDefault(type, mech), allowed.front());
            EXPECT_FALSE(SOAllowedTransports::IsAllowed(type, mech, 3));
        }
    }
}

TEST(SOAllowedTransports, ServerTypesThatFixTheTransportAllowOnlyThatOne)
{
    for (unsigned mech = 0; mech <= T::AUTH_END; ++mech)
    {
        EXPECT_EQ(SOAllowedTransports::Get(T::SERVER_SHARK, mech), List{T::TRANSPORT_BINARY});
        EXPECT_EQ(SOAllowedTransports::Get(T::SERVER_DFI, mech), List{T::TRANSPORT_HTTP});
        // The two Spark server types share their rows.
        EXPECT_EQ(SOAllowedTransports::Get(T::SERVER_SHARK2, mech),
                  SOAllowedTransports::Get(T::SERVER_SPARK_THRIFT, mech));
    }
}

TEST(SOAllowedTransports, MechanismsAllowWhatTheyCanAuthenticateOver)
{
    const unsigned spark = T::SERVER_SPARK_THRIFT;
    // Kerberos and passwords need SASL or HTTP; a plain socket cannot carry them.
    for (const unsigned mech : {T::AUTH_KERBEROS, T::AUTH_USER_NAME_PASSWORD})
    {
        EXPECT_EQ(SOAllowedTransports::Get(spark, mech), (List{T::TRANSPORT_SASL, T::TRANSPORT_HTTP}));
    }
    // Token, browser and gateway mechanisms are HTTP only.
    for (const unsigned mech : {T::AUTH_HDINSIGHT_EMULATOR, T::AUTH_HDINSIGHT_SERVICE, T::AUTH_OAUTH2, T::AUTH_SAML2})
    {
        EXPECT_EQ(SOAllowedTransports::Get(spark, mech), List{T::TRANSPORT_HTTP});
    }
    EXPECT_EQ(SOAllowedTransports::Get(spark, T::AUTH_USER_NAME), (List{T::TRANSPORT_BINARY, T::TRANSPORT_SASL}));
    EXPECT_EQ(SOAllowedTransports::Get(spark, T::AUTH_MAPR_SASL), List{T::TRANSPORT_SASL});
    EXPECT_EQ(SOAllowedTransports::Get(spark, T::AUTH_NONE).size(), 3u);
    EXPECT_EQ(SOAllowedTransports::Get(spark, T::AUTH_END).size(), 3u) << "an unknown mechanism restricts nothing";
}
}  // namespace
