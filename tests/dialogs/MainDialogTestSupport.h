#pragma once
// What the tests of the main dialog share: the scripted host, product
// settings written for the test, a configuration at its defaults, and a run
// of the dialog over them with a script that plays the user.
#include <functional>
#include <string>

#include "common/TempDirectory.h"
#include "dialogs/framework/DSMessageCatalogue.h"
#include "dialogs/DialogTestSupport.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::Testing
{
class MainDialogTest : public DialogTest
{
protected:
    MainDialogTest() : m_configuration(u"", 2, &m_logger) {}

    void SetUp() override
    {
        DialogTest::SetUp();
        SparkODBC::SOProductIdentity::Register();
        UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\n");
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    }

    void TearDown() override
    {
        DriverSupport::DSMessageCatalogue::SetLookup(nullptr);
        DialogTest::TearDown();
    }

    /// Loads the product settings and resets the configuration to the defaults they give.
    void UseProductSettings(const std::string& in_lines)
    {
        DialogTest::UseProductSettings(in_lines);
        m_configuration.LoadDefaults();
    }

    void Set(tarni_wstring_view in_key, tarni_wstring_view in_value) { m_configuration.SetValue(in_key, in_value); }
    tarni_wstring Get(tarni_wstring_view in_key) const { return m_configuration.GetValue(in_key); }

    /// Shows the dialog of the template over the configuration; the script
    /// plays the user and must end the dialog.
    std::intptr_t Run(unsigned in_templateId, Platform::ScriptedDialogHost::DialogScript in_script,
                      const std::function<void(SparkODBC::QuillConfigurationDialog&)>& in_prepare = {})
    {
        SparkODBC::QuillConfigurationDialog dialog(m_configuration, &m_logger);
        if (in_prepare)
        {
            in_prepare(dialog);
        }
        m_host.ExpectDialog(in_templateId, std::move(in_script));
        return dialog.Show(nullptr, in_templateId);
    }

    /// A DSN setup that passes the host and name checks.
    static void FillDsnBasics(Platform::ScriptedDialogWindow& io_window, tarni_wstring_view in_name = u"Sales")
    {
        io_window.Type(IDC_DSN_NAME, in_name);
        io_window.Type(IDC_HOSTS, u"spark.example.com");
    }

    SparkODBC::QuillConfiguration m_configuration;
};
}  // namespace Tarni::Testing
