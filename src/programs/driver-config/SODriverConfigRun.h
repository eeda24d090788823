#pragma once
// The configuration run of the dialog program, the same on every host: the
// product identity, the trace location, the credential switches, the two
// prefixed property groups, the platform set-up, the log, the driver-wide
// configuration loaded from the store, the main dialog shown modally (its OK
// saves, and a failed save keeps it open), and its result as the exit code
// (1 after OK, 0 after Cancel, -1 when the dialog cannot be created, which
// still saves the configuration exactly as loaded).
#include <functional>
#include <memory>

#include "platform/ISettingsStore.h"
#include "ui/IDialogHost.h"
#include "core/ILogger.h"

namespace Tarni::SparkODBC
{
class SODriverConfigRun
{
public:
    struct Options
    {
        /// The template of the main dialog.
        unsigned templateId;
        /// The INI file of the driver-wide store (Linux); empty: $SPARKINI,
        /// else the user's file.
        tarni_wstring iniPath;
        /// Creates the run's log from its file name, after the store is open;
        /// null: no log. By default a DriverLog with the driver's logging settings.
        std::function<std::unique_ptr<Support::ILogger>(const tarni_wstring& in_fileName)> createLogger;
        /// Opens the driver-wide store from iniPath; by default the platform's
        /// store (the registry key on Windows, the INI file on Linux).
        std::function<std::unique_ptr<Platform::ISettingsStore>(const tarni_wstring& in_iniPath)> openStore;
        /// Receives the trace location (brand "\" driver name); by default it
        /// becomes the low-level trace's tag.
        std::function<void(const tarni_wstring& in_location)> setTraceLocation;

        Options();
    };

    /// Exit code of a run that failed to load or save the configuration; the
    /// error has been shown in the "DSN Configuration Error" box.
    static constexpr int RESULT_STORE_ERROR = 2;

    static int Run(Platform::IDialogHost& io_host, const Options& in_options = Options());

    /// The application identifier handed to the dialog layer.
    static constexpr const char16_t* APPLICATION_ID = u"{296AC778-3C37-4F2B-916F-8BC0699EC62A}";

    /// The log file name of the run: the product's log name, "_DriverConfig", ".log".
    static tarni_wstring GetLogFileName();
    /// brand (product setting, else "Tarni") "\" driver name (product setting, else the short name).
    static tarni_wstring GetTraceLocation();
};
}  // namespace Tarni::SparkODBC
