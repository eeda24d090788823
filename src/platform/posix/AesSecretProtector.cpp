#include "platform/posix/AesSecretProtector.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>

#include "platform/SystemError.h"
#include "core/ErrorException.h"
#include "platform/TextConversion.h"

namespace Tarni::Platform
{
using Support::ErrorException;


namespace
{
// The HKDF salt of every stored secret. It separates these keys from any
// other use of the same key material; the label adds method and scope.
constexpr std::string_view SALT = "Tarni Spark ODBC Driver Configuration stored secrets";

[[noreturn]] void ThrowKeyFileError(const tarni_wstring& in_path, const tarni_wstring& in_reason)
{
    throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSSecretKeyFileErr",
                         {in_path, in_reason});
}

[[noreturn]] void ThrowKeyFileSystemError(const tarni_wstring& in_path, int in_errno)
{
    ThrowKeyFileError(in_path, SystemError::Text(in_errno));
}

/// Closes a descriptor on every path.
struct FileDescriptor
{
    explicit FileDescriptor(int in_fd) : fd(in_fd) {}
    ~FileDescriptor()
    {
        if (fd >= 0) close(fd);
    }
    int fd;
};

/// Creates the folder and any missing parents with mode 0700.
void MakeFolders(const std::string& in_folder, const tarni_wstring& in_keyFile)
{
    for (size_t slash = in_folder.find('/', 1); ; slash = in_folder.find('/', slash + 1))
    {
        const std::string part = in_folder.substr(0, slash);
        if (!part.empty() && mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
        {
            ThrowKeyFileSystemError(in_keyFile, errno);
        }
        if (slash == std::string::npos) break;
    }
}

bool WriteAll(int in_fd, const std::string& in_bytes)
{
    size_t done = 0;
    while (done < in_bytes.size())
    {
        const ssize_t written = write(in_fd, in_bytes.data() + done, in_bytes.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

std::string_view ScopeLabelSuffix(SecretScope in_scope)
{
    return in_scope == SecretScope::AllUsers ? "machine" : "user";
}
}  // namespace

std::string AesSecretProtector::Protect(std::string_view in_plain, SecretScope in_scope, std::string_view in_label)
{
    const std::string key = *GetKeyMaterial(in_scope, true);
    return m_sealer.Seal(in_plain, key, SALT, std::string(in_label) + "|" +
                                                              std::string(ScopeLabelSuffix(in_scope)));
}

std::optional<std::string> AesSecretProtector::Unprotect(std::string_view in_protected, SecretScope in_scope,
                                                         std::string_view in_label)
{
    const std::optional<std::string> key = GetKeyMaterial(in_scope, false);
    if (!key.has_value())
    {
        // No key file: this user never protected anything, so the value is
        // another user's (or the key file was removed).
        return std::nullopt;
    }
    return m_sealer.Open(in_protected, *key, SALT,
                                       std::string(in_label) + "|" + std::string(ScopeLabelSuffix(in_scope)));
}

std::optional<std::string> AesSecretProtector::GetKeyMaterial(SecretScope in_scope, bool in_create) const
{
    if (in_scope == SecretScope::AllUsers)
    {
        return ReadMachineIdentity();
    }
    std::optional<std::string> key = ReadUserKey();
    if (!key.has_value() && in_create)
    {
        key = CreateUserKey();
    }
    return key;
}

std::optional<std::string> AesSecretProtector::ReadUserKey() const
{
    const std::string path = TextConversion::Utf16ToUtf8(m_locations.userKeyFile);
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (file.fd < 0)
    {
        if (errno == ENOENT) return std::nullopt;
        ThrowKeyFileSystemError(m_locations.userKeyFile, errno);
    }
    struct stat info = {};
    if (fstat(file.fd, &info) != 0)
    {
        ThrowKeyFileSystemError(m_locations.userKeyFile, errno);
    }
    // A key that others can read or replace protects nothing: refuse it
    // rather than use it.
    if (!S_ISREG(info.st_mode))
    {
        ThrowKeyFileError(m_locations.userKeyFile, u"not a regular file");
    }
    if (info.st_uid != geteuid())
    {
        ThrowKeyFileError(m_locations.userKeyFile, u"owned by another user");
    }
    if ((info.st_mode & 077) != 0)
    {
        ThrowKeyFileError(m_locations.userKeyFile, u"readable or writable by other users (mode must be 0600)");
    }
    if (info.st_size != static_cast<off_t>(m_sealer.GetKeyLength()))
    {
        ThrowKeyFileError(m_locations.userKeyFile, u"not a key of 32 bytes");
    }
    std::string key(m_sealer.GetKeyLength(), '\0');
    size_t done = 0;
    while (done < key.size())
    {
        const ssize_t got = read(file.fd, key.data() + done, key.size() - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) ThrowKeyFileError(m_locations.userKeyFile, u"the key could not be read");
        done += static_cast<size_t>(got);
    }
    return key;
}

std::string AesSecretProtector::CreateUserKey() const
{
    const std::string path = TextConversion::Utf16ToUtf8(m_locations.userKeyFile);
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash == 0)
    {
        ThrowKeyFileError(m_locations.userKeyFile, u"not an absolute path");
    }
    MakeFolders(path.substr(0, slash), m_locations.userKeyFile);

    // The key is written completely to a private temporary file and then
    // linked to its name: link() fails when the name exists, so of two
    // processes creating the key at once exactly one wins, and the other
    // reads the winner's complete file.
    std::string temporary = path.substr(0, slash) + "/.secret.key.XXXXXX";
    FileDescriptor file(mkstemp(temporary.data()));
    if (file.fd < 0)
    {
        ThrowKeyFileSystemError(m_locations.userKeyFile, errno);
    }
    const std::string key = m_sealer.RandomBytes(m_sealer.GetKeyLength());
    const bool written = fchmod(file.fd, 0600) == 0 && WriteAll(file.fd, key) && fsync(file.fd) == 0;
    const int writeError = errno;
    if (!written || link(temporary.c_str(), path.c_str()) != 0)
    {
        const int error = written ? errno : writeError;
        unlink(temporary.c_str());
        if (written && error == EEXIST)
        {
            if (std::optional<std::string> existing = ReadUserKey(); existing.has_value()) return *existing;
        }
        ThrowKeyFileSystemError(m_locations.userKeyFile, error);
    }
    unlink(temporary.c_str());
    return key;
}

std::string AesSecretProtector::ReadMachineIdentity() const
{
    std::ifstream file(TextConversion::Utf16ToUtf8(m_locations.machineIdentityFile), std::ios::binary);
    std::ostringstream content;
    if (file)
    {
        content << file.rdbuf();
    }
    std::string identity = content.str();
    const size_t first = identity.find_first_not_of(" \t\r\n");
    const size_t last = identity.find_last_not_of(" \t\r\n");
    identity = first == std::string::npos ? std::string() : identity.substr(first, last - first + 1);
    if (identity.empty())
    {
        throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSOpenSSLEncryptKeyMissingErr",
                             {m_locations.machineIdentityFile});
    }
    return identity;
}
}  // namespace Tarni::Platform
