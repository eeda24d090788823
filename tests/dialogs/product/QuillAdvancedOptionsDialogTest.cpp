// Advanced Options and Temporary Table Configuration on the scripted host:
// what Initialize shows and enables for each server type and for a read-only
// main dialog, the silent corrections of OK, and that Cancel writes nothing.
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

    /// OK with the numeric fields typed as given; the stored values of the keys.
    std::map<std::u16string, tarni_wstring> OkWith(const std::vector<std::pair<int, tarni_wstring>>& in_typed)
    {
        RunAdvanced(3, [&](Window& w) {
            for (const auto& [id, text] : in_typed)
            {
                w.Type(id, text);
            }
            w.Click(IDOK);
        });
        std::map<std::u16string, tarni_wstring> stored;
        for (const tarni_wstring_view key : {Keys::RowsFetchedPerBlock, Keys::DefaultStringColumnLength,
                                             Keys::BinaryColumnLength, Keys::DecimalColumnScale, Keys::SocketTimeout})
        {
            stored[tarni_wstring(key)] = Get(key);
        }
        return stored;
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
    Set(Keys::QueryTimeoutOverride, u"15");
    Set(Keys::UseNativeQuery, u"1");
    Set(Keys::EnableAsyncExec, u"1");
    Set(Keys::GetTablesWithQuery, u"1");
    Set(Keys::AutoReconnect, u"0");
    RunAdvanced(3, [](Window& w) {
        EXPECT_EQ(w.Text(IDC_ADV_DEFAULT_STRING_LENGTH), u"255");
        EXPECT_EQ(w.Text(IDC_ADV_BINARY_LENGTH), u"32767");
        EXPECT_EQ(w.Text(IDC_ADV_DECIMAL_SCALE), u"1");
        EXPECT_EQ(w.Text(IDC_ADV_ROWS_PER_BLOCK), u"10000");
        EXPECT_EQ(w.Text(IDC_ADV_SOCKET_TIMEOUT), u"90");
        EXPECT_EQ(w.Text(IDC_ADV_ASYNC_POLL_INTERVAL), u"100");
        EXPECT_EQ(w.Text(IDC_ADV_MAX_BYTES_PER_FETCH), u"300 MB");
        EXPECT_EQ(w.Text(IDC_ADV_QUERY_TIMEOUT_OVERRIDE), u"15");
        EXPECT_TRUE(w.Checked(IDC_ADV_USE_NATIVE_QUERY));
        EXPECT_TRUE(w.Checked(IDC_ADV_USE_ASYNC_EXEC));
        EXPECT_TRUE(w.Checked(IDC_ADV_GET_TABLES_WITH_QUERY));
        EXPECT_TRUE(w.Checked(IDC_ADV_INVALID_SESSION_RECOVER));
        EXPECT_FALSE(w.Checked(IDC_ADV_AUTO_RECONNECT));
        EXPECT_FALSE(w.Checked(IDC_ADV_FAST_SQLPREPARE));
        EXPECT_FALSE(w.Enabled(IDC_ADV_MAX_BYTES_PER_FETCH));
        EXPECT_TRUE(w.Enabled(IDC_ADV_USE_ASYNC_EXEC));
        EXPECT_TRUE(w.Enabled(IDC_ADV_ASYNC_POLL_INTERVAL));
        EXPECT_TRUE(w.Visible(IDC_ADV_SERVER_SIDE_PROPERTIES));
        EXPECT_FALSE(w.Visible(IDC_ADV_TEMP_TABLE_CONFIG));
        w.Click(IDCANCEL);
    });
}

TEST_F(QuillAdvancedOptionsDialogTest, OkCorrectsOutOfRangeNumbersSilently)
{
    auto stored = OkWith({{IDC_ADV_DECIMAL_SCALE, u"100"},
                          {IDC_ADV_ROWS_PER_BLOCK, u""},
                          {IDC_ADV_DEFAULT_STRING_LENGTH, u"0"},
                          {IDC_ADV_BINARY_LENGTH, u"0"},
                          {IDC_ADV_SOCKET_TIMEOUT, u""}});
    EXPECT_EQ(stored[u"DecimalColumnScale"], u"38");
    EXPECT_EQ(stored[u"RowsFetchedPerBlock"], u"10000");
    EXPECT_EQ(stored[u"DefaultStringColumnLength"], u"255");
    EXPECT_EQ(stored[u"BinaryColumnLength"], u"0");
    EXPECT_EQ(stored[u"SocketTimeout"], u"0");
    EXPECT_TRUE(m_host.GetMessageBoxes().empty()) << "corrections are silent";

    stored = OkWith({{IDC_ADV_DECIMAL_SCALE, u"65537"}, {IDC_ADV_ROWS_PER_BLOCK, u"99999999999"}});
    EXPECT_EQ(stored[u"DecimalColumnScale"], u"1") << "16-bit truncation comes before the cap";
    EXPECT_EQ(stored[u"RowsFetchedPerBlock"], u"10000") << "a number too large reads as 0";

    stored = OkWith({{IDC_ADV_DECIMAL_SCALE, u"38"}, {IDC_ADV_ROWS_PER_BLOCK, u"500"},
                     {IDC_ADV_DEFAULT_STRING_LENGTH, u"4000"}});
    EXPECT_EQ(stored[u"DecimalColumnScale"], u"38");
    EXPECT_EQ(stored[u"RowsFetchedPerBlock"], u"500");
    EXPECT_EQ(stored[u"DefaultStringColumnLength"], u"4000");
}

