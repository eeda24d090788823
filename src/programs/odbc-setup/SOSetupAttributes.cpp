#include "programs/odbc-setup/SOSetupAttributes.h"

#include <algorithm>

#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "platform/TextConversion.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SOKeyCatalogue.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using Support::StringConverter;

namespace
{
tarni_wstring_view TrimBlanks(tarni_wstring_view in_text)
{
    const size_t first = in_text.find_first_not_of(u" \t");
    if (first == tarni_wstring_view::npos)
    {
        return {};
    }
    return in_text.substr(first, in_text.find_last_not_of(u" \t") - first + 1);
}

[[noreturn]] void Malformed(tarni_wstring_view in_entry)
{
    // A long entry is named by its start: enough to find it, and no secret value in full.
    tarni_wstring shown(in_entry.substr(0, 40));
    if (const size_t equals = shown.find(u'='); equals != tarni_wstring::npos)
    {
        shown.erase(equals + 1);
        shown += u"...";
    }
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDsnAttributeErr", {shown});
}
}  // namespace

std::vector<SOSetupAttributes::Attribute> SOSetupAttributes::Parse(const char16_t* in_list)
{
    std::vector<Attribute> attributes;
    if (in_list == nullptr)
    {
        return attributes;
    }
    size_t position = 0;
    while (true)
    {
        size_t end = position;
        while (end < MAX_LIST_CHARS && in_list[end] != u'\0')
        {
            ++end;
        }
        if (end >= MAX_LIST_CHARS)
        {
            Malformed(tarni_wstring_view(in_list + position, std::min<size_t>(end - position, 40)));
        }
        if (end == position)
        {
            return attributes;
        }
        const tarni_wstring_view entry(in_list + position, end - position);
        const size_t equals = entry.find(u'=');
        if (equals == tarni_wstring_view::npos || TrimBlanks(entry.substr(0, equals)).empty())
        {
            Malformed(entry);
        }
        attributes.emplace_back(tarni_wstring(TrimBlanks(entry.substr(0, equals))),
                                tarni_wstring(entry.substr(equals + 1)));
        position = end + 1;
    }
}

tarni_wstring SOSetupAttributes::FromAnsi(const char* in_list)
{
    tarni_wstring wide;
    if (in_list == nullptr)
    {
        return wide;
    }
    size_t position = 0;
    while (position < MAX_LIST_CHARS)
    {
        size_t end = position;
        while (end < MAX_LIST_CHARS && in_list[end] != '\0')
        {
            ++end;
        }
        wide += Platform::TextConversion::AnsiToUtf16(std::string_view(in_list + position, end - position));
        wide.push_back(u'\0');
        if (end >= MAX_LIST_CHARS || end == position)
        {
            // The terminator is there (or the list is cut, which Parse reports).
            return wide;
        }
        position = end + 1;
    }
    return wide;
}

tarni_wstring SOSetupAttributes::Find(const std::vector<Attribute>& in_attributes, tarni_wstring_view in_key)
{
    for (const auto& [key, value] : in_attributes)
    {
        if (StringConverter::EqualsIgnoreCase(key, in_key))
        {
            return value;
        }
    }
    return {};
}

void SOSetupAttributes::Apply(SODataSourceConfiguration& io_config, const std::vector<Attribute>& in_attributes,
                              bool in_systemDsn)
{
    namespace Keys = DriverSupport::Keys;
    // Check everything first, so a bad value changes nothing.
    for (const auto& [key, value] : in_attributes)
    {
        if (io_config.FindCredentialBySecretKey(key) == nullptr)
        {
            SOKeyCatalogue::Check(key, value);
        }
    }
    for (const auto& [key, value] : in_attributes)
    {
        if (StringConverter::EqualsIgnoreCase(key, Keys::DSN) || StringConverter::EqualsIgnoreCase(key, Keys::Driver))
        {
            continue;
        }
        DriverSupport::DSUidPwdConfiguration* credential = io_config.FindCredentialBySecretKey(key);
        if (credential != nullptr && StringConverter::EqualsIgnoreCase(key, credential->GetKeySet().Pwd()))
        {
            credential->SetPwd(value);
            credential->SetEncryptPwd(true);
            credential->SetDPAPIEncryptForAllUsers(in_systemDsn);
            continue;
        }
        io_config.SetSetting(key, value);
    }
}
}  // namespace Tarni::SparkODBC
