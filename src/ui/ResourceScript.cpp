#include "ui/ResourceScript.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
using namespace DialogStyle;

// The system constants that the script may use, with their Windows values.
// (The Windows resource compiler takes them from <windows.h>.)
const std::map<std::string, long long, std::less<>>& SystemSymbols()
{
    static const std::map<std::string, long long, std::less<>> symbols = {
        {"IDOK", 1}, {"IDCANCEL", 2}, {"IDABORT", 3}, {"IDRETRY", 4}, {"IDIGNORE", 5}, {"IDYES", 6}, {"IDNO", 7},
        {"IDHELP", 9},
        {"WS_OVERLAPPED", 0}, {"WS_POPUP", 0x80000000LL}, {"WS_CHILD", 0x40000000}, {"WS_MINIMIZE", 0x20000000},
        {"WS_VISIBLE", 0x10000000}, {"WS_DISABLED", 0x08000000}, {"WS_CLIPSIBLINGS", 0x04000000},
        {"WS_CLIPCHILDREN", 0x02000000}, {"WS_MAXIMIZE", 0x01000000}, {"WS_CAPTION", 0x00C00000},
        {"WS_BORDER", 0x00800000}, {"WS_DLGFRAME", 0x00400000}, {"WS_VSCROLL", 0x00200000},
        {"WS_HSCROLL", 0x00100000}, {"WS_SYSMENU", 0x00080000}, {"WS_THICKFRAME", 0x00040000},
        {"WS_GROUP", 0x00020000}, {"WS_TABSTOP", 0x00010000}, {"WS_MINIMIZEBOX", 0x00020000},
        {"WS_MAXIMIZEBOX", 0x00010000},
        {"WS_EX_DLGMODALFRAME", 0x1}, {"WS_EX_TOPMOST", 0x8}, {"WS_EX_TRANSPARENT", 0x20},
        {"WS_EX_TOOLWINDOW", 0x80}, {"WS_EX_CLIENTEDGE", 0x200}, {"WS_EX_CONTEXTHELP", 0x400},
        {"WS_EX_STATICEDGE", 0x20000}, {"WS_EX_APPWINDOW", 0x40000},
        {"DS_ABSALIGN", 0x1}, {"DS_SYSMODAL", 0x2}, {"DS_LOCALEDIT", 0x20}, {"DS_SETFONT", 0x40},
        {"DS_MODALFRAME", 0x80}, {"DS_NOIDLEMSG", 0x100}, {"DS_SETFOREGROUND", 0x200}, {"DS_3DLOOK", 0x4},
        {"DS_FIXEDSYS", 0x8}, {"DS_NOFAILCREATE", 0x10}, {"DS_CONTROL", 0x400}, {"DS_CENTER", 0x800},
        {"DS_CENTERMOUSE", 0x1000}, {"DS_CONTEXTHELP", 0x2000}, {"DS_SHELLFONT", 0x48},
        {"BS_PUSHBUTTON", 0x0}, {"BS_DEFPUSHBUTTON", 0x1}, {"BS_CHECKBOX", 0x2}, {"BS_AUTOCHECKBOX", 0x3},
        {"BS_RADIOBUTTON", 0x4}, {"BS_3STATE", 0x5}, {"BS_AUTO3STATE", 0x6}, {"BS_GROUPBOX", 0x7},
        {"BS_AUTORADIOBUTTON", 0x9}, {"BS_LEFTTEXT", 0x20}, {"BS_LEFT", 0x100}, {"BS_RIGHT", 0x200},
        {"BS_CENTER", 0x300}, {"BS_TOP", 0x400}, {"BS_BOTTOM", 0x800}, {"BS_VCENTER", 0xC00},
        {"BS_MULTILINE", 0x2000}, {"BS_FLAT", 0x8000},
        {"ES_LEFT", 0x0}, {"ES_CENTER", 0x1}, {"ES_RIGHT", 0x2}, {"ES_MULTILINE", 0x4}, {"ES_UPPERCASE", 0x8},
        {"ES_LOWERCASE", 0x10}, {"ES_PASSWORD", 0x20}, {"ES_AUTOVSCROLL", 0x40}, {"ES_AUTOHSCROLL", 0x80},
        {"ES_NOHIDESEL", 0x100}, {"ES_OEMCONVERT", 0x400}, {"ES_READONLY", 0x800}, {"ES_WANTRETURN", 0x1000},
        {"ES_NUMBER", 0x2000},
        {"CBS_SIMPLE", 0x1}, {"CBS_DROPDOWN", 0x2}, {"CBS_DROPDOWNLIST", 0x3}, {"CBS_AUTOHSCROLL", 0x40},
        {"CBS_OEMCONVERT", 0x80}, {"CBS_SORT", 0x100}, {"CBS_HASSTRINGS", 0x200}, {"CBS_NOINTEGRALHEIGHT", 0x400},
        {"CBS_DISABLENOSCROLL", 0x800},
        {"LBS_NOTIFY", 0x1}, {"LBS_SORT", 0x2}, {"LBS_NOREDRAW", 0x4}, {"LBS_MULTIPLESEL", 0x8},
        {"LBS_HASSTRINGS", 0x40}, {"LBS_USETABSTOPS", 0x80}, {"LBS_NOINTEGRALHEIGHT", 0x100},
        {"LBS_WANTKEYBOARDINPUT", 0x400}, {"LBS_EXTENDEDSEL", 0x800}, {"LBS_DISABLENOSCROLL", 0x1000},
        {"LBS_STANDARD", 0x00A00003},
        {"SS_LEFT", 0x0}, {"SS_CENTER", 0x1}, {"SS_RIGHT", 0x2}, {"SS_ICON", 0x3}, {"SS_BLACKRECT", 0x4},
        {"SS_GRAYRECT", 0x5}, {"SS_WHITERECT", 0x6}, {"SS_BLACKFRAME", 0x7}, {"SS_ETCHEDHORZ", 0x10},
        {"SS_ETCHEDFRAME", 0x12}, {"SS_LEFTNOWORDWRAP", 0xC}, {"SS_NOPREFIX", 0x80}, {"SS_NOTIFY", 0x100},
        {"SS_CENTERIMAGE", 0x200}, {"SS_SUNKEN", 0x1000},
        {"LANG_ENGLISH", 0x09}, {"SUBLANG_ENGLISH_US", 0x01}, {"LANG_NEUTRAL", 0}, {"SUBLANG_NEUTRAL", 0},
        {"SUBLANG_DEFAULT", 0x01},
    };
    return symbols;
}

