// Fuzz target: filling parameters into a message text. The first byte is the
// number of parameters (0..15); the rest is the text as UTF-16 code units.
// A text that takes its parameters must show each of them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "support/StringConverter.h"
#include "support/messages/GetParameterizedMessage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, size_t in_size)
{
    using namespace Tarni::Support;
    if (in_size == 0)
    {
        return 0;
    }
    std::vector<Tarni::tarni_wstring> parameters;
    for (unsigned i = 0; i < (in_data[0] & 0x0F); ++i)
    {
        parameters.push_back(u"\x01P" + StringConverter::FromNumber(static_cast<unsigned long long>(i)) + u"\x02");
    }
    Tarni::tarni_wstring text;
    for (size_t i = 1; i + 1 < in_size; i += 2)
    {
        text += static_cast<char16_t>(in_data[i] | (in_data[i + 1] << 8));
    }

    try
    {
        const Tarni::tarni_wstring result = GetParameterizedMessage(text, parameters, u"FuzzKey");
        for (const Tarni::tarni_wstring& parameter : parameters)
        {
            if (result.find(parameter) == Tarni::tarni_wstring::npos)
            {
                std::abort();  // a parameter went missing without a violation
            }
        }
    }
    catch (const std::exception&)
    {
        // A text that does not fit its parameters is reported by an exception.
    }
    return 0;
}
