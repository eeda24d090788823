#include "thrift/TEHttpApiRetryEmulationTestSetting.h"

#include <string>

#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEHttpApiRetryEmulationTestSetting";
}  // namespace

TEHttpApiRetryEmulationTestSetting::TEHttpApiRetryEmulationTestSetting(const TEHttpStatusRanges& in_statusRanges,
                                                                       std::uint32_t in_numEmulation,
                                                                       bool in_sendToServer, Support::ILogger* in_log)
    : m_numEmulation(in_numEmulation),
      m_numEmulationRemaining(in_numEmulation),
      m_sendToServer(in_sendToServer),
      m_log(in_log)
{
    TARNI_LOG_ENTRY(m_log, NS, CLS, "TEHttpApiRetryEmulationTestSetting");
    if (in_statusRanges.empty())
    {
        throw TEException::WithText(u"TETestError",
                                    "The TEHttpStatusRanges passed in to the TEHttpApiRetryEmulationTestSetting "
                                    "function cannot be empty. Please check the HttpApiRetryEmulationTestSettings "
                                    "configuration.");
    }
    for (const auto& [first, last] : in_statusRanges)
    {
        // A reversed range holds no status (the parser never produces one).
        for (std::uint32_t status = first; status <= last; ++status)
        {
            if (m_httpStatusCodes.size() == MAX_STATUS_CODES)
            {
                throw TEException::WithText(u"TETestError",
                                            "The HTTP status code ranges of an emulation setting expand to more than " +
                                                std::to_string(MAX_STATUS_CODES) +
                                                " status codes. Please check the HttpApiRetryEmulationTestSettings "
                                                "configuration.");
            }
            m_httpStatusCodes.push_back(static_cast<std::uint16_t>(status));
        }
    }
    if (m_httpStatusCodes.empty())
    {
        throw TEException::WithText(u"TETestError",
                                    "The TEHttpStatusRanges passed in to the TEHttpApiRetryEmulationTestSetting "
                                    "function cannot be empty. Please check the HttpApiRetryEmulationTestSettings "
                                    "configuration.");
    }
}

std::uint16_t TEHttpApiRetryEmulationTestSetting::GetNextHttpStatus()
{
    TARNI_LOG_ENTRY(m_log, NS, CLS, "GetNextHttpStatus");
    const std::uint16_t status = m_httpStatusCodes[m_cursor];
    m_cursor = (m_cursor + 1) % m_httpStatusCodes.size();
    return status;
}

void TEHttpApiRetryEmulationTestSetting::ApplyEmulationSettings(TEEmulatedHttpResponse& io_response)
{
    TARNI_LOG_ENTRY(m_log, NS, CLS, "ApplyEmulationSettings");
    if (m_numEmulationRemaining > 0)
    {
        io_response.m_isEmulated = true;
        io_response.m_sendToServer = m_sendToServer;
        io_response.m_statusLine = "HTTP/1.1 " + std::to_string(GetNextHttpStatus()) + " TEST";
        --m_numEmulationRemaining;
        if (m_log != nullptr)
        {
            m_log->LogDebug(NS, CLS, "ApplyEmulationSettings", "Applying emulated HTTP status line: %s",
                            io_response.m_statusLine.c_str());
        }
        return;
    }
    io_response.m_isEmulated = false;
    io_response.m_statusLine.clear();
    m_numEmulationRemaining = m_numEmulation;
    if (m_log != nullptr)
    {
        m_log->LogDebug(NS, CLS, "ApplyEmulationSettings",
                        "The max number of emulation had already been reached.Emulation is not being applied and "
                        "m_numEmulationRmaining is being reset to %s.",
                        std::to_string(m_numEmulation).c_str());
    }
}
}  // namespace Tarni::ThriftExtension
