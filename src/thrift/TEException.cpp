#include "thrift/TEException.h"

#include "support/StringConverter.h"

namespace Tarni::ThriftExtension
{
using Support::StringConverter;

TEException TEException::WithText(tarni_wstring in_messageKey, const std::string& in_text)
{
    return TEException(std::move(in_messageKey), {ToParameter(in_text)});
}

TEException TEException::WithTexts(tarni_wstring in_messageKey, const std::vector<std::string>& in_texts)
{
    std::vector<tarni_wstring> parameters;
    parameters.reserve(in_texts.size());
    for (const std::string& text : in_texts)
    {
        parameters.push_back(ToParameter(text));
    }
    return TEException(std::move(in_messageKey), std::move(parameters));
}

tarni_wstring TEException::ToParameter(const std::string& in_text)
{
    if (StringConverter::IsValidUtf8(in_text))
    {
        return StringConverter::FromUtf8(in_text);
    }
    // The text quotes a value that is not UTF-8: keep its ASCII and mark the
    // rest, so the error still says what was wrong.
    std::string printable;
    printable.reserve(in_text.size());
    for (const char c : in_text)
    {
        printable += static_cast<unsigned char>(c) < 0x80 ? c : '?';
    }
    return StringConverter::FromAscii(printable);
}
}  // namespace Tarni::ThriftExtension