TEST_F(QuillAdvancedOptionsDialogTest, OkWritesEveryCheckBoxAndTextToItsKey)
{
    Set(Keys::EnableAsyncExec, u"0");
    RunAdvanced(2, [](Window& w) {
        for (const int id : {IDC_ADV_FAST_SQLPREPARE, IDC_ADV_USE_NATIVE_QUERY, IDC_ADV_USE_ONLY_SSPI,
                             IDC_ADV_UNICODE_SQL_TYPES, IDC_ADV_SHOW_SYSTEM_TABLE, IDC_ADV_DRIVER_CONFIG_PRECEDENCE,
                             IDC_ADV_USE_ASYNC_EXEC, IDC_ADV_GET_TABLES_WITH_QUERY})
        {
            w.Click(id);
        }
        w.Click(IDC_ADV_AUTO_RECONNECT);  // on by default: now off
        w.Type(IDC_ADV_ASYNC_POLL_INTERVAL, u"250ms");
        w.Type(IDC_ADV_QUERY_TIMEOUT_OVERRIDE, u" 30 ");
        w.Click(IDOK);
        EXPECT_TRUE(w.IsEnded());
    });
    for (const tarni_wstring_view key :
         {Keys::FastSQLPrepare, Keys::UseNativeQuery, Keys::UseOnlySSPI, Keys::UseUnicodeSqlCharacterTypes,
          Keys::ShowSystemTable, Keys::DriverConfigTakePrecedence, Keys::EnableAsyncExec, Keys::GetTablesWithQuery,
          Keys::InvalidSessionAutoRecover, Keys::EnableTranslationForCTAS})
    {
        EXPECT_EQ(Get(key), u"1") << Support::StringConverter::ToUtf8(key);
    }
    EXPECT_EQ(Get(Keys::AutoReconnect), u"0");
    EXPECT_EQ(Get(Keys::AsyncExecPollInterval), u"250ms") << "stored as typed";
    EXPECT_EQ(Get(Keys::QueryTimeoutOverride), u" 30 ");
    EXPECT_EQ(Get(Keys::MaxBytesPerFetchRequest), u"300 MB");
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
        EXPECT_TRUE(w.Enabled(IDC_ADV_FAST_SQLPREPARE));
        w.Click(IDOK);
    });
    EXPECT_EQ(Get(Keys::EnableAsyncExec), u"1");
    EXPECT_EQ(Get(Keys::GetTablesWithQuery), u"1");

    // The other server types write what the boxes show.
    RunAdvanced(4, [](Window& w) { w.Click(IDOK); });
    EXPECT_EQ(Get(Keys::EnableAsyncExec), u"1");
    EXPECT_EQ(Get(Keys::GetTablesWithQuery), u"1");
}

