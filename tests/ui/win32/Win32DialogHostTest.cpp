// The Win32 host under Wine and an X server: the compiled resource script
// agrees with what the script reader sees (the other hosts build their
// dialogs from the reader), long strings load whole, and the Password
// Options and ZooKeeper Options dialogs work when driven through window
// messages from a second thread.
#include <gtest/gtest.h>

#include "dialogs/framework/DSBaseDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/product/QuillZkDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "ui/ResourceScript.h"
#include "ui/win32/GuiDriver.h"
#include "ui/win32/Win32DialogHost.h"
#include "ui/win32/Win32DialogWindow.h"
#include "product/QuillConfiguration.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;
using Tarni::Testing::GuiDriver;
using Tarni::Support::StringConverter;

namespace
{
constexpr unsigned LONG_STRING_ID = 60010;  // only in this test's resources


std::string ClassOf(HWND in_window)
{
    char name[64] = {};
    ::GetClassNameA(in_window, name, sizeof(name));
    std::string lower(name);
    for (auto& c : lower) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return lower;
}

// Compares the live dialog with the template the reader built; records
// differences in g_differences and ends the dialog.
std::vector<std::string> g_differences;

std::intptr_t CompareWithTemplate(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t, std::intptr_t)
{
    if (in_message != WM_INITDIALOG)
    {
        return 0;
    }
    const DialogTemplate* source = ResourceScript::Embedded().FindDialog(in_window->GetTemplateId());
    HWND dialog = static_cast<Win32DialogWindow*>(in_window)->GetHandle();
    const std::string where = "dialog " + std::to_string(source->id);
    if (in_window->GetTitle() != source->caption)
    {
        g_differences.push_back(where + ": caption");
    }
    for (const auto& control : source->controls)
    {
        if (control.id == -1)
        {
            continue;
        }
        HWND item = ::GetDlgItem(dialog, control.id);
        const std::string what = where + " control " + std::to_string(control.id);
        if (item == nullptr)
        {
            g_differences.push_back(what + ": missing");
            continue;
        }
        std::string expectedClass = StringConverter::ToUtf8(control.className);
        for (auto& c : expectedClass) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
        if (ClassOf(item) != expectedClass)
        {
            g_differences.push_back(what + ": class " + ClassOf(item) + " instead of " + expectedClass);
        }
        const auto style = static_cast<std::uint32_t>(::GetWindowLongW(item, GWL_STYLE));
        const std::uint32_t mask = control.kind == ControlKind::Button ? 0x0F
                                   : control.kind == ControlKind::Edit  ? (ES_PASSWORD | ES_NUMBER | ES_MULTILINE | ES_READONLY)
                                   : control.kind == ControlKind::ListBox ? (LBS_SORT | LBS_NOTIFY)
                                   : control.kind == ControlKind::ComboBox ? 0x03
                                                                           : 0;
        if ((style & mask) != (control.style & mask))
        {
            g_differences.push_back(what + ": style");
        }
        if (((style & WS_DISABLED) != 0) != ((control.style & WS_DISABLED) != 0))
        {
            g_differences.push_back(what + ": enabled state");
        }
        if (control.kind != ControlKind::ComboBox && control.kind != ControlKind::ListBox &&
            control.kind != ControlKind::Icon && in_window->GetItemText(control.id, 1024) != control.text)
        {
            g_differences.push_back(what + ": text");
        }
    }
    in_window->EndDialog(7);
    return 1;
}

class Win32DialogHostTest : public ::testing::Test
{
protected:
    void SetUp() override { DSDialogModule::SetHost(&m_host); }
    void TearDown() override { DSDialogModule::SetHost(nullptr); }

    Win32DialogHost m_host;
};
}  // namespace

TEST_F(Win32DialogHostTest, TheCompiledTemplatesAgreeWithTheScriptReader)
{
    for (const auto& [id, dialog] : ResourceScript::Embedded().GetDialogs())
    {
        EXPECT_EQ(m_host.DialogBoxParam(id, nullptr, &CompareWithTemplate, 0), 7) << id;
    }
    EXPECT_TRUE(g_differences.empty()) << g_differences.front();
    EXPECT_EQ(m_host.DialogBoxParam(4242, nullptr, &CompareWithTemplate, 0), -1);
}

TEST_F(Win32DialogHostTest, TheCompiledStringsAgreeWithTheScriptReaderAndLongOnesLoadWhole)
{
    for (const auto& [id, text] : ResourceScript::Embedded().GetStrings())
    {
        EXPECT_EQ(DSBaseDialog::LoadResourceString(id), text) << id;
    }
    const tarni_wstring longText = DSBaseDialog::LoadResourceString(LONG_STRING_ID);
    EXPECT_EQ(longText.size(), 5000u);
    EXPECT_EQ(longText.find_first_not_of(u'x'), tarni_wstring::npos);
    EXPECT_EQ(DSBaseDialog::LoadResourceString(65000), u"Error loading the string.");
}

