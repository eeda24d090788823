#include "platform/FileAccess.h"

#include <windows.h>
#include <shlwapi.h>

#include <io.h>
#include <share.h>

#include <string>

namespace Tarni::Platform
{
std::FILE* FileAccess::Open(const tarni_wstring& in_path, const char* in_mode)
{
    // "N": the handle is not inherited by programs the process starts.
    std::wstring mode(in_mode, in_mode + std::char_traits<char>::length(in_mode));
    mode += L'N';
    return _wfopen(reinterpret_cast<const wchar_t*>(in_path.c_str()), mode.c_str());
}

std::FILE* FileAccess::OpenSharedAppend(const char* in_path)
{
    return _fsopen(in_path, "a", _SH_DENYNO);
}

unsigned long long FileAccess::Size(std::FILE* in_file)
{
    if (in_file == nullptr)
    {
        return 0;
    }
    const __int64 length = _filelengthi64(_fileno(in_file));
    return length < 0 ? 0 : static_cast<unsigned long long>(length);
}

const char* FileAccess::LineEnd()
{
    return "\r\n";
}

bool FileAccess::IsNetworkPath(const char* in_path)
{
    return in_path != nullptr && PathIsNetworkPathA(in_path) != FALSE;
}

bool FileAccess::LockFirstByte(std::FILE* in_file, bool in_lock)
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(in_file)));
    if (handle == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    if (!in_lock)
    {
        return UnlockFile(handle, 0, 0, 1, 0) != FALSE;
    }
    // LockFile does not wait: retry while another process holds the byte.
    while (LockFile(handle, 0, 0, 1, 0) == FALSE)
    {
        if (GetLastError() != ERROR_LOCK_VIOLATION)
        {
            return false;
        }
        Sleep(1);
    }
    return true;
}
}  // namespace Tarni::Platform
