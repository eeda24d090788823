#include "platform/InitializePlatform.h"

#include <langinfo.h>

#include <clocale>
#include <cstring>
#include <mutex>
#include <string>

namespace Tarni::Platform
{
namespace
{
std::mutex s_lock;
unsigned s_depth = 0;
std::string s_previousLocale;
}  // namespace

void InitializePlatform(unsigned, unsigned)
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_depth++ != 0)
    {
        return;
    }
    const char* previous = std::setlocale(LC_ALL, nullptr);
    s_previousLocale = previous != nullptr ? previous : "C";
    std::setlocale(LC_ALL, "");
    // The terminal draws UTF-8; an environment without a UTF-8 locale gets
    // the C library's own for the character type.
    const char* codeset = nl_langinfo(CODESET);
    if (codeset == nullptr || std::strcmp(codeset, "UTF-8") != 0)
    {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

void UninitializePlatform() noexcept
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (s_depth == 0 || --s_depth != 0)
    {
        return;
    }
    std::setlocale(LC_ALL, s_previousLocale.c_str());
}
}  // namespace Tarni::Platform
