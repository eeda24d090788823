#pragma once
// Shows a message box for the configuration model. The dialog host
// implements it over its MessageBoxW (the owner is the dialog that is open);
// tests record what would be shown.
#include <cstdint>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
class DSMessageBoxHost
{
public:
    /// Style flags with the values of MessageBoxW: MB_OK | MB_ICONEXCLAMATION.
    static constexpr std::uint32_t STYLE_OK_EXCLAMATION = 0x00000030;

    virtual ~DSMessageBoxHost() = default;

    /// Shows the box and returns the id of the button pressed.
    virtual int ShowMessageBox(tarni_wstring_view in_text, tarni_wstring_view in_caption, std::uint32_t in_style) = 0;
};
}  // namespace Tarni::DriverSupport
