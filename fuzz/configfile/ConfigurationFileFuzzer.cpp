// Fuzz target: the reader of imported configuration files. Every input must
// end in a map or an ErrorException; a map that was read is written out
// again and must read back as the same map.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/ErrorException.h"
#include "driversupport/DSConfigurationFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, size_t in_size)
{
    using Tarni::DriverSupport::DSConfigurationFile;
    const std::string_view bytes(reinterpret_cast<const char*>(in_data), in_size);
    Tarni::DriverSupport::ConfigurationMap values;
    try
    {
        values = DSConfigurationFile::Parse(bytes, u"fuzz.sdc");
    }
    catch (const Tarni::Support::ErrorException&)
    {
        return 0;  // a refused file
    }
    // What was accepted can be written and reads back unchanged.
    const std::string written = DSConfigurationFile::Format(values);
    if (DSConfigurationFile::Parse(written, u"again.sdc") != values)
    {
        std::abort();
    }
    return 0;
}
