#pragma once
// A diagnostic that reaches the user: a message key with its parameters (the
// localisable string) and the component whose message file holds the key.
// The text is made from the message catalogue only when it is shown.
#include <utility>
#include <vector>

#include "core/ComponentId.h"
#include "core/TarniString.h"

namespace Tarni::Support
{
struct LocalizableDiagnostic
{
    int componentId;
    tarni_wstring messageKey;
    std::vector<tarni_wstring> parameters;

    LocalizableDiagnostic(int in_componentId, tarni_wstring in_messageKey,
                          std::vector<tarni_wstring> in_parameters = {})
        : componentId(in_componentId), messageKey(std::move(in_messageKey)), parameters(std::move(in_parameters))
    {
    }
};
}  // namespace Tarni::Support
