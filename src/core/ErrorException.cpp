#include "core/ErrorException.h"


namespace Tarni::Support
{
namespace
{
// what() is for diagnostics only (shown text comes from the message
// catalogue), so the core layer encodes it itself; a lone surrogate becomes
// U+FFFD, as in the platform's conversion.
void AppendUtf8(std::string& io_out, tarni_wstring_view in_text)
{
    for (size_t i = 0; i < in_text.size(); ++i)
    {
        unsigned long code = in_text[i];
        if (code >= 0xD800 && code <= 0xDBFF && i + 1 < in_text.size() && in_text[i + 1] >= 0xDC00 &&
            in_text[i + 1] <= 0xDFFF)
        {
            code = 0x10000 + ((code - 0xD800) << 10) + (in_text[i + 1] - 0xDC00);
            ++i;
        }
        else if (code >= 0xD800 && code <= 0xDFFF)
        {
            code = 0xFFFD;
        }
        if (code < 0x80)
        {
            io_out += static_cast<char>(code);
        }
        else if (code < 0x800)
        {
            io_out += static_cast<char>(0xC0 | (code >> 6));
            io_out += static_cast<char>(0x80 | (code & 0x3F));
        }
        else if (code < 0x10000)
        {
            io_out += static_cast<char>(0xE0 | (code >> 12));
            io_out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            io_out += static_cast<char>(0x80 | (code & 0x3F));
        }
        else
        {
            io_out += static_cast<char>(0xF0 | (code >> 18));
            io_out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            io_out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            io_out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
}
}  // namespace

ErrorException::ErrorException(DiagState in_state, int in_componentId, tarni_wstring in_messageKey,
                               std::vector<tarni_wstring> in_parameters,
                               long long in_nativeErrorCode)
    : m_state(in_state),
      m_componentId(in_componentId),
      m_messageKey(std::move(in_messageKey)),
      m_parameters(std::move(in_parameters)),
      m_nativeErrorCode(in_nativeErrorCode)
{
    AppendUtf8(m_what, m_messageKey);
    if (!m_parameters.empty())
    {
        m_what += "(";
        for (size_t i = 0; i < m_parameters.size(); ++i)
        {
            m_what += i ? ", " : "";
            AppendUtf8(m_what, m_parameters[i]);
        }
        m_what += ")";
    }
}
}  // namespace Tarni::Support
