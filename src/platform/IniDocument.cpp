#include "platform/IniDocument.h"

#include "core/ErrorException.h"
#include "core/NumberConverter.h"
#include "platform/TextConversion.h"

namespace Tarni::Platform
{
using Support::DiagState;
using Support::ErrorException;


namespace
{
const char* const BLANKS = " \t";

std::string Trim(const std::string& in_text)
{
    const size_t first = in_text.find_first_not_of(BLANKS);
    if (first == std::string::npos)
    {
        return {};
    }
    const size_t last = in_text.find_last_not_of(BLANKS);
    return in_text.substr(first, last - first + 1);
}

[[noreturn]] void ThrowAtLine(const char16_t* in_key, tarni_wstring_view in_file, size_t in_line)
{
    throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, in_key,
                         {tarni_wstring(in_file), Support::NumberConverter::ToText(static_cast<unsigned long long>(in_line))});
}
}  // namespace

bool IniDocument::SameName(const std::string& in_left, const std::string& in_right)
{
    return TextConversion::EqualsIgnoreCase(TextConversion::StrictUtf8ToUtf16(in_left), TextConversion::StrictUtf8ToUtf16(in_right));
}

IniDocument IniDocument::Parse(const std::string& in_bytes, tarni_wstring_view in_fileName)
{
    IniDocument doc;
    size_t pos = 0;
    if (in_bytes.compare(0, 3, "\xEF\xBB\xBF") == 0)
    {
        doc.m_bom = in_bytes.substr(0, 3);
        pos = 3;
    }
    std::string section;
    size_t lineNumber = 0;
    while (pos < in_bytes.size())
    {
        ++lineNumber;
        Line line;
        const size_t newline = in_bytes.find('\n', pos);
        if (newline == std::string::npos)
        {
            line.text = in_bytes.substr(pos);
            pos = in_bytes.size();
        }
        else
        {
            line.text = in_bytes.substr(pos, newline - pos);
            line.ending = "\n";
            pos = newline + 1;
        }
        if (!line.text.empty() && line.text.back() == '\r')
        {
            line.text.pop_back();
            line.ending = "\r" + line.ending;
        }
        if (!TextConversion::IsValidUtf8(line.text))
        {
            ThrowAtLine(u"DSIniEncodingErr", in_fileName, lineNumber);
        }
        const std::string trimmed = Trim(line.text);
        if (trimmed.empty())
        {
            line.kind = Kind::Blank;
        }
        else if (trimmed[0] == ';' || trimmed[0] == '#')
        {
            line.kind = Kind::Comment;
        }
        else if (trimmed[0] == '[')
        {
            if (trimmed.back() != ']' || trimmed.size() < 3)
            {
                ThrowAtLine(u"DSIniSectionErr", in_fileName, lineNumber);
            }
            line.kind = Kind::Section;
            section = Trim(trimmed.substr(1, trimmed.size() - 2));
        }
        else
        {
            const size_t equals = line.text.find('=');
            if (equals == std::string::npos || Trim(line.text.substr(0, equals)).empty())
            {
                ThrowAtLine(u"DSIniSyntaxErr", in_fileName, lineNumber);
            }
            line.kind = Kind::Entry;
            line.key = Trim(line.text.substr(0, equals));
        }
        line.section = section;
        doc.m_lines.push_back(std::move(line));
    }
    return doc;
}

std::vector<StoredValue> IniDocument::ReadSection(tarni_wstring_view in_section) const
{
    const std::string section = TextConversion::Utf16ToUtf8(in_section);
    std::vector<StoredValue> values;
    for (const Line& line : m_lines)
    {
        if (line.kind != Kind::Entry || !SameName(line.section, section))
        {
            continue;
        }
        tarni_wstring name = TextConversion::StrictUtf8ToUtf16(line.key);
        tarni_wstring value = TextConversion::StrictUtf8ToUtf16(line.text.substr(line.text.find('=') + 1));
        bool replaced = false;
        for (StoredValue& existing : values)
        {
            if (TextConversion::EqualsIgnoreCase(existing.name, name))
            {
                existing.value = value;
                replaced = true;
            }
        }
        if (!replaced)
        {
            values.push_back({std::move(name), std::move(value)});
        }
    }
    return values;
}

std::string IniDocument::NewLineEnding() const
{
    for (const Line& line : m_lines)
    {
        if (!line.ending.empty())
        {
            return line.ending;
        }
    }
    return "\n";
}

void IniDocument::SetValue(tarni_wstring_view in_section, tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    const std::string section = TextConversion::Utf16ToUtf8(in_section);
    const std::string key = TextConversion::Utf16ToUtf8(in_key);
    const std::string value = TextConversion::Utf16ToUtf8(in_value);

    bool found = false;
    // A new entry goes after the section's last entry; in a section without
    // entries, after its header and the comments that follow it.
    size_t insertAfter = m_lines.size();
    bool sectionSeen = false;
    bool entrySeen = false;
    for (size_t i = 0; i < m_lines.size(); ++i)
    {
        Line& line = m_lines[i];
        if (!SameName(line.section, section))
        {
            continue;
        }
        if (line.kind == Kind::Section)
        {
            if (!sectionSeen)
            {
                insertAfter = i;
            }
            sectionSeen = true;
        }
        else if (line.kind == Kind::Entry && sectionSeen)
        {
            if (SameName(line.key, key))
            {
                line.text = line.text.substr(0, line.text.find('=') + 1) + value;
                found = true;
            }
            insertAfter = i;
            entrySeen = true;
        }
        else if (line.kind == Kind::Comment && sectionSeen && !entrySeen)
        {
            insertAfter = i;
        }
    }
    if (found)
    {
        return;
    }
    const std::string ending = NewLineEnding();
    if (!sectionSeen)
    {
        if (!m_lines.empty())
        {
            if (m_lines.back().ending.empty())
            {
                m_lines.back().ending = ending;
            }
            if (m_lines.back().kind != Kind::Blank)
            {
                m_lines.push_back({"", ending, Kind::Blank, m_lines.back().section, ""});
            }
        }
        m_lines.push_back({"[" + section + "]", ending, Kind::Section, section, ""});
        insertAfter = m_lines.size() - 1;
    }
    Line entry{key + "=" + value, ending, Kind::Entry, m_lines[insertAfter].section, key};
    if (m_lines[insertAfter].ending.empty())
    {
        // The anchor was the file's last line without an ending: give it one,
        // and the new last line none, as the file had.
        m_lines[insertAfter].ending = ending;
        entry.ending.clear();
    }
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(insertAfter) + 1, std::move(entry));
}

void IniDocument::DeleteValue(tarni_wstring_view in_section, tarni_wstring_view in_key)
{
    const std::string section = TextConversion::Utf16ToUtf8(in_section);
    const std::string key = TextConversion::Utf16ToUtf8(in_key);
    for (size_t i = m_lines.size(); i-- > 0;)
    {
        const Line& line = m_lines[i];
        if (line.kind == Kind::Entry && SameName(line.section, section) && SameName(line.key, key))
        {
            const bool wasLast = (i + 1 == m_lines.size());
            const bool hadNoEnding = line.ending.empty();
            m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(i));
            if (wasLast && hadNoEnding && !m_lines.empty())
            {
                m_lines.back().ending.clear();
            }
        }
    }
}

std::string IniDocument::Serialize() const
{
    std::string out = m_bom;
    for (const Line& line : m_lines)
    {
        out += line.text;
        out += line.ending;
    }
    return out;
}
}  // namespace Tarni::Platform
