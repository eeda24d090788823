#pragma once
// The Server Side Properties dialog (template 132), opened from Advanced
// Options: the free key/value pairs passed to the server when a session
// opens (stored as "SSP_" + key), and the two switches "LCaseSspKeyName"
// (convert key names to lower case) and "ApplySSPWithQueries".
#include "dialogs/driversupport/DSKeyValueListDialog.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSServerSidePropertyGroup.h"

namespace Tarni::SparkODBC
{
class QuillServerSidePropertiesDialog final : public DriverSupport::DSKeyValueListDialog
{
public:
    /// in_showApplyWithQueries: whether "Apply properties with queries" is
    /// shown at all; in_queriesAllowed: whether the server type can apply
    /// them with queries (2, 3 or 4); when not, the box is checked and disabled.
    QuillServerSidePropertiesDialog(DriverSupport::DSDSNConfiguration& io_configuration,
                                    DriverSupport::DSServerSidePropertyGroup& io_properties,
                                    bool in_showApplyWithQueries, bool in_queriesAllowed);

    void Initialize(Platform::IDialogWindow* in_window) override;
    /// The switches (the queries switch only when shown and allowed), then
    /// the properties from the list.
    void DoOkAction(unsigned in_command) override;

private:
    DriverSupport::DSDSNConfiguration& m_configuration;
    DriverSupport::DSServerSidePropertyGroup& m_group;
    bool m_showApplyWithQueries;
    bool m_queriesAllowed;
};
}  // namespace Tarni::SparkODBC
