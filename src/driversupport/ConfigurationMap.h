#pragma once
// The configuration of the driver or of a data source: an ordered map from key
// to value, both text. Keys compare case-insensitively, as registry value
// names do, and the map lists them in that order.
#include <map>

#include "support/CaseInsensitiveLess.h"

namespace Tarni::DriverSupport
{
class ConfigurationMap : public std::map<tarni_wstring, tarni_wstring, Support::CaseInsensitiveLess>
{
public:
    using std::map<tarni_wstring, tarni_wstring, Support::CaseInsensitiveLess>::map;

    bool Contains(tarni_wstring_view in_key) const { return find(in_key) != end(); }

    /// The value of the key, or empty text when the key is absent.
    tarni_wstring GetValue(tarni_wstring_view in_key) const
    {
        const auto it = find(in_key);
        return it == end() ? tarni_wstring() : it->second;
    }

    /// Inserts or overwrites.
    void SetValue(tarni_wstring_view in_key, tarni_wstring_view in_value)
    {
        const auto it = find(in_key);
        if (it == end())
        {
            emplace(tarni_wstring(in_key), tarni_wstring(in_value));
        }
        else
        {
            it->second = tarni_wstring(in_value);
        }
    }

    void Remove(tarni_wstring_view in_key)
    {
        const auto it = find(in_key);
        if (it != end())
        {
            erase(it);
        }
    }
};
}  // namespace Tarni::DriverSupport
