#pragma once
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
/// Who the product is: registered once at start-up with DSProductHelper.
struct ProductIdentity
{
    tarni_wstring brand = u"Tarni";
    tarni_wstring fullDriverName = u"Tarni Apache Spark ODBC Driver";
    tarni_wstring version = u"2.7.5.1012";
    tarni_wstring shortDriverName = u"Tarni Spark ODBC Driver";
    tarni_wstring productDataFile = u"SparkODBC.did";
    tarni_wstring iniEnvironmentVariable = u"SPARKINI";
    tarni_wstring userIniFileName = u".sparkodbc.ini";
};
}  // namespace Tarni::DriverSupport
