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
    auto* configuration = DSBaseDialog::GetInputMap<DSDSNConfiguration>(in_window);
    return configuration != nullptr ? configuration->GetLog() : nullptr;
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
    switch (in_message)
    {
        case WM_DESTROY:
        case WM_NCDESTROY:
            return 1;
        case WM_INITDIALOG:
        {
            auto* configuration = reinterpret_cast<DSDSNConfiguration*>(in_lParam);
            DSBaseDialog::GuardAction(in_window, configuration != nullptr ? configuration->GetLog() : nullptr, NS,
                                      CLS, [&] {
                                          Initialize(in_window, configuration);
                                          CheckEnableButtons(in_window);
                                      });
            return 1;
        }
        case WM_COMMAND:
            if (LowWord(in_wParam) == IDC_ZK_NAMESPACE)
            {
                // Any notification of the namespace field.
                DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                                          [&] { CheckEnableButtons(in_window); });
                return 1;
            }
            return DSBaseDialog::RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                               &DoCancelAction);
        default:
            return 0;
    }
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
