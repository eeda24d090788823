#pragma once
// The general error of the program. It carries a diagnostic (state, owning
// component, message key, parameters) and never finished text: the text is
// produced from the message catalogue only when the error is shown or logged.
#include <exception>
#include <string>
#include <vector>

#include "core/ComponentId.h"
#include "core/DiagState.h"
#include "core/TarniString.h"

namespace Tarni::Support
{
class ErrorException : public std::exception
{
public:
    ErrorException(DiagState in_state, int in_componentId, tarni_wstring in_messageKey,
                   std::vector<tarni_wstring> in_parameters = {}, long long in_nativeErrorCode = -1);

    DiagState GetState() const { return m_state; }
    int GetComponentId() const { return m_componentId; }
    const tarni_wstring& GetMessageKey() const { return m_messageKey; }
    const std::vector<tarni_wstring>& GetParameters() const { return m_parameters; }
    long long GetNativeErrorCode() const { return m_nativeErrorCode; }

    /// Diagnostic form for logs and crash reports ("Key(param, param)"), not
    /// the user-facing text.
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    DiagState m_state;
    int m_componentId;
    tarni_wstring m_messageKey;
    std::vector<tarni_wstring> m_parameters;
    long long m_nativeErrorCode;
    std::string m_what;
};
}  // namespace Tarni::Support
