#pragma once
// Fills the parameters into a message text. A placeholder is "%" + n + "%",
// n counted from 1; every parameter is expected exactly once.
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Support
{
/// The text with each placeholder replaced by its parameter. A placeholder
/// used twice, one without a parameter and a parameter without a placeholder
/// are errors: DSIException with finished text naming the index and in_messageKey.
/// A "%" that does not start a placeholder stays as it is.
tarni_wstring GetParameterizedMessage(tarni_wstring_view in_message, const std::vector<tarni_wstring>& in_parameters,
                                      tarni_wstring_view in_messageKey = {});
}  // namespace Tarni::Support
