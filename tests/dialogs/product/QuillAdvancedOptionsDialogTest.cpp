// Advanced Options and Temporary Table Configuration on the scripted host:
// what Initialize shows and enables per server type and for a read-only main
// dialog, the silent corrections of OK, and that Cancel writes nothing.
#include "dialogs/MainDialogTestSupport.h"
#include "dialogs/product/QuillAdvancedOptionsDialog.h"
#include "dialogs/product/QuillTempTableDialog.h"
#include "driversupport/ConfigurationKeys.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
using Window = ScriptedDialogWindow;

class QuillAdvancedOptionsDialogTest : public Testing::MainDialogTest
{
protected:
    std::intptr_t RunAdvanced(unsigned in_serverType, ScriptedDialogHost::DialogScript in_script,
                              bool in_allowEditing = true, bool in_tempTablesOffered = false)
    {
        QuillAdvancedOptionsDialog dialog(m_configuration, in_serverType, in_allowEditing);
        dialog.SetTempTablesOffered(in_tempTablesOffered);
        m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, std::move(in_script));
        return dialog.Show(nullptr);
    }

    /// OK after typing the texts into the fields.
    void OkWith(const std::vector<std::pair<int, tarni_wstring>>& in_typed)
    {
        RunAdvanced(3, [&](Window& w) {
            for (const auto& [id, text] : in_typed)
            {
                w.Type(id, text);
            }
            w.Click(IDOK);
        });
    }
};
}  // namespace

TEST_F(QuillAdvancedOptionsDialogTest, ShowsTheStoredValuesWithUnreadableNumbersAsDefaults)
{
    Set(Keys::DefaultStringColumnLength, u"0");
    Set(Keys::BinaryColumnLength, u"lots");
    Set(Keys::DecimalColumnScale, u"65537");
    Set(Keys::RowsFetchedPerBlock, u"");
    Set(Keys::SocketTimeout, u"90");
    Set(Keys::EnableAsyncExec, u"1");
    Set(Keys::AutoReconnect, u"0");
    RunAdvanced(3, [](Window& w) {
        EXPECT_EQ(w.Text(IDC_ADV_DEFAULT_STRING_LENGTH), u"255");
        EXPECT_EQ(w.Text(IDC_ADV_BINARY_LENGTH), u"32767");
        EXPECT_EQ(w.Text(IDC_ADV_DECIMAL_SCALE), u"1");
        EXPECT_EQ(w.Text(IDC_ADV_ROWS_PER_BLOCK), u"10000");
        EXPECT_EQ(w.Text(IDC_ADV_SOCKET_TIMEOUT), u"90");
        EXPECT_EQ(w.Text(IDC_ADV_MAX_BYTES_PER_FETCH), u"300 MB");
        EXPECT_TRUE(w.Checked(IDC_ADV_USE_ASYNC_EXEC));
        EXPECT_FALSE(w.Checked(IDC_ADV_AUTO_RECONNECT));
        EXPECT_FALSE(w.Enabled(IDC_ADV_MAX_BYTES_PER_FETCH));
        EXPECT_FALSE(w.Visible(IDC_ADV_TEMP_TABLE_CONFIG));
        w.Click(IDCANCEL);
    });
}

