#include "ui/terminal/TerminalMessageBox.h"

#include <algorithm>

#include "ui/DialogConstants.h"
#include "ui/terminal/TerminalDialogHost.h"
#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
namespace
{
constexpr int ID_TRYAGAIN = 10;
constexpr int ID_CONTINUE = 11;
constexpr std::uint32_t TYPE_CANCELTRYCONTINUE = 6;
constexpr int MAX_TEXT_COLS = 60;
}  // namespace

std::vector<TerminalMessageBox::Button> TerminalMessageBox::ButtonsOf(std::uint32_t in_flags, int& out_defaultIndex)
{
    std::vector<Button> buttons;
    switch (in_flags & MB_TYPEMASK)
    {
        case MB_OKCANCEL: buttons = {{IDOK, L"OK"}, {IDCANCEL, L"Cancel"}}; break;
        case MB_ABORTRETRYIGNORE: buttons = {{IDABORT, L"Abort"}, {IDRETRY, L"Retry"}, {IDIGNORE, L"Ignore"}}; break;
        case MB_YESNOCANCEL: buttons = {{IDYES, L"Yes"}, {IDNO, L"No"}, {IDCANCEL, L"Cancel"}}; break;
        case MB_YESNO: buttons = {{IDYES, L"Yes"}, {IDNO, L"No"}}; break;
        case MB_RETRYCANCEL: buttons = {{IDRETRY, L"Retry"}, {IDCANCEL, L"Cancel"}}; break;
        case TYPE_CANCELTRYCONTINUE:
            buttons = {{IDCANCEL, L"Cancel"}, {ID_TRYAGAIN, L"Try Again"}, {ID_CONTINUE, L"Continue"}};
            break;
        default: buttons = {{IDOK, L"OK"}}; break;
    }
    const int wanted = static_cast<int>((in_flags & MB_DEFMASK) >> 8);
    out_defaultIndex = wanted < static_cast<int>(buttons.size()) ? wanted : 0;
    return buttons;
}

int TerminalMessageBox::EscapeAnswer(const std::vector<Button>& in_buttons)
{
    for (const auto& button : in_buttons)
    {
        if (button.id == static_cast<int>(IDCANCEL))
        {
            return button.id;
        }
    }
    return in_buttons.size() == 1 && in_buttons.front().id == static_cast<int>(IDOK) ? in_buttons.front().id : 0;
}

int TerminalMessageBox::Run(TerminalDialogHost& io_host, const std::wstring& in_text, const std::wstring& in_caption,
                            std::uint32_t in_flags)
{
    int focus = 0;
    const std::vector<Button> buttons = ButtonsOf(in_flags, focus);
    const int escape = EscapeAnswer(buttons);
    const std::wstring status = L"Left/Right: move  Enter: press  Esc: close";
    int answer = 0;
    WINDOW* window = nullptr;
    while (answer == 0)
    {
        // Sized for the screen as it is now, so a resize simply draws it again.
        const int screenRows = io_host.GetDialogRows();
        const int screenCols = io_host.GetScreenCols();
        int buttonsWidth = 0;
        for (const auto& button : buttons)
        {
            buttonsWidth += TerminalText::Width(button.label) + 6;
        }
        const int textCols = std::clamp(std::max({TerminalText::Width(in_text), TerminalText::Width(in_caption) + 4,
                                                  buttonsWidth}),
                                        1, std::min(MAX_TEXT_COLS, std::max(screenCols - 4, 1)));
        auto lines = TerminalText::Wrap(in_text, textCols);
        const int maxLines = std::max(screenRows - 6, 1);
        if (static_cast<int>(lines.size()) > maxLines)
        {
            lines.resize(static_cast<std::size_t>(maxLines));
        }
        const int height = std::min(static_cast<int>(lines.size()) + 5, std::max(screenRows, 3));
        const int width = std::min(textCols + 4, std::max(screenCols, 3));
        if (window != nullptr)
        {
            ::delwin(window);
        }
        window = ::newwin(height, width, std::max((screenRows - height) / 2, 0), std::max((screenCols - width) / 2, 0));
        if (window == nullptr)
        {
            return buttons[static_cast<std::size_t>(focus)].id;
        }
        ::keypad(window, TRUE);

        io_host.PaintAll(&status, false);
        ::werase(window);
        ::box(window, 0, 0);
        const std::wstring caption = L" " + TerminalText::Fit(in_caption, std::max(width - 6, 1)) + L" ";
        ::wattr_set(window, A_BOLD, 0, nullptr);
        ::mvwaddnwstr(window, 0, std::max((width - TerminalText::Width(caption)) / 2, 1), caption.c_str(),
                      static_cast<int>(caption.size()));
        ::wattr_set(window, A_NORMAL, 0, nullptr);
        for (std::size_t i = 0; i < lines.size(); ++i)
        {
            ::mvwaddnwstr(window, static_cast<int>(i) + 1 + 1, 2, lines[i].c_str(), static_cast<int>(lines[i].size()));
        }
        int x = std::max((width - buttonsWidth) / 2, 1);
        for (std::size_t i = 0; i < buttons.size(); ++i)
        {
            const std::wstring shown = L"< " + buttons[i].label + L" >";
            ::wattr_set(window, static_cast<int>(i) == focus ? (A_REVERSE | A_BOLD) : A_NORMAL, 0, nullptr);
            ::mvwaddnwstr(window, height - 2, x + 1, shown.c_str(), static_cast<int>(shown.size()));
            x += TerminalText::Width(shown) + 2;
        }
        ::wattr_set(window, A_NORMAL, 0, nullptr);
        ::touchwin(window);
        ::wnoutrefresh(window);
        ::curs_set(0);
        ::doupdate();

        const TerminalKey key = io_host.ReadKey(window);
        const int count = static_cast<int>(buttons.size());
        if (key.kind == TerminalKey::Kind::Escape)
        {
            answer = escape;
        }
        else if (key.IsEnter() || key.IsChar(L' '))
        {
            answer = buttons[static_cast<std::size_t>(focus)].id;
        }
        else if (key.IsTab() || key.IsFunction(KEY_RIGHT) || key.IsFunction(KEY_DOWN))
        {
            focus = (focus + 1) % count;
        }
        else if (key.IsBackTab() || key.IsFunction(KEY_LEFT) || key.IsFunction(KEY_UP))
        {
            focus = (focus + count - 1) % count;
        }
        else if (key.kind == TerminalKey::Kind::Char || key.kind == TerminalKey::Kind::Alt)
        {
            const wchar_t letter = TerminalText::FoldMnemonic(static_cast<wchar_t>(key.code));
            for (const auto& button : buttons)
            {
                if (TerminalText::FoldMnemonic(button.label.front()) == letter)
                {
                    answer = button.id;
                    break;
                }
            }
        }
    }
    ::delwin(window);
    return answer;
}
}  // namespace Tarni::Platform
