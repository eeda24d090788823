#include "platform/ProcessEnvironment.h"

#include <csignal>

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/TextConversion.h"

namespace Tarni::Platform
{


std::optional<tarni_wstring> ProcessEnvironment::GetVariable(tarni_wstring_view in_name)
{
    const char* value = std::getenv(TextConversion::Utf16ToUtf8(in_name).c_str());
    if (value == nullptr)
    {
        return std::nullopt;
    }
    return TextConversion::StrictUtf8ToUtf16(value);
}

void ProcessEnvironment::SetVariable(tarni_wstring_view in_name, const std::optional<tarni_wstring>& in_value)
{
    const std::string name = TextConversion::Utf16ToUtf8(in_name);
    if (in_value)
    {
        ::setenv(name.c_str(), TextConversion::Utf16ToUtf8(*in_value).c_str(), 1);
    }
    else
    {
        ::unsetenv(name.c_str());
    }
}

tarni_wstring ProcessEnvironment::GetExecutableDirectory()
{
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
    if (length <= 0)
    {
        return u"./";
    }
    path.resize(static_cast<size_t>(length));
    path.erase(path.rfind('/') + 1);
    return TextConversion::StrictUtf8ToUtf16(path);
}

tarni_wstring ProcessEnvironment::GetModuleDirectory()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ProcessEnvironment::GetModuleDirectory), &info) == 0 ||
        info.dli_fname == nullptr || std::string(info.dli_fname).find('/') == std::string::npos)
    {
        return GetExecutableDirectory();
    }
    std::string path(info.dli_fname);
    path.erase(path.rfind('/') + 1);
    return TextConversion::StrictUtf8ToUtf16(path);
}

void* ProcessEnvironment::GetOwnModule()
{
    Dl_info info{};
    return dladdr(reinterpret_cast<void*>(&ProcessEnvironment::GetModuleDirectory), &info) != 0 ? info.dli_fbase
                                                                                                 : nullptr;
}

tarni_wstring ProcessEnvironment::GetHomeDirectory()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
    {
        return TextConversion::StrictUtf8ToUtf16(home);
    }
    if (const passwd* entry = getpwuid(getuid()); entry != nullptr && entry->pw_dir != nullptr)
    {
        return TextConversion::StrictUtf8ToUtf16(entry->pw_dir);
    }
    return u".";
}

char16_t ProcessEnvironment::PathSeparator()
{
    return u'/';
}
}  // namespace Tarni::Platform

namespace Tarni::Platform
{
std::vector<tarni_wstring> ProcessEnvironment::GetArguments(int in_argc, char** in_argv)
{
    std::vector<tarni_wstring> arguments;
    for (int i = 1; i < in_argc; ++i)
    {
        arguments.push_back(TextConversion::StrictUtf8ToUtf16(in_argv[i]));
    }
    return arguments;
}

void ProcessEnvironment::PrepareConsole()
{
    // A reader that goes away (a closed pipe) makes the next write fail with
    // EPIPE, which the program reports, instead of ending it silently.
    std::signal(SIGPIPE, SIG_IGN);
}

bool ProcessEnvironment::UsesIniStore()
{
    return true;
}
}  // namespace Tarni::Platform
