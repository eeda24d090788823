#pragma once
// The program's wide string: UTF-16 code units on every platform, so that the
// text stored in the registry, the INI file and the dialogs is the same.
#include <string>
#include <string_view>

namespace Tarni
{
using tarni_wstring = std::u16string;
using tarni_wstring_view = std::u16string_view;
}  // namespace Tarni
