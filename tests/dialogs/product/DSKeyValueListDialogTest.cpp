// The property list dialogs on the scripted host: Server Side Properties
// (the product's, hence this folder) and HTTP Properties over the shared list
// operations (Add, Edit, Remove, the duplicate search and its Retry, Cancel),
// their own switches and path, and the Edit Property dialog refusing what no
// store can hold.
#include "dialogs/MainDialogTestSupport.h"
#include "dialogs/driversupport/DSHttpPropertiesDialog.h"
#include "dialogs/product/QuillServerSidePropertiesDialog.h"
#include "driversupport/ConfigurationKeys.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
using Tarni::DriverSupport::DSHttpPropertiesDialog;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
using Window = ScriptedDialogWindow;
using Items = std::vector<tarni_wstring>;

constexpr std::uint32_t DUPLICATE_FLAGS = 0x135;
constexpr std::uint32_t REMOVE_FLAGS = 0x24;

class DSKeyValueListDialogTest : public Testing::MainDialogTest
{
protected:
    void SetUp() override
    {
        MainDialogTest::SetUp();
        m_ssp.SetLogger(&m_logger);
    }

    std::intptr_t RunSsp(ScriptedDialogHost::DialogScript in_script, bool in_show = true, bool in_allowed = true)
    {
        QuillServerSidePropertiesDialog dialog(m_configuration, m_ssp, in_show, in_allowed);
        m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, std::move(in_script));
        return dialog.Show(nullptr);
    }

    /// Queues an Edit Property dialog that checks what it shows and types the pair.
    void ExpectEdit(tarni_wstring in_shownKey, tarni_wstring in_key, tarni_wstring in_value, int in_button = IDOK)
    {
        m_host.ExpectDialog(IDD_EDIT_PROPERTY, [=](Window& e) {
            EXPECT_EQ(e.Text(IDC_PROP_KEY), in_shownKey);
            EXPECT_NE(e.GetProperty(u"Context"), nullptr);
            EXPECT_EQ(e.GetProperty(u"InputMap"), nullptr);
            e.Type(IDC_PROP_KEY, in_key);
            e.Type(IDC_PROP_VALUE, in_value);
            e.Click(in_button);
        });
    }

    const ScriptedDialogHost::MessageBoxRecord& LastBox() const { return m_host.GetMessageBoxes().back(); }

    DriverSupport::DSServerSidePropertyGroup m_ssp;
    DriverSupport::DSPrefixedPropertyGroup m_headers{"http.header."};
};
}  // namespace

TEST_F(DSKeyValueListDialogTest, DuplicateKeysAreFoundIgnoringCaseAndUpToTheEqualsSign)
{
    m_ssp.GetProperties().SetValue(u"foo", u"1");
    m_ssp.GetProperties().SetValue(u"ab", u"2");
    RunSsp([&](Window& w) {
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (Items{u"ab=2", u"foo=1"}));
        EXPECT_FALSE(w.Enabled(IDC_PROP_EDIT));
        EXPECT_FALSE(w.Enabled(IDC_PROP_REMOVE));

        // Foo against foo=1: Retry brings the pair back as entered, to be corrected.
        ExpectEdit(u"", u"Foo", u"9");
        m_host.ExpectMessageBox(IDRETRY);
        ExpectEdit(u"Foo", u"bar", u"9");
        w.Click(IDC_PROP_ADD);
        EXPECT_EQ(LastBox().text, u"Duplicate key detected");
        EXPECT_EQ(LastBox().caption, u"Duplicate Error");
        EXPECT_EQ(LastBox().flags, DUPLICATE_FLAGS);
        EXPECT_EQ(LastBox().ownerTemplate, 0u) << "the box has no owner";

        // "a" is no duplicate of "ab=2"; a second "a" is one of "a=".
        ExpectEdit(u"", u"a", u"");
        w.Click(IDC_PROP_ADD);
        ExpectEdit(u"", u"A", u"x");
        m_host.ExpectMessageBox(IDCANCEL);
        w.Click(IDC_PROP_ADD);
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (Items{u"a=", u"ab=2", u"bar=9", u"foo=1"}));
        w.Click(IDOK);
    });
    EXPECT_EQ(m_host.GetMessageBoxes().size(), 2u);
    EXPECT_EQ(m_ssp.GetProperties().GetValue(u"bar"), u"9");
    EXPECT_EQ(m_ssp.GetProperties().GetValue(u"a"), u"");
    EXPECT_EQ(m_configuration.GetValue(u"SSP_bar"), u"9") << "the map follows the group";
}

