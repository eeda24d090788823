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

std::string_view Trim(std::string_view in_text)
{
    const size_t first = in_text.find_first_not_of(BLANKS);
    if (first == std::string_view::npos)
    {
        return {};
    }
    const size_t last = in_text.find_last_not_of(BLANKS);
    return in_text.substr(first, last - first + 1);
}

bool IsBlank(char in_char)
{
    return in_char == ' ' || in_char == '\t';
}

bool IsQuoted(std::string_view in_text)
{
    return in_text.size() >= 2 && in_text.front() == '"' && in_text.back() == '"';
}

[[noreturn]] void ThrowAtLine(const char16_t* in_key, tarni_wstring_view in_file, size_t in_line)
{
    throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, in_key,
                         {tarni_wstring(in_file), Support::NumberConverter::ToText(static_cast<unsigned long long>(in_line))});
}
}  // namespace

std::u16string IniDocument::Fold(std::string_view in_name)
{
    std::u16string folded;
    folded.reserve(in_name.size());
    bool ascii = true;
    for (const char c : in_name)
    {
        if (static_cast<unsigned char>(c) >= 0x80)
        {
            ascii = false;
            break;
        }
        folded.push_back(static_cast<char16_t>((c >= 'A' && c <= 'Z') ? c + 32 : c));
    }
    if (!ascii)
    {
        folded = TextConversion::StrictUtf8ToUtf16(in_name);
        for (char16_t& unit : folded)
        {
            unit = TextConversion::FoldCase(unit);
        }
    }
    return folded;
}

std::string IniDocument::EncodeValue(std::string_view in_value)
{
    const bool quote = !in_value.empty() && (IsBlank(in_value.front()) || IsBlank(in_value.back()) ||
                                             IsQuoted(in_value));
    if (!quote)
    {
        return std::string(in_value);
    }
    std::string text;
    text.reserve(in_value.size() + 2);
    text += '"';
    text += in_value;
    text += '"';
    return text;
}

std::string IniDocument::DecodeValue(std::string_view in_text)
{
    const std::string_view trimmed = Trim(in_text);
    if (IsQuoted(trimmed))
    {
        return std::string(trimmed.substr(1, trimmed.size() - 2));
    }
    return std::string(trimmed);
}

std::string IniDocument::KeyOf(const Line& in_line)
{
    return std::string(Trim(std::string_view(in_line.text).substr(0, in_line.keyLength)));
}

std::string IniDocument::ValueTextOf(const Line& in_line)
{
    return std::string(std::string_view(in_line.text).substr(in_line.keyLength + 1));
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
    // Lines before the first header belong to a section without a name.
    doc.m_sections.emplace_back();
    doc.m_sectionIndex.emplace(std::u16string(), 0);
    size_t section = 0;
    size_t lineNumber = 0;
    while (pos < in_bytes.size())
    {
        ++lineNumber;
        Line line;
        const size_t end = in_bytes.find_first_of("\r\n", pos);
        if (end == std::string::npos)
        {
            line.text = in_bytes.substr(pos);
            pos = in_bytes.size();
        }
        else
        {
            line.text = in_bytes.substr(pos, end - pos);
            const size_t endingLength = (in_bytes[end] == '\r' && end + 1 < in_bytes.size() && in_bytes[end + 1] == '\n') ? 2 : 1;
            line.ending = in_bytes.substr(end, endingLength);
            pos = end + endingLength;
        }
        if (!TextConversion::IsValidUtf8(line.text))
        {
            ThrowAtLine(u"DSIniEncodingErr", in_fileName, lineNumber);
        }
        const std::string_view trimmed = Trim(line.text);
        const size_t index = doc.m_lines.size();
        if (trimmed.empty())
        {
            line.kind = Kind::Blank;
        }
        else if (trimmed[0] == ';' || trimmed[0] == '#')
        {
            line.kind = Kind::Comment;
            Section& current = doc.m_sections[section];
            if (!current.entrySeen && current.anchor != NONE)
            {
                current.anchor = index;
            }
        }
        else if (trimmed[0] == '[')
        {
            if (trimmed.back() != ']' || trimmed.size() < 3)
            {
                ThrowAtLine(u"DSIniSectionErr", in_fileName, lineNumber);
            }
            line.kind = Kind::Section;
            const std::string name(Trim(trimmed.substr(1, trimmed.size() - 2)));
            const auto [it, added] = doc.m_sectionIndex.emplace(Fold(name), doc.m_sections.size());
            if (added)
            {
                doc.m_sections.emplace_back();
                doc.m_sections.back().name = name;
                doc.m_sections.back().anchor = index;
            }
            section = it->second;
        }
        else
        {
            const size_t equals = line.text.find('=');
            if (equals == std::string::npos || Trim(std::string_view(line.text).substr(0, equals)).empty())
            {
                ThrowAtLine(u"DSIniSyntaxErr", in_fileName, lineNumber);
            }
            line.kind = Kind::Entry;
            line.keyLength = equals;
            Section& current = doc.m_sections[section];
            const auto [it, added] = current.keyIndex.emplace(Fold(KeyOf(line)), current.keys.size());
            if (added)
            {
                current.keys.emplace_back();
            }
            current.keys[it->second].lines.push_back(index);
            current.anchor = index;
            current.entrySeen = true;
        }
        line.next = NONE;
        if (doc.m_tail != NONE)
        {
            doc.m_lines[doc.m_tail].next = index;
        }
        else
        {
            doc.m_head = index;
        }
        doc.m_tail = index;
        doc.m_lines.push_back(std::move(line));
    }
    doc.m_lastLineUnended = !doc.m_lines.empty() && doc.m_lines.back().ending.empty();
    return doc;
}

