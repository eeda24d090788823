#pragma once
// Text helpers of the terminal host: the program's UTF-16 text to and from
// the wide characters of the curses library, display widths, the "&"
// mnemonics of the resource script, shortening and word wrapping.
#include <string>
#include <string_view>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
/// A control text with its "&" mnemonic resolved: "Log &Level:" is shown as
/// "Log Level:" with the L marked; "&&" stands for one "&".
struct MnemonicText
{
    std::wstring text;
    int mnemonicIndex = -1;  ///< index into text, -1 when there is none
    wchar_t mnemonic = 0;    ///< lower case

    bool HasMnemonic() const { return mnemonicIndex >= 0; }
};

class TerminalText
{
public:
    static std::wstring ToWide(tarni_wstring_view in_text);
    static tarni_wstring FromWide(std::wstring_view in_text);
    /// UTF-8, the encoding the host runs the terminal in.
    static std::string ToUtf8(std::wstring_view in_text);
    static std::wstring FromUtf8(std::string_view in_text);

    static MnemonicText ParseMnemonic(std::wstring_view in_text);
    /// The lower case of a letter or digit (mnemonics ignore case).
    static wchar_t FoldMnemonic(wchar_t in_char);

    /// Columns the text takes on the terminal (wide characters take two,
    /// control characters are shown as one).
    static int Width(std::wstring_view in_text);
    static int Width(wchar_t in_char);

    /// The text cut to at most in_columns columns; a cut text ends in "…".
    static std::wstring Fit(std::wstring_view in_text, int in_columns);
    /// A button or menu label: a trailing "..." becomes "…", then the label is
    /// cut with Fit; never wider than in_columns.
    static std::wstring FitLabel(std::wstring_view in_text, int in_columns);

    /// Word-wrapped lines of at most in_columns columns; "\r\n", "\n" and
    /// "\r" break lines, words longer than a line are split.
    static std::vector<std::wstring> Wrap(std::wstring_view in_text, int in_columns);
};
}  // namespace Tarni::Platform
