#include "driversupport/DSProductHelper.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sstream>

#include "core/ErrorException.h"
#include "core/ProductException.h"
#include "platform/FileAccess.h"
#include "platform/ProcessEnvironment.h"
#include "platform/SystemError.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

std::recursive_mutex DSProductHelper::s_lock;
ProductIdentity DSProductHelper::s_identity;
std::optional<std::map<tarni_wstring, tarni_wstring, Support::CaseInsensitiveLess>> DSProductHelper::s_settings;
unsigned DSProductHelper::s_generation = 0;
std::optional<tarni_wstring> DSProductHelper::s_registryPath;

namespace
{
std::string Trim(const std::string& in_text)
{
    const char* blanks = " \t\r";
    const size_t first = in_text.find_first_not_of(blanks);
    if (first == std::string::npos)
    {
        return {};
    }
    return in_text.substr(first, in_text.find_last_not_of(blanks) - first + 1);
}
}  // namespace

void DSProductHelper::SetProductIdentity(const ProductIdentity& in_identity)
{
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    s_identity = in_identity;
    s_registryPath.reset();
}

ProductIdentity DSProductHelper::GetProductIdentity()
{
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    return s_identity;
}

tarni_wstring DSProductHelper::GetDefaultProductDataFilePath()
{
    return Platform::ProcessEnvironment::GetExecutableDirectory() + GetProductIdentity().productDataFile;
}

void DSProductHelper::LoadProductSettings(const tarni_wstring& in_path)
{
    std::map<tarni_wstring, tarni_wstring, Support::CaseInsensitiveLess> settings;
    // An absent file means "no settings"; one that is there but cannot be
    // read (no permission, a folder) is an error of the product's own data.
    std::string content;
    if (std::FILE* file = Platform::FileAccess::Open(in_path, "rb"))
    {
        char buffer[4096];
        size_t count = 0;
        while ((count = std::fread(buffer, 1, sizeof(buffer), file)) > 0)
        {
            content.append(buffer, count);
        }
        const bool failed = std::ferror(file) != 0;
        const int error = errno;
        std::fclose(file);
        if (failed)
        {
            throw Support::ProductException(
                Support::LocalizableDiagnostic(Support::PRODUCT_ERROR, u"GetFileErr",
                                               {in_path, Platform::SystemError::Text(error)}));
        }
    }
    else if (errno != ENOENT)
    {
        throw Support::ProductException(Support::LocalizableDiagnostic(
            Support::PRODUCT_ERROR, u"GetFileErr", {in_path, Platform::SystemError::Text(errno)}));
    }
    std::istringstream lines(content);
    std::string line;
    unsigned long long lineNumber = 0;
    while (std::getline(lines, line))
    {
        ++lineNumber;
        const std::string trimmed = Trim(line);
        if (trimmed.empty() || trimmed[0] == '#' || trimmed[0] == ';')
        {
            continue;
        }
        const size_t equals = trimmed.find('=');
        if (equals == std::string::npos || Trim(trimmed.substr(0, equals)).empty() ||
            !StringConverter::IsValidUtf8(trimmed))
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSProductFileErr",
                                          {in_path, StringConverter::FromNumber(lineNumber)});
        }
        settings[StringConverter::FromUtf8(Trim(trimmed.substr(0, equals)))] =
            StringConverter::FromUtf8(Trim(trimmed.substr(equals + 1)));
    }
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    s_settings = std::move(settings);
    s_registryPath.reset();
    ++s_generation;
}

void DSProductHelper::EnsureLoaded()
{
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    if (!s_settings)
    {
        LoadProductSettings(GetDefaultProductDataFilePath());
    }
}

unsigned DSProductHelper::GetSettingsGeneration()
{
    EnsureLoaded();
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    return s_generation;
}

tarni_wstring DSProductHelper::GetSetting(tarni_wstring_view in_key)
{
    EnsureLoaded();
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    const auto it = s_settings->find(in_key);
    return it == s_settings->end() ? tarni_wstring() : it->second;
}

std::optional<bool> DSProductHelper::GetBoolSetting(tarni_wstring_view in_key)
{
    const tarni_wstring value = GetSetting(in_key);
    if (value == u"1" || value == u"true")
    {
        return true;
    }
    if (value == u"0" || value == u"false")
    {
        return false;
    }
    return std::nullopt;
}

tarni_wstring DSProductHelper::GetVendorName()
{
    const tarni_wstring vendor = GetSetting(u"vendor-name");
    return vendor.empty() ? GetProductIdentity().brand : vendor;
}

tarni_wstring DSProductHelper::GetDriverName()
{
    const tarni_wstring driver = GetSetting(u"driver-name");
    return driver.empty() ? GetProductIdentity().shortDriverName : driver;
}

Platform::DriverStoreLocation DSProductHelper::GetDriverStoreLocation(const tarni_wstring& in_iniOverride)
{
    Platform::DriverStoreLocation location;
    {
        std::lock_guard<std::recursive_mutex> guard(s_lock);
        if (!s_registryPath)
        {
            s_registryPath = u"SOFTWARE\\" + GetVendorName() + u"\\" + GetDriverName() + u"\\Driver";
        }
        location.registryPath = *s_registryPath;
    }
    if (!in_iniOverride.empty())
    {
        location.iniPath = in_iniOverride;
    }
    else if (auto fromEnvironment =
                 Platform::ProcessEnvironment::GetVariable(GetProductIdentity().iniEnvironmentVariable);
             fromEnvironment && !fromEnvironment->empty())
    {
        location.iniPath = *fromEnvironment;
    }
    else
    {
        location.iniPath = Platform::ProcessEnvironment::GetHomeDirectory() +
                           Platform::ProcessEnvironment::PathSeparator() + GetProductIdentity().userIniFileName;
    }
    return location;
}
std::optional<std::pair<tarni_wstring, tarni_wstring>> DSProductHelper::s_logName;

tarni_wstring DSProductHelper::GetLogName()
{
    std::lock_guard<std::recursive_mutex> guard(s_lock);
    // The cache remembers the name it was derived from: a new identity derives anew.
    const tarni_wstring& driverName = s_identity.shortDriverName;
    if (!s_logName || s_logName->first != driverName)
    {
        tarni_wstring name = driverName;
        constexpr std::u16string_view DRIVER = u"Driver";
        while (!name.empty() && name.back() == u' ')
        {
            name.pop_back();
        }
        if (name.size() > DRIVER.size() && name.compare(name.size() - DRIVER.size(), DRIVER.size(), DRIVER) == 0)
        {
            name.erase(name.size() - DRIVER.size());
        }
        name.erase(std::remove_if(name.begin(), name.end(), [](char16_t in_c) { return in_c == u' ' || in_c == u'\t'; }),
                   name.end());
        s_logName.emplace(driverName, name);
    }
    return s_logName->second;
}
}  // namespace Tarni::DriverSupport
