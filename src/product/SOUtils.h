#pragma once
#include "core/ILogger.h"
#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SOUtils
{
public:
    /// A stored service discovery mode text to its mode: "0" gives 0, else the
    /// first of "No Service Discovery", "ZooKeeper", "AOSS" equal to the text
    /// under the comparison rule. Never fails: a text that matches nothing, or
    /// a mode the product does not offer, gives 0 with an error record.
    static unsigned ConvertStrToServiceDiscoveryMode(tarni_wstring_view in_text, Support::ILogger* in_logger,
                                                     bool in_caseSensitive);
};
}  // namespace Tarni::SparkODBC
