#pragma once
// The configuration model's message boxes (such as "Credentials Not Saved")
// shown through the dialog host, owned by the dialog that is open.
#include "driversupport/DSMessageBoxHost.h"
#include "ui/IDialogWindow.h"

namespace Tarni::DriverSupport
{
class DSDialogMessageBoxHost final : public DSMessageBoxHost
{
public:
    /// Boxes are owned by in_owner and shown by its host.
    explicit DSDialogMessageBoxHost(Platform::IDialogWindow& in_owner) : m_owner(in_owner) {}

    int ShowMessageBox(tarni_wstring_view in_text, tarni_wstring_view in_caption, std::uint32_t in_style) override
    {
        return m_owner.GetHost().MessageBox(&m_owner, in_text, in_caption, in_style);
    }

private:
    Platform::IDialogWindow& m_owner;
};
}  // namespace Tarni::DriverSupport
