#pragma once
// A size-limited, rotating log file. The newest lines are always in the
// configured file; when it reaches the size limit the older files move up
// one number (stem.1.ext, stem.2.ext, ...) and at most the configured number
// of files is kept.
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string_view>

#include "core/TarniString.h"

namespace Tarni::Support
{
enum class FileOpenMode
{
    ReadOnly,
    Truncate,
    Append,
};

class FileHandler
{
public:
    /// in_maxFileSize 0 means no limit. in_maxFileCount must be at least 1:
    /// otherwise InvalidArgumentException.
    FileHandler(tarni_wstring in_path, std::uint64_t in_maxFileSize, std::int32_t in_maxFileCount);
    ~FileHandler();
    FileHandler(const FileHandler&) = delete;
    FileHandler& operator=(const FileHandler&) = delete;

    bool OpenFile(FileOpenMode in_mode);
    void CloseFile();

    /// Appends the formatted text and a line end, flushes, and rotates when
    /// the file has reached the size limit. Opens the file for appending on
    /// first use. On failure returns false, or throws SupportException
    /// "LogFileWriteErr" (file, system text) when in_throwOnError is set.
    bool WriteFormattedLine(bool in_throwOnError, const char* in_format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 3, 4)))
#endif
        ;
    bool WriteFormattedLineV(const char* in_format, va_list in_args, bool in_throwOnError);

    /// The same for a finished line.
    bool WriteLine(std::string_view in_line, bool in_throwOnError);

    /// Moves every file up one number and starts the configured file anew.
    void RotateLogFiles();

    /// The highest index k for which stem.k.ext exists (0 for the configured
    /// file only, -1 for none). Throws SupportException "GetFileErr" when the
    /// folder cannot be searched.
    int FindOldestExistingFile() const;

    /// The name of the file of index k: the configured path for 0, else
    /// stem + "." + k + extension.
    tarni_wstring GetFileName(int in_index) const;

    const tarni_wstring& GetPath() const { return m_path; }
    /// The system's text for the last failure to open or write.
    const std::string& GetLastErrorText() const { return m_lastError; }

private:
    bool OpenFileLocked(FileOpenMode in_mode);
    void CloseFileLocked();
    void RotateLogFilesLocked();
    bool Fail(bool in_throwOnError, int in_errno);

    bool m_isOpen = false;
    std::uint64_t m_maxFileSize;
    std::int32_t m_maxFileCount;
    int m_oldestFileIndex = -1;
    mutable std::mutex m_lock;
    tarni_wstring m_path;
    std::FILE* m_file = nullptr;

    std::uint64_t m_fileSize = 0;
    std::string m_lastError;
};
}  // namespace Tarni::Support
