#pragma once
// One warning raised while reading connection settings: a message key of a
// component and its parameters, turned into text by the message catalogue
// when the warning is posted to the application.
#include <vector>

#include "core/ComponentId.h"
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
struct DSWarning
{
    int m_componentId = Support::DS_ERROR;
    tarni_wstring m_messageKey;
    std::vector<tarni_wstring> m_parameters;
};
}  // namespace Tarni::DriverSupport
