#include "platform/WholeFile.h"

#include <windows.h>

#include <algorithm>

namespace Tarni::Platform
{
namespace
{
std::wstring Wide(const tarni_wstring& in_text) { return std::wstring(in_text.begin(), in_text.end()); }

// Closes the handle and removes the temporary file unless it was renamed.
struct TemporaryFile
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    std::wstring path;

    ~TemporaryFile()
    {
        if (handle != INVALID_HANDLE_VALUE)
        {
            ::CloseHandle(handle);
        }
        if (!path.empty())
        {
            ::DeleteFileW(path.c_str());
        }
    }
};
}  // namespace

WholeFile::Contents WholeFile::Read(const tarni_wstring& in_path, std::size_t in_limit)
{
    Contents contents;
    const std::wstring path = Wide(in_path);
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    {
        contents.status = Status::Folder;
        contents.errorCode = ERROR_DIRECTORY;
        return contents;
    }
    HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        contents.status = Status::Failed;
        contents.errorCode = static_cast<int>(::GetLastError());
        return contents;
    }
    char buffer[65536];
    while (contents.bytes.size() < in_limit)
    {
        DWORD count = 0;
        const DWORD wanted = static_cast<DWORD>(std::min(sizeof(buffer), in_limit - contents.bytes.size()));
        if (!::ReadFile(file, buffer, wanted, &count, nullptr))
        {
            contents.status = Status::Failed;
            contents.errorCode = static_cast<int>(::GetLastError());
            break;
        }
        if (count == 0)
        {
            break;
        }
        contents.bytes.append(buffer, count);
    }
    ::CloseHandle(file);
    return contents;
}

int WholeFile::Replace(const tarni_wstring& in_path, const std::string& in_bytes)
{
    const std::wstring target = Wide(in_path);
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    {
        return ERROR_DIRECTORY;
    }
    const std::size_t separator = target.find_last_of(L"\\/");
    const std::wstring folder = separator == std::wstring::npos ? L"." : target.substr(0, separator + 1);

    TemporaryFile temp;
    wchar_t name[MAX_PATH + 16] = {};
    if (::GetTempFileNameW(folder.c_str(), L"sdc", 0, name) == 0)
    {
        return static_cast<int>(::GetLastError());
    }
    temp.path = name;  // GetTempFileNameW created it empty
    temp.handle = ::CreateFileW(name, GENERIC_WRITE, 0, nullptr, TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (temp.handle == INVALID_HANDLE_VALUE)
    {
        return static_cast<int>(::GetLastError());
    }
    std::size_t written = 0;
    while (written < in_bytes.size())
    {
        DWORD count = 0;
        const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(in_bytes.size() - written, 1u << 20));
        if (!::WriteFile(temp.handle, in_bytes.data() + written, chunk, &count, nullptr) || count == 0)
        {
            return static_cast<int>(::GetLastError());
        }
        written += count;
    }
    if (!::FlushFileBuffers(temp.handle))
    {
        return static_cast<int>(::GetLastError());
    }
    ::CloseHandle(temp.handle);
    temp.handle = INVALID_HANDLE_VALUE;
    if (!::MoveFileExW(name, target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        return static_cast<int>(::GetLastError());
    }
    temp.path.clear();
    return 0;
}
}  // namespace Tarni::Platform
