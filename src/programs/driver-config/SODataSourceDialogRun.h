#pragma once
// The DSN setup dialog (template 1093) over one data source, the same for
// the dialog program (--dsn NAME) and the setup library: the product
// identity, the driver-wide store the data source inherits from, the data
// source loaded through the installer, the dialog shown modally on the given
// host; its OK writes the data source (a failed write keeps it open).
#include <functional>
#include <optional>

#include "ui/IDialogHost.h"
#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SODataSourceConfiguration;

class SODataSourceDialogRun
{
public:
    struct Options
    {
        /// The data source to edit; empty for a new one named in the dialog.
        tarni_wstring dsnName;
        /// Whether the user may change the name (a new data source).
        bool nameEditable = false;
        /// The installer mode for the run: system (true), user (false), or
        /// the mode the installer is in (nothing).
        std::optional<bool> systemMode;
        /// The driver-wide INI file (Linux); empty: the usual one.
        tarni_wstring iniPath;
        /// Runs after the data source is loaded and before the dialog shows
        /// (the setup library applies its attribute list here).
        std::function<void(SODataSourceConfiguration&)> prepare;
    };

    /// 1 after OK (the data source is written), 0 after Cancel, -1 when the
    /// dialog cannot be created. A load error throws ErrorException.
    static int Run(Platform::IDialogHost& io_host, const Options& in_options);
};
}  // namespace Tarni::SparkODBC
