#pragma once
// An INI file held as its lines, so that an edit changes only the lines it
// touches: every other section, comment, blank line, line ending and the
// order of lines stay byte for byte as they were.
#include <string>
#include <vector>

#include "platform/ISettingsStore.h"

namespace Tarni::Platform
{
class IniDocument
{
public:
    /// Parses the bytes of a file (UTF-8, an optional byte-order mark).
    /// Throws ErrorException "DSIniSyntaxErr" / "DSIniSectionErr" /
    /// "DSIniEncodingErr" naming in_fileName and the line.
    static IniDocument Parse(const std::string& in_bytes, tarni_wstring_view in_fileName);

    /// Values of a section (case-insensitive section name), in file order; a
    /// key that appears twice reads as its last value.
    std::vector<StoredValue> ReadSection(tarni_wstring_view in_section) const;

    /// Replaces the value of every line of the key in the section (the key's
    /// spelling in the file is kept) or adds a line after the section's last
    /// entry; adds the section at the end when there is none.
    void SetValue(tarni_wstring_view in_section, tarni_wstring_view in_key, tarni_wstring_view in_value);

    /// Removes every line of the key in the section.
    void DeleteValue(tarni_wstring_view in_section, tarni_wstring_view in_key);

    std::string Serialize() const;

private:
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
        std::string text;        // without the line ending
        std::string ending;      // "\n", "\r\n" or "" for a last line without one
        Kind kind = Kind::Other;
        std::string section;     // the section this line belongs to (or heads)
        std::string key;         // trimmed key of an entry
    };

    std::string NewLineEnding() const;
    static bool SameName(const std::string& in_left, const std::string& in_right);

    std::string m_bom;
    std::vector<Line> m_lines;
};
}  // namespace Tarni::Platform
