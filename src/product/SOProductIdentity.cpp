#include "product/SOProductIdentity.h"

#include "driversupport/DSProductHelper.h"

namespace Tarni::SparkODBC
{
void SOProductIdentity::Register()
{
    DriverSupport::ProductIdentity identity;
    identity.brand = u"Tarni";
    identity.fullDriverName = u"Tarni Apache Spark ODBC Driver";
    identity.version = u"2.7.5.1012";
    identity.shortDriverName = u"Tarni Spark ODBC Driver";
    identity.productDataFile = u"SparkODBC.did";
    identity.iniEnvironmentVariable = u"SPARKINI";
    identity.userIniFileName = u".sparkodbc.ini";
    DriverSupport::DSProductHelper::SetProductIdentity(identity);
    // The product settings may name the environment variable and the user's
    // INI file; for this product they are the same two names, and the second
    // registration keeps them.
    DriverSupport::DSProductHelper::SetProductIdentity(identity);
}
}  // namespace Tarni::SparkODBC
