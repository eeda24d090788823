#pragma once
// Reads one XML message file with expat, fed in fixed-size blocks:
//   <Messages>
//     <Package ID="63" DefaultComponent="DriverSupport">
//       <Error Key="DSIniReadErr" NativeErrorCode="1001" Params="2">Cannot read "%1%": %2%.</Error>
//     </Package>
//   </Messages>
// A malformed file is reported in the log and as a DSIException with finished
// text; elements with a missing required attribute or an empty text are
// logged and skipped.
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/ILogger.h"
#include "support/messages/DSIMessageCache.h"

namespace Tarni::Support
{
class DSIXmlMessageReader
{
public:
    static constexpr size_t BLOCK_SIZE = 16384;

    explicit DSIXmlMessageReader(ILogger* in_logger = nullptr);

    /// Loads the component's file for the locale into the cache on first use
    /// (the first of the candidate paths that exists) and looks the key up.
    /// Nothing when the key is not there or no file could be read; throws
    /// when the file exists but cannot be parsed (first time only).
    std::optional<DSIMessageEntry> GetErrorMessage(DSIMessageCache& io_cache, int in_componentId,
                                                   const tarni_wstring& in_locale, tarni_wstring_view in_key,
                                                   const std::vector<tarni_wstring>& in_candidatePaths);

    /// Parses a file. Throws DSIException (finished text) for a malformed
    /// file, SupportException "GetFileErr" when it cannot be opened or read.
    DSIMessageMap ReadFile(const tarni_wstring& in_path);

    /// Parses bytes as the file in_name would be parsed, in blocks of in_blockSize.
    DSIMessageMap ReadBytes(std::string_view in_bytes, const std::string& in_name,
                            size_t in_blockSize = BLOCK_SIZE);

private:
    /// Fills a block and returns its length; 0 at the end of the input.
    using BlockSource = std::function<size_t(char* out_block, size_t in_size)>;

    DSIMessageMap Parse(const BlockSource& in_source, const std::string& in_name, size_t in_blockSize);

    ILogger* m_logger;
};
}  // namespace Tarni::Support
