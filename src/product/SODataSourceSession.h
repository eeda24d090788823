#pragma once
// What every editor of a data source sets up first, the command-line tool,
// the dialog program and the setup library alike: the product identity, the
// driver-wide store that data sources inherit from (read for the session),
// the credential rules (a secret is kept only in protected form) and,
// where the caller chooses it, the installer's user or system mode, which
// is put back when the session ends.
#include <memory>
#include <optional>

#include "platform/ISettingsStore.h"
#include "platform/OdbcInstaller.h"
#include "support/TarniSettingStoreScope.h"

namespace Tarni::SparkODBC
{
class SODataSourceSession
{
public:
    /// in_iniPath: the driver-wide INI file (Linux), empty for the usual one.
    /// in_systemMode: switch the installer to system (true) or user (false)
    /// data sources for the session; nothing keeps the mode the caller set.
    SODataSourceSession(const tarni_wstring& in_iniPath, std::optional<bool> in_systemMode);

    SODataSourceSession(const SODataSourceSession&) = delete;
    SODataSourceSession& operator=(const SODataSourceSession&) = delete;

    /// Whether the installer is in its system mode (a system data source).
    bool IsSystemMode() const;

    /// "user" or "system", for messages.
    tarni_wstring ModeName() const { return IsSystemMode() ? u"system" : u"user"; }

private:
    std::unique_ptr<Platform::ISettingsStore> m_store;
    std::optional<Support::TarniSettingStoreScope> m_storeScope;
    std::optional<Platform::OdbcConfigModeScope> m_modeScope;
};
}  // namespace Tarni::SparkODBC
