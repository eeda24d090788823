// UrlDecode on arbitrary bytes: never throws, never grows the text, and the
// result holds no zero byte. The first input byte chooses the log masking.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FormattingLogger.h"
#include "thrift/TEUtils.h"

using namespace Tarni;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, std::size_t in_size)
{
    if (in_size == 0)
    {
        return 0;
    }
    Fuzzing::FormattingLogger log;
    const bool mask = (in_data[0] & 1) != 0;
    const std::string url(reinterpret_cast<const char*>(in_data) + 1, in_size - 1);
    const std::string decoded = ThriftExtension::TEUtils::UrlDecode(url, &log, mask);
    if (decoded.size() > url.size() || decoded.find('\0') != std::string::npos)
    {
        std::abort();
    }
    return 0;
}
