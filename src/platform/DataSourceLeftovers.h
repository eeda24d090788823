#pragma once
// What an installer leaves of a removed data source outside its own calls:
// Wine's installer keeps a data source's values in the user's hive while it
// lists the data source in the machine's, and its removal clears only the
// list. Nothing to do where the installer keeps both together (unixODBC).
#include "core/TarniString.h"

namespace Tarni::Platform
{
class DataSourceLeftovers
{
public:
    /// Removes the values of the data source from each hive whose own list
    /// of data sources does not name it (a data source of the same name that
    /// a hive still lists is kept). Never throws.
    static void Remove(tarni_wstring_view in_dsnName);
};
}  // namespace Tarni::Platform
