#pragma once
// The product identity and the read-only product settings of the installed
// product. Settings come from the product data file beside the program
// ("SparkODBC.did": key=value lines, see docs/product-settings.md); an absent
// file means no settings, and an absent setting reads as empty text.
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "driversupport/ProductIdentity.h"
#include "platform/DriverStoreLocation.h"
#include "support/CaseInsensitiveLess.h"

namespace Tarni::DriverSupport
{
class DSProductHelper
{
public:
    static void SetProductIdentity(const ProductIdentity& in_identity);
    static ProductIdentity GetProductIdentity();

    /// A product setting, empty when absent. Loads the product data file on first use.
    static tarni_wstring GetSetting(tarni_wstring_view in_key);

    /// A boolean setting: true for "1" or "true", false for "0" or "false";
    /// any other value (or none) counts as absent.
    static std::optional<bool> GetBoolSetting(tarni_wstring_view in_key);

    /// True when the setting is exactly "1".
    static bool IsSettingOne(tarni_wstring_view in_key) { return GetSetting(in_key) == u"1"; }

    /// Reads the settings from the given file instead of the one beside the
    /// program (a missing file means no settings). Throws ErrorException
    /// "DSProductFileErr" naming the file and line for a malformed file.
    static void LoadProductSettings(const tarni_wstring& in_path);

    /// Incremented whenever the settings are (re)loaded, so helpers that cache
    /// a value derived from them know to recompute it.
    static unsigned GetSettingsGeneration();

    /// The data file beside the program.
    static tarni_wstring GetDefaultProductDataFilePath();

    /// "vendor-name" if set, else the brand.
    static tarni_wstring GetVendorName();
    /// "driver-name" if set, else the short driver name.
    static tarni_wstring GetDriverName();

    /// Where the driver-wide settings live; built once and cached. The INI
    /// path is in_iniOverride when given, else the file named by the
    /// environment variable, else the user's file in the home folder.
    static Platform::DriverStoreLocation GetDriverStoreLocation(const tarni_wstring& in_iniOverride = {});

private:
    static void EnsureLoaded();

    static std::recursive_mutex s_lock;
    static ProductIdentity s_identity;
    static std::optional<std::map<tarni_wstring, tarni_wstring, Support::CaseInsensitiveLess>> s_settings;
    static unsigned s_generation;
    static std::optional<tarni_wstring> s_registryPath;

public:
    /// The product's log name, the stem of its log files (the configuration
    /// run logs to GetLogName() + "_DriverConfig.log"): the short driver name
    /// without blanks and without its trailing "Driver", e.g. "TarniSparkODBC".
    /// Derived once per product identity and cached.
    static tarni_wstring GetLogName();

private:
    static std::optional<std::pair<tarni_wstring, tarni_wstring>> s_logName;
};
}  // namespace Tarni::DriverSupport
