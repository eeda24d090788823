// The shared helpers of the dialog framework: centring, the two string
// loaders, the error boxes of setup errors and ErrorExceptions, and the
// small control helpers.
#include "dialogs/framework/DSBaseDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;
using Tarni::Testing::CountingHost;
using Tarni::Testing::DialogTest;

namespace
{
// A dialog procedure that centres on WM_INITDIALOG and ends on OK/Cancel.
std::intptr_t Centring(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t)
{
    if (in_message == WM_INITDIALOG)
    {
        DSBaseDialog::CenterDialog(in_window);
    }
    if (in_message == WM_COMMAND && LowWord(in_wParam) <= IDCANCEL)
    {
        in_window->EndDialog(LowWord(in_wParam) == IDOK);
    }
    return 1;
}

std::intptr_t Plain(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t)
{
    if (in_message == WM_COMMAND && LowWord(in_wParam) <= IDCANCEL)
    {
        in_window->EndDialog(LowWord(in_wParam) == IDOK);
    }
    return 1;
}

class DSBaseDialogTest : public DialogTest
{
protected:
    /// Runs a parent dialog moved to in_parentRect that opens a child; the
    /// child's rectangle after centring.
    DialogRect CentreChildOver(const DialogRect& in_parentRect)
    {
        DialogRect child;
        m_host.ExpectDialog(IDD_DRIVER_CONFIG, [&](ScriptedDialogWindow& parent) {
            parent.MoveWindow(in_parentRect.left, in_parentRect.top, in_parentRect.Width(), in_parentRect.Height(),
                              true);
            m_host.DialogBoxParam(IDD_PASSWORD_OPTIONS, &parent, &Centring, 0);
            parent.PressEscape();
        });
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [&](ScriptedDialogWindow& w) {
            child = w.GetWindowRect();
            w.PressEscape();
        });
        m_host.DialogBoxParam(IDD_DRIVER_CONFIG, nullptr, &Plain, 0);
        return child;
    }
};
}  // namespace

TEST_F(DSBaseDialogTest, CentresOverTheParentWithinTheDesktopAndKeepsTheSize)
{
    // The Password Options template is 189 x 58 units: 283 x 94 pixels here.
    const struct
    {
        const char* name;
        DialogRect desktop, parent;
        int left, top;
    } cases[] = {
        {"centred", {0, 0, 1024, 768}, {100, 100, 701, 500}, (100 + 701 - 283) / 2, (100 + 500 - 94) / 2},
        {"crossing the bottom: desktop top minus its height", {0, 0, 1024, 768}, {300, 700, 700, 800},
         (300 + 700 - 283) / 2, 0 - 94},
        {"left of the desktop: its left edge", {-1000, 0, 1024, 768}, {-1400, 100, -1300, 300}, -1000, 153},
        {"past the right edge: right side on the desktop's", {-1000, 0, 1024, 768}, {1000, 100, 1100, 300},
         1024 - 283, 153},
        {"(-600 + -400 - 283) / 2 = -641.5: towards zero", {-1000, 0, 1024, 768}, {-600, 100, -400, 300}, -641,
         153},
    };
    for (const auto& c : cases)
    {
        m_host.SetDesktopRect(c.desktop);
        const DialogRect child = CentreChildOver(c.parent);
        EXPECT_EQ(child, (DialogRect{c.left, c.top, c.left + 283, c.top + 94})) << c.name;
    }
}

TEST_F(DSBaseDialogTest, WithoutAParentCentresOnTheDesktop)
{
    m_host.SetDesktopRect({0, 0, 1024, 768});
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetWindowRect(), (DialogRect{(1024 - 283) / 2, (768 - 94) / 2, (1024 - 283) / 2 + 283,
                                                 (768 - 94) / 2 + 94}));
        w.PressEscape();
    });
    m_host.DialogBoxParam(IDD_PASSWORD_OPTIONS, nullptr, &Centring, 0);
}

