// Fuzz target: a message file as the catalogue reads it. The first byte picks
// the block size the parser is fed in (so that token boundaries fall
// everywhere); the rest is the file. Every text read is then filled with its
// declared number of parameters.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>

#include "support/messages/DSIXmlMessageReader.h"
#include "support/messages/GetParameterizedMessage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, size_t in_size)
{
    using namespace Tarni::Support;
    if (in_size == 0)
    {
        return 0;
    }
    const size_t blockSize = in_data[0] < 128 ? 1 + in_data[0] : DSIXmlMessageReader::BLOCK_SIZE;
    const std::string_view file(reinterpret_cast<const char*>(in_data + 1), in_size - 1);

    DSIXmlMessageReader reader;
    try
    {
        const DSIMessageMap messages = reader.ReadBytes(file, "fuzz.xml", blockSize);
        for (const auto& [key, entry] : messages)
        {
            const size_t count = entry.parameterCount < 0 ? 0 : static_cast<size_t>(entry.parameterCount % 16);
            try
            {
                GetParameterizedMessage(entry.text, std::vector<Tarni::tarni_wstring>(count, u"p"), key);
            }
            catch (const std::exception&)
            {
            }
        }
    }
    catch (const std::exception&)
    {
        // A malformed file is reported by an exception; anything else is a finding.
    }
    return 0;
}
