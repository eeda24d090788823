#pragma once
#include <vector>

#include "platform/dialog/DialogTemplate.h"

namespace Tarni::Platform
{
/// The state of one control of a scripted dialog, built from its template.
struct ScriptedControl
{
    const ControlTemplate* source = nullptr;
    tarni_wstring text;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    std::vector<tarni_wstring> items;  ///< combo and list box entries
    int selection = -1;                ///< combo and list box selection
    int selectionStart = 0;            ///< edit selection
    int selectionEnd = 0;
};
}  // namespace Tarni::Platform
