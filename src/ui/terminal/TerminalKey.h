#pragma once
// One key press as the terminal host reads it.
#include <curses.h>

#include <cwchar>

namespace Tarni::Platform
{
struct TerminalKey
{
    enum class Kind
    {
        None,      ///< nothing (a timeout)
        Char,      ///< a character, code is the wide character
        Function,  ///< a curses key code (KEY_UP, KEY_BTAB, KEY_ENTER ...)
        Alt,       ///< Alt (Meta) with a character: Escape followed by it
        Escape,    ///< Escape on its own
        Resize,    ///< the terminal changed its size
    };

    Kind kind = Kind::None;
    wint_t code = 0;

    bool IsChar(wint_t in_code) const { return kind == Kind::Char && code == in_code; }
    bool IsFunction(wint_t in_code) const { return kind == Kind::Function && code == in_code; }
    /// Enter, whichever way the terminal sends it.
    bool IsEnter() const { return IsChar(L'\r') || IsChar(L'\n') || IsFunction(KEY_ENTER); }
    bool IsTab() const { return IsChar(L'\t'); }
    bool IsBackTab() const { return IsFunction(KEY_BTAB); }
};
}  // namespace Tarni::Platform
