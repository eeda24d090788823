// The resource script as the non-Windows hosts read it: every template and
// string the dialogs name is there with its size, ids, labels and styles,
// and the reader refuses what it does not understand with file and line.
#include <gtest/gtest.h>

#include "ui/ResourceScript.h"
#include "resource.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Support::StringConverter;

namespace
{
const ResourceScript& Script() { return ResourceScript::Embedded(); }

std::string U8(tarni_wstring_view in_text) { return StringConverter::ToUtf8(in_text); }

struct TemplateCase
{
    unsigned id;
    const char* caption;
    int width;   // 0: the size is the layout's own
    int height;
};

const TemplateCase kTemplates[] = {
    {IDD_DRIVER_CONFIG, "Tarni Spark ODBC Driver Configuration", 0, 0},
    {IDD_DSN_SETUP, "Tarni Spark ODBC Driver DSN Setup", 0, 0},
    {IDD_ADVANCED_OPTIONS, "Advanced Options", 0, 0},
    {IDD_EDIT_PROPERTY, "Edit Property", 300, 71},
    {IDD_SERVER_SIDE_PROPERTIES, "Server Side Properties", 309, 111},
    {IDD_TEST_RESULTS, "Test Results", 0, 0},
    {IDD_TEMP_TABLE_CONFIG, "Temporary Table Configuration", 265, 145},
    {IDD_OAUTH_OPTIONS, "OAuth Options", 320, 249},
    {IDD_ZOOKEEPER_OPTIONS, "ZooKeeper Options", 243, 53},
    {IDD_SSL_OPTIONS_TWO_WAY, "SSL Options", 0, 0},
    {IDD_AOSS_OPTIONS, "AOSS Options", 227, 118},
    {IDD_SAML_OPTIONS, "SAML Options", 241, 75},
    {IDD_DFI_OPTIONS, "DFI Options", 303, 118},
    {IDD_LOGGING_OPTIONS, "Logging Configuration", 272, 143},
    {IDD_HTTP_PROPERTIES, "HTTP Properties", 309, 116},
    {IDD_SSL_OPTIONS, "SSL Options", 311, 122},
    {IDD_PASSWORD_OPTIONS, "Password Options", 189, 58},
    {IDD_PROXY_OPTIONS, "HTTP Proxy Options", 267, 143},
};

struct ControlCase
{
    unsigned dialog;
    int id;
    ControlKind kind;
    const char* text;          // nullptr: not checked
    std::uint32_t styleBits;   // bits that must be set
};

using namespace DialogStyle;
// Labels that no flow test finds and the styles the hosts act on.
const ControlCase kControls[] = {
    {IDD_PASSWORD_OPTIONS, IDC_PWD_ENCRYPT_FOR_LABEL, ControlKind::Static, "Encrypt Password For:", 0},
    {IDD_PASSWORD_OPTIONS, IDC_PWD_CURRENT_USER_ONLY, ControlKind::Button, "Current User Only",
     BS_AUTORADIOBUTTON | WS_GROUP},
    {IDD_PASSWORD_OPTIONS, IDC_PWD_ALL_USERS, ControlKind::Button, "All Users of this Machine", BS_AUTORADIOBUTTON},
    {IDD_ZOOKEEPER_OPTIONS, IDC_ZK_NAMESPACE, ControlKind::Edit, nullptr, WS_TABSTOP},
    {IDD_DRIVER_CONFIG, IDC_PASSWORD, ControlKind::Edit, nullptr, ES_PASSWORD},
    {IDD_DRIVER_CONFIG, IDC_SERVER_TYPE, ControlKind::ComboBox, nullptr, CBS_DROPDOWNLIST},
    {IDD_DRIVER_CONFIG, IDC_CANONICALIZE_PRINCIPAL, ControlKind::Button, "Canonicalize Principal FQDN",
     BS_AUTOCHECKBOX},
    {IDD_DSN_SETUP, IDC_PORT, ControlKind::Edit, nullptr, ES_NUMBER},
    {IDD_ADVANCED_OPTIONS, IDC_ADV_USE_ASYNC_EXEC, ControlKind::Button, "Use Async Exec", BS_AUTOCHECKBOX},
    {IDD_ADVANCED_OPTIONS, IDC_ADV_MAX_BYTES_PER_FETCH, ControlKind::Edit, nullptr, WS_DISABLED},
    {IDD_EDIT_PROPERTY, IDC_PROP_GROUP, ControlKind::Button, "Server Side Properties", BS_GROUPBOX},
    {IDD_SERVER_SIDE_PROPERTIES, IDC_PROP_LIST, ControlKind::ListBox, nullptr, LBS_SORT | LBS_NOTIFY},
    {IDD_TEST_RESULTS, IDC_TEST_RESULTS_TEXT, ControlKind::Edit, nullptr, ES_MULTILINE | ES_READONLY},
    {IDD_TEMP_TABLE_CONFIG, IDC_TT_ENABLE_TEMP_TABLE, ControlKind::Button, "Enable Temporary Table", 0},
    {IDD_AOSS_OPTIONS, IDC_AOSS_PASSWORD, ControlKind::Edit, nullptr, ES_PASSWORD},
    {IDD_SAML_OPTIONS, IDC_SAML_AUTH_FLOW, ControlKind::ComboBox, nullptr, 0},
    {IDD_LOGGING_OPTIONS, IDC_LOG_MAX_FILE_COUNT, ControlKind::Edit, nullptr, ES_NUMBER},
    {IDD_LOGGING_OPTIONS, IDC_LOG_MAX_FILE_SIZE, ControlKind::Edit, nullptr, ES_NUMBER},
    {IDD_LOGGING_OPTIONS, IDC_LOG_BROWSE, ControlKind::Button, "&Browse...", 0},
    {IDD_HTTP_PROPERTIES, IDC_HTTP_HEADERS_GROUP, ControlKind::Button, "Custom HTTP Headers", BS_GROUPBOX},
    {IDD_HTTP_PROPERTIES, IDC_PROP_LIST, ControlKind::ListBox, nullptr, LBS_SORT | LBS_NOTIFY},
    {IDD_SSL_OPTIONS_TWO_WAY, IDC_SSL_TWO_WAY, ControlKind::Button, "Two-way SSL", BS_AUTOCHECKBOX},
    {IDD_PROXY_OPTIONS, IDC_PROXY_USE, ControlKind::Button, "Use Pro&xy", BS_AUTOCHECKBOX},
    {IDD_PROXY_OPTIONS, IDC_PROXY_PORT, ControlKind::Edit, nullptr, ES_NUMBER},
    {IDD_PROXY_OPTIONS, IDC_PROXY_PASSWORD, ControlKind::Edit, nullptr, ES_PASSWORD},
};

struct StringCase
{
    unsigned id;
    const char16_t* text;
};

// The strings that no dialog test shows; the others are checked where they appear.
const StringCase kStrings[] = {
    {IDS_BITNESS_32, u" (32 bit)"},
    {9107, u"Driver- or translator-specific error."},
};
}  // namespace

