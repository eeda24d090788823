#pragma once
// What the tests of the configuration run on the scripted host share: a
// folder of the test's own (the INI file on Linux lives there), the run's
// options, the scripted host, and the platform's real driver store (the INI
// file, or Wine's registry under the mingw build).
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "common/TempDirectory.h"
#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "support/StringConverter.h"
#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"

namespace Tarni::Testing
{
class DriverConfigRunFixture : public ::testing::Test
{
protected:
    using Snapshot = std::map<tarni_wstring, tarni_wstring>;

    DriverConfigRunFixture()
    {
        m_options.iniPath = Support::StringConverter::FromUtf8((m_folder / "odbc.ini").string());
        m_before = Stored();
    }
    void TearDown() override
    {
        // Under Wine the store is the machine's driver key, which outlives the
        // test and which the command-line tests read too: it goes back to
        // what it held before.
        const Snapshot after = Stored();
        auto store = Store();
        for (const auto& [name, value] : after)
        {
            if (m_before.count(name) == 0)
            {
                store->DeleteValue(name);
            }
        }
        for (const auto& [name, value] : m_before)
        {
            const auto now = after.find(name);
            if (now == after.end() || now->second != value)
            {
                store->WriteValue(name, value);
            }
        }
        // Product settings a test loaded go with it.
        DriverSupport::DSProductHelper::LoadProductSettings(
            Support::StringConverter::FromUtf8((m_folder / "absent.did").string()));
    }

    std::unique_ptr<Platform::ISettingsStore> Store() const
    {
        return Platform::SettingsStoreFactory::OpenDriverStore(
            DriverSupport::DSProductHelper::GetDriverStoreLocation(m_options.iniPath));
    }
    /// The stored values by name.
    Snapshot Stored() const
    {
        Snapshot values;
        for (const auto& value : Store()->ReadAll())
        {
            values[value.name] = value.value;
        }
        return values;
    }
    /// Loads product settings of this text for the test.
    void UseProductSettings(const std::string& in_lines)
    {
        TempDirectory::WriteFile(m_folder / "SparkODBC.did", in_lines);
        DriverSupport::DSProductHelper::LoadProductSettings(
            Support::StringConverter::FromUtf8((m_folder / "SparkODBC.did").string()));
    }

    TempDirectory m_dir;
    const std::filesystem::path m_folder = m_dir.Path();
    SparkODBC::SODriverConfigRun::Options m_options;
    Platform::ScriptedDialogHost m_host;
    Snapshot m_before;
};
}  // namespace Tarni::Testing
