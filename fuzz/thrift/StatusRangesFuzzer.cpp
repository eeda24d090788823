// ParseHttpStatusRanges on arbitrary text: either ranges with first <= last
// or a TEStatusRangesParsingError, nothing else.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FormattingLogger.h"
#include "core/ErrorException.h"
#include "thrift/TEConnectionUtils.h"

using namespace Tarni;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, std::size_t in_size)
{
    Fuzzing::FormattingLogger log;
    const std::string text(reinterpret_cast<const char*>(in_data), in_size);
    ThriftExtension::TEHttpStatusRanges ranges;
    try
    {
        ThriftExtension::TEConnectionUtils::ParseHttpStatusRanges(text, ranges, &log);
    }
    catch (const Support::ErrorException& e)
    {
        if (e.GetMessageKey() != u"TEStatusRangesParsingError" || !ranges.empty())
        {
            std::abort();
        }
        return 0;
    }
    if (ranges.empty())
    {
        std::abort();
    }
    for (const auto& [first, last] : ranges)
    {
        if (first > last)
        {
            std::abort();
        }
    }
    return 0;
}