TEST_F(DSBaseDialogTest, TheFrameworkLoaderGrowsIn2048StepsAndLoadsLongStringsWhole)
{
    ResourceScript resources = ResourceScript::Embedded();
    const tarni_wstring fits(2046, u'a');
    resources.SetString(60001, fits);
    const tarni_wstring longer = tarni_wstring(2047, u'b') + tarni_wstring(3000, u'c');
    resources.SetString(60002, longer);
    ScriptedDialogHost host(resources);
    CountingHost counting(host);
    DSDialogModule::SetHost(&counting);

    EXPECT_EQ(DSBaseDialog::LoadResourceString(60001), fits);
    EXPECT_EQ(counting.sizes, (std::vector<int>{2048}));

    counting.sizes.clear();
    EXPECT_EQ(DSBaseDialog::LoadResourceString(60002), longer);
    EXPECT_EQ(counting.sizes, (std::vector<int>{2048, 4096, 6144}));

    EXPECT_EQ(DSBaseDialog::LoadResourceString(60003), u"Error loading the string.");
    DSDialogModule::SetHost(&m_host);
}

TEST_F(DSBaseDialogTest, SetupErrorsShowTheirStringInTheErrorBoxAndLogAtFatal)
{
    struct Case
    {
        unsigned code;
        const char16_t* text;
    };
    const Case cases[] = {
        {SETUP_REGISTRY_WRITE,
         u"Error writing changes to registry, ensure proper permissions have been granted."},
        {SETUP_INVALID_DSN_CHARACTERS,
         u"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\"},
        {SETUP_INVALID_HWND, u"Invalid window handle."},
        {SETUP_INVALID_LOG_FILE_SIZE,
         u"Invalid value for the maximum size of each log file in MB, valid values are [0, 4096]."},
    };
    for (const auto& c : cases)
    {
        m_host.ExpectMessageBox(IDOK);
        DSBaseDialog::GuardAction(nullptr, &m_logger, "Tarni::DriverSupport", "TestDialog",
                                  [&] { throw DSSetupException(c.code); });
        const auto& box = m_host.GetMessageBoxes().back();
        EXPECT_EQ(box.text, c.text);
        EXPECT_EQ(box.caption, u"DSN Configuration Error");
        EXPECT_EQ(box.flags, 0x30u);
        EXPECT_TRUE(m_logger.Has(Support::LOG_FATAL, "Tarni::DriverSupport::TestDialog::ActionProc",
                                 Support::StringConverter::ToUtf8(c.text)));
    }
}

TEST_F(DSBaseDialogTest, ErrorExceptionsAreLoggedAndShownThroughTheCatalogue)
{
    DSDialogModule::SetErrorTextResolver([](const Support::ErrorException& in_error) {
        return u"Catalogue text for " + in_error.GetMessageKey();
    });
    m_host.ExpectMessageBox(IDOK);
    bool ranAfter = false;
    DSBaseDialog::GuardAction(nullptr, &m_logger, "Tarni::SparkODBC", "TestDialog", [&] {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSSomeErr", {u"p"});
    });
    ranAfter = true;
    EXPECT_TRUE(ranAfter);
    EXPECT_EQ(m_host.GetMessageBoxes().back().text, u"Catalogue text for DSSomeErr");
    EXPECT_EQ(m_host.GetMessageBoxes().back().caption, u"DSN Configuration Error");
    EXPECT_TRUE(m_logger.Has(Support::LOG_ERROR, "Tarni::SparkODBC::TestDialog::ActionProc", "DSSomeErr"));
    // Anything else passes through.
    EXPECT_THROW(DSBaseDialog::GuardAction(nullptr, &m_logger, "n", "c", [] { throw std::runtime_error("x"); }),
                 std::runtime_error);
}

TEST_F(DSBaseDialogTest, ConfirmAndInfoBoxesUseTheirButtonsAndLoadStringIds)
{
    m_host.ExpectMessageBox(IDYES);
    EXPECT_TRUE(DSBaseDialog::ShowConfirmMessage(nullptr, IDS_REMOVE_PROPERTY_TITLE, IDS_REMOVE_PROPERTY_TEXT,
                                                 MB_ICONQUESTION, true));
    m_host.ExpectMessageBox(IDNO);
    EXPECT_FALSE(DSBaseDialog::ShowConfirmMessage(nullptr, u"T", u"Q", MB_ICONQUESTION, true));
    m_host.ExpectMessageBox(IDOK);
    EXPECT_TRUE(DSBaseDialog::ShowConfirmMessage(nullptr, u"T", u"Q", 0, false));
    m_host.ExpectMessageBox(IDOK);
    DSBaseDialog::ShowInfoMessage(nullptr, u"Title", IDS_DSN_NAME_EMPTY);

    const auto& boxes = m_host.GetMessageBoxes();
    EXPECT_EQ(boxes[0].caption, u"Remove Property");
    EXPECT_EQ(boxes[0].text, u"Are you sure you want to remove this property?");
    EXPECT_EQ(boxes[0].flags, 0x24u);
    EXPECT_EQ(boxes[2].flags, 0x01u);
    EXPECT_EQ(boxes[3].flags, 0u);
    EXPECT_EQ(boxes[3].text, u"Data Source Name value cannot be empty.");
}

TEST_F(DSBaseDialogTest, ComboEditAndBrowseHelpers)
{
    m_host.ExpectOpenFile(u"/tmp/chosen.pem");
    m_host.ExpectOpenFile(std::nullopt);
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        DSBaseDialog::AddComboString(&w, IDC_LOG_LEVEL, u"one");
        DSBaseDialog::AddComboString(&w, IDC_LOG_LEVEL, u"two");
        EXPECT_EQ(DSBaseDialog::GetComboCount(&w, IDC_LOG_LEVEL), 2u);
        DSBaseDialog::ClearCombo(&w, IDC_LOG_LEVEL);
        EXPECT_EQ(DSBaseDialog::GetComboCount(&w, IDC_LOG_LEVEL), 0u);
        EXPECT_EQ(DSBaseDialog::GetComboCount(&w, IDC_LOG_PATH), 0u) << "not a combo: the error reads as 0";

        DSBaseDialog::SetDlgItemString(&w, IDC_LOG_PATH, u"/var");
        w.EditSetSel(IDC_LOG_PATH, 0, 1);
        DSBaseDialog::AppendEditText(&w, IDC_LOG_PATH, u"/log");
        EXPECT_EQ(DSBaseDialog::GetDlgItemString(&w, IDC_LOG_PATH), u"/var/log");

        DSBaseDialog::BrowseForFile(&w, IDC_LOG_PATH);
        EXPECT_EQ(w.Text(IDC_LOG_PATH), u"/tmp/chosen.pem");
        DSBaseDialog::BrowseForFile(&w, IDC_LOG_PATH);
        EXPECT_EQ(w.Text(IDC_LOG_PATH), u"/tmp/chosen.pem") << "a cancelled box changes nothing";
        w.PressEscape();
    });
    m_host.DialogBoxParam(IDD_LOGGING_OPTIONS, nullptr, &Plain, 0);
    const auto& chooser = m_host.GetFileChoosers().front();
    EXPECT_EQ(chooser.bufferChars, 32768u);
    EXPECT_EQ(chooser.flags, 0x1800u);
    EXPECT_TRUE(chooser.filter.empty());
    EXPECT_TRUE(chooser.title.empty());
}

TEST_F(DSBaseDialogTest, AWaitCursorThatCannotBeLoadedIsAnError)
{
    DSBaseDialog::SetWaitCursor();
    EXPECT_EQ(m_host.GetWaitCursorCount(), 1);
    m_host.SetWaitCursorAvailable(false);
    try
    {
        DSBaseDialog::SetWaitCursor();
        FAIL();
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(e.GetMessageKey(), u"DSCursorResourceError");
    }
}
