// Logging Options on the scripted host: captions and level list, the
// LOG_OFF rule, OK through the validating setters (the error box keeps the
// dialog open), the folder chooser, and export and import through the file
// choosers.
#include "dialogs/driversupport/DSLoggingDialog.h"

#include "common/TempDirectory.h"
#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;
using Tarni::Support::StringConverter;
using Tarni::Testing::TempDirectory;

namespace
{
class DSLoggingDialogTest : public Testing::DialogTest
{
protected:
    DSLoggingDialogTest() : m_configuration(u"", 2, &m_logger)
    {
        m_configuration.SetValue(Keys::LogLevel, u"4");
        m_configuration.SetValue(Keys::LogPath, u"/var/log/tarni");
        m_configuration.SetValue(Keys::LogFileCount, u"10");
        m_configuration.SetValue(Keys::LogFileSize, u"20");
    }

    /// Opens the dialog, sets level and limits, presses OK; the boxes shown.
    std::vector<tarni_wstring> OkWith(const tarni_wstring& in_level, const tarni_wstring& in_size,
                                      const tarni_wstring& in_count, bool in_expectEnded)
    {
        if (!in_expectEnded)
        {
            m_host.ExpectMessageBox(IDOK);
        }
        m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [&](ScriptedDialogWindow& w) {
            w.SelectCombo(IDC_LOG_LEVEL, in_level);
            w.Type(IDC_LOG_MAX_FILE_SIZE, in_size);
            w.Type(IDC_LOG_MAX_FILE_COUNT, in_count);
            w.Click(IDOK);
            EXPECT_EQ(w.IsEnded(), in_expectEnded);
            if (!w.IsEnded())
            {
                w.Click(IDCANCEL);
            }
        });
        DSLoggingDialog::Show(nullptr, &m_configuration);
        std::vector<tarni_wstring> texts;
        for (const auto& box : m_host.GetMessageBoxes())
        {
            EXPECT_EQ(box.caption, u"DSN Configuration Error");
            texts.push_back(box.text);
        }
        return texts;
    }

    tarni_wstring Wide(const std::filesystem::path& in_path) { return StringConverter::FromUtf8(in_path.string()); }

    DSDSNConfiguration m_configuration;
};
}  // namespace

TEST_F(DSLoggingDialogTest, ShowsTheStringTableCaptionsTheLevelsAndTheStoredSettings)
{
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetTitle(), u"Logging Options");
        EXPECT_EQ(w.Text(IDC_LOG_LEVEL_LABEL), u"Log Level:");
        EXPECT_EQ(w.Text(IDC_LOG_PATH_LABEL), u"Log Path:");
        EXPECT_EQ(w.Text(IDC_LOG_MAX_FILE_COUNT_LABEL), u"Max Number Files:");
        EXPECT_EQ(w.Text(IDC_LOG_MAX_FILE_SIZE_LABEL), u"Max File Size (MB):");
        EXPECT_EQ(w.Text(IDC_LOG_ROTATION_GROUP), u"Log Rotation");
        EXPECT_EQ(w.Text(IDC_LOG_BROWSE), u"Browse...");
        EXPECT_EQ(w.Text(IDC_LOG_IMPORT), u"Import Configuration...");
        EXPECT_EQ(w.Text(IDC_LOG_EXPORT), u"Export Configuration...");
        const char16_t* levels[] = {u"LOG_OFF",  u"LOG_FATAL", u"LOG_ERROR", u"LOG_WARNING",
                                    u"LOG_INFO", u"LOG_DEBUG", u"LOG_TRACE"};
        ASSERT_EQ(w.ComboGetCount(IDC_LOG_LEVEL), 7);
        for (int i = 0; i < 7; ++i)
        {
            EXPECT_EQ(w.ComboGetItemText(IDC_LOG_LEVEL, i), levels[i]);
        }
        EXPECT_EQ(w.SelectedText(IDC_LOG_LEVEL), u"LOG_INFO");
        EXPECT_EQ(w.Text(IDC_LOG_PATH), u"/var/log/tarni");
        EXPECT_EQ(w.Text(IDC_LOG_MAX_FILE_COUNT), u"10");
        EXPECT_EQ(w.Text(IDC_LOG_MAX_FILE_SIZE), u"20");
        for (const int id : {IDC_LOG_PATH, IDC_LOG_BROWSE, IDC_LOG_MAX_FILE_COUNT, IDC_LOG_MAX_FILE_SIZE, static_cast<int>(IDOK)})
        {
            EXPECT_TRUE(w.Enabled(id)) << id;
        }
        w.PressEscape();
    });
    EXPECT_FALSE(DSLoggingDialog::Show(nullptr, &m_configuration));
    EXPECT_EQ(m_configuration.GetValue(Keys::LogLevel), u"4") << "Escape changes nothing";
}