TEST_F(Win32DialogHostTest, PasswordOptionsThroughWindowMessages)
{
    ConfigurationMap map;
    DSUidPwdConfiguration credentials(map, nullptr, 2, DSUidPwdKeySet{u"UID", u"PWD", u"EncryptedPWD", u"", nullptr});
    credentials.SetEncryptPwd(true);
    credentials.SetDPAPIEncryptForAllUsers(false);

    // OK after choosing "All Users of this Machine".
    bool shownCurrentUser = false;
    const bool ok = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"Password Options", ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            shownCurrentUser = GuiDriver::Checked(dialog, IDC_PWD_CURRENT_USER_ONLY);
            GuiDriver::Click(dialog, IDC_PWD_ALL_USERS);
            GuiDriver::Click(dialog, IDOK);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return DSPasswordOptionsDialog::Show(nullptr, &credentials); });
    EXPECT_TRUE(ok);
    EXPECT_TRUE(shownCurrentUser);
    EXPECT_TRUE(credentials.IsEncryptPwd());
    EXPECT_TRUE(credentials.IsDPAPIEncryptForAllUsers());

    // Cancel, Escape and the close box leave the scope as it is.
    for (GuiDriver::Closer close : GuiDriver::CLOSERS)
    {
        const bool result = GuiDriver::WhileModal(
            [&] {
                HWND dialog = GuiDriver::WaitForDialog(L"Password Options", ::GetCurrentProcessId());
                ASSERT_NE(dialog, nullptr);
                GuiDriver::Click(dialog, IDC_PWD_CURRENT_USER_ONLY);
                close(dialog);
                EXPECT_TRUE(GuiDriver::WaitForClose(dialog));
            },
            [&] { return DSPasswordOptionsDialog::Show(nullptr, &credentials); });
        EXPECT_FALSE(result);
        EXPECT_TRUE(credentials.IsDPAPIEncryptForAllUsers());
    }
}

TEST_F(Win32DialogHostTest, ZooKeeperOptionsThroughWindowMessages)
{
    SparkODBC::QuillConfiguration configuration(u"", 2, nullptr);
    configuration.SetValue(Keys::ZKNamespace, u"old");

    bool disabledWhenEmpty = false;
    bool centred = false;
    const bool ok = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"ZooKeeper Options", ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            RECT own{}, desktop{};
            ::GetWindowRect(dialog, &own);
            ::GetWindowRect(::GetDesktopWindow(), &desktop);
            centred = own.left == (desktop.left + desktop.right - (own.right - own.left)) / 2 &&
                      own.top == (desktop.top + desktop.bottom - (own.bottom - own.top)) / 2;
            EXPECT_EQ(GuiDriver::Text(dialog, IDC_ZK_NAMESPACE), L"old");
            GuiDriver::Type(dialog, IDC_ZK_NAMESPACE, L"");
            disabledWhenEmpty = !GuiDriver::Enabled(dialog, IDOK);
            GuiDriver::Type(dialog, IDC_ZK_NAMESPACE, L"hs2");
            GuiDriver::Click(dialog, IDOK);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return SparkODBC::QuillZkDialog::Show(nullptr, &configuration); });
    EXPECT_TRUE(ok);
    EXPECT_TRUE(disabledWhenEmpty);
    EXPECT_TRUE(centred) << "a dialog without a parent is centred on the desktop";
    EXPECT_EQ(configuration.GetValue(Keys::ZKNamespace), u"hs2");

    const bool cancelled = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"ZooKeeper Options", ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            GuiDriver::Type(dialog, IDC_ZK_NAMESPACE, L"other");
            GuiDriver::PressEscape(dialog);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return SparkODBC::QuillZkDialog::Show(nullptr, &configuration); });
    EXPECT_FALSE(cancelled);
    EXPECT_EQ(configuration.GetValue(Keys::ZKNamespace), u"hs2");
}

TEST_F(Win32DialogHostTest, ErrorBoxesAreRealMessageBoxesWithTheErrorTitle)
{
    std::wstring caption;
    std::wstring text;
    GuiDriver::WhileModal(
        [&] {
            HWND box = GuiDriver::WaitForDialog(L"DSN Configuration Error", ::GetCurrentProcessId());
            ASSERT_NE(box, nullptr);
            wchar_t buffer[512] = {};
            ::GetWindowTextW(box, buffer, 512);
            caption = buffer;
            text = GuiDriver::Text(box, 0xFFFF);  // the text of a message box
            ::PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        },
        [&] {
            DSBaseDialog::GuardAction(nullptr, nullptr, "Tarni::DriverSupport", "Test",
                                      [] { throw DSSetupException(SETUP_INVALID_DSN_CHARACTERS); });
            return 0;
        });
    EXPECT_EQ(caption, L"DSN Configuration Error");
    EXPECT_EQ(text, L"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\");
}
