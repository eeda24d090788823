#include "platform/DataSourceLeftovers.h"

namespace Tarni::Platform
{
void DataSourceLeftovers::Remove(tarni_wstring_view)
{
    // unixODBC keeps a data source's values in its section, which its removal deletes.
}
}  // namespace Tarni::Platform