TEST(ResourceScriptTest, EveryTemplateOfTheProgramIsThereWithItsCaptionAndSize)
{
    for (const auto& expected : kTemplates)
    {
        SCOPED_TRACE(expected.id);
        const DialogTemplate* dialog = Script().FindDialog(expected.id);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(U8(dialog->caption), expected.caption);
        if (expected.width != 0)
        {
            EXPECT_EQ(dialog->width, expected.width);
            EXPECT_EQ(dialog->height, expected.height);
        }
        // Every dialog but the Test Results has Cancel, and each has a default button.
        EXPECT_EQ(dialog->FindControl(2) != nullptr, expected.id != IDD_TEST_RESULTS);
        const auto* ok = dialog->FindControl(1);
        ASSERT_NE(ok, nullptr);
        EXPECT_TRUE(ok->IsDefaultButton());
    }
    EXPECT_EQ(Script().GetDialogs().size(), std::size(kTemplates));
}

TEST(ResourceScriptTest, ControlsCarryTheIdsLabelsAndStylesTheDialogsUse)
{
    for (const auto& expected : kControls)
    {
        SCOPED_TRACE(std::to_string(expected.dialog) + "/" + std::to_string(expected.id));
        const DialogTemplate* dialog = Script().FindDialog(expected.dialog);
        ASSERT_NE(dialog, nullptr);
        const ControlTemplate* control = dialog->FindControl(expected.id);
        ASSERT_NE(control, nullptr);
        EXPECT_EQ(control->kind, expected.kind);
        if (expected.text != nullptr)
        {
            EXPECT_EQ(U8(control->text), expected.text);
        }
        EXPECT_EQ(control->style & expected.styleBits, expected.styleBits);
        EXPECT_TRUE(control->HasStyle(WS_CHILD | WS_VISIBLE));
    }
}