TEST_F(QuillAdvancedOptionsDialogTest, OkCorrectsOutOfRangeNumbersSilentlyAndWritesEveryControl)
{
    OkWith({{IDC_ADV_DECIMAL_SCALE, u"100"}, {IDC_ADV_ROWS_PER_BLOCK, u""}, {IDC_ADV_DEFAULT_STRING_LENGTH, u"0"},
            {IDC_ADV_BINARY_LENGTH, u"0"}, {IDC_ADV_QUERY_TIMEOUT_OVERRIDE, u" 30 "}});
    EXPECT_EQ(Get(Keys::DecimalColumnScale), u"38");
    EXPECT_EQ(Get(Keys::RowsFetchedPerBlock), u"10000");
    EXPECT_EQ(Get(Keys::DefaultStringColumnLength), u"255");
    EXPECT_EQ(Get(Keys::BinaryColumnLength), u"0");
    EXPECT_EQ(Get(Keys::QueryTimeoutOverride), u" 30 ") << "text fields are stored as typed";
    EXPECT_TRUE(m_host.GetMessageBoxes().empty()) << "corrections are silent";

    OkWith({{IDC_ADV_DECIMAL_SCALE, u"65537"}, {IDC_ADV_ROWS_PER_BLOCK, u"99999999999"}});
    EXPECT_EQ(Get(Keys::DecimalColumnScale), u"1") << "16-bit truncation comes before the cap";
    EXPECT_EQ(Get(Keys::RowsFetchedPerBlock), u"10000") << "a number too large reads as 0";

    // Every check box reaches its own key ("Use Async Exec" is EnableAsyncExec).
    const std::pair<int, tarni_wstring_view> boxes[] = {
        {IDC_ADV_FAST_SQLPREPARE, Keys::FastSQLPrepare},   {IDC_ADV_USE_NATIVE_QUERY, Keys::UseNativeQuery},
        {IDC_ADV_USE_ONLY_SSPI, Keys::UseOnlySSPI},        {IDC_ADV_UNICODE_SQL_TYPES, Keys::UseUnicodeSqlCharacterTypes},
        {IDC_ADV_SHOW_SYSTEM_TABLE, Keys::ShowSystemTable}, {IDC_ADV_DRIVER_CONFIG_PRECEDENCE, Keys::DriverConfigTakePrecedence},
        {IDC_ADV_USE_ASYNC_EXEC, Keys::EnableAsyncExec},   {IDC_ADV_GET_TABLES_WITH_QUERY, Keys::GetTablesWithQuery},
        {IDC_ADV_AUTO_RECONNECT, Keys::AutoReconnect},     {IDC_ADV_TRANSLATION_FOR_CTAS, Keys::EnableTranslationForCTAS},
        {IDC_ADV_INVALID_SESSION_RECOVER, Keys::InvalidSessionAutoRecover}};
    for (const auto& [id, key] : boxes)
    {
        const tarni_wstring before = Get(key);
        RunAdvanced(2, [id = id](Window& w) {
            w.Click(id);
            w.Click(IDOK);
        });
        EXPECT_NE(Get(key), before) << Support::StringConverter::ToUtf8(key);
    }
}

TEST_F(QuillAdvancedOptionsDialogTest, SharkServerShowsAndKeepsTheAsyncAndTableSwitches)
{
    Set(Keys::EnableAsyncExec, u"1");
    Set(Keys::GetTablesWithQuery, u"1");
    RunAdvanced(1, [](Window& w) {
        EXPECT_FALSE(w.Checked(IDC_ADV_USE_ASYNC_EXEC));
        EXPECT_FALSE(w.Enabled(IDC_ADV_USE_ASYNC_EXEC));
        EXPECT_FALSE(w.Checked(IDC_ADV_GET_TABLES_WITH_QUERY));
        EXPECT_FALSE(w.Enabled(IDC_ADV_GET_TABLES_WITH_QUERY));
        EXPECT_FALSE(w.Enabled(IDC_ADV_ASYNC_POLL_INTERVAL));
        w.Click(IDOK);
    });
    EXPECT_EQ(Get(Keys::EnableAsyncExec), u"1");
    EXPECT_EQ(Get(Keys::GetTablesWithQuery), u"1");
}

TEST_F(QuillAdvancedOptionsDialogTest, ReadOnlyKeepsThreeCheckBoxesAndCancelWritesNothing)
{
    RunAdvanced(
        3,
        [](Window& w) {
            for (const int id : {IDC_ADV_DEFAULT_STRING_LENGTH, IDC_ADV_QUERY_TIMEOUT_OVERRIDE, IDC_ADV_FAST_SQLPREPARE,
                                 IDC_ADV_TRANSLATION_FOR_CTAS, IDC_ADV_SERVER_SIDE_PROPERTIES})
            {
                EXPECT_FALSE(w.Enabled(id)) << id;
            }
            for (const int id : {IDC_ADV_UNICODE_SQL_TYPES, IDC_ADV_SHOW_SYSTEM_TABLE, IDC_ADV_INVALID_SESSION_RECOVER})
            {
                EXPECT_TRUE(w.Enabled(id)) << id;
            }
            w.Click(IDCANCEL);
        },
        false);

    const auto before = m_configuration.GetMap();
    for (auto close : {+[](Window& w) { w.Click(IDCANCEL); }, +[](Window& w) { w.PressEscape(); }})
    {
        EXPECT_EQ(RunAdvanced(3,
                              [close](Window& w) {
                                  w.Type(IDC_ADV_DECIMAL_SCALE, u"5");
                                  w.Click(IDC_ADV_FAST_SQLPREPARE);
                                  close(w);
                              }),
                  1);
        EXPECT_EQ(m_configuration.GetMap(), before);
    }
}

