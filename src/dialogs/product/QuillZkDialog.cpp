#include "dialogs/product/QuillZkDialog.h"

#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
using DriverSupport::DSDSNConfiguration;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillZkDialog";

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DSBaseDialog::InputMapLog<DSDSNConfiguration>(in_window);
}
}  // namespace

bool QuillZkDialog::Show(IDialogWindow* in_parent, DSDSNConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return DSBaseDialog::RunModal(in_parent, IDD_ZOOKEEPER_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t QuillZkDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam,
                                        std::intptr_t in_lParam)
{
    const auto initialize = [&](DSDSNConfiguration* in_input) {
        Initialize(in_window, in_input);
        CheckEnableButtons(in_window);
    };
    if (const auto handled =
            DSBaseDialog::RouteCommonMessages<DSDSNConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    if (LowWord(in_wParam) == IDC_ZK_NAMESPACE)
    {
        // Any notification of the namespace field.
        DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                                  [&] { CheckEnableButtons(in_window); });
        return 1;
    }
    return DSBaseDialog::RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                       &DoCancelAction);
}

void QuillZkDialog::Initialize(IDialogWindow* in_window, DSDSNConfiguration* in_configuration)
{
    DSBaseDialog::StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    DSBaseDialog::CenterDialog(in_window);
    DSBaseDialog::SetDlgItemString(in_window, IDC_ZK_NAMESPACE,
                                   in_configuration->GetValue(DriverSupport::Keys::ZKNamespace));
}

void QuillZkDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    in_window->EnableItem(IDOK, !DSBaseDialog::GetDlgItemString(in_window, IDC_ZK_NAMESPACE).empty());
}

void QuillZkDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = DSBaseDialog::GetInputMap<DSDSNConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    configuration->SetValue(DriverSupport::Keys::ZKNamespace,
                            DSBaseDialog::GetDlgItemString(in_window, IDC_ZK_NAMESPACE));
    in_window->EndDialog(1);
}

void QuillZkDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::SparkODBC
