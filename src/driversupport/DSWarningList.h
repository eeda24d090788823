#pragma once
// The warnings collected while a connection's settings are read. Reading goes
// on after a warning; the connection posts the list once reading is done.
#include <vector>

#include "driversupport/DSWarning.h"

namespace Tarni::DriverSupport
{
class DSWarningList
{
public:
    void Add(int in_componentId, tarni_wstring in_messageKey, std::vector<tarni_wstring> in_parameters)
    {
        m_warnings.push_back(DSWarning{in_componentId, std::move(in_messageKey), std::move(in_parameters)});
    }

    const std::vector<DSWarning>& GetWarnings() const { return m_warnings; }
    bool IsEmpty() const { return m_warnings.empty(); }
    size_t Size() const { return m_warnings.size(); }
    void Clear() { m_warnings.clear(); }

private:
    std::vector<DSWarning> m_warnings;
};
}  // namespace Tarni::DriverSupport