TEST_F(QuillAdvancedOptionsDialogTest, TemporaryTablesFollowTheirSwitchAndCorrectThePort)
{
    Set(Keys::WebHDFSPort, u"not a port");
    RunAdvanced(
        3,
        [&](Window& w) {
            m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
                EXPECT_EQ(t.Text(IDC_TT_WEB_HDFS_PORT), u"50070");
                EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
                t.Click(IDC_TT_ENABLE_TEMP_TABLE);
                t.Type(IDC_TT_WEB_HDFS_HOST, u"namenode");
                t.Type(IDC_TT_WEB_HDFS_PORT, u"70000");
                t.Click(IDOK);
            });
            w.Click(IDC_ADV_TEMP_TABLE_CONFIG);
            w.Click(IDCANCEL);
        },
        true, true);
    EXPECT_EQ(Get(Keys::EnableTempTable), u"1");
    EXPECT_EQ(Get(Keys::WebHDFSHost), u"namenode");
    EXPECT_EQ(Get(Keys::WebHDFSPort), u"50070");

    // Switched off, OK stores the switch alone; read-only, nothing can be changed.
    QuillTempTableDialog::Input input{&m_configuration, true};
    m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
        t.Type(IDC_TT_WEB_HDFS_HOST, u"ignored");
        t.Click(IDC_TT_ENABLE_TEMP_TABLE);
        EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
        t.Click(IDOK);
    });
    EXPECT_TRUE(QuillTempTableDialog::Show(nullptr, &input));
    EXPECT_EQ(Get(Keys::EnableTempTable), u"0");
    EXPECT_EQ(Get(Keys::WebHDFSHost), u"namenode");
    Set(Keys::EnableTempTable, u"1");
    input.allowEditing = false;
    m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
        EXPECT_FALSE(t.Enabled(IDC_TT_ENABLE_TEMP_TABLE));
        EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
        t.Click(IDCANCEL);
    });
    EXPECT_FALSE(QuillTempTableDialog::Show(nullptr, &input));
}

TEST_F(QuillAdvancedOptionsDialogTest, TheMainDialogPassesItsServerTypeAndEditingFlag)
{
    Run(IDD_DRIVER_CONFIG, [&](Window& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer (Shark 0.8.1 and earlier)");
        m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [&](Window& a) {
            EXPECT_FALSE(a.Enabled(IDC_ADV_USE_ASYNC_EXEC));
            m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, [](Window& s) {
                EXPECT_FALSE(s.Enabled(IDC_SSP_APPLY_WITH_QUERIES)) << "SharkServer cannot apply them with queries";
                s.Click(IDCANCEL);
            });
            a.Click(IDC_ADV_SERVER_SIDE_PROPERTIES);
            a.Click(IDCANCEL);
        });
        w.Click(IDC_ADVANCED_OPTIONS);
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        m_host.ExpectDialog(IDD_HTTP_PROPERTIES, [](Window& h) {
            EXPECT_FALSE(h.Enabled(IDC_HTTP_PATH)) << "the DFI service keeps its HTTP path";
            h.Click(IDCANCEL);
        });
        w.Click(IDC_HTTP_OPTIONS);
        w.Click(IDCANCEL);
    });
    Run(
        IDD_DRIVER_CONFIG,
        [&](Window& w) {
            m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [](Window& a) {
                EXPECT_FALSE(a.Enabled(IDC_ADV_ROWS_PER_BLOCK));
                a.Click(IDCANCEL);
            });
            w.Click(IDC_ADVANCED_OPTIONS);
            w.Click(IDCANCEL);
        },
        [](QuillConfigurationDialog& d) { d.SetAllowEditing(false); });
}
