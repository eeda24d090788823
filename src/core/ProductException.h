#pragma once
// An error of the product layer, built from a localisable diagnostic (for
// example "GetFileErr" with the path and the system's message).
#include "core/ErrorException.h"
#include "core/LocalizableDiagnostic.h"

namespace Tarni::Support
{
class ProductException : public ErrorException
{
public:
    explicit ProductException(const LocalizableDiagnostic& in_diagnostic)
        : ErrorException(DiagState::GeneralError, in_diagnostic.componentId, in_diagnostic.messageKey,
                         in_diagnostic.parameters)
    {
    }
};
}  // namespace Tarni::Support
