#pragma once
// The HTTP Properties dialog (template 9110), opened by "HTTP Options..." of
// the main dialog: the HTTP path of the service end point ("HTTPPath") and
// the custom HTTP request headers, stored as "http.header." + name.
#include "dialogs/driversupport/DSKeyValueListDialog.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSPrefixedPropertyGroup.h"

namespace Tarni::DriverSupport
{
class DSHttpPropertiesDialog final : public DSKeyValueListDialog
{
public:
    /// in_pathEditable: whether the HTTP path may be changed (the main dialog
    /// clears it for the DFI server type).
    DSHttpPropertiesDialog(DSDSNConfiguration& io_configuration, DSPrefixedPropertyGroup& io_headers,
                           bool in_pathEditable);

    /// Lists the headers, selects the first, shows the path.
    void Initialize(Platform::IDialogWindow* in_window) override;
    /// Stores the path and replaces the headers by the list.
    void DoOkAction(unsigned in_command) override;

private:
    DSDSNConfiguration& m_configuration;
    DSPrefixedPropertyGroup& m_headers;
    bool m_pathEditable;
};
}  // namespace Tarni::DriverSupport