TEST_F(QuillAdvancedOptionsDialogTest, ReadOnlyDisablesAllButThreeCheckBoxes)
{
    RunAdvanced(
        3,
        [](Window& w) {
            for (const int id :
                 {IDC_ADV_DEFAULT_STRING_LENGTH, IDC_ADV_BINARY_LENGTH, IDC_ADV_DECIMAL_SCALE, IDC_ADV_ROWS_PER_BLOCK,
                  IDC_ADV_ASYNC_POLL_INTERVAL, IDC_ADV_SOCKET_TIMEOUT, IDC_ADV_QUERY_TIMEOUT_OVERRIDE,
                  IDC_ADV_FAST_SQLPREPARE, IDC_ADV_USE_NATIVE_QUERY, IDC_ADV_DRIVER_CONFIG_PRECEDENCE,
                  IDC_ADV_USE_ASYNC_EXEC, IDC_ADV_GET_TABLES_WITH_QUERY, IDC_ADV_USE_ONLY_SSPI,
                  IDC_ADV_AUTO_RECONNECT, IDC_ADV_TRANSLATION_FOR_CTAS, IDC_ADV_SERVER_SIDE_PROPERTIES,
                  IDC_ADV_TEMP_TABLE_CONFIG, IDC_ADV_MAX_BYTES_PER_FETCH})
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
}

TEST_F(QuillAdvancedOptionsDialogTest, CancelEscapeAndTheCloseBoxEndWithOneAndWriteNothing)
{
    using Action = void (*)(Window&);
    const Action closers[] = {[](Window& w) { w.Click(IDCANCEL); }, [](Window& w) { w.PressEscape(); },
                              [](Window& w) { w.PressCloseBox(); }};
    const auto before = m_configuration.GetMap();
    for (Action close : closers)
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
            EXPECT_TRUE(w.Visible(IDC_ADV_TEMP_TABLE_CONFIG));
            m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
                EXPECT_FALSE(t.Checked(IDC_TT_ENABLE_TEMP_TABLE));
                EXPECT_EQ(t.Text(IDC_TT_WEB_HDFS_PORT), u"50070");
                EXPECT_EQ(t.Text(IDC_TT_HDFS_USER), u"hdfs");
                EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
                t.Click(IDC_TT_ENABLE_TEMP_TABLE);
                for (const int id : {IDC_TT_WEB_HDFS_HOST, IDC_TT_WEB_HDFS_PORT, IDC_TT_HDFS_USER,
                                     IDC_TT_HDFS_TEMP_TABLE_DIR, IDC_TT_TEMP_TABLE_TTL})
                {
                    EXPECT_TRUE(t.Enabled(id)) << id;
                }
                t.Type(IDC_TT_WEB_HDFS_HOST, u"namenode");
                t.Type(IDC_TT_WEB_HDFS_PORT, u"70000");
                t.Type(IDC_TT_TEMP_TABLE_TTL, u"30");
                t.Click(IDOK);
            });
            w.Click(IDC_ADV_TEMP_TABLE_CONFIG);
            w.Click(IDCANCEL);
        },
        true, true);
    EXPECT_EQ(Get(Keys::EnableTempTable), u"1");
    EXPECT_EQ(Get(Keys::WebHDFSHost), u"namenode");
    EXPECT_EQ(Get(Keys::WebHDFSPort), u"50070");
    EXPECT_EQ(Get(Keys::TempTableTTL), u"30");

    // Switched off, OK stores the switch alone; Cancel stores nothing.
    QuillTempTableDialog::Input input{&m_configuration, true};
    m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
        EXPECT_TRUE(t.Checked(IDC_TT_ENABLE_TEMP_TABLE));
        t.Type(IDC_TT_WEB_HDFS_HOST, u"ignored");
        t.Click(IDC_TT_ENABLE_TEMP_TABLE);
        EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
        t.Click(IDOK);
    });
    EXPECT_TRUE(QuillTempTableDialog::Show(nullptr, &input));
    EXPECT_EQ(Get(Keys::EnableTempTable), u"0");
    EXPECT_EQ(Get(Keys::WebHDFSHost), u"namenode");
    m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
        t.Click(IDC_TT_ENABLE_TEMP_TABLE);
        t.Click(IDCANCEL);
    });
    EXPECT_FALSE(QuillTempTableDialog::Show(nullptr, &input));
    EXPECT_EQ(Get(Keys::EnableTempTable), u"0");

    // Read-only: the values show, nothing can be changed.
    Set(Keys::EnableTempTable, u"1");
    input.allowEditing = false;
    m_host.ExpectDialog(IDD_TEMP_TABLE_CONFIG, [](Window& t) {
        EXPECT_TRUE(t.Checked(IDC_TT_ENABLE_TEMP_TABLE));
        EXPECT_FALSE(t.Enabled(IDC_TT_ENABLE_TEMP_TABLE));
        EXPECT_FALSE(t.Enabled(IDC_TT_WEB_HDFS_HOST));
        EXPECT_EQ(t.Text(IDC_TT_WEB_HDFS_HOST), u"namenode");
        t.Click(IDCANCEL);
    });
    QuillTempTableDialog::Show(nullptr, &input);
}

TEST_F(QuillAdvancedOptionsDialogTest, TheMainDialogPassesItsServerTypeAndEditingFlag)
{
    Run(IDD_DRIVER_CONFIG, [&](Window& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer (Shark 0.8.1 and earlier)");
        m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [&](Window& a) {
            EXPECT_EQ(a.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
            EXPECT_FALSE(a.Enabled(IDC_ADV_USE_ASYNC_EXEC));
            m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, [](Window& s) {
                EXPECT_FALSE(s.Enabled(IDC_SSP_APPLY_WITH_QUERIES)) << "SharkServer cannot apply them with queries";
                s.Click(IDCANCEL);
            });
            a.Click(IDC_ADV_SERVER_SIDE_PROPERTIES);
            a.Click(IDCANCEL);
        });
        w.Click(IDC_ADVANCED_OPTIONS);

        // The DFI service keeps its HTTP path.
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        m_host.ExpectDialog(IDD_HTTP_PROPERTIES, [](Window& h) {
            EXPECT_FALSE(h.Enabled(IDC_HTTP_PATH));
            h.Click(IDCANCEL);
        });
        w.Click(IDC_HTTP_OPTIONS);
        w.Click(IDCANCEL);
    });

    // A read-only main dialog opens a read-only Advanced Options.
    Run(
        IDD_DRIVER_CONFIG,
        [&](Window& w) {
            m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [](Window& a) {
                EXPECT_FALSE(a.Enabled(IDC_ADV_ROWS_PER_BLOCK));
                EXPECT_FALSE(a.Enabled(IDC_ADV_SERVER_SIDE_PROPERTIES));
                a.Click(IDCANCEL);
            });
            w.Click(IDC_ADVANCED_OPTIONS);
            w.Click(IDCANCEL);
        },
        [](QuillConfigurationDialog& d) { d.SetAllowEditing(false); });
}
