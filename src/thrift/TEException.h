#pragma once
#include "core/ErrorException.h"

namespace Tarni::ThriftExtension
{
/// An error of the Thrift connection layer (component TE_ERROR, general-error
/// state). Most of its messages are assembled where the error is found and
/// travel as the one parameter of the key (whose text is "%1%").
class TEException : public Support::ErrorException
{
public:
    explicit TEException(tarni_wstring in_messageKey, std::vector<tarni_wstring> in_parameters = {})
        : ErrorException(Support::DiagState::GeneralError, Support::TE_ERROR, std::move(in_messageKey),
                         std::move(in_parameters))
    {
    }

    /// The key with one assembled UTF-8 text as its parameter.
    static TEException WithText(tarni_wstring in_messageKey, const std::string& in_text);

    /// The key with UTF-8 texts as its parameters (see ToParameter).
    static TEException WithTexts(tarni_wstring in_messageKey, const std::vector<std::string>& in_texts);

    /// A UTF-8 text as a parameter; bytes that are not UTF-8 become "?".
    static tarni_wstring ToParameter(const std::string& in_text);
};
}  // namespace Tarni::ThriftExtension
