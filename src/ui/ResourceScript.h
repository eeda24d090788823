#pragma once
// Reads the resource script (.rc and resource.h) of the program: the subset
// that the project writes. Understood: comments; #include of the header and
// of <windows.h> (the latter only names the system's constants, which the
// reader knows); #define NAME number; LANGUAGE; ICON resources; DIALOGEX with
// STYLE, EXSTYLE, CAPTION and FONT and the control statements LTEXT, RTEXT,
// CTEXT, EDITTEXT, PUSHBUTTON, DEFPUSHBUTTON, GROUPBOX, CHECKBOX,
// AUTOCHECKBOX, RADIOBUTTON, AUTORADIOBUTTON, STATE3, AUTO3STATE, COMBOBOX,
// LISTBOX, ICON and CONTROL; STRINGTABLE. Style expressions combine names and
// numbers with "|" and "NOT". Anything else is an error naming the file and
// line, so a template the reader cannot show is caught by the tests and not
// silently dropped.
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/DialogTemplate.h"

namespace Tarni::Platform
{
class ResourceScript
{
public:
    /// Parses the script text (UTF-8) with the text of its resource.h.
    /// Throws ErrorException "DSResourceScriptErr" (file, line, detail).
    static ResourceScript Parse(std::string_view in_scriptText, std::string_view in_headerText,
                                std::string_view in_scriptName = "TarniSparkDriverConfig.rc",
                                std::string_view in_headerName = "resource.h");

    /// The program's own script, embedded at build time; parsed once.
    static const ResourceScript& Embedded();

    const DialogTemplate* FindDialog(unsigned in_id) const;
    /// The string of the string table, or nothing when there is none.
    const tarni_wstring* FindString(unsigned in_id) const;
    /// Copies the string into the buffer as LoadStringW does: what fits
    /// before the terminating null; the characters copied, 0 (an empty
    /// buffer) when there is no such string.
    int LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars) const;

    const std::map<unsigned, DialogTemplate>& GetDialogs() const { return m_dialogs; }
    const std::map<unsigned, tarni_wstring>& GetStrings() const { return m_strings; }
    const std::vector<unsigned>& GetIcons() const { return m_icons; }
    /// The value of a name defined in resource.h (or the script), if any.
    std::optional<long long> FindSymbol(std::string_view in_name) const;

    /// Adds or replaces a string (tests use it for strings the program does not ship).
    void SetString(unsigned in_id, tarni_wstring in_text) { m_strings[in_id] = std::move(in_text); }

private:
    friend class ResourceScriptParser;

    std::map<std::string, long long, std::less<>> m_symbols;
    std::map<unsigned, DialogTemplate> m_dialogs;
    std::map<unsigned, tarni_wstring> m_strings;
    std::vector<unsigned> m_icons;
};
}  // namespace Tarni::Platform