enum class TokenType
{
    End,
    Name,
    Number,
    String,
    Punct,
};

struct Token
{
    TokenType type = TokenType::End;
    std::string text;     // name, punctuation, or the decoded string (UTF-8)
    long long number = 0;
    int line = 0;
};

// How a control statement without a class names its class and default style.
struct StatementShape
{
    std::string_view keyword;
    ControlKind kind;
    std::string_view className;
    std::uint32_t defaultStyle;
    bool hasText;
};

constexpr std::uint32_t BASE = WS_CHILD | WS_VISIBLE;

const StatementShape kStatements[] = {
    {"LTEXT", ControlKind::Static, "Static", BASE | 0x0 | WS_GROUP, true},
    {"RTEXT", ControlKind::Static, "Static", BASE | 0x2 | WS_GROUP, true},
    {"CTEXT", ControlKind::Static, "Static", BASE | 0x1 | WS_GROUP, true},
    {"PUSHBUTTON", ControlKind::Button, "Button", BASE | BS_PUSHBUTTON | WS_TABSTOP, true},
    {"DEFPUSHBUTTON", ControlKind::Button, "Button", BASE | BS_DEFPUSHBUTTON | WS_TABSTOP, true},
    {"GROUPBOX", ControlKind::Button, "Button", BASE | BS_GROUPBOX, true},
    {"CHECKBOX", ControlKind::Button, "Button", BASE | BS_CHECKBOX | WS_TABSTOP, true},
    {"AUTOCHECKBOX", ControlKind::Button, "Button", BASE | BS_AUTOCHECKBOX | WS_TABSTOP, true},
    {"RADIOBUTTON", ControlKind::Button, "Button", BASE | BS_RADIOBUTTON, true},
    {"AUTORADIOBUTTON", ControlKind::Button, "Button", BASE | BS_AUTORADIOBUTTON, true},
    {"STATE3", ControlKind::Button, "Button", BASE | BS_3STATE | WS_TABSTOP, true},
    {"AUTO3STATE", ControlKind::Button, "Button", BASE | BS_AUTO3STATE | WS_TABSTOP, true},
    {"EDITTEXT", ControlKind::Edit, "Edit", BASE | WS_BORDER | WS_TABSTOP, false},
    {"COMBOBOX", ControlKind::ComboBox, "ComboBox", BASE | 0x1 | WS_TABSTOP, false},
    {"LISTBOX", ControlKind::ListBox, "ListBox", BASE | LBS_NOTIFY | WS_BORDER, false},
};

