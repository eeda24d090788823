#include "platform/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <random>

#include "platform/TextConversion.h"

namespace Tarni::Platform
{
namespace
{
// Closes the descriptor and removes the temporary file unless it was renamed.
struct TemporaryFile
{
    int fd = -1;
    std::string path;

    ~TemporaryFile()
    {
        if (fd >= 0)
        {
            close(fd);
        }
        if (!path.empty())
        {
            unlink(path.c_str());
        }
    }
};

bool WriteAll(int in_fd, const std::string& in_bytes)
{
    std::size_t written = 0;
    while (written < in_bytes.size())
    {
        const ssize_t count = write(in_fd, in_bytes.data() + written, in_bytes.size() - written);
        if (count < 0 && errno == EINTR)
        {
            continue;
        }
        if (count <= 0)
        {
            if (count == 0)
            {
                errno = EIO;
            }
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

// The file a path names: the target of a symbolic link (which stays a link).
std::string ResolveTarget(const std::string& in_path)
{
    struct stat link {};
    if (lstat(in_path.c_str(), &link) == 0 && S_ISLNK(link.st_mode))
    {
        char resolved[PATH_MAX];
        if (realpath(in_path.c_str(), resolved) != nullptr)
        {
            return resolved;
        }
    }
    return in_path;
}
}  // namespace

WholeFile::Contents WholeFile::Read(const tarni_wstring& in_path, std::size_t in_limit)
{
    Contents contents;
    const std::string path = TextConversion::Utf16ToUtf8(in_path);
    // Non-blocking, so that a FIFO or a device never stalls the program.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
    {
        contents.status = errno == EISDIR ? Status::Folder : Status::Failed;
        contents.errorCode = errno;
        return contents;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
    {
        contents.status = S_ISDIR(info.st_mode) ? Status::Folder : Status::Failed;
        contents.errorCode = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
        close(fd);
        return contents;
    }
    char buffer[65536];
    while (contents.bytes.size() < in_limit)
    {
        const ssize_t count = read(fd, buffer, std::min(sizeof(buffer), in_limit - contents.bytes.size()));
        if (count < 0 && errno == EINTR)
        {
            continue;
        }
        if (count < 0)
        {
            contents.status = Status::Failed;
            contents.errorCode = errno;
            break;
        }
        if (count == 0)
        {
            break;
        }
        contents.bytes.append(buffer, static_cast<std::size_t>(count));
    }
    close(fd);
    return contents;
}

int WholeFile::Replace(const tarni_wstring& in_path, const std::string& in_bytes)
{
    const std::string target = ResolveTarget(TextConversion::Utf16ToUtf8(in_path));
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : (slash == 0 ? "/" : target.substr(0, slash));
    const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);

    struct stat original {};
    const bool exists = stat(target.c_str(), &original) == 0;
    if (exists && S_ISDIR(original.st_mode))
    {
        return EISDIR;
    }
    mode_t mode = 0;
    if (exists)
    {
        mode = original.st_mode & 07777;
    }
    else
    {
        const mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }

    TemporaryFile temp;
    std::random_device random;
    for (int attempt = 0; attempt < 16 && temp.fd < 0; ++attempt)
    {
        temp.path = folder + "/." + base + ".tmp" + std::to_string(getpid()) + "." + std::to_string(random());
        temp.fd = open(temp.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (temp.fd < 0)
        {
            const int error = errno;
            temp.path.clear();
            if (error != EEXIST)
            {
                return error;
            }
        }
    }
    if (temp.fd < 0)
    {
        return EEXIST;
    }
    if (!WriteAll(temp.fd, in_bytes) || fchmod(temp.fd, mode) != 0 || fsync(temp.fd) != 0)
    {
        return errno;
    }
    const int fd = temp.fd;
    temp.fd = -1;
    if (close(fd) != 0 || rename(temp.path.c_str(), target.c_str()) != 0)
    {
        return errno;
    }
    temp.path.clear();
    // Make the rename itself durable.
    const int folderFd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd >= 0)
    {
        fsync(folderFd);
        close(folderFd);
    }
    return 0;
}
}  // namespace Tarni::Platform
