#include "ui/terminal/TerminalEditField.h"

#include <algorithm>
#include <vector>

#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
namespace
{
bool IsDigit(int in_char, const void*) { return in_char >= '0' && in_char <= '9'; }
bool AnyField(FIELD*, const void*) { return true; }

// The field type of ES_NUMBER edits: only digits can be typed.
FIELDTYPE* DigitsType()
{
    static FIELDTYPE* type = ::new_fieldtype(AnyField, IsDigit);
    return type;
}

constexpr wint_t CTRL_A = 1;
constexpr wint_t CTRL_E = 5;
constexpr wint_t CTRL_H = 8;
constexpr wint_t CTRL_K = 11;
constexpr wint_t CTRL_U = 21;
constexpr wint_t DEL = 127;
}  // namespace

TerminalEditField::TerminalEditField(int in_width, bool in_password, bool in_digitsOnly, bool in_readOnly)
    : m_width(std::max(in_width, 1)), m_password(in_password), m_digitsOnly(in_digitsOnly), m_readOnly(in_readOnly)
{
    Build();
}

TerminalEditField::~TerminalEditField() { Destroy(); }

void TerminalEditField::Build()
{
    m_pad = ::newpad(1, m_width);
    m_fields[0] = ::new_field(1, m_width, 0, 0, 0, 0);
    m_fields[1] = nullptr;
    if (m_pad == nullptr || m_fields[0] == nullptr)
    {
        Destroy();
        return;
    }
    FIELD* field = m_fields[0];
    // A growing one-line field that scrolls sideways; typing at the start
    // inserts instead of clearing the field.
    ::field_opts_off(field, O_STATIC | O_AUTOSKIP | O_BLANK);
    ::set_max_field(field, 0);
    if (m_password)
    {
        ::field_opts_off(field, O_PUBLIC);
    }
    if (m_readOnly)
    {
        ::field_opts_off(field, O_EDIT);
    }
    if (m_digitsOnly)
    {
        ::set_field_type(field, DigitsType());
    }
    ::set_field_back(field, A_NORMAL);
    m_form = ::new_form(m_fields);
    if (m_form == nullptr)
    {
        Destroy();
        return;
    }
    ::set_form_win(m_form, m_pad);
    ::set_form_sub(m_form, m_pad);
    ::post_form(m_form);
    Load();
}

void TerminalEditField::Destroy()
{
    if (m_form != nullptr)
    {
        ::unpost_form(m_form);
        ::free_form(m_form);
        m_form = nullptr;
    }
    if (m_fields[0] != nullptr)
    {
        ::free_field(m_fields[0]);
        m_fields[0] = nullptr;
    }
    if (m_pad != nullptr)
    {
        ::delwin(m_pad);
        m_pad = nullptr;
    }
}

int TerminalEditField::Request(int in_request)
{
    return m_form != nullptr ? ::form_driver_w(m_form, KEY_CODE_YES, static_cast<wchar_t>(in_request)) : E_SYSTEM_ERROR;
}

void TerminalEditField::Load()
{
    if (m_form == nullptr)
    {
        return;
    }
    // The form shows control characters badly; the text keeps them.
    std::wstring shown = m_text;
    std::replace_if(shown.begin(), shown.end(), [](wchar_t c) { return c < 32 || c == DEL; }, L'?');
    ::set_field_buffer(m_fields[0], 0, TerminalText::ToUtf8(shown).c_str());
    Request(REQ_BEG_FIELD);
    for (int i = 0; i < m_caret; ++i)
    {
        Request(REQ_NEXT_CHAR);
    }
    ::pos_form_cursor(m_form);
}

void TerminalEditField::SetWidth(int in_width)
{
    in_width = std::max(in_width, 1);
    if (in_width == m_width && m_form != nullptr)
    {
        return;
    }
    Destroy();
    m_width = in_width;
    Build();
}

void TerminalEditField::SetText(std::wstring_view in_text)
{
    m_text = std::wstring(in_text);
    m_caret = static_cast<int>(m_text.size());
    Load();
}

void TerminalEditField::SetCaret(int in_caret)
{
    m_caret = std::clamp(in_caret, 0, static_cast<int>(m_text.size()));
    Load();
}

