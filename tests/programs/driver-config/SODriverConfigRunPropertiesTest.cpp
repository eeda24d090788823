// Server-side properties and HTTP headers through the whole configuration run
// on the scripted host, over the platform's real store (the INI file on
// Linux, Wine's registry under the mingw build): main dialog -> Advanced
// Options -> Server Side Properties -> Edit Property and main dialog -> HTTP
// Properties -> Edit Property, saved by OK and read back by the next run.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "programs/driver-config/DriverConfigRunFixture.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;

namespace
{
using Window = ScriptedDialogWindow;

class SODriverConfigRunPropertiesTest : public Testing::DriverConfigRunFixture
{
protected:
    void SetUp() override
    {
        m_longValue.replace(0, 22, u" =é 値 a=b \"quoted\" = ");
        m_longValue.back() = u' ';
    }

    void TearDown() override
    {
        auto store = Store();
        for (const auto& value : store->ReadAll())
        {
            if (value.name.find(m_name) != tarni_wstring::npos)
            {
                store->DeleteValue(value.name);
            }
        }
        DriverConfigRunFixture::TearDown();
    }

    /// An Edit Property dialog that types the pair and presses OK.
    void ExpectEdit(const tarni_wstring& in_key, const tarni_wstring& in_value)
    {
        m_host.ExpectDialog(IDD_EDIT_PROPERTY, [=](Window& e) {
            e.Type(IDC_PROP_KEY, in_key);
            e.Type(IDC_PROP_VALUE, in_value);
            e.Click(IDOK);
        });
    }

    // Names of this run only: the registry outlives a test run.
    const tarni_wstring m_name = StringConverter::FromAscii(
        "tarni.test." + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    tarni_wstring m_longValue = tarni_wstring(4000, u'v');
};
}  // namespace

TEST_F(SODriverConfigRunPropertiesTest, AServerSidePropertyAddedThreeDialogsDeepIsStoredUnderItsPrefix)
{
    const tarni_wstring key = m_name + u" näme";
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](Window& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        w.Click(IDC_ADVANCED_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [](Window& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        w.Click(IDC_ADV_SERVER_SIDE_PROPERTIES);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, [](Window& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_ADVANCED_OPTIONS));
        EXPECT_TRUE(w.Enabled(IDC_SSP_APPLY_WITH_QUERIES));
        w.Click(IDC_PROP_ADD);
        w.Click(IDOK);
    });
    ExpectEdit(key, m_longValue);
    ASSERT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    Snapshot stored = Stored();
    ASSERT_EQ(stored.count(u"SSP_" + key), 1u);
    EXPECT_EQ(stored.at(u"SSP_" + key), m_longValue) << "blanks, \"=\", quotes and non-ASCII text kept exactly";
    EXPECT_EQ(stored.at(u"LCaseSspKeyName"), u"1");

    // The next run shows it; removing it deletes it from the store.
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](Window& w) {
        w.Click(IDC_ADVANCED_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_ADVANCED_OPTIONS, [](Window& w) {
        w.Click(IDC_ADV_SERVER_SIDE_PROPERTIES);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_SERVER_SIDE_PROPERTIES, [&](Window& w) {
        const auto items = w.Items(IDC_PROP_LIST);
        const auto it = std::find(items.begin(), items.end(), key + u"=" + m_longValue);
        ASSERT_NE(it, items.end());
        w.SelectListItem(IDC_PROP_LIST, static_cast<int>(it - items.begin()));
        m_host.ExpectMessageBox(IDYES);
        w.Click(IDC_PROP_REMOVE);
        w.Click(IDOK);
    });
    ASSERT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    EXPECT_EQ(Stored().count(u"SSP_" + key), 0u);
}

TEST_F(SODriverConfigRunPropertiesTest, AnHttpHeaderWithAnEmptyValueIsStoredUnderItsPrefix)
{
    const tarni_wstring header = u"X-Trace-" + m_name;
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](Window& w) {
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        ASSERT_TRUE(w.Enabled(IDC_HTTP_OPTIONS));
        w.Click(IDC_HTTP_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_HTTP_PROPERTIES, [](Window& w) {
        EXPECT_TRUE(w.Enabled(IDC_HTTP_PATH));
        w.Type(IDC_HTTP_PATH, u"cliservice");
        w.Click(IDC_PROP_ADD);
        w.Click(IDOK);
    });
    ExpectEdit(header, u"");
    ASSERT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    const Snapshot stored = Stored();
    ASSERT_EQ(stored.count(u"http.header." + header), 1u);
    EXPECT_EQ(stored.at(u"http.header." + header), u"");
    EXPECT_EQ(stored.at(u"HTTPPath"), u"cliservice");
}
