#include "platform/TextConversion.h"

#include <windows.h>

namespace Tarni::Platform
{
std::string TextConversion::Utf16ToUtf8(tarni_wstring_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    const auto* src = reinterpret_cast<const wchar_t*>(in_text.data());
    const int srcLength = static_cast<int>(in_text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, src, srcLength, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(length > 0 ? length : 0), '\0');
    if (length > 0)
    {
        WideCharToMultiByte(CP_UTF8, 0, src, srcLength, out.data(), length, nullptr, nullptr);
    }
    return out;
}

tarni_wstring TextConversion::Utf8ToUtf16(std::string_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    const int srcLength = static_cast<int>(in_text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, in_text.data(), srcLength, nullptr, 0);
    tarni_wstring out(static_cast<size_t>(length > 0 ? length : 0), u'\0');
    if (length > 0)
    {
        MultiByteToWideChar(CP_UTF8, 0, in_text.data(), srcLength, reinterpret_cast<wchar_t*>(out.data()),
                            length);
    }
    return out;
}

tarni_wstring TextConversion::AnsiToUtf16(std::string_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    const int srcLength = static_cast<int>(in_text.size());
    const int length = MultiByteToWideChar(CP_ACP, 0, in_text.data(), srcLength, nullptr, 0);
    tarni_wstring out(static_cast<size_t>(length > 0 ? length : 0), u'\0');
    if (length > 0)
    {
        MultiByteToWideChar(CP_ACP, 0, in_text.data(), srcLength, reinterpret_cast<wchar_t*>(out.data()), length);
    }
    return out;
}

std::string TextConversion::Utf16ToAnsi(tarni_wstring_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    const auto* src = reinterpret_cast<const wchar_t*>(in_text.data());
    const int srcLength = static_cast<int>(in_text.size());
    const int length = WideCharToMultiByte(CP_ACP, 0, src, srcLength, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(length > 0 ? length : 0), '\0');
    if (length > 0)
    {
        WideCharToMultiByte(CP_ACP, 0, src, srcLength, out.data(), length, nullptr, nullptr);
    }
    return out;
}

char16_t TextConversion::FoldCase(char16_t in_unit)
{
    wchar_t unit = static_cast<wchar_t>(in_unit);
    wchar_t lower = unit;
    if (LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, &unit, 1, &lower, 1, nullptr, nullptr, 0) != 1)
    {
        return in_unit;
    }
    return static_cast<char16_t>(lower);
}
}  // namespace Tarni::Platform