TerminalEditField::Outcome TerminalEditField::HandleKey(const TerminalKey& in_key)
{
    const auto length = static_cast<int>(m_text.size());
    const auto at = static_cast<std::size_t>(m_caret);
    if (in_key.kind == TerminalKey::Kind::Char && in_key.code >= 32 && in_key.code != DEL)
    {
        // The form's field type does not check wide characters: digits-only
        // is enforced here.
        const bool refusedDigit = m_digitsOnly && (in_key.code < '0' || in_key.code > '9');
        if (m_readOnly || m_form == nullptr || refusedDigit ||
            ::form_driver_w(m_form, OK, static_cast<wchar_t>(in_key.code)) != E_OK)
        {
            return Outcome::Refused;
        }
        m_text.insert(at, 1, static_cast<wchar_t>(in_key.code));
        ++m_caret;
        return Outcome::Changed;
    }
    if (in_key.IsFunction(KEY_BACKSPACE) || in_key.IsChar(DEL) || in_key.IsChar(CTRL_H))
    {
        if (m_readOnly || m_caret == 0 || Request(REQ_DEL_PREV) != E_OK)
        {
            return Outcome::Refused;
        }
        m_text.erase(at - 1, 1);
        --m_caret;
        return Outcome::Changed;
    }
    if (in_key.IsFunction(KEY_DC))
    {
        if (m_readOnly || m_caret == length || Request(REQ_DEL_CHAR) != E_OK)
        {
            return Outcome::Refused;
        }
        m_text.erase(at, 1);
        return Outcome::Changed;
    }
    if (in_key.IsChar(CTRL_U))
    {
        if (m_readOnly)
        {
            return Outcome::Refused;
        }
        if (m_text.empty())
        {
            return Outcome::Moved;
        }
        m_text.clear();
        m_caret = 0;
        Load();
        return Outcome::Changed;
    }
    if (in_key.IsChar(CTRL_K))
    {
        if (m_readOnly)
        {
            return Outcome::Refused;
        }
        if (m_caret == length)
        {
            return Outcome::Moved;
        }
        m_text.erase(at);
        Load();
        return Outcome::Changed;
    }
    if (in_key.IsFunction(KEY_LEFT))
    {
        if (m_caret > 0 && Request(REQ_PREV_CHAR) == E_OK)
        {
            --m_caret;
        }
        return Outcome::Moved;
    }
    if (in_key.IsFunction(KEY_RIGHT))
    {
        if (m_caret < length && Request(REQ_NEXT_CHAR) == E_OK)
        {
            ++m_caret;
        }
        return Outcome::Moved;
    }
    if (in_key.IsFunction(KEY_HOME) || in_key.IsChar(CTRL_A))
    {
        m_caret = 0;
        Request(REQ_BEG_FIELD);
        return Outcome::Moved;
    }
    if (in_key.IsFunction(KEY_END) || in_key.IsChar(CTRL_E))
    {
        m_caret = length;
        Load();
        return Outcome::Moved;
    }
    return Outcome::NotHandled;
}

int TerminalEditField::Draw(WINDOW* in_target, int in_row, int in_col, attr_t in_attributes) const
{
    int caret = 0;
    if (m_form != nullptr)
    {
        ::pos_form_cursor(m_form);
        caret = std::clamp(getcurx(m_pad), 0, m_width - 1);
    }
    if (m_password || m_pad == nullptr)
    {
        // Never the characters of a password: one star for each, from the
        // first one the field shows.
        const int first = std::max(m_caret - caret, 0);
        const int stars = std::clamp(static_cast<int>(m_text.size()) - first, 0, m_width);
        ::wattr_set(in_target, in_attributes, 0, nullptr);
        ::wmove(in_target, in_row, in_col);
        for (int i = 0; i < m_width; ++i)
        {
            ::waddch(in_target, i < stars && m_pad != nullptr ? '*' : ' ');
        }
        ::wattr_set(in_target, A_NORMAL, 0, nullptr);
        return m_pad != nullptr ? caret : 0;
    }
    std::vector<cchar_t> cells(static_cast<std::size_t>(m_width) + 1);
    const int count = ::mvwin_wchnstr(m_pad, 0, 0, cells.data(), m_width);
    if (count != ERR)
    {
        ::mvwadd_wchnstr(in_target, in_row, in_col, cells.data(), m_width);
    }
    ::mvwchgat(in_target, in_row, in_col, m_width, in_attributes, 0, nullptr);
    return caret;
}
}  // namespace Tarni::Platform
