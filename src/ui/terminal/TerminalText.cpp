#include "ui/terminal/TerminalText.h"

#include <cwchar>
#include <cwctype>

#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
constexpr wchar_t ELLIPSIS = L'\u2026';
}

std::wstring TerminalText::ToWide(tarni_wstring_view in_text)
{
    std::wstring out;
    out.reserve(in_text.size());
    for (std::size_t i = 0; i < in_text.size(); ++i)
    {
        const char32_t unit = in_text[i];
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < in_text.size() && in_text[i + 1] >= 0xDC00 &&
            in_text[i + 1] <= 0xDFFF)
        {
            const char32_t low = in_text[++i];
            out.push_back(static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
        }
        else if (unit >= 0xD800 && unit <= 0xDFFF)
        {
            out.push_back(static_cast<wchar_t>(0xFFFD));  // a lone surrogate
        }
        else
        {
            out.push_back(static_cast<wchar_t>(unit));
        }
    }
    return out;
}

tarni_wstring TerminalText::FromWide(std::wstring_view in_text)
{
    tarni_wstring out;
    out.reserve(in_text.size());
    for (const wchar_t c : in_text)
    {
        const auto code = static_cast<char32_t>(c);
        if (code >= 0x10000 && code <= 0x10FFFF)
        {
            out.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        }
        else if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        {
            out.push_back(u'\uFFFD');
        }
        else
        {
            out.push_back(static_cast<char16_t>(code));
        }
    }
    return out;
}

std::string TerminalText::ToUtf8(std::wstring_view in_text)
{
    return Support::StringConverter::ToUtf8(FromWide(in_text));
}

std::wstring TerminalText::FromUtf8(std::string_view in_text)
{
    return ToWide(Support::StringConverter::FromUtf8(in_text));
}

wchar_t TerminalText::FoldMnemonic(wchar_t in_char)
{
    return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(in_char)));
}

MnemonicText TerminalText::ParseMnemonic(std::wstring_view in_text)
{
    MnemonicText out;
    for (std::size_t i = 0; i < in_text.size(); ++i)
    {
        if (in_text[i] == L'&' && i + 1 < in_text.size())
        {
            ++i;
            if (in_text[i] != L'&' && out.mnemonicIndex < 0)
            {
                out.mnemonicIndex = static_cast<int>(out.text.size());
                out.mnemonic = FoldMnemonic(in_text[i]);
            }
        }
        out.text.push_back(in_text[i]);
    }
    return out;
}

int TerminalText::Width(wchar_t in_char)
{
    const int width = ::wcwidth(in_char);
    return width < 0 ? 1 : width;
}

int TerminalText::Width(std::wstring_view in_text)
{
    int width = 0;
    for (const wchar_t c : in_text)
    {
        width += Width(c);
    }
    return width;
}

std::wstring TerminalText::Fit(std::wstring_view in_text, int in_columns)
{
    if (in_columns <= 0)
    {
        return {};
    }
    if (Width(in_text) <= in_columns)
    {
        return std::wstring(in_text);
    }
    std::wstring out;
    int width = 0;
    for (const wchar_t c : in_text)
    {
        const int w = Width(c);
        if (width + w > in_columns - 1)
        {
            break;
        }
        out.push_back(c);
        width += w;
    }
    out.push_back(ELLIPSIS);
    return out;
}

std::wstring TerminalText::FitLabel(std::wstring_view in_text, int in_columns)
{
    if (Width(in_text) <= in_columns)
    {
        return std::wstring(in_text);
    }
    std::wstring text(in_text);
    if (text.size() >= 3 && text.compare(text.size() - 3, 3, L"...") == 0)
    {
        text.replace(text.size() - 3, 3, 1, ELLIPSIS);
    }
    return Fit(text, in_columns);
}

std::vector<std::wstring> TerminalText::Wrap(std::wstring_view in_text, int in_columns)
{
    std::vector<std::wstring> lines;
    if (in_columns <= 0)
    {
        return lines;
    }
    std::wstring line;
    int lineWidth = 0;
    std::size_t i = 0;
    auto flush = [&]() {
        while (!line.empty() && line.back() == L' ')
        {
            line.pop_back();
        }
        lines.push_back(std::move(line));
        line.clear();
        lineWidth = 0;
    };
    while (i < in_text.size())
    {
        const wchar_t c = in_text[i];
        if (c == L'\r' || c == L'\n')
        {
            flush();
            i += (c == L'\r' && i + 1 < in_text.size() && in_text[i + 1] == L'\n') ? 2 : 1;
            continue;
        }
        if (c == L' ')
        {
            if (lineWidth + 1 > in_columns)
            {
                flush();
            }
            else if (lineWidth > 0)
            {
                line.push_back(c);
                ++lineWidth;
            }
            ++i;
            continue;
        }
        // A word: up to the next blank or line break.
        std::size_t end = i;
        while (end < in_text.size() && in_text[end] != L' ' && in_text[end] != L'\r' && in_text[end] != L'\n')
        {
            ++end;
        }
        const std::wstring_view word = in_text.substr(i, end - i);
        const int wordWidth = Width(word);
        if (lineWidth > 0 && lineWidth + wordWidth > in_columns)
        {
            flush();
        }
        for (const wchar_t w : word)
        {
            const int cw = Width(w);
            if (lineWidth + cw > in_columns && lineWidth > 0)
            {
                flush();
            }
            line.push_back(w);
            lineWidth += cw;
        }
        i = end;
    }
    if (!line.empty() || lines.empty())
    {
        flush();
    }
    return lines;
}
}  // namespace Tarni::Platform
