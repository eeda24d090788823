#pragma once
// Finds message texts: owns the message cache and the folder of the message
// files (the driver setting ERRORMESSAGESPATH, else the "messages" folder
// beside the program), knows each component's file name and tag, and fills
// the parameters into the text found.
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "core/ILogger.h"
#include "support/messages/DSIMessageCache.h"
#include "support/messages/DSIXmlMessageReader.h"

namespace Tarni::Support
{
/// A message text with its parameters filled in, and its native error code.
struct DSIMessage
{
    tarni_wstring text;
    long long nativeErrorCode = -1;
    /// False when the text is the could-not-be-found or not-found text.
    bool found = false;
};

class DSIMessageSource
{
public:
    static constexpr const char16_t* MESSAGES_PATH_SETTING = u"ERRORMESSAGESPATH";
    /// The folder beside the program that holds the locale folders by default.
    static constexpr const char16_t* DEFAULT_MESSAGES_FOLDER = u"messages";

    /// Registers the program's own components. The folder is read through
    /// TarniSettingReader on first use.
    explicit DSIMessageSource(ILogger* in_logger = nullptr);

    void SetLogger(ILogger* in_logger);

    /// A component: its message file name (without ".xml") and its tag in the
    /// bracketed prefix of generated texts.
    void RegisterComponent(int in_componentId, tarni_wstring in_fileName, tarni_wstring in_tag);
    void SetVendorTag(tarni_wstring in_vendorTag);

    /// A driver setting changed. A new ERRORMESSAGESPATH value (different from
    /// the current one) moves the source to that folder and empties the cache.
    void NotifySettingChanged(tarni_wstring_view in_name, tarni_wstring_view in_value);

    /// The folder of the message files.
    tarni_wstring GetMessagesPath();

    /// Where the component's file for the locale may be, in the order tried:
    /// <folder>/<locale>/<File>.xml, then <folder>/<File>.xml.
    std::vector<tarni_wstring> GetCandidatePaths(int in_componentId, const tarni_wstring& in_locale);

    /// "<vendor>][<component>", to be put between brackets.
    tarni_wstring GetTags(int in_componentId) const;

    /// The text of the key with the parameters filled in. A key that is not
    /// there gives the could-not-be-found text (or the not-found text when no
    /// file could be read). Throws for a file that cannot be parsed (the
    /// first time) and for parameters that do not fit the text.
    DSIMessage GetErrorMessage(const tarni_wstring& in_locale, tarni_wstring_view in_key,
                               const std::vector<tarni_wstring>& in_parameters, int in_componentId);

    /// "[<tags>]: Error message not found: <key>".
    tarni_wstring GetNotFoundText(int in_componentId, tarni_wstring_view in_key) const;

    static tarni_wstring GetDefaultMessagesPath();

private:
    struct Component
    {
        tarni_wstring fileName;
        tarni_wstring tag;
    };

    void ResolvePathLocked();

    mutable std::mutex m_lock;
    /// Serialises reading a file, so that two threads never parse it twice.
    std::mutex m_loadLock;
    ILogger* m_logger;
    DSIMessageCache m_cache;
    DSIXmlMessageReader m_reader;
    std::optional<tarni_wstring> m_messagesPath;
    tarni_wstring m_vendorTag = u"Tarni";
    std::map<int, Component> m_components;
};
}  // namespace Tarni::Support
