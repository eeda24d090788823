#include "platform/ProcessEnvironment.h"

#include <windows.h>

namespace Tarni::Platform
{
std::optional<tarni_wstring> ProcessEnvironment::GetVariable(tarni_wstring_view in_name)
{
    const tarni_wstring name(in_name);
    const auto* wname = reinterpret_cast<const wchar_t*>(name.c_str());
    const DWORD length = GetEnvironmentVariableW(wname, nullptr, 0);
    if (length == 0)
    {
        return GetLastError() == ERROR_ENVVAR_NOT_FOUND ? std::nullopt
                                                        : std::optional<tarni_wstring>(tarni_wstring());
    }
    tarni_wstring value(length, u'\0');
    const DWORD copied = GetEnvironmentVariableW(wname, reinterpret_cast<wchar_t*>(value.data()), length);
    value.resize(copied);
    return value;
}

void ProcessEnvironment::SetVariable(tarni_wstring_view in_name, const std::optional<tarni_wstring>& in_value)
{
    const tarni_wstring name(in_name);
    SetEnvironmentVariableW(reinterpret_cast<const wchar_t*>(name.c_str()),
                            in_value ? reinterpret_cast<const wchar_t*>(in_value->c_str()) : nullptr);
}

tarni_wstring ProcessEnvironment::GetExecutableDirectory()
{
    tarni_wstring path(32768, u'\0');
    const DWORD length =
        GetModuleFileNameW(nullptr, reinterpret_cast<wchar_t*>(path.data()), static_cast<DWORD>(path.size()));
    path.resize(length);
    const size_t slash = path.find_last_of(u"\\/");
    return slash == tarni_wstring::npos ? tarni_wstring(u".\\") : path.substr(0, slash + 1);
}

void* ProcessEnvironment::GetOwnModule()
{
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&ProcessEnvironment::GetOwnModule), &module);
    return module;
}

tarni_wstring ProcessEnvironment::GetModuleDirectory()
{
    tarni_wstring path(32768, u'\0');
    const DWORD length = GetModuleFileNameW(static_cast<HMODULE>(GetOwnModule()),
                                            reinterpret_cast<wchar_t*>(path.data()), static_cast<DWORD>(path.size()));
    path.resize(length);
    const size_t slash = path.find_last_of(u"\\/");
    return slash == tarni_wstring::npos ? tarni_wstring(u".\\") : path.substr(0, slash + 1);
}

tarni_wstring ProcessEnvironment::GetHomeDirectory()
{
    if (auto profile = GetVariable(u"USERPROFILE"); profile && !profile->empty())
    {
        return *profile;
    }
    return u".";
}

char16_t ProcessEnvironment::PathSeparator()
{
    return u'\\';
}
}  // namespace Tarni::Platform

#include <shellapi.h>

namespace Tarni::Platform
{
std::vector<tarni_wstring> ProcessEnvironment::GetArguments(int, char**)
{
    std::vector<tarni_wstring> arguments;
    int count = 0;
    wchar_t** list = CommandLineToArgvW(GetCommandLineW(), &count);
    if (list == nullptr)
    {
        return arguments;
    }
    for (int i = 1; i < count; ++i)
    {
        arguments.emplace_back(reinterpret_cast<const char16_t*>(list[i]));
    }
    LocalFree(list);
    return arguments;
}

void ProcessEnvironment::PrepareConsole()
{
    SetConsoleOutputCP(CP_UTF8);
}

bool ProcessEnvironment::UsesIniStore()
{
    return false;
}
}  // namespace Tarni::Platform
