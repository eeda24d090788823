#pragma once
// A message box of the terminal host: a modal pop-up in the middle of the
// screen with the caption, the wrapped text and the buttons of the flags'
// type (MB_OK, MB_OKCANCEL, MB_ABORTRETRYIGNORE, MB_YESNOCANCEL, MB_YESNO,
// MB_RETRYCANCEL, MB_CANCELTRYCONTINUE), the MB_DEFBUTTONn button focused.
// Left/Right and Tab move between the buttons, Enter or Space presses the
// focused one, the first letter of a button presses it, and Escape answers
// IDCANCEL when the box has a Cancel button (IDOK when OK is its only
// button), as Windows does. The icon of the flags is left out.
#include <cstdint>
#include <string>
#include <vector>

namespace Tarni::Platform
{
class TerminalDialogHost;

class TerminalMessageBox
{
public:
    struct Button
    {
        int id;
        std::wstring label;
    };

    /// The buttons of the flags' type, and the index of the default one.
    static std::vector<Button> ButtonsOf(std::uint32_t in_flags, int& out_defaultIndex);
    /// The answer of Escape, or 0 when Escape does nothing.
    static int EscapeAnswer(const std::vector<Button>& in_buttons);

    static int Run(TerminalDialogHost& io_host, const std::wstring& in_text, const std::wstring& in_caption,
                   std::uint32_t in_flags);
};
}  // namespace Tarni::Platform