const IniDocument::Section* IniDocument::FindSection(tarni_wstring_view in_section) const
{
    const auto it = m_sectionIndex.find(Fold(TextConversion::Utf16ToUtf8(in_section)));
    return it == m_sectionIndex.end() ? nullptr : &m_sections[it->second];
}

std::vector<StoredValue> IniDocument::ReadSection(tarni_wstring_view in_section) const
{
    std::vector<StoredValue> values;
    const Section* section = FindSection(in_section);
    if (section == nullptr)
    {
        return values;
    }
    values.reserve(section->keys.size());
    for (const Key& key : section->keys)
    {
        if (key.lines.empty())
        {
            continue;
        }
        values.push_back({TextConversion::StrictUtf8ToUtf16(KeyOf(m_lines[key.lines.front()])),
                          TextConversion::StrictUtf8ToUtf16(DecodeValue(ValueTextOf(m_lines[key.lines.back()])))});
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

size_t IniDocument::AddLine(Line in_line, size_t in_after)
{
    const size_t index = m_lines.size();
    if (in_after == NONE)
    {
        // At the end of the file.
        in_line.next = NONE;
        if (m_tail != NONE)
        {
            m_lines[m_tail].next = index;
        }
        else
        {
            m_head = index;
        }
        m_tail = index;
    }
    else
    {
        in_line.next = m_lines[in_after].next;
        m_lines[in_after].next = index;
        if (m_tail == in_after)
        {
            m_tail = index;
        }
    }
    m_lines.push_back(std::move(in_line));
    return index;
}

size_t IniDocument::AddSection(const std::string& in_name)
{
    const std::string ending = NewLineEnding();
    if (m_tail != NONE)
    {
        // A section added at the end is separated by a blank line, and the
        // file then ends with a line ending.
        if (m_lines[m_tail].ending.empty())
        {
            m_lines[m_tail].ending = ending;
        }
        m_lastLineUnended = false;
        if (m_lines[m_tail].kind != Kind::Blank || m_lines[m_tail].removed)
        {
            AddLine({"", ending, Kind::Blank}, NONE);
        }
    }
    const size_t header = AddLine({"[" + in_name + "]", ending, Kind::Section}, NONE);
    m_sectionIndex.emplace(Fold(in_name), m_sections.size());
    m_sections.emplace_back();
    m_sections.back().name = in_name;
    m_sections.back().anchor = header;
    return m_sections.size() - 1;
}

void IniDocument::SetValue(tarni_wstring_view in_section, tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    const std::string sectionName = TextConversion::Utf16ToUtf8(in_section);
    const std::string keyName = TextConversion::Utf16ToUtf8(in_key);
    const std::string value = TextConversion::Utf16ToUtf8(in_value);

    size_t sectionIndex;
    if (const auto it = m_sectionIndex.find(Fold(sectionName)); it != m_sectionIndex.end() && it->second != 0)
    {
        sectionIndex = it->second;
    }
    else
    {
        sectionIndex = AddSection(sectionName);
    }
    Section& section = m_sections[sectionIndex];
    const auto [it, added] = section.keyIndex.emplace(Fold(keyName), section.keys.size());
    if (added)
    {
        section.keys.emplace_back();
    }
    Key& key = section.keys[it->second];
    if (!key.lines.empty())
    {
        // Only the line whose value wins changes, and only when it reads differently.
        Line& line = m_lines[key.lines.back()];
        const std::string valueText = ValueTextOf(line);
        if (DecodeValue(valueText) == value)
        {
            return;
        }
        const size_t lead = valueText.find_first_not_of(BLANKS);
        line.text.resize(line.keyLength + 1 + (lead == std::string::npos ? 0 : lead));
        line.text += EncodeValue(value);
        return;
    }
    Line entry{keyName + "=" + EncodeValue(value), NewLineEnding(), Kind::Entry, keyName.size()};
    if (m_lines[section.anchor].ending.empty())
    {
        // The anchor was the file's last line without an ending: give it one;
        // the new last line has none, as the file had.
        m_lines[section.anchor].ending = entry.ending;
    }
    const size_t index = AddLine(std::move(entry), section.anchor);
    key.lines.push_back(index);
    section.anchor = index;
    section.entrySeen = true;
}

void IniDocument::DeleteValue(tarni_wstring_view in_section, tarni_wstring_view in_key)
{
    const auto sectionIt = m_sectionIndex.find(Fold(TextConversion::Utf16ToUtf8(in_section)));
    if (sectionIt == m_sectionIndex.end())
    {
        return;
    }
    Section& section = m_sections[sectionIt->second];
    const auto keyIt = section.keyIndex.find(Fold(TextConversion::Utf16ToUtf8(in_key)));
    if (keyIt == section.keyIndex.end())
    {
        return;
    }
    for (const size_t line : section.keys[keyIt->second].lines)
    {
        m_lines[line].removed = true;
    }
    section.keys[keyIt->second].lines.clear();
}

std::string IniDocument::Serialize() const
{
    const std::string ending = NewLineEnding();
    size_t size = m_bom.size();
    for (const Line& line : m_lines)
    {
        size += line.text.size() + 2;
    }
    std::string out;
    out.reserve(size);
    out += m_bom;
    size_t last = NONE;
    for (size_t i = m_head; i != NONE; i = m_lines[i].next)
    {
        if (m_lines[i].removed)
        {
            continue;
        }
        if (last != NONE)
        {
            out += m_lines[last].ending.empty() ? ending : m_lines[last].ending;
        }
        out += m_lines[i].text;
        last = i;
    }
    if (last != NONE && !m_lastLineUnended)
    {
        out += m_lines[last].ending.empty() ? ending : m_lines[last].ending;
    }
    return out;
}
}  // namespace Tarni::Platform
