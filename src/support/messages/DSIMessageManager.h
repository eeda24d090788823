#pragma once
// Turns diagnostics into text. Asks its message source for the text of a
// key; whatever goes wrong on the way is logged and answered with a fallback
// text, so showing an error never raises another one.
#include <atomic>
#include <memory>

#include "core/ErrorException.h"
#include "core/ILogger.h"
#include "support/messages/DSIMessageSource.h"

namespace Tarni::Support
{
class DSIMessageManager
{
public:
    static constexpr const char16_t* DEFAULT_LOCALE = u"en-US";

    explicit DSIMessageManager(std::shared_ptr<DSIMessageSource> in_source, ILogger* in_logger = nullptr);

    /// The text of the key in the locale with the parameters filled in, and
    /// its native error code. Never throws: a failure is logged as
    /// "Exception caught - ..." and gives "[<tags>]: Error message not found: <key>".
    DSIMessage GetErrorMessage(const tarni_wstring& in_locale, tarni_wstring_view in_messageKey,
                               const std::vector<tarni_wstring>& in_messageParameters,
                               int in_sourceComponentId) noexcept;

    /// The text of an exception's diagnostic; finished text (DSIException's
    /// second form) is taken as it is.
    DSIMessage GetErrorMessage(const ErrorException& in_error,
                               const tarni_wstring& in_locale = DEFAULT_LOCALE) noexcept;

    /// Where failures are logged; also the logger of the source.
    void SetLogger(ILogger* in_logger);

    DSIMessageSource& GetSource() { return *m_source; }

    /// The process-wide catalogue that the loggers and the programs use.
    static DSIMessageManager& GetDefault();

    /// The text to show for an error (default catalogue, locale "en-US").
    static tarni_wstring GetDisplayText(const ErrorException& in_error);
    static std::string GetDisplayTextUtf8(const ErrorException& in_error);

private:
    std::shared_ptr<DSIMessageSource> m_source;
    std::atomic<ILogger*> m_logger;
};
}  // namespace Tarni::Support
