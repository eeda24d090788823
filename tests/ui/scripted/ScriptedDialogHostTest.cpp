// The scripted host sends what Windows would send for each user action, and
// fails the test on anything it was not told to expect.
#include <gtest/gtest.h>

#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;

namespace
{
struct Message
{
    std::uint32_t message;
    unsigned id;
    unsigned code;
};

std::vector<Message> g_messages;
bool g_handleClose = false;

std::intptr_t Recorder(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t)
{
    if (in_message == WM_COMMAND || in_message == WM_INITDIALOG || in_message == WM_CLOSE)
    {
        g_messages.push_back({in_message, LowWord(in_wParam), HighWord(in_wParam)});
    }
    if (in_message == WM_COMMAND && (LowWord(in_wParam) == IDOK || LowWord(in_wParam) == IDCANCEL))
    {
        in_window->EndDialog(LowWord(in_wParam) == IDOK ? 1 : 0);
    }
    return in_message == WM_CLOSE ? (g_handleClose ? 1 : 0) : 1;
}

class ScriptedDialogHostTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_messages.clear();
        g_handleClose = false;
    }

    std::vector<Message> Commands() const
    {
        std::vector<Message> commands;
        for (const auto& m : g_messages)
        {
            if (m.message == WM_COMMAND) commands.push_back(m);
        }
        return commands;
    }

    ScriptedDialogHost m_host;
};
}  // namespace

TEST_F(ScriptedDialogHostTest, TypingNotifiesUpdateThenChangeAndNumberFieldsKeepOnlyDigits)
{
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_PORT, u"8a0b8");
        EXPECT_EQ(w.Text(IDC_PROXY_PORT), u"808");
        w.Click(IDOK);
    });
    EXPECT_EQ(m_host.DialogBoxParam(IDD_PROXY_OPTIONS, nullptr, &Recorder, 0), 1);
    const auto commands = Commands();
    ASSERT_GE(commands.size(), 2u);
    EXPECT_EQ(commands[0].id, static_cast<unsigned>(IDC_PROXY_PORT));
    EXPECT_EQ(commands[0].code, EN_UPDATE);
    EXPECT_EQ(commands[1].code, EN_CHANGE);
}

TEST_F(ScriptedDialogHostTest, AutomaticRadioButtonsClearTheRestOfTheirGroup)
{
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_CURRENT_USER_ONLY);
        w.Click(IDC_PWD_ALL_USERS);
        EXPECT_FALSE(w.Checked(IDC_PWD_CURRENT_USER_ONLY));
        EXPECT_TRUE(w.Checked(IDC_PWD_ALL_USERS));
        w.Click(IDC_PWD_ALL_USERS);
        EXPECT_TRUE(w.Checked(IDC_PWD_ALL_USERS));  // a radio button does not uncheck itself
        w.PressEnter();
    });
    EXPECT_EQ(m_host.DialogBoxParam(IDD_PASSWORD_OPTIONS, nullptr, &Recorder, 0), 1);
}

TEST_F(ScriptedDialogHostTest, EscapeAndTheCloseBoxArriveAsCancel)
{
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) { w.PressEscape(); });
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) { w.PressCloseBox(); });
    EXPECT_EQ(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), 0);
    EXPECT_EQ(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), 0);
    const auto commands = Commands();
    ASSERT_EQ(commands.size(), 2u);
    EXPECT_EQ(commands[0].id, static_cast<unsigned>(IDCANCEL));
    EXPECT_EQ(commands[1].id, static_cast<unsigned>(IDCANCEL));
    EXPECT_EQ(g_messages.back().message, WM_COMMAND);
    EXPECT_EQ(g_messages[g_messages.size() - 2].message, WM_CLOSE);
}

TEST_F(ScriptedDialogHostTest, EnterDoesNothingWhileTheDefaultButtonIsDisabled)
{
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) {
        w.EnableItem(IDOK, false);
        w.PressEnter();
        EXPECT_FALSE(w.IsEnded());
        EXPECT_THROW(w.Click(IDOK), ScriptedHostError);
        w.PressEscape();
    });
    EXPECT_EQ(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), 0);
}

TEST_F(ScriptedDialogHostTest, AMissingTemplateGivesMinusOneAndTheUnexpectedFailsTheTest)
{
    EXPECT_EQ(m_host.DialogBoxParam(4242, nullptr, &Recorder, 0), -1);
    EXPECT_TRUE(g_messages.empty());
    EXPECT_THROW(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), ScriptedHostError);
    EXPECT_THROW(m_host.MessageBox(nullptr, u"text", u"title", MB_OK), ScriptedHostError);
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow&) {});
    EXPECT_THROW(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), ScriptedHostError);
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow&) {});
    EXPECT_THROW(m_host.DialogBoxParam(IDD_ZOOKEEPER_OPTIONS, nullptr, &Recorder, 0), ScriptedHostError)
        << "a script that leaves its dialog open";
}

TEST_F(ScriptedDialogHostTest, LoadStringCopiesWhatFitsAsLoadStringWDoes)
{
    char16_t buffer[8];
    EXPECT_EQ(m_host.LoadString(IDS_OK, buffer, 8), 2);
    EXPECT_EQ(tarni_wstring(buffer), u"OK");
    EXPECT_EQ(m_host.LoadString(IDS_DSN_CONFIG_ERROR_TITLE, buffer, 8), 7);
    EXPECT_EQ(tarni_wstring(buffer), u"DSN Con");
    EXPECT_EQ(m_host.LoadString(65000, buffer, 8), 0);
    EXPECT_EQ(buffer[0], u'\0');
}

TEST_F(ScriptedDialogHostTest, SortedListsInsertInOrderAndFindPrefixesIgnoringCaseWithWrapAround)
{
    m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, [](ScriptedDialogWindow& w) {
        w.ListAddString(IDC_PROP_LIST, u"b=2");
        w.ListAddString(IDC_PROP_LIST, u"A=1");
        w.ListAddString(IDC_PROP_LIST, u"c=3");
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (std::vector<tarni_wstring>{u"A=1", u"b=2", u"c=3"}));
        EXPECT_EQ(w.ListFindString(IDC_PROP_LIST, -1, u"a="), 0);
        EXPECT_EQ(w.ListFindString(IDC_PROP_LIST, 0, u"a="), 0) << "wraps around to the start";
        EXPECT_EQ(w.ListFindString(IDC_PROP_LIST, 0, u"B="), 1);
        EXPECT_EQ(w.ListFindString(IDC_PROP_LIST, -1, u"ab="), -1);
        w.DoubleClickListItem(IDC_PROP_LIST, 2);
        w.PressEscape();
    });
    m_host.DialogBoxParam(IDD_SERVER_SIDE_PROPERTIES, nullptr, &Recorder, 0);
    const auto commands = Commands();
    ASSERT_GE(commands.size(), 2u);
    EXPECT_EQ(commands[0].code, LBN_SELCHANGE);
    EXPECT_EQ(commands[1].code, LBN_DBLCLK);
}