ControlKind KindOfClass(std::string_view in_class, std::uint32_t in_style)
{
    std::string lower(in_class);
    for (auto& c : lower)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    if (lower == "button") return ControlKind::Button;
    if (lower == "edit") return ControlKind::Edit;
    if (lower == "combobox") return ControlKind::ComboBox;
    if (lower == "listbox") return ControlKind::ListBox;
    if (lower == "static") return (in_style & SS_TYPEMASK) == SS_ICON ? ControlKind::Icon : ControlKind::Static;
    return ControlKind::Other;
}
}  // namespace

/// The reader itself: a tokenizer over one text and a recursive-descent
/// parser of the statements above.
class ResourceScriptParser
{
public:
    ResourceScriptParser(ResourceScript& io_script, std::string_view in_text, std::string_view in_name)
        : m_script(io_script), m_text(in_text), m_name(in_name)
    {
    }

    /// resource.h: only #define lines (and comments) are expected.
    void ParseHeader()
    {
        for (;;)
        {
            SkipBlanksAndComments();
            if (m_pos >= m_text.size())
            {
                return;
            }
            if (m_text[m_pos] != '#')
            {
                Fail("only #define lines are expected");
            }
            ParseDirective();
        }
    }

    void ParseScript()
    {
        for (;;)
        {
            Token t = Next();
            if (t.type == TokenType::End)
            {
                return;
            }
            if (t.type == TokenType::Name && t.text == "LANGUAGE")
            {
                Expression();
                Expect(",");
                Expression();
                continue;
            }
            if (t.type == TokenType::Name && t.text == "STRINGTABLE")
            {
                ParseStringTable();
                continue;
            }
            // NAME-OR-NUMBER TYPE ...
            const long long id = ValueOf(t);
            Token type = Next();
            if (type.type != TokenType::Name)
            {
                Fail("resource type expected after " + t.text, type.line);
            }
            if (type.text == "DIALOGEX" || type.text == "DIALOG")
            {
                ParseDialog(static_cast<unsigned>(id), type.line);
            }
            else if (type.text == "ICON")
            {
                Token file = Next();
                if (file.type != TokenType::String)
                {
                    Fail("file name expected after ICON", file.line);
                }
                m_script.m_icons.push_back(static_cast<unsigned>(id));
            }
            else
            {
                Fail("resource type " + type.text + " is not understood", type.line);
            }
        }
    }

private:
    [[noreturn]] void Fail(const std::string& in_detail, int in_line = 0)
    {
        using Support::StringConverter;
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSResourceScriptErr",
                                      {StringConverter::FromUtf8(m_name),
                                       StringConverter::FromNumber(static_cast<long long>(in_line ? in_line : m_line)),
                                       StringConverter::FromUtf8(in_detail)});
    }

    void SkipBlanksAndComments()
    {
        while (m_pos < m_text.size())
        {
            const char c = m_text[m_pos];
            if (c == '\n')
            {
                ++m_line;
                ++m_pos;
            }
            else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v')
            {
                ++m_pos;
            }
            else if (c == '/' && m_pos + 1 < m_text.size() && m_text[m_pos + 1] == '/')
            {
                while (m_pos < m_text.size() && m_text[m_pos] != '\n')
                {
                    ++m_pos;
                }
            }
            else if (c == '/' && m_pos + 1 < m_text.size() && m_text[m_pos + 1] == '*')
            {
                const auto end = m_text.find("*/", m_pos + 2);
                if (end == std::string_view::npos)
                {
                    Fail("unterminated comment");
                }
                for (auto i = m_pos; i < end; ++i)
                {
                    if (m_text[i] == '\n') ++m_line;
                }
                m_pos = end + 2;
            }
            else
            {
                return;
            }
        }
    }

    std::string RestOfLine()
    {
        const auto end = m_text.find('\n', m_pos);
        std::string line(m_text.substr(m_pos, end == std::string_view::npos ? std::string_view::npos : end - m_pos));
        m_pos = end == std::string_view::npos ? m_text.size() : end;
        // A line comment ends the directive.
        const auto comment = line.find("//");
        if (comment != std::string::npos)
        {
            line.erase(comment);
        }
        while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back())))
        {
            line.pop_back();
        }
        return line;
    }

    // "#include ..." and "#define NAME value" (at m_pos, which is '#').
    void ParseDirective()
    {
        ++m_pos;
        const std::string line = RestOfLine();
        std::size_t i = 0;
        auto skipSpace = [&] {
            while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i]))) ++i;
        };
        auto word = [&] {
            const auto start = i;
            while (i < line.size() && (std::isalnum(static_cast<unsigned char>(line[i])) || line[i] == '_')) ++i;
            return line.substr(start, i - start);
        };
        skipSpace();
        const std::string directive = word();
        if (directive == "include" || directive == "pragma")
        {
            return;  // the header is read separately; <windows.h> names only system constants
        }
        if (directive != "define")
        {
            Fail("directive #" + directive + " is not understood");
        }
        skipSpace();
        const std::string name = word();
        skipSpace();
        std::string value = line.substr(i);
        if (name.empty())
        {
            Fail("#define without a name");
        }
        if (value.empty())
        {
            m_script.m_symbols[name] = 1;
            return;
        }
        bool negative = false;
        std::size_t j = 0;
        if (value[0] == '-')
        {
            negative = true;
            j = 1;
        }
        long long number = 0;
        if (!ParseNumber(value.substr(j), number))
        {
            Fail("#define " + name + " must have a number, not \"" + value + "\"");
        }
        const long long result = negative ? -number : number;
        const auto known = m_script.m_symbols.find(name);
        if (known != m_script.m_symbols.end() && known->second != result)
        {
            Fail("#define " + name + " is defined twice with different values");
        }
        m_script.m_symbols[name] = result;
    }

    static bool ParseNumber(std::string_view in_text, long long& out_value)
    {
        int base = 10;
        if (in_text.size() > 2 && in_text[0] == '0' && (in_text[1] == 'x' || in_text[1] == 'X'))
        {
            base = 16;
            in_text.remove_prefix(2);
        }
        while (!in_text.empty() && (in_text.back() == 'L' || in_text.back() == 'l' || in_text.back() == 'U' ||
                                    in_text.back() == 'u'))
        {
            in_text.remove_suffix(1);
        }
        unsigned long long value = 0;
        const auto result = std::from_chars(in_text.data(), in_text.data() + in_text.size(), value, base);
        if (in_text.empty() || result.ec != std::errc() || result.ptr != in_text.data() + in_text.size())
        {
            return false;
        }
        out_value = static_cast<long long>(value);
        return true;
    }

    Token Next()
    {
        if (m_peeked)
        {
            Token t = std::move(*m_peeked);
            m_peeked.reset();
            return t;
        }
        for (;;)
        {
            SkipBlanksAndComments();
            if (m_pos < m_text.size() && m_text[m_pos] == '#')
            {
                ParseDirective();
                continue;
            }
            break;
        }
        Token t;
        t.line = m_line;
        if (m_pos >= m_text.size())
        {
            return t;
        }
        const char c = m_text[m_pos];
        if (std::isalpha(static_cast<unsigned char>(c)) || c == '_')
        {
            const auto start = m_pos;
            while (m_pos < m_text.size() &&
                   (std::isalnum(static_cast<unsigned char>(m_text[m_pos])) || m_text[m_pos] == '_'))
            {
                ++m_pos;
            }
            t.type = TokenType::Name;
            t.text = std::string(m_text.substr(start, m_pos - start));
            return t;
        }
        if (std::isdigit(static_cast<unsigned char>(c)))
        {
            const auto start = m_pos;
            while (m_pos < m_text.size() && std::isalnum(static_cast<unsigned char>(m_text[m_pos])))
            {
                ++m_pos;
            }
            t.type = TokenType::Number;
            t.text = std::string(m_text.substr(start, m_pos - start));
            if (!ParseNumber(t.text, t.number))
            {
                Fail("bad number " + t.text);
            }
            return t;
        }
        if (c == '"')
        {
            t.type = TokenType::String;
            t.text = ReadString();
            return t;
        }
        ++m_pos;
        t.type = TokenType::Punct;
        t.text = std::string(1, c);
        return t;
    }

    const Token& Peek()
    {
        if (!m_peeked)
        {
            m_peeked = Next();
        }
        return *m_peeked;
    }

    // A quoted string: "" is a quote; \\ \" \n \r \t and \a are escapes, as
    // the resource compiler reads them.
    std::string ReadString()
    {
        ++m_pos;
        std::string out;
        for (;;)
        {
            if (m_pos >= m_text.size() || m_text[m_pos] == '\n')
            {
                Fail("unterminated string");
            }
            const char c = m_text[m_pos++];
            if (c == '"')
            {
                if (m_pos < m_text.size() && m_text[m_pos] == '"')
                {
                    out += '"';
                    ++m_pos;
                    continue;
                }
                return out;
            }
            if (c == '\\' && m_pos < m_text.size())
            {
                const char e = m_text[m_pos++];
                switch (e)
                {
                    case 'n': out += '\n'; break;
                    case 'r': out += '\r'; break;
                    case 't': out += '\t'; break;
                    case 'a': out += '\b'; break;  // right-aligns menu accelerators
                    case '\\': out += '\\'; break;
                    case '"': out += '"'; break;
                    default: Fail(std::string("escape \\") + e + " is not understood");
                }
                continue;
            }
            out += c;
        }
    }

    void Expect(std::string_view in_punct)
    {
        const Token t = Next();
        if (t.type != TokenType::Punct || t.text != in_punct)
        {
            Fail("\"" + std::string(in_punct) + "\" expected before \"" + t.text + "\"", t.line);
        }
    }

    bool Accept(std::string_view in_punct)
    {
        const Token& t = Peek();
        if (t.type == TokenType::Punct && t.text == in_punct)
        {
            Next();
            return true;
        }
        return false;
    }

    long long ValueOf(const Token& in_token)
    {
        if (in_token.type == TokenType::Number)
        {
            return in_token.number;
        }
        if (in_token.type == TokenType::Name)
        {
            const auto own = m_script.m_symbols.find(in_token.text);
            if (own != m_script.m_symbols.end())
            {
                return own->second;
            }
            const auto& system = SystemSymbols();
            const auto sys = system.find(in_token.text);
            if (sys != system.end())
            {
                return sys->second;
            }
            Fail("unknown name " + in_token.text, in_token.line);
        }
        Fail("a number or name expected, not \"" + in_token.text + "\"", in_token.line);
    }

    // term: ["-"] number | name | "(" expression ")"
    long long Term()
    {
        Token t = Next();
        if (t.type == TokenType::Punct && t.text == "(")
        {
            const long long v = Expression();
            Expect(")");
            return v;
        }
        if (t.type == TokenType::Punct && t.text == "-")
        {
            return -Term();
        }
        return ValueOf(t);
    }

    // expression: term { ("|" | "+") term }
    long long Expression()
    {
        long long v = Term();
        while (Accept("|") || Accept("+"))
        {
            v |= Term();
        }
        return v;
    }

    // A style: bits to add and bits that "NOT" removes.
    struct Style
    {
        std::uint32_t add = 0;
        std::uint32_t remove = 0;
        std::uint32_t Apply(std::uint32_t in_default) const { return (in_default | add) & ~remove; }
    };

    Style StyleExpression()
    {
        Style s;
        for (;;)
        {
            const Token& t = Peek();
            if (t.type == TokenType::Name && t.text == "NOT")
            {
                Next();
                s.remove |= static_cast<std::uint32_t>(Term());
                s.add &= ~s.remove;
            }
            else
            {
                s.add |= static_cast<std::uint32_t>(Term());
            }
            if (!Accept("|"))
            {
                return s;
            }
        }
    }

    int Int() { return static_cast<int>(Expression()); }

    std::string StringToken()
    {
        Token t = Next();
        if (t.type != TokenType::String)
        {
            Fail("a quoted text expected, not \"" + t.text + "\"", t.line);
        }
        return t.text;
    }

    bool IsBlockStart(const Token& in_token) const
    {
        return (in_token.type == TokenType::Name && in_token.text == "BEGIN") ||
               (in_token.type == TokenType::Punct && in_token.text == "{");
    }
    bool IsBlockEnd(const Token& in_token) const
    {
        return (in_token.type == TokenType::Name && in_token.text == "END") ||
               (in_token.type == TokenType::Punct && in_token.text == "}");
    }

    void ParseDialog(unsigned in_id, int in_line)
    {
        using Support::StringConverter;
        if (m_script.m_dialogs.count(in_id) != 0)
        {
            Fail("dialog " + std::to_string(in_id) + " is defined twice", in_line);
        }
        DialogTemplate dialog;
        dialog.id = in_id;
        dialog.x = Int();
        Expect(",");
        dialog.y = Int();
        Expect(",");
        dialog.width = Int();
        Expect(",");
        dialog.height = Int();
        if (Accept(","))
        {
            Expression();  // help id
        }
        dialog.style = 0x80000000u | 0x00080000u | 0x00C00000u;  // WS_POPUP | WS_SYSMENU | WS_CAPTION
        for (;;)
        {
            Token t = Next();
            if (IsBlockStart(t))
            {
                break;
            }
            if (t.type != TokenType::Name)
            {
                Fail("dialog statement expected, not \"" + t.text + "\"", t.line);
            }
            if (t.text == "STYLE")
            {
                dialog.style = StyleExpression().Apply(0);
            }
            else if (t.text == "EXSTYLE")
            {
                dialog.exStyle = StyleExpression().Apply(0);
            }
            else if (t.text == "CAPTION")
            {
                dialog.caption = StringConverter::FromUtf8(StringToken());
            }
            else if (t.text == "FONT")
            {
                dialog.fontSize = Int();
                Expect(",");
                dialog.fontFace = StringConverter::FromUtf8(StringToken());
                while (Accept(","))
                {
                    Expression();  // weight, italic, character set
                }
            }
            else
            {
                Fail("dialog statement " + t.text + " is not understood", t.line);
            }
        }
        for (;;)
        {
            Token t = Next();
            if (IsBlockEnd(t))
            {
                break;
            }
            if (t.type != TokenType::Name)
            {
                Fail("control statement expected, not \"" + t.text + "\"", t.line);
            }
            dialog.controls.push_back(ParseControl(t));
        }
        m_script.m_dialogs.emplace(in_id, std::move(dialog));
    }

    // The text of a control: a quoted string, or a resource id (icons).
    tarni_wstring ControlText()
    {
        const Token& t = Peek();
        if (t.type == TokenType::String)
        {
            return Support::StringConverter::FromUtf8(Next().text);
        }
        return Support::StringConverter::FromNumber(Expression());
    }

    ControlTemplate ParseControl(const Token& in_keyword)
    {
        using Support::StringConverter;
        ControlTemplate control;
        if (in_keyword.text == "CONTROL")
        {
            control.text = ControlText();
            Expect(",");
            control.id = Int();
            Expect(",");
            control.className = StringConverter::FromUtf8(StringToken());
            Expect(",");
            control.style = StyleExpression().Apply(BASE);
            Expect(",");
            ReadRectangle(control);
            if (Accept(","))
            {
                control.exStyle = StyleExpression().Apply(0);
            }
            control.kind = KindOfClass(StringConverter::ToUtf8(control.className), control.style);
            return control;
        }
        if (in_keyword.text == "ICON")
        {
            control.kind = ControlKind::Icon;
            control.className = u"Static";
            control.text = ControlText();
            Expect(",");
            control.id = Int();
            Expect(",");
            control.x = Int();
            Expect(",");
            control.y = Int();
            control.style = BASE | SS_ICON;
            if (Accept(","))
            {
                control.width = Int();
                Expect(",");
                control.height = Int();
                if (Accept(","))
                {
                    control.style = StyleExpression().Apply(control.style);
                    if (Accept(","))
                    {
                        control.exStyle = StyleExpression().Apply(0);
                    }
                }
            }
            return control;
        }
        for (const auto& shape : kStatements)
        {
            if (in_keyword.text != shape.keyword)
            {
                continue;
            }
            control.kind = shape.kind;
            control.className = StringConverter::FromUtf8(shape.className);
            if (shape.hasText)
            {
                control.text = ControlText();
                Expect(",");
            }
            control.id = Int();
            Expect(",");
            ReadRectangle(control);
            control.style = shape.defaultStyle;
            if (Accept(","))
            {
                const Style s = StyleExpression();
                // A button type given explicitly replaces the statement's own.
                control.style = s.Apply(control.style);
                if (Accept(","))
                {
                    control.exStyle = StyleExpression().Apply(0);
                }
            }
            return control;
        }
        Fail("control statement " + in_keyword.text + " is not understood", in_keyword.line);
    }

    void ReadRectangle(ControlTemplate& io_control)
    {
        io_control.x = Int();
        Expect(",");
        io_control.y = Int();
        Expect(",");
        io_control.width = Int();
        Expect(",");
        io_control.height = Int();
    }

    void ParseStringTable()
    {
        // Optional statements before the block (LANGUAGE, CHARACTERISTICS, VERSION).
        for (;;)
        {
            Token t = Next();
            if (IsBlockStart(t))
            {
                break;
            }
            if (t.type == TokenType::Name && (t.text == "LANGUAGE"))
            {
                Expression();
                Expect(",");
                Expression();
                continue;
            }
            if (t.type == TokenType::Name && (t.text == "CHARACTERISTICS" || t.text == "VERSION"))
            {
                Expression();
                continue;
            }
            Fail("BEGIN expected after STRINGTABLE, not \"" + t.text + "\"", t.line);
        }
        for (;;)
        {
            Token t = Next();
            if (IsBlockEnd(t))
            {
                return;
            }
            if (t.type == TokenType::End)
            {
                Fail("END of STRINGTABLE missing", t.line);
            }
            m_peeked = std::move(t);
            const long long id = Expression();
            Accept(",");
            const int line = Peek().line;
            const std::string text = StringToken();
            if (id < 0 || id > 0xFFFF)
            {
                Fail("string id " + std::to_string(id) + " is out of range", line);
            }
            if (!m_script.m_strings.emplace(static_cast<unsigned>(id), Support::StringConverter::FromUtf8(text)).second)
            {
                Fail("string " + std::to_string(id) + " is defined twice", line);
            }
        }
    }

    ResourceScript& m_script;
    std::string_view m_text;
    std::string m_name;
    std::size_t m_pos = 0;
    int m_line = 1;
    std::optional<Token> m_peeked;
};

