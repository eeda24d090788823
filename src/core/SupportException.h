#pragma once
#include "core/ErrorException.h"

namespace Tarni::Support
{
/// An error raised by the support layer (component SUPPORT_ERROR).
class SupportException : public ErrorException
{
public:
    explicit SupportException(tarni_wstring in_messageKey, std::vector<tarni_wstring> in_parameters = {})
        : ErrorException(DiagState::GeneralError, SUPPORT_ERROR, std::move(in_messageKey),
                         std::move(in_parameters))
    {
    }
};
}  // namespace Tarni::Support
