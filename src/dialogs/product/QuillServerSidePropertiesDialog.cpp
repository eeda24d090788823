#include "dialogs/product/QuillServerSidePropertiesDialog.h"

#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::ConfigurationMap;
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillServerSidePropertiesDialog";

const char16_t* Switch(bool in_on) { return in_on ? u"1" : u"0"; }
}  // namespace

QuillServerSidePropertiesDialog::QuillServerSidePropertiesDialog(
    DriverSupport::DSDSNConfiguration& io_configuration, DriverSupport::DSServerSidePropertyGroup& io_properties,
    bool in_showApplyWithQueries, bool in_queriesAllowed)
    : DSKeyValueListDialog(IDD_SERVER_SIDE_PROPERTIES, io_properties.GetProperties(), io_configuration.GetLog()),
      m_configuration(io_configuration),
      m_group(io_properties),
      m_showApplyWithQueries(in_showApplyWithQueries),
      m_queriesAllowed(in_queriesAllowed)
{
}

void QuillServerSidePropertiesDialog::Initialize(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Initialize");
    InitializeList(in_window);
    RefreshButtons();
    in_window->CheckButton(IDC_SSP_LCASE_KEY_NAME, m_group.GetLCaseSspKeyName() != u"0");
    if (!m_showApplyWithQueries)
    {
        in_window->ShowItem(IDC_SSP_APPLY_WITH_QUERIES, false);
    }
    else if (m_queriesAllowed)
    {
        in_window->CheckButton(IDC_SSP_APPLY_WITH_QUERIES, m_group.GetApplySSPWithQueries() != u"0");
    }
    else
    {
        in_window->CheckButton(IDC_SSP_APPLY_WITH_QUERIES, true);
        in_window->EnableItem(IDC_SSP_APPLY_WITH_QUERIES, false);
    }
}

void QuillServerSidePropertiesDialog::DoOkAction(unsigned in_command)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DoOkAction");
    (void)in_command;
    ConfigurationMap properties = ReadList();
    if (m_showApplyWithQueries && m_queriesAllowed)
    {
        const char16_t* value = Switch(m_window->IsButtonChecked(IDC_SSP_APPLY_WITH_QUERIES));
        m_group.SetApplySSPWithQueries(value);
        m_configuration.SetValue(Keys::ApplySSPWithQueries, value);
    }
    const char16_t* lowerCase = Switch(m_window->IsButtonChecked(IDC_SSP_LCASE_KEY_NAME));
    m_group.SetLCaseSspKeyName(lowerCase);
    m_configuration.SetValue(Keys::LCaseSspKeyName, lowerCase);
    m_group.GetProperties() = std::move(properties);
    m_group.CopyToMap(m_configuration.GetMap());
}
}  // namespace Tarni::SparkODBC
