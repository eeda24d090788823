#include "platform/posix/IniFileStore.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <random>

#include "platform/IniDocument.h"
#include "platform/SystemError.h"
#include "core/ErrorException.h"
#include "platform/TextConversion.h"

namespace Tarni::Platform
{
using Support::DiagState;
using Support::ErrorException;

namespace
{
// A settings file larger than this is not a settings file.
constexpr off_t MAX_FILE_SIZE = 16 * 1024 * 1024;
// As the kernel's own limit on links followed in one path.
constexpr int MAX_LINK_HOPS = 40;

[[noreturn]] void ThrowFileError(const char16_t* in_key, const std::string& in_path, int in_errno)
{
    throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, in_key,
                         {TextConversion::StrictUtf8ToUtf16(in_path), SystemError::Text(in_errno)});
}

// Scope guard that closes a descriptor and removes a temporary file unless released.
struct TempFile
{
    int fd = -1;
    std::string path;
    ~TempFile()
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
// Refuses anything but a regular file, naming what it is.
void CheckRegular(const std::string& in_path, const struct stat& in_info)
{
    const char16_t* key = nullptr;
    if (S_ISDIR(in_info.st_mode))
    {
        key = u"DSIniIsDirectoryErr";
    }
    else if (S_ISFIFO(in_info.st_mode))
    {
        key = u"DSIniIsFifoErr";
    }
    else if (S_ISSOCK(in_info.st_mode))
    {
        key = u"DSIniIsSocketErr";
    }
    else if (S_ISCHR(in_info.st_mode) || S_ISBLK(in_info.st_mode))
    {
        key = u"DSIniIsDeviceErr";
    }
    else if (!S_ISREG(in_info.st_mode))
    {
        key = u"DSIniNotRegularErr";
    }
    if (key != nullptr)
    {
        throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, key, {TextConversion::StrictUtf8ToUtf16(in_path)});
    }
}

// True for the name of a temporary file of ours for in_base: "." + base +
// ".tmp" + digits + "." + digits.
bool IsTemporaryName(const std::string& in_name, const std::string& in_base)
{
    const std::string prefix = "." + in_base + ".tmp";
    if (in_name.compare(0, prefix.size(), prefix) != 0)
    {
        return false;
    }
    const std::string rest = in_name.substr(prefix.size());
    const size_t dot = rest.find('.');
    const auto digits = [](const std::string& in_text) {
        return !in_text.empty() && in_text.find_first_not_of("0123456789") == std::string::npos;
    };
    return dot != std::string::npos && digits(rest.substr(0, dot)) && digits(rest.substr(dot + 1));
}
}  // namespace

IniFileStore::IniFileStore(tarni_wstring in_path, tarni_wstring in_section)
    : m_path(std::move(in_path)), m_section(std::move(in_section))
{
}

IniFileStore::~IniFileStore()
{
    if (m_lockFd >= 0)
    {
        close(m_lockFd);  // releases the lock
    }
}

std::string IniFileStore::TargetPath() const
{
    // Follow symbolic links to the file they name, so the link stays a link and
    // writers through the link and through the file edit the same file. The
    // last name may be missing (a dangling link): it is created on save.
    std::string path = TextConversion::Utf16ToUtf8(m_path);
    for (int hop = 0; hop < MAX_LINK_HOPS; ++hop)
    {
        struct stat info {};
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
        {
            return path;
        }
        std::string target(static_cast<size_t>(info.st_size > 0 ? info.st_size : PATH_MAX), '\0');
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length < 0)
        {
            ThrowFileError(u"DSIniReadErr", path, errno);
        }
        target.resize(static_cast<size_t>(length));
        if (!target.empty() && target[0] != '/')
        {
            const size_t slash = path.rfind('/');
            target = (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + target;
        }
        path = std::move(target);
    }
    ThrowFileError(u"DSIniReadErr", TextConversion::Utf16ToUtf8(m_path), ELOOP);
}

