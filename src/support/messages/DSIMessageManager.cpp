#include "support/messages/DSIMessageManager.h"

#include <exception>
#include <string>

#include "core/DSIException.h"
#include "support/StringConverter.h"

namespace Tarni::Support
{
namespace
{
constexpr const char* LOG_NAMESPACE = "Tarni::Support";
constexpr const char* LOG_CLASS = "DSIMessageManager";

std::string JoinParameters(const std::vector<tarni_wstring>& in_parameters)
{
    std::string joined = "[";
    for (size_t i = 0; i < in_parameters.size(); ++i)
    {
        joined += (i != 0 ? ", " : "") + StringConverter::ToUtf8(in_parameters[i]);
    }
    return joined + "]";
}

std::string DescribeCurrentException()
{
    try
    {
        throw;
    }
    catch (const ErrorException& error)
    {
        if (error.GetMessageKey() == DSI::DSIException::DSI_INVALID_ERRORCODE && !error.GetParameters().empty())
        {
            return StringConverter::ToUtf8(error.GetParameters()[0]);
        }
        return error.what();
    }
    catch (const std::exception& error)
    {
        return error.what();
    }
    catch (...)
    {
        return "unknown exception";
    }
}
}  // namespace

DSIMessageManager::DSIMessageManager(std::shared_ptr<DSIMessageSource> in_source, ILogger* in_logger)
    : m_source(std::move(in_source)), m_logger(in_logger)
{
    if (in_logger != nullptr)
    {
        m_source->SetLogger(in_logger);
    }
}

void DSIMessageManager::SetLogger(ILogger* in_logger)
{
    m_logger = in_logger;
    m_source->SetLogger(in_logger);
}

DSIMessage DSIMessageManager::GetErrorMessage(const tarni_wstring& in_locale, tarni_wstring_view in_messageKey,
                                              const std::vector<tarni_wstring>& in_messageParameters,
                                              int in_sourceComponentId) noexcept
{
    try
    {
        return m_source->GetErrorMessage(in_locale, in_messageKey, in_messageParameters, in_sourceComponentId);
    }
    catch (...)
    {
        try
        {
            if (ILogger* logger = m_logger.load(); logger != nullptr)
            {
                logger->LogError(LOG_NAMESPACE, LOG_CLASS, "GetErrorMessage",
                                 "Exception caught - in_locale='%s' in_messageID='%s' in_messageParameters=%s "
                                 "in_sourceComponentID=%d : %s",
                                 StringConverter::ToUtf8(in_locale).c_str(),
                                 StringConverter::ToUtf8(in_messageKey).c_str(),
                                 JoinParameters(in_messageParameters).c_str(), in_sourceComponentId,
                                 DescribeCurrentException().c_str());
            }
            DSIMessage fallback;
            fallback.text = m_source->GetNotFoundText(in_sourceComponentId, in_messageKey);
            return fallback;
        }
        catch (...)
        {
            // Not even the fallback could be built (no memory): the key must do.
            DSIMessage last;
            try
            {
                last.text = tarni_wstring(in_messageKey);
            }
            catch (...)
            {
            }
            return last;
        }
    }
}

DSIMessage DSIMessageManager::GetErrorMessage(const ErrorException& in_error, const tarni_wstring& in_locale) noexcept
{
    if (in_error.GetMessageKey() == DSI::DSIException::DSI_INVALID_ERRORCODE)
    {
        DSIMessage finished;
        try
        {
            finished.text = in_error.GetParameters().empty() ? tarni_wstring() : in_error.GetParameters()[0];
            finished.found = true;
        }
        catch (...)
        {
        }
        return finished;
    }
    return GetErrorMessage(in_locale, in_error.GetMessageKey(), in_error.GetParameters(), in_error.GetComponentId());
}

DSIMessageManager& DSIMessageManager::GetDefault()
{
    static DSIMessageManager s_default(std::make_shared<DSIMessageSource>());
    return s_default;
}

tarni_wstring DSIMessageManager::GetDisplayText(const ErrorException& in_error)
{
    return GetDefault().GetErrorMessage(in_error).text;
}

std::string DSIMessageManager::GetDisplayTextUtf8(const ErrorException& in_error)
{
    return StringConverter::ToUtf8(GetDisplayText(in_error));
}
}  // namespace Tarni::Support
