#include "dialogs/driversupport/DSHttpPropertiesDialog.h"

#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSHttpPropertiesDialog";
}  // namespace

DSHttpPropertiesDialog::DSHttpPropertiesDialog(DSDSNConfiguration& io_configuration,
                                               DSPrefixedPropertyGroup& io_headers, bool in_pathEditable)
    : DSKeyValueListDialog(IDD_HTTP_PROPERTIES, io_headers.GetProperties(), io_configuration.GetLog()),
      m_configuration(io_configuration),
      m_headers(io_headers),
      m_pathEditable(in_pathEditable)
{
}

void DSHttpPropertiesDialog::Initialize(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Initialize");
    InitializeList(in_window);
    in_window->ListSetCurSel(IDC_PROP_LIST, 0);
    RefreshButtons();
    DSBaseDialog::SetDlgItemString(in_window, IDC_HTTP_PATH, m_configuration.GetValue(Keys::HTTPPath));
    in_window->EnableItem(IDC_HTTP_PATH, m_pathEditable);
}

void DSHttpPropertiesDialog::DoOkAction(unsigned in_command)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DoOkAction");
    (void)in_command;
    ConfigurationMap headers = ReadList();
    m_configuration.SetValue(Keys::HTTPPath, DSBaseDialog::GetDlgItemString(m_window, IDC_HTTP_PATH));
    m_headers.GetProperties() = std::move(headers);
    m_headers.CopyToMap(m_configuration.GetMap());
}
}  // namespace Tarni::DriverSupport
