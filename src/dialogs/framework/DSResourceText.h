#pragma once
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
/// A title or text argument of the dialog helpers: either the id of a string
/// of the string table (a value below 0x10000, loaded when the text is
/// needed) or the text itself.
class DSResourceText
{
public:
    DSResourceText(unsigned in_stringId) : m_id(in_stringId), m_isId(true) {}
    DSResourceText(int in_stringId) : m_id(static_cast<unsigned>(in_stringId)), m_isId(true) {}
    DSResourceText(tarni_wstring in_text) : m_text(std::move(in_text)) {}
    DSResourceText(tarni_wstring_view in_text) : m_text(in_text) {}
    DSResourceText(const char16_t* in_text) : m_text(in_text) {}

    bool IsStringId() const { return m_isId && m_id < 0x10000; }
    unsigned GetStringId() const { return m_id; }
    /// The text: the loaded string for an id, else the text itself.
    tarni_wstring Resolve() const;

private:
    tarni_wstring m_text;
    unsigned m_id = 0;
    bool m_isId = false;
};
}  // namespace Tarni::DriverSupport