TEST_F(DSLoggingDialogTest, LogOffDisablesTheFolderAndRotationAndStoresEmptyTexts)
{
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_LOG_PATH, u"");
        EXPECT_FALSE(w.Enabled(IDOK)) << "a level that logs needs a folder";
        w.Type(IDC_LOG_MAX_FILE_COUNT, u"");
        w.Type(IDC_LOG_MAX_FILE_SIZE, u"");
        w.SelectCombo(IDC_LOG_LEVEL, u"LOG_OFF");
        for (const int id : {IDC_LOG_PATH, IDC_LOG_BROWSE, IDC_LOG_MAX_FILE_COUNT, IDC_LOG_MAX_FILE_SIZE})
        {
            EXPECT_FALSE(w.Enabled(id)) << id;
        }
        EXPECT_TRUE(w.Enabled(IDOK));
        w.SelectCombo(IDC_LOG_LEVEL, u"LOG_TRACE");
        EXPECT_TRUE(w.Enabled(IDC_LOG_BROWSE));
        EXPECT_FALSE(w.Enabled(IDOK));
        w.SelectCombo(IDC_LOG_LEVEL, u"LOG_OFF");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSLoggingDialog::Show(nullptr, &m_configuration));
    EXPECT_EQ(m_configuration.GetValue(Keys::LogLevel), u"0");
    for (const tarni_wstring_view key : {Keys::LogPath, Keys::LogFileCount, Keys::LogFileSize})
    {
        ASSERT_TRUE(m_configuration.GetMap().Contains(key));
        EXPECT_EQ(m_configuration.GetValue(key), u"");
    }
}

TEST_F(DSLoggingDialogTest, TheSetterLimitsShowTheirSetupErrorAndKeepTheDialogOpen)
{
    EXPECT_EQ(OkWith(u"LOG_DEBUG", u"4097", u"3", false),
              std::vector<tarni_wstring>{u"Invalid value for the maximum size of each log file in MB, valid values "
                                         u"are [0, 4096]."});
    // Level and folder were set before the size failed; the count was not.
    EXPECT_EQ(m_configuration.GetValue(Keys::LogLevel), u"5");
    EXPECT_EQ(m_configuration.GetValue(Keys::LogFileCount), u"10");

    EXPECT_EQ(OkWith(u"LOG_WARNING", u"4096", u"4294967296", false).back(),
              u"Invalid value for the maximum number of log files to use in rotation, valid values are [0, "
              u"4294967295].");
    EXPECT_EQ(m_configuration.GetValue(Keys::LogFileSize), u"4096");

    EXPECT_EQ(OkWith(u"LOG_ERROR", u"0", u"4294967295", true).size(), 2u);
    EXPECT_EQ(m_configuration.GetValue(Keys::LogLevel), u"2");
    EXPECT_EQ(m_configuration.GetValue(Keys::LogFileCount), u"4294967295");
    EXPECT_TRUE(m_logger.Has(Support::LOG_FATAL, "Tarni::DriverSupport::DSLoggingDialog::ActionProc", "[0, 4096]"));
}

TEST_F(DSLoggingDialogTest, BrowseTakesTheChosenFolderAndACancelledChooserChangesNothing)
{
    m_host.ExpectFolder(std::nullopt);
    m_host.ExpectFolder(u"/srv/logs");
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_LOG_BROWSE);
        EXPECT_EQ(w.Text(IDC_LOG_PATH), u"/var/log/tarni");
        w.Click(IDC_LOG_BROWSE);
        EXPECT_EQ(w.Text(IDC_LOG_PATH), u"/srv/logs");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSLoggingDialog::Show(nullptr, &m_configuration));
    EXPECT_EQ(m_configuration.GetValue(Keys::LogPath), u"/srv/logs");
    EXPECT_EQ(m_host.GetFolderChooserTitles(),
              (std::vector<tarni_wstring>{u"Choose log file target directory.", u"Choose log file target directory."}));
}

