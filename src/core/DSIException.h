#pragma once
#include "core/ErrorException.h"

namespace Tarni::DSI
{
/// An error raised by the data-store interface layer (component DSI_ERROR).
/// The second form carries finished text for failures that happen before the
/// message catalogue can be used (it has the key DSI_INVALID_ERRORCODE).
class DSIException : public Support::ErrorException
{
public:
    static constexpr const char16_t* DSI_INVALID_ERRORCODE = u"DSI_INVALID_ERRORCODE";

    explicit DSIException(tarni_wstring in_messageKey, std::vector<tarni_wstring> in_parameters = {})
        : ErrorException(Support::DiagState::GeneralError, Support::DSI_ERROR,
                         std::move(in_messageKey), std::move(in_parameters))
    {
    }

    /// Finished text; the text travels as the only parameter.
    static DSIException WithText(tarni_wstring in_text)
    {
        return DSIException(DSI_INVALID_ERRORCODE, {std::move(in_text)});
    }

    bool HasFinishedText() const { return GetMessageKey() == DSI_INVALID_ERRORCODE; }
};
}  // namespace Tarni::DSI