std::string IniFileStore::FolderPath() const
{
    const std::string path = TargetPath();
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
    {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::optional<std::string> IniFileStore::ReadFileBytes() const
{
    const std::string path = TargetPath();
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
    {
        if (errno == ENOENT)
        {
            return std::nullopt;
        }
        ThrowFileError(u"DSIniReadErr", path, errno);
    }
    // A FIFO, socket or device is refused before it is opened: opening a FIFO
    // blocks until a writer comes, and reading a device never ends.
    CheckRegular(path, info);
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
    {
        ThrowFileError(u"DSIniReadErr", path, errno);
    }
    if (fstat(fd, &info) != 0)
    {
        const int error = errno;
        close(fd);
        ThrowFileError(u"DSIniReadErr", path, error);
    }
    if (!S_ISREG(info.st_mode) || info.st_size > MAX_FILE_SIZE)
    {
        close(fd);
        CheckRegular(path, info);
        ThrowFileError(u"DSIniReadErr", path, EFBIG);
    }
    std::string bytes;
    char buffer[65536];
    for (;;)
    {
        const ssize_t count = read(fd, buffer, sizeof(buffer));
        if (count < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            const int error = errno;
            close(fd);
            ThrowFileError(u"DSIniReadErr", path, error);
        }
        if (count == 0)
        {
            break;
        }
        bytes.append(buffer, static_cast<size_t>(count));
        if (bytes.size() > static_cast<size_t>(MAX_FILE_SIZE))
        {
            close(fd);
            ThrowFileError(u"DSIniReadErr", path, EFBIG);
        }
    }
    close(fd);
    return bytes;
}

std::vector<StoredValue> IniFileStore::ReadAll()
{
    auto bytes = ReadFileBytes();
    if (!bytes)
    {
        m_parsed.reset();
        return {};
    }
    // A run reads the file on load, again before its save and once more
    // under the lock: the bytes are read each time, but parsed only when
    // they changed.
    if (!m_parsed || m_parsed->bytes != *bytes)
    {
        IniDocument doc = IniDocument::Parse(*bytes, m_path);
        std::vector<StoredValue> values = doc.ReadSection(m_section);
        m_parsed = Parsed{std::move(*bytes), std::move(doc), std::move(values)};
    }
    return m_parsed->values;
}

void IniFileStore::CheckName(tarni_wstring_view in_name) const
{
    const bool bad = in_name.empty() || in_name.find_first_of(u"=\r\n") != tarni_wstring_view::npos ||
                     in_name.front() == u'[' || in_name.front() == u';' || in_name.front() == u'#' ||
                     in_name.front() == u' ' || in_name.front() == u'\t' || in_name.back() == u' ' ||
                     in_name.back() == u'\t';
    if (bad)
    {
        throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, u"DSStoreInvalidKeyErr",
                             {tarni_wstring(in_name), m_path});
    }
}

void IniFileStore::WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    CheckName(in_name);
    if (in_value.find_first_of(u"\r\n") != tarni_wstring_view::npos)
    {
        throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, u"DSStoreLineBreakErr",
                             {tarni_wstring(in_name), m_path});
    }
    Change change{tarni_wstring(in_name), tarni_wstring(in_value)};
    if (m_inUpdate)
    {
        m_pending.push_back(std::move(change));
    }
    else
    {
        Apply({std::move(change)});
    }
}

void IniFileStore::DeleteValue(tarni_wstring_view in_name)
{
    Change change{tarni_wstring(in_name), std::nullopt};
    if (m_inUpdate)
    {
        m_pending.push_back(std::move(change));
    }
    else
    {
        Apply({std::move(change)});
    }
}

void IniFileStore::BeginUpdate()
{
    m_inUpdate = true;
    m_pending.clear();
}

void IniFileStore::CommitUpdate()
{
    std::vector<Change> changes;
    changes.swap(m_pending);
    m_inUpdate = false;
    if (!changes.empty())
    {
        Apply(changes);
    }
}

void IniFileStore::AbortUpdate()
{
    m_pending.clear();
    m_inUpdate = false;
}

void IniFileStore::LockForUpdate()
{
    if (m_lockDepth++ > 0)
    {
        return;
    }
    const std::string folder = FolderPath();
    m_lockFd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_lockFd < 0)
    {
        const int error = errno;
        m_lockDepth = 0;
        ThrowFileError(u"DSIniLockErr", folder, error);
    }
    while (flock(m_lockFd, LOCK_EX) != 0)
    {
        if (errno != EINTR)
        {
            const int error = errno;
            close(m_lockFd);
            m_lockFd = -1;
            m_lockDepth = 0;
            ThrowFileError(u"DSIniLockErr", folder, error);
        }
    }
}

void IniFileStore::UnlockAfterUpdate()
{
    if (m_lockDepth == 0 || --m_lockDepth > 0)
    {
        return;
    }
    close(m_lockFd);
    m_lockFd = -1;
}

