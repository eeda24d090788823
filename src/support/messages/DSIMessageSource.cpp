#include "support/messages/DSIMessageSource.h"

#include "platform/ProcessEnvironment.h"
#include "core/ComponentId.h"
#include "core/NullLogger.h"
#include "support/StringConverter.h"
#include "support/TarniSettingReader.h"
#include "support/messages/GetParameterizedMessage.h"

namespace Tarni::Support
{
namespace
{
constexpr const char* LOG_NAMESPACE = "Tarni::Support";
constexpr const char* LOG_CLASS = "DSIMessageSource";

tarni_wstring WithoutTrailingSeparators(tarni_wstring in_path)
{
    while (in_path.size() > 1 && (in_path.back() == u'/' || in_path.back() == u'\\'))
    {
        in_path.pop_back();
    }
    return in_path;
}
}  // namespace

DSIMessageSource::DSIMessageSource(ILogger* in_logger) : m_logger(in_logger), m_reader(in_logger)
{
    // The built-in components, then the driver's own.
    RegisterComponent(DSI_ERROR, u"ODBCMessages", u"DSI");
    RegisterComponent(SUPPORT_ERROR, u"CSCommonMessages", u"Support");
    RegisterComponent(OLEDB_ERROR, u"OLEDBMessages", u"OLEDB");
    RegisterComponent(SQLENGINE_ERROR, u"SQLEngineMessages", u"SQLEngine");
    RegisterComponent(SERVER_ERROR, u"ServerMessages", u"Server");
    RegisterComponent(DS_ERROR, u"DSMessages", u"DriverSupport");
    RegisterComponent(TE_ERROR, u"TEMessages", u"ThriftExtension");
    RegisterComponent(PRODUCT_ERROR, u"QuillMessages", u"SparkODBC");
}

void DSIMessageSource::SetLogger(ILogger* in_logger)
{
    std::lock_guard<std::mutex> loadGuard(m_loadLock);
    std::lock_guard<std::mutex> guard(m_lock);
    m_logger = in_logger;
    m_reader = DSIXmlMessageReader(in_logger);
}

void DSIMessageSource::RegisterComponent(int in_componentId, tarni_wstring in_fileName, tarni_wstring in_tag)
{
    std::lock_guard<std::mutex> guard(m_lock);
    m_components[in_componentId] = Component{std::move(in_fileName), std::move(in_tag)};
}

void DSIMessageSource::SetVendorTag(tarni_wstring in_vendorTag)
{
    std::lock_guard<std::mutex> guard(m_lock);
    m_vendorTag = std::move(in_vendorTag);
}

tarni_wstring DSIMessageSource::GetDefaultMessagesPath()
{
    return Platform::ProcessEnvironment::GetExecutableDirectory() + DEFAULT_MESSAGES_FOLDER;
}

void DSIMessageSource::NotifySettingChanged(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    if (!StringConverter::EqualsIgnoreCase(in_name, MESSAGES_PATH_SETTING))
    {
        return;
    }
    std::lock_guard<std::mutex> loadGuard(m_loadLock);
    std::lock_guard<std::mutex> guard(m_lock);
    const tarni_wstring path = in_value.empty() ? GetDefaultMessagesPath() : WithoutTrailingSeparators(tarni_wstring(in_value));
    if (m_messagesPath && *m_messagesPath == path)
    {
        return;
    }
    m_messagesPath = path;
    m_cache.Clear();
}

void DSIMessageSource::ResolvePathLocked()
{
    if (m_messagesPath)
    {
        return;
    }
    std::optional<tarni_wstring> configured;
    try
    {
        configured = TarniSettingReader::Read(MESSAGES_PATH_SETTING);
    }
    catch (const std::exception& error)
    {
        // The store may be the very thing that failed: its error must still be shown.
        if (m_logger != nullptr)
        {
            m_logger->LogWarning(LOG_NAMESPACE, LOG_CLASS, "GetMessagesPath",
                                 "Cannot read ERRORMESSAGESPATH (%s); using the folder beside the program",
                                 error.what());
        }
    }
    m_messagesPath = configured && !configured->empty() ? WithoutTrailingSeparators(*configured)
                                                        : GetDefaultMessagesPath();
}

tarni_wstring DSIMessageSource::GetMessagesPath()
{
    std::lock_guard<std::mutex> guard(m_lock);
    ResolvePathLocked();
    return *m_messagesPath;
}

std::vector<tarni_wstring> DSIMessageSource::GetCandidatePaths(int in_componentId, const tarni_wstring& in_locale)
{
    std::lock_guard<std::mutex> guard(m_lock);
    ResolvePathLocked();
    const auto component = m_components.find(in_componentId);
    if (component == m_components.end())
    {
        return {};
    }
    const char16_t separator = Platform::ProcessEnvironment::PathSeparator();
    const tarni_wstring file = component->second.fileName + u".xml";
    return {*m_messagesPath + separator + in_locale + separator + file, *m_messagesPath + separator + file};
}

tarni_wstring DSIMessageSource::GetTags(int in_componentId) const
{
    std::lock_guard<std::mutex> guard(m_lock);
    const auto component = m_components.find(in_componentId);
    const tarni_wstring tag = component != m_components.end()
                                  ? component->second.tag
                                  : u"Component " + StringConverter::FromNumber(static_cast<long long>(in_componentId));
    return m_vendorTag + u"][" + tag;
}

tarni_wstring DSIMessageSource::GetNotFoundText(int in_componentId, tarni_wstring_view in_key) const
{
    return u"[" + GetTags(in_componentId) + u"]: Error message not found: " + tarni_wstring(in_key);
}

DSIMessage DSIMessageSource::GetErrorMessage(const tarni_wstring& in_locale, tarni_wstring_view in_key,
                                             const std::vector<tarni_wstring>& in_parameters, int in_componentId)
{
    std::optional<DSIMessageEntry> entry = m_cache.GetErrorMessage(in_componentId, in_key, in_locale);
    if (!entry)
    {
        const std::vector<tarni_wstring> candidates = GetCandidatePaths(in_componentId, in_locale);
        std::lock_guard<std::mutex> loadGuard(m_loadLock);
        entry = m_reader.GetErrorMessage(m_cache, in_componentId, in_locale, in_key, candidates);
        if (!entry)
        {
            DSIMessage missing;
            if (m_cache.GetFileState(in_componentId, in_locale) == DSIMessageCache::FileState::Loaded)
            {
                missing.text = u"[" + GetTags(in_componentId) + u"] The error message " + tarni_wstring(in_key) +
                               u" could not be found in the " + in_locale + u" locale. Check that ";
                for (size_t i = 0; i < candidates.size(); ++i)
                {
                    missing.text += (i != 0 ? u" or " : u"") + candidates[i];
                }
                missing.text += u" exist.";
            }
            else
            {
                missing.text = GetNotFoundText(in_componentId, in_key);
            }
            return missing;
        }
    }
    DSIMessage message;
    message.text = GetParameterizedMessage(entry->text, in_parameters, in_key);
    message.nativeErrorCode = entry->nativeErrorCode;
    message.found = true;
    return message;
}
}  // namespace Tarni::Support
