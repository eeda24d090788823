#include "platform/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/TextConversion.h"

namespace Tarni::Platform
{
namespace
{
// File system types that live on another machine. Local FUSE mounts share a
// magic number with remote ones and are not counted.
constexpr unsigned long NETWORK_FILE_SYSTEMS[] = {
    0x6969,       // NFS
    0x517B,       // SMB
    0xFE534D42,   // SMB2
    0xFF534D42,   // CIFS
    0x73757245,   // Coda
    0x564C,       // NCP
    0x5346414F,   // AFS
    0x01021997,   // 9P
    0x00C36400,   // Ceph
    0x0BD00BD0,   // Lustre
};

bool IsNetworkFileSystem(const std::string& in_path, bool& out_known)
{
    struct statfs info = {};
    out_known = statfs(in_path.c_str(), &info) == 0;
    if (!out_known)
    {
        return false;
    }
    const auto type = static_cast<unsigned long>(info.f_type) & 0xFFFFFFFFUL;
    for (const unsigned long network : NETWORK_FILE_SYSTEMS)
    {
        if (type == network)
        {
            return true;
        }
    }
    return false;
}
}  // namespace

std::FILE* FileAccess::Open(const tarni_wstring& in_path, const char* in_mode)
{
    // "e": the descriptor is not inherited by programs the process starts.
    const std::string mode = std::string(in_mode) + "e";
    return std::fopen(TextConversion::Utf16ToUtf8(in_path).c_str(), mode.c_str());
}

std::FILE* FileAccess::OpenSharedAppend(const char* in_path)
{
    return std::fopen(in_path, "ae");
}

unsigned long long FileAccess::Size(std::FILE* in_file)
{
    struct stat info = {};
    if (in_file == nullptr || fstat(fileno(in_file), &info) != 0 || info.st_size < 0)
    {
        return 0;
    }
    return static_cast<unsigned long long>(info.st_size);
}

const char* FileAccess::LineEnd()
{
    return "\n";
}

bool FileAccess::IsNetworkPath(const char* in_path)
{
    if (in_path == nullptr || *in_path == '\0')
    {
        return false;
    }
    // A UNC-style name is a share on another machine whatever mounts it.
    if ((in_path[0] == '/' || in_path[0] == '\\') && in_path[1] == in_path[0])
    {
        return true;
    }
    // The file may not exist yet: ask about the nearest folder that does.
    std::string path(in_path);
    for (;;)
    {
        bool known = false;
        const bool network = IsNetworkFileSystem(path, known);
        if (known || path == "." || path == "/")
        {
            return network;
        }
        const size_t slash = path.find_last_of('/');
        path = slash == std::string::npos ? std::string(".") : slash == 0 ? std::string("/") : path.substr(0, slash);
    }
}

bool FileAccess::LockFirstByte(std::FILE* in_file, bool in_lock)
{
    struct flock region = {};
    region.l_type = in_lock ? F_WRLCK : F_UNLCK;
    region.l_whence = SEEK_SET;
    region.l_start = 0;
    region.l_len = 1;
    int result = 0;
    do
    {
        result = fcntl(fileno(in_file), in_lock ? F_SETLKW : F_SETLK, &region);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}
}  // namespace Tarni::Platform