ResourceScript ResourceScript::Parse(std::string_view in_scriptText, std::string_view in_headerText,
                                     std::string_view in_scriptName, std::string_view in_headerName)
{
    ResourceScript script;
    ResourceScriptParser(script, in_headerText, in_headerName).ParseHeader();
    ResourceScriptParser(script, in_scriptText, in_scriptName).ParseScript();
    return script;
}

const DialogTemplate* ResourceScript::FindDialog(unsigned in_id) const
{
    const auto it = m_dialogs.find(in_id);
    return it == m_dialogs.end() ? nullptr : &it->second;
}

const tarni_wstring* ResourceScript::FindString(unsigned in_id) const
{
    const auto it = m_strings.find(in_id);
    return it == m_strings.end() ? nullptr : &it->second;
}

int ResourceScript::LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars) const
{
    if (out_buffer == nullptr || in_bufferChars <= 0)
    {
        return 0;
    }
    const tarni_wstring* text = FindString(in_id);
    if (text == nullptr)
    {
        out_buffer[0] = u'\0';
        return 0;
    }
    const auto count = std::min<std::size_t>(text->size(), static_cast<std::size_t>(in_bufferChars - 1));
    std::copy_n(text->data(), count, out_buffer);
    out_buffer[count] = u'\0';
    return static_cast<int>(count);
}

std::optional<long long> ResourceScript::FindSymbol(std::string_view in_name) const
{
    const auto it = m_symbols.find(in_name);
    if (it == m_symbols.end())
    {
        return std::nullopt;
    }
    return it->second;
}
}  // namespace Tarni::Platform