TEST_F(DSLoggingDialogTest, ExportWritesTheChosenFileWithoutSecretsOrLoggingSettings)
{
    m_configuration.SetValue(Keys::Host, u"spark.example.com");
    m_configuration.GetCredentials().SetPwd(u"pa55word");
    const auto target = m_dir / "out.sdc";
    m_host.SetDocumentsFolder(u"/home/alice/Documents");
    m_host.ExpectSaveFile(std::nullopt);
    m_host.ExpectSaveFile(Wide(target));
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_LOG_EXPORT);
        w.Click(IDC_LOG_EXPORT);
        w.Click(IDCANCEL);
    });
    EXPECT_FALSE(DSLoggingDialog::Show(nullptr, &m_configuration));
    const auto& choosers = m_host.GetFileChoosers();
    ASSERT_EQ(choosers.size(), 2u);
    EXPECT_EQ(choosers[0].title, u"Choose Export Target File");
    ASSERT_EQ(choosers[0].filter.size(), 1u);
    EXPECT_EQ(choosers[0].filter[0].description, u"DSN Definition");
    EXPECT_EQ(choosers[0].filter[0].pattern, u"*.sdc");
    EXPECT_EQ(choosers[0].defaultExtension, u"sdc");
    EXPECT_EQ(choosers[0].initialFile, u"/home/alice/Documents/backup.sdc");
    EXPECT_EQ(choosers[0].bufferChars, 260u);
    const std::string written = TempDirectory::ReadFile(target);
    EXPECT_NE(written.find("Host=spark.example.com\n"), std::string::npos);
    for (const char* absent : {"pa55word", "PWD", "LogLevel", "LogPath", "LogFileCount", "LogFileSize"})
    {
        EXPECT_EQ(written.find(absent), std::string::npos) << absent;
    }
}

TEST_F(DSLoggingDialogTest, TheInitialNameFollowsTheDocumentsFolderOfTheHost)
{
    const struct
    {
        std::optional<tarni_wstring> documents;
        tarni_wstring initial;
    } cases[] = {{u"C:\\Users\\alice\\Documents", u"C:\\Users\\alice\\Documents\\backup.sdc"},
                 {u"/home/alice/", u"/home/alice/backup.sdc"},
                 {std::nullopt, u""}};
    for (const auto& c : cases)
    {
        m_host.SetDocumentsFolder(c.documents);
        m_host.ExpectOpenFile(std::nullopt);
    }
    m_host.SetDocumentsFolder(tarni_wstring(u"/") + tarni_wstring(250, u'd'));
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [&](ScriptedDialogWindow& w) {
        for (const auto& c : cases)
        {
            m_host.SetDocumentsFolder(c.documents);
            w.Click(IDC_LOG_IMPORT);
        }
        m_host.SetDocumentsFolder(tarni_wstring(u"/") + tarni_wstring(250, u'd'));
        w.Click(IDC_LOG_IMPORT);  // too long for the chooser's name buffer: an error box
        w.Click(IDCANCEL);
    });
    DSLoggingDialog::Show(nullptr, &m_configuration);
    ASSERT_EQ(m_host.GetFileChoosers().size(), 3u);
    for (size_t i = 0; i < 3; ++i)
    {
        EXPECT_EQ(m_host.GetFileChoosers()[i].initialFile, cases[i].initial);
        EXPECT_EQ(m_host.GetFileChoosers()[i].title, u"Choose Import Target File");
    }
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
}

TEST_F(DSLoggingDialogTest, ImportLoadsTheFileAndABadFileChangesNothing)
{
    m_configuration.LoadDefaults();
    m_configuration.SetValue(Keys::LogLevel, u"4");
    m_configuration.SetValue(Keys::LogFileSize, u"20");
    m_configuration.SetValue(Keys::Host, u"old-host");
    const auto good = m_dir / "good.sdc";
    const auto bad = m_dir / "bad.sdc";
    TempDirectory::WriteFile(good, "\xEF\xBB\xBFHost=a=b\r\nPort=10001\r\n");
    TempDirectory::WriteFile(bad, "Host=other\nPort=1\xFF\n");
    m_host.ExpectOpenFile(Wide(bad));
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectOpenFile(Wide(good));
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [&](ScriptedDialogWindow& w) {
        w.Click(IDC_LOG_IMPORT);
        EXPECT_EQ(m_configuration.GetValue(Keys::Host), u"old-host");
        w.Click(IDC_LOG_IMPORT);
        EXPECT_EQ(w.Text(IDC_LOG_MAX_FILE_SIZE), u"20") << "the dialog's fields stay";
        w.Click(IDCANCEL);
    });
    DSLoggingDialog::Show(nullptr, &m_configuration);
    EXPECT_EQ(m_configuration.GetValue(Keys::Host), u"a=b");
    EXPECT_EQ(m_configuration.GetValue(Keys::Port), u"10001");
    EXPECT_EQ(m_configuration.GetValue(Keys::LogLevel), u"4") << "the machine's logging settings stay";
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    EXPECT_NE(m_host.GetMessageBoxes()[0].text.find(u"bad.sdc"), tarni_wstring::npos);
    EXPECT_NE(m_host.GetMessageBoxes()[0].text.find(u"2"), tarni_wstring::npos);
}
