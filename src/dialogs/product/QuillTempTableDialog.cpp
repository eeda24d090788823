#include "dialogs/product/QuillTempTableDialog.h"

#include <string>

#include "core/NumberConverter.h"
#include "dialogs/product/QuillAdvancedOptionsDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
using Support::StringConverter;
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillTempTableDialog";

/// The fields that follow "Enable Temporary Table".
const int FIELDS[] = {IDC_TT_WEB_HDFS_HOST, IDC_TT_HDFS_TEMP_TABLE_DIR, IDC_TT_HDFS_USER, IDC_TT_WEB_HDFS_PORT,
                      IDC_TT_TEMP_TABLE_TTL};

constexpr unsigned PORT_LIMIT = 65536;

tarni_wstring Number(unsigned in_value) { return StringConverter::FromAscii(std::to_string(in_value)); }

QuillTempTableDialog::Input* InputOf(IDialogWindow* in_window)
{
    return DSBaseDialog::GetInputMap<QuillTempTableDialog::Input>(in_window);
}

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    const auto* input = InputOf(in_window);
    return input != nullptr ? input->GetLog() : nullptr;
}
}  // namespace

bool QuillTempTableDialog::Show(IDialogWindow* in_parent, Input* in_input)
{
    TARNI_LOG_ENTRY(in_input->configuration->GetLog(), NS, CLS, "Show");
    return DSBaseDialog::RunModal(in_parent, IDD_TEMP_TABLE_CONFIG, &ActionProc, in_input) > 0;
}

std::intptr_t QuillTempTableDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                               std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](Input* in_input) {
        Initialize(in_window, in_input);
        CheckEnableButtons(in_window);
    };
    if (const auto handled =
            DSBaseDialog::RouteCommonMessages<Input>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    if (LowWord(in_wParam) == IDC_TT_ENABLE_TEMP_TABLE)
    {
        DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                                  [&] { CheckEnableButtons(in_window); });
        return 1;
    }
    return DSBaseDialog::RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                       &DoCancelAction);
}

void QuillTempTableDialog::Initialize(IDialogWindow* in_window, Input* in_input)
{
    DSBaseDialog::StoreInputMap(in_window, in_input);
    const DriverSupport::DSDSNConfiguration& configuration = *in_input->configuration;
    TARNI_LOG_ENTRY(configuration.GetLog(), NS, CLS, "Initialize");
    DSBaseDialog::CenterDialog(in_window);
    in_window->CheckButton(IDC_TT_ENABLE_TEMP_TABLE, configuration.GetValue(Keys::EnableTempTable) == u"1");
    DSBaseDialog::SetDlgItemString(in_window, IDC_TT_WEB_HDFS_HOST, configuration.GetValue(Keys::WebHDFSHost));
    DSBaseDialog::SetDlgItemString(in_window, IDC_TT_HDFS_TEMP_TABLE_DIR,
                                   configuration.GetValue(Keys::HDFSTempTableDir));
    DSBaseDialog::SetDlgItemString(in_window, IDC_TT_HDFS_USER, configuration.GetValue(Keys::HDFSUser));
    const auto port = Support::NumberConverter::ToUInt32(configuration.GetValue(Keys::WebHDFSPort));
    DSBaseDialog::SetDlgItemString(in_window, IDC_TT_WEB_HDFS_PORT, Number(port.value_or(DEFAULT_WEB_HDFS_PORT)));
    DSBaseDialog::SetDlgItemString(in_window, IDC_TT_TEMP_TABLE_TTL, configuration.GetValue(Keys::TempTableTTL));
    // Read-only: the values are shown, nothing can be changed (OK and
    // Cancel stay, so the dialog can be left as usual).
    in_window->EnableItem(IDC_TT_ENABLE_TEMP_TABLE, in_input->allowEditing);
}

void QuillTempTableDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    const Input* input = InputOf(in_window);
    const bool enable = input->allowEditing && in_window->IsButtonChecked(IDC_TT_ENABLE_TEMP_TABLE);
    for (const int id : FIELDS)
    {
        in_window->EnableItem(id, enable);
    }
}

void QuillTempTableDialog::DoOkAction(IDialogWindow* in_window)
{
    DriverSupport::DSDSNConfiguration& configuration = *InputOf(in_window)->configuration;
    TARNI_LOG_ENTRY(configuration.GetLog(), NS, CLS, "DoOkAction");
    const bool enabled = in_window->IsButtonChecked(IDC_TT_ENABLE_TEMP_TABLE);
    configuration.SetValue(Keys::EnableTempTable, enabled ? u"1" : u"0");
    if (enabled)
    {
        configuration.SetValue(Keys::WebHDFSHost, DSBaseDialog::GetDlgItemString(in_window, IDC_TT_WEB_HDFS_HOST));
        configuration.SetValue(Keys::HDFSTempTableDir,
                               DSBaseDialog::GetDlgItemString(in_window, IDC_TT_HDFS_TEMP_TABLE_DIR));
        configuration.SetValue(Keys::HDFSUser, DSBaseDialog::GetDlgItemString(in_window, IDC_TT_HDFS_USER));
        const unsigned port = QuillAdvancedOptionsDialog::ReadNumber(in_window, IDC_TT_WEB_HDFS_PORT);
        configuration.SetValue(Keys::WebHDFSPort, Number(port < PORT_LIMIT ? port : DEFAULT_WEB_HDFS_PORT));
        configuration.SetValue(Keys::TempTableTTL,
                               Number(QuillAdvancedOptionsDialog::ReadNumber(in_window, IDC_TT_TEMP_TABLE_TTL)));
    }
    in_window->EndDialog(1);
}

void QuillTempTableDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::SparkODBC
