#pragma once
// An INI file held as its lines, so that an edit changes only the lines it
// means to change: every other section, comment, blank line, line ending and
// the order of lines stay byte for byte as they were.
//
// Parsing builds an index of sections and keys (case-folded), so reading a
// section and each edit cost time independent of the file's size, and a whole
// load + save is linear in it. Lines are kept in a linked order: a new entry is
// threaded in after its anchor and a removed one is skipped on output, so no
// edit moves the other lines.
//
// Values: blanks around the key, around "=" and at the end of the value are
// not part of it. A value whose own leading or trailing blanks matter, or that
// is itself enclosed in double quotes, is written enclosed in one pair of
// double quotes; a read removes one enclosing pair. Nothing else is escaped.
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/ISettingsStore.h"

namespace Tarni::Platform
{
class IniDocument
{
public:
    /// Parses the bytes of a file (UTF-8, an optional byte-order mark; lines
    /// end in LF, CR LF or a lone CR). Throws ErrorException "DSIniSyntaxErr" /
    /// "DSIniSectionErr" / "DSIniEncodingErr" naming in_fileName and the line.
    static IniDocument Parse(const std::string& in_bytes, tarni_wstring_view in_fileName);

    /// Values of a section (case-insensitive section name), in the order the
    /// keys first appear; a key that appears more than once reads as its last
    /// value, under the spelling of its first line.
    std::vector<StoredValue> ReadSection(tarni_wstring_view in_section) const;

    /// Sets the key's value in the section. An existing key changes only the
    /// line whose value wins (its last line), and not at all when that line
    /// already reads as in_value; the key's spelling and the blanks around "="
    /// are kept. A new key goes after the section's last entry (in a section
    /// without entries, after its header and the comments that follow it); a
    /// missing section is added at the end.
    void SetValue(tarni_wstring_view in_section, tarni_wstring_view in_key, tarni_wstring_view in_value);

    /// Removes every line of the key in the section.
    void DeleteValue(tarni_wstring_view in_section, tarni_wstring_view in_key);

    std::string Serialize() const;

    /// The text written after "=" for a value, and the value read from the
    /// text after "=" (see the class comment).
    static std::string EncodeValue(std::string_view in_value);
    static std::string DecodeValue(std::string_view in_text);

private:
    static constexpr size_t NONE = static_cast<size_t>(-1);

    enum class Kind
    {
        Blank,
        Comment,
        Section,
        Entry,
        Other,
    };
    struct Line
    {
        std::string text;    // without the line ending
        std::string ending;  // "\n", "\r\n", "\r" or "" for a last line without one
        Kind kind = Kind::Other;
        size_t keyLength = 0;  // Entry: the bytes before "=" (blanks included)
        size_t next = NONE;    // the following line in file order
        bool removed = false;
    };
    struct Key
    {
        std::vector<size_t> lines;  // every line of the key, in file order
    };
    struct Section
    {
        std::string name;
        size_t anchor = NONE;  // where a new entry goes after
        bool entrySeen = false;
        std::unordered_map<std::u16string, size_t> keyIndex;  // folded key -> position in keys
        std::vector<Key> keys;                               // in the order keys first appear
    };

    static std::u16string Fold(std::string_view in_name);
    static std::string KeyOf(const Line& in_line);
    static std::string ValueTextOf(const Line& in_line);
    const Section* FindSection(tarni_wstring_view in_section) const;
    size_t AddLine(Line in_line, size_t in_after);
    size_t AddSection(const std::string& in_name);
    std::string NewLineEnding() const;

    std::string m_bom;
    std::vector<Line> m_lines;
    size_t m_head = NONE;
    size_t m_tail = NONE;
    bool m_lastLineUnended = false;  // the file's last line has no line ending
    std::vector<Section> m_sections;
    std::unordered_map<std::u16string, size_t> m_sectionIndex;  // folded name -> position in m_sections
};
}  // namespace Tarni::Platform