TEST(ResourceScriptTest, StringsAndTheIconAreThere)
{
    for (const auto& expected : kStrings)
    {
        const tarni_wstring* text = Script().FindString(expected.id);
        ASSERT_NE(text, nullptr) << expected.id;
        EXPECT_EQ(*text, expected.text) << expected.id;
    }
    EXPECT_EQ(Script().GetIcons(), std::vector<unsigned>{IDI_PRODUCT});
}

TEST(ResourceScriptTest, ReadsTheStatementsAndStyleExpressionsTheProjectWrites)
{
    const char* header = "#define IDD_X 7\n#define IDC_A 100 // comment\n#define IDS_T 0x10\n";
    const char* script = R"(
#include <windows.h>
#include "resource.h"
/* a block
   comment */
IDD_X DIALOGEX 0, 0, 100, 50
STYLE DS_SETFONT | WS_POPUP | WS_CAPTION
CAPTION "Quote ""here"""
FONT 8, "MS Shell Dlg", 400, 0, 0x1
BEGIN
    CONTROL "Check",IDC_A,"Button",BS_AUTOCHECKBOX | WS_TABSTOP,1,2,30,10
    EDITTEXT 101,1,14,30,12,ES_NUMBER | NOT WS_BORDER
    ICON IDD_X,102,1,30
    DEFPUSHBUTTON "OK",IDOK,60,30,30,14
END
STRINGTABLE
BEGIN
    IDS_T, "a\tb\\c"
    17 "two"
END
)";
    const ResourceScript parsed = ResourceScript::Parse(script, header);
    const DialogTemplate* dialog = parsed.FindDialog(7);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->caption, u"Quote \"here\"");
    ASSERT_EQ(dialog->controls.size(), 4u);
    EXPECT_TRUE(dialog->controls[0].IsCheckBox());
    EXPECT_TRUE(dialog->controls[0].IsAutomatic());
    EXPECT_EQ(dialog->controls[1].kind, ControlKind::Edit);
    EXPECT_TRUE(dialog->controls[1].HasStyle(ES_NUMBER | WS_TABSTOP));
    EXPECT_FALSE(dialog->controls[1].HasStyle(WS_BORDER));
    EXPECT_EQ(dialog->controls[2].kind, ControlKind::Icon);
    EXPECT_EQ(dialog->controls[2].text, u"7");
    EXPECT_EQ(*parsed.FindString(16), u"a\tb\\c");
    EXPECT_EQ(*parsed.FindString(17), u"two");
    EXPECT_EQ(parsed.FindSymbol("IDC_A"), 100);
}

TEST(ResourceScriptTest, RefusesWhatItDoesNotUnderstandNamingFileAndLine)
{
    struct Case
    {
        const char* header;
        const char* script;
        const char* line;
        const char* detail;
    };
    const Case cases[] = {
        {"", "1 DIALOGEX 0,0,10,10\nBEGIN\n  SCROLLBAR 5,1,1,1,1\nEND\n", "3", "SCROLLBAR"},
        {"", "1 DIALOGEX 0,0,10,10\nBEGIN\n  EDITTEXT IDC_NOWHERE,1,1,1,1\nEND\n", "3", "IDC_NOWHERE"},
        {"", "STRINGTABLE\nBEGIN\n 5 \"a\"\n 5 \"b\"\nEND\n", "4", "twice"},
        {"", "STRINGTABLE\nBEGIN\n 5 \"open\nEND\n", "3", "unterminated"},
        {"", "1 MENU\nBEGIN\nEND\n", "1", "MENU"},
        {"#define A 1\n#define A 2\n", "", "2", "defined twice"},
        {"int x;\n", "", "1", "#define"},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.script);
        try
        {
            (void)ResourceScript::Parse(c.script, c.header, "test.rc", "test.h");
            FAIL() << "parsed";
        }
        catch (const Support::ErrorException& e)
        {
            EXPECT_EQ(e.GetMessageKey(), u"DSResourceScriptErr");
            ASSERT_EQ(e.GetParameters().size(), 3u);
            EXPECT_TRUE(e.GetParameters()[0] == u"test.rc" || e.GetParameters()[0] == u"test.h");
            EXPECT_EQ(U8(e.GetParameters()[1]), c.line);
            EXPECT_NE(U8(e.GetParameters()[2]).find(c.detail), std::string::npos) << U8(e.GetParameters()[2]);
        }
    }
}