TEST_F(DSKeyValueListDialogTest, EditKeepsItsOwnKeyTheSelectionFollowsAndRemoveAsksFirst)
{
    m_ssp.GetProperties().SetValue(u"alpha", u"1");
    m_ssp.GetProperties().SetValue(u"beta", u"2");
    RunSsp([&](Window& w) {
        w.SelectListItem(IDC_PROP_LIST, 0);
        EXPECT_TRUE(w.Enabled(IDC_PROP_EDIT));
        ExpectEdit(u"alpha", u"alpha", u"one");  // same key: no duplicate box
        w.Click(IDC_PROP_EDIT);
        EXPECT_EQ(w.SelectedText(IDC_PROP_LIST), u"alpha=one");

        // A double click edits too; the renamed entry sorts after beta and stays selected.
        ExpectEdit(u"alpha", u"gamma", u"3");
        w.DoubleClickListItem(IDC_PROP_LIST, 0);
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (Items{u"beta=2", u"gamma=3"}));
        EXPECT_EQ(w.SelectedText(IDC_PROP_LIST), u"gamma=3");

        // Renaming onto another entry's key is a duplicate.
        ExpectEdit(u"gamma", u"BETA", u"3");
        m_host.ExpectMessageBox(IDCANCEL);
        w.Click(IDC_PROP_EDIT);
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (Items{u"beta=2", u"gamma=3"}));

        // Remove asks first; removing the last entry disables Edit and Remove.
        m_host.ExpectMessageBox(IDNO);
        w.Click(IDC_PROP_REMOVE);
        EXPECT_EQ(LastBox().text, u"Are you sure you want to remove this property?");
        EXPECT_EQ(LastBox().caption, u"Remove Property");
        EXPECT_EQ(LastBox().flags, REMOVE_FLAGS);
        for (int i = 0; i < 2; ++i)
        {
            m_host.ExpectMessageBox(IDYES);
            w.Click(IDC_PROP_REMOVE);
        }
        EXPECT_TRUE(w.Items(IDC_PROP_LIST).empty());
        EXPECT_FALSE(w.Enabled(IDC_PROP_EDIT));
        EXPECT_FALSE(w.Enabled(IDC_PROP_REMOVE));
        w.Click(IDOK);
    });
    EXPECT_TRUE(m_ssp.GetProperties().empty());
}

TEST_F(DSKeyValueListDialogTest, CancelDiscardsAdditionsEditsRemovalsAndSwitches)
{
    m_ssp.GetProperties().SetValue(u"keep", u"1");
    m_ssp.GetProperties().SetValue(u"change", u"2");
    const auto before = m_ssp.GetProperties();
    const auto map = m_configuration.GetMap();
    EXPECT_EQ(RunSsp([&](Window& w) {
                  ExpectEdit(u"", u"new", u"3");
                  w.Click(IDC_PROP_ADD);
                  ExpectEdit(u"change", u"change", u"22");
                  w.DoubleClickListItem(IDC_PROP_LIST, 0);
                  w.SelectListItem(IDC_PROP_LIST, 1);
                  m_host.ExpectMessageBox(IDYES);
                  w.Click(IDC_PROP_REMOVE);
                  w.Click(IDC_SSP_LCASE_KEY_NAME);
                  w.Click(IDCANCEL);
              }),
              1);
    EXPECT_EQ(m_ssp.GetProperties(), before);
    EXPECT_EQ(m_ssp.GetLCaseSspKeyName(), u"1");
    EXPECT_FALSE(m_ssp.IsApplySSPWithQueriesToBeWritten());
    EXPECT_EQ(m_configuration.GetMap(), map);
}

TEST_F(DSKeyValueListDialogTest, EditPropertyRefusesWhatCannotBeStoredAndStaysOpen)
{
    RunSsp([&](Window& w) {
        m_host.ExpectDialog(IDD_EDIT_PROPERTY, [&](Window& e) {
            EXPECT_FALSE(e.Enabled(IDOK)) << "no key yet";
            e.Type(IDC_PROP_VALUE, u"v");
            EXPECT_FALSE(e.Enabled(IDOK));
            const std::pair<tarni_wstring, const char*> refused[] = {
                {u"line\nbreak", "DSPropertyKeyLineBreakErr"},
                {u"=starts", "DSPropertyKeyEqualsErr"},
                {u" padded", "DSPropertyKeyBlankErr"},
                {u"trailing =x", "DSPropertyKeyBlankErr"},
            };
            for (const auto& [key, message] : refused)
            {
                e.Type(IDC_PROP_KEY, key);
                EXPECT_TRUE(e.Enabled(IDOK));
                m_host.ExpectMessageBox(IDOK);
                e.Click(IDOK);
                EXPECT_FALSE(e.IsEnded());
                EXPECT_EQ(LastBox().caption, u"DSN Configuration Error");
                EXPECT_NE(Support::StringConverter::ToUtf8(LastBox().text).find(message), std::string::npos)
                    << Support::StringConverter::ToUtf8(LastBox().text);
            }
            e.Type(IDC_PROP_KEY, u"k");
            e.Type(IDC_PROP_VALUE, tarni_wstring(u"nul\0inside", 10));
            m_host.ExpectMessageBox(IDOK);
            e.Click(IDOK);
            EXPECT_NE(Support::StringConverter::ToUtf8(LastBox().text).find("DSPropertyValueLineBreakErr"),
                      std::string::npos);
            // Corrected, it is taken as typed; an "=" inside the key moves the rest into the value.
            e.Type(IDC_PROP_KEY, u"k=v=w");
            e.Type(IDC_PROP_VALUE, u" x ");
            e.Click(IDOK);
        });
        w.Click(IDC_PROP_ADD);
        EXPECT_EQ(w.Items(IDC_PROP_LIST), (Items{u"k=v=w= x "}));
        w.Click(IDOK);
    });
    EXPECT_EQ(m_ssp.GetProperties().GetValue(u"k"), u"v=w= x ");
}