void IniFileStore::Apply(const std::vector<Change>& in_changes)
{
    LockForUpdate();
    try
    {
        const auto bytes = ReadFileBytes();
        if (bytes)
        {
            CheckWritable();
        }
        std::optional<IniDocument> parsed;
        if (bytes && m_parsed && m_parsed->bytes == *bytes)
        {
            parsed = std::move(m_parsed->doc);
        }
        m_parsed.reset();  // the document is edited now, and the file replaced
        IniDocument doc = parsed ? std::move(*parsed) : IniDocument::Parse(bytes ? *bytes : std::string(), m_path);
        for (const Change& change : in_changes)
        {
            if (change.value)
            {
                doc.SetValue(m_section, change.name, *change.value);
            }
            else
            {
                doc.DeleteValue(m_section, change.name);
            }
        }
        std::string updated = doc.Serialize();
        if (!bytes || updated != *bytes)
        {
            ReplaceFile(updated);
        }
    }
    catch (...)
    {
        UnlockAfterUpdate();
        throw;
    }
    UnlockAfterUpdate();
}

void IniFileStore::CheckWritable() const
{
    // Replacing the file needs only the folder's permission; a file its owner
    // made read-only is refused, as editors do.
    const std::string target = TargetPath();
    if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0 && (errno == EACCES || errno == EROFS))
    {
        ThrowFileError(u"DSIniReadOnlyErr", target, errno);
    }
}

void IniFileStore::RemoveStaleTemporaryFiles(const std::string& in_folder, const std::string& in_base) const
{
    // Every writer holds the folder's lock while its temporary file exists,
    // so under the lock any temporary file of ours is left over from a save
    // that was killed.
    DIR* folder = opendir(in_folder.c_str());
    if (folder == nullptr)
    {
        return;
    }
    const int folderFd = dirfd(folder);
    while (const dirent* entry = readdir(folder))
    {
        if (IsTemporaryName(entry->d_name, in_base))
        {
            unlinkat(folderFd, entry->d_name, 0);
        }
    }
    closedir(folder);
}

void IniFileStore::ReplaceFile(const std::string& in_bytes) const
{
    const std::string target = TargetPath();
    const std::string folder = FolderPath();

    struct stat original {};
    const bool exists = stat(target.c_str(), &original) == 0;
    const mode_t mode = exists ? (original.st_mode & 07777) : 0600;

    TempFile temp;
    std::random_device random;
    const std::string base = target.substr(target.rfind('/') + 1);
    RemoveStaleTemporaryFiles(folder, base);
    for (int attempt = 0; attempt < 16 && temp.fd < 0; ++attempt)
    {
        temp.path = folder + "/." + base + ".tmp" + std::to_string(getpid()) + "." + std::to_string(random());
        temp.fd = open(temp.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (temp.fd < 0 && errno != EEXIST)
        {
            const int error = errno;
            temp.path.clear();
            ThrowFileError(u"DSIniFolderWriteErr", folder, error);
        }
    }
    if (temp.fd < 0)
    {
        temp.path.clear();
        ThrowFileError(u"DSIniFolderWriteErr", folder, EEXIST);
    }

    size_t written = 0;
    while (written < in_bytes.size())
    {
        const ssize_t count = write(temp.fd, in_bytes.data() + written, in_bytes.size() - written);
        if (count < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            ThrowFileError(u"DSIniWriteErr", target, errno);
        }
        written += static_cast<size_t>(count);
    }
    if (fchmod(temp.fd, mode) != 0)
    {
        ThrowFileError(u"DSIniWriteErr", target, errno);
    }
    if (exists && (original.st_uid != geteuid() || original.st_gid != getegid()))
    {
        // Keep the owner when we may (root editing a user's file); otherwise
        // the file becomes ours, as any editor would leave it.
        [[maybe_unused]] const int ignored = fchown(temp.fd, original.st_uid, original.st_gid);
    }
    if (fsync(temp.fd) != 0)
    {
        ThrowFileError(u"DSIniWriteErr", target, errno);
    }
    if (close(temp.fd) != 0)
    {
        temp.fd = -1;
        ThrowFileError(u"DSIniWriteErr", target, errno);
    }
    temp.fd = -1;
    if (rename(temp.path.c_str(), target.c_str()) != 0)
    {
        ThrowFileError(u"DSIniWriteErr", target, errno);
    }
    temp.path.clear();
    // The folder is not flushed after the rename: the new file's contents are
    // on disk before it gets the name, so after a crash the file is either
    // the old one or the new one, never a mix; a flush of the folder would
    // only make the new name survive a power cut, at the cost of a second
    // disk flush per save.
}
}  // namespace Tarni::Platform
