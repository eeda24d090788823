#pragma once
// A single-line edit control of the terminal host, edited through the curses
// form library. The form does the editing and scrolls the text in its field;
// the field lives in an off-screen pad whose cells the dialog copies into
// its own window, so the dialog draws, clips and scrolls every control the
// same way. The form's buffer pads a field with blanks, which would hide
// blanks the user typed at the end; the field therefore keeps the text
// itself, changed by the same operations the form accepted, and the form's
// answer decides whether an operation happened at all (digits-only fields
// refuse other characters through the form's character check).
#include <curses.h>
#include <form.h>

#include <string>

#include "ui/terminal/TerminalKey.h"

namespace Tarni::Platform
{
class TerminalEditField
{
public:
    enum class Outcome
    {
        NotHandled,  ///< not an editing key
        Moved,       ///< the caret moved, the text is unchanged
        Changed,     ///< the text changed
        Refused,     ///< an editing key the field does not take (read-only, not a digit ...)
    };

    TerminalEditField(int in_width, bool in_password, bool in_digitsOnly, bool in_readOnly);
    ~TerminalEditField();
    TerminalEditField(const TerminalEditField&) = delete;
    TerminalEditField& operator=(const TerminalEditField&) = delete;

    /// Rebuilds the field for a new width, keeping text and caret.
    void SetWidth(int in_width);
    int GetWidth() const { return m_width; }

    /// Replaces the text; the caret goes to its end.
    void SetText(std::wstring_view in_text);
    const std::wstring& GetText() const { return m_text; }
    int GetCaret() const { return m_caret; }
    void SetCaret(int in_caret);

    Outcome HandleKey(const TerminalKey& in_key);

    /// Copies the visible part into in_target at (in_row, in_col) with the
    /// attributes; returns the caret's column relative to in_col.
    int Draw(WINDOW* in_target, int in_row, int in_col, attr_t in_attributes) const;

private:
    void Build();
    void Destroy();
    /// Loads the text into the form and moves the form's caret to m_caret.
    void Load();
    int Request(int in_request);

    int m_width;
    bool m_password;
    bool m_digitsOnly;
    bool m_readOnly;
    std::wstring m_text;
    int m_caret = 0;
    WINDOW* m_pad = nullptr;
    FIELD* m_fields[2] = {nullptr, nullptr};
    FORM* m_form = nullptr;
};
}  // namespace Tarni::Platform