TEST_F(DSKeyValueListDialogTest, TheSwitchesFollowTheShowAndQueriesAllowedFlags)
{
    m_ssp.SetLCaseSspKeyName(u"0");
    RunSsp([](Window& w) {
        EXPECT_FALSE(w.Checked(IDC_SSP_LCASE_KEY_NAME));
        EXPECT_TRUE(w.Checked(IDC_SSP_APPLY_WITH_QUERIES));
        EXPECT_TRUE(w.Enabled(IDC_SSP_APPLY_WITH_QUERIES));
        w.Click(IDC_SSP_APPLY_WITH_QUERIES);
        w.Click(IDC_SSP_LCASE_KEY_NAME);
        w.Click(IDOK);
    });
    EXPECT_EQ(m_ssp.GetApplySSPWithQueries(), u"0");
    EXPECT_TRUE(m_ssp.IsApplySSPWithQueriesToBeWritten());
    EXPECT_EQ(m_ssp.GetLCaseSspKeyName(), u"1");
    EXPECT_EQ(m_configuration.GetValue(Keys::ApplySSPWithQueries), u"0");
    EXPECT_EQ(m_configuration.GetValue(Keys::LCaseSspKeyName), u"1");

    // Queries not allowed: checked, disabled and not written.
    RunSsp(
        [](Window& w) {
            EXPECT_TRUE(w.Checked(IDC_SSP_APPLY_WITH_QUERIES));
            EXPECT_FALSE(w.Enabled(IDC_SSP_APPLY_WITH_QUERIES));
            w.Click(IDOK);
        },
        true, false);
    EXPECT_EQ(m_ssp.GetApplySSPWithQueries(), u"0");

    // Not shown at all.
    RunSsp(
        [](Window& w) {
            EXPECT_FALSE(w.Visible(IDC_SSP_APPLY_WITH_QUERIES));
            w.Click(IDOK);
        },
        false, true);
    EXPECT_EQ(m_ssp.GetApplySSPWithQueries(), u"0");
}

TEST_F(DSKeyValueListDialogTest, HttpPropertiesEditThePathAndTheHeaders)
{
    Set(Keys::HTTPPath, u"cliservice");
    m_headers.GetProperties().SetValue(u"accept", u"text/plain");
    m_headers.GetProperties().SetValue(u"X-Old", u"1");
    DSHttpPropertiesDialog dialog(m_configuration, m_headers, true);
    m_host.ExpectDialog(IDD_HTTP_PROPERTIES, [&](Window& w) {
        EXPECT_EQ(w.Text(IDC_HTTP_PATH), u"cliservice");
        EXPECT_TRUE(w.Enabled(IDC_HTTP_PATH));
        EXPECT_EQ(w.SelectedText(IDC_PROP_LIST), u"accept=text/plain") << "the first entry is selected";
        EXPECT_TRUE(w.Enabled(IDC_PROP_EDIT));
        ExpectEdit(u"", u"Accept", u"*/*");
        m_host.ExpectMessageBox(IDCANCEL);
        w.Click(IDC_PROP_ADD);
        ExpectEdit(u"", u"X-Trace", u"");
        w.Click(IDC_PROP_ADD);
        w.SelectListItem(IDC_PROP_LIST, 1);
        m_host.ExpectMessageBox(IDYES);
        w.Click(IDC_PROP_REMOVE);
        w.Type(IDC_HTTP_PATH, u"/sql/1.0");
        w.Click(IDOK);
    });
    EXPECT_EQ(dialog.Show(nullptr), 1);
    EXPECT_EQ(LastBox().flags, REMOVE_FLAGS);
    EXPECT_EQ(Get(Keys::HTTPPath), u"/sql/1.0");
    EXPECT_EQ(m_headers.GetProperties(),
              (DriverSupport::ConfigurationMap{{u"accept", u"text/plain"}, {u"X-Trace", u""}}));
    EXPECT_TRUE(m_configuration.GetMap().Contains(u"http.header.X-Trace"));
    EXPECT_FALSE(m_configuration.GetMap().Contains(u"http.header.X-Old"));

    // DFI: the path cannot be changed; Cancel keeps everything.
    const auto headers = m_headers.GetProperties();
    DSHttpPropertiesDialog readOnlyPath(m_configuration, m_headers, false);
    m_host.ExpectDialog(IDD_HTTP_PROPERTIES, [&](Window& w) {
        EXPECT_FALSE(w.Enabled(IDC_HTTP_PATH));
        ExpectEdit(u"", u"X-New", u"1");
        w.Click(IDC_PROP_ADD);
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(readOnlyPath.Show(nullptr), 1);
    EXPECT_EQ(m_headers.GetProperties(), headers);
    EXPECT_EQ(Get(Keys::HTTPPath), u"/sql/1.0");
}
