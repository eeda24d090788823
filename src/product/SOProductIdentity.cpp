#include "product/SOProductIdentity.h"

#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"

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
    // The product settings (found through the first registration) may name
    // the environment variable and the user's INI file; the second
    // registration takes them. For this product they are the same two names.
    const tarni_wstring variable =
        DriverSupport::DSProductHelper::GetSetting(DriverSupport::ProductSettingKeys::IniEnvironmentVariable);
    const tarni_wstring userFile =
        DriverSupport::DSProductHelper::GetSetting(DriverSupport::ProductSettingKeys::UserIniFileName);
    if (!variable.empty())
    {
        identity.iniEnvironmentVariable = variable;
    }
    if (!userFile.empty())
    {
        identity.userIniFileName = userFile;
    }
    DriverSupport::DSProductHelper::SetProductIdentity(identity);
}
}  // namespace Tarni::SparkODBC
