#include "support/log/FileHandler.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "platform/FileAccess.h"
#include "platform/SystemError.h"
#include "core/InvalidArgumentException.h"
#include "support/StringConverter.h"
#include "core/SupportException.h"

namespace Tarni::Support
{
namespace fs = std::filesystem;

namespace
{
// Splits a path into its stem (folder included) and its extension with the dot.
void SplitPath(const tarni_wstring& in_path, tarni_wstring& out_stem, tarni_wstring& out_extension)
{
    const size_t slash = in_path.find_last_of(u"/\\");
    const size_t dot = in_path.rfind(u'.');
    if (dot == tarni_wstring::npos || (slash != tarni_wstring::npos && dot < slash) ||
        dot == (slash == tarni_wstring::npos ? 0 : slash + 1))
    {
        out_stem = in_path;
        out_extension.clear();
        return;
    }
    out_stem = in_path.substr(0, dot);
    out_extension = in_path.substr(dot);
}

const char* ModeText(FileOpenMode in_mode)
{
    switch (in_mode)
    {
        case FileOpenMode::ReadOnly: return "rb";
        case FileOpenMode::Truncate: return "wb";
        case FileOpenMode::Append: break;
    }
    return "ab";
}
}  // namespace

FileHandler::FileHandler(tarni_wstring in_path, std::uint64_t in_maxFileSize, std::int32_t in_maxFileCount)
    : m_maxFileSize(in_maxFileSize), m_maxFileCount(in_maxFileCount), m_path(std::move(in_path))
{
    if (in_maxFileCount < 1)
    {
        TARNI_THROW_INVALID_ARGUMENT();
    }
}

FileHandler::~FileHandler()
{
    CloseFileLocked();
}

bool FileHandler::OpenFile(FileOpenMode in_mode)
{
    std::lock_guard<std::mutex> guard(m_lock);
    return OpenFileLocked(in_mode);
}

void FileHandler::CloseFile()
{
    std::lock_guard<std::mutex> guard(m_lock);
    CloseFileLocked();
}

bool FileHandler::OpenFileLocked(FileOpenMode in_mode)
{
    CloseFileLocked();
    m_file = Platform::FileAccess::Open(m_path, ModeText(in_mode));
    if (m_file == nullptr)
    {
        m_lastError = StringConverter::ToUtf8(Platform::SystemError::Text(errno));
        return false;
    }
    m_isOpen = true;
    m_fileSize = in_mode == FileOpenMode::Append ? Platform::FileAccess::Size(m_file) : 0;
    return true;
}

void FileHandler::CloseFileLocked()
{
    if (m_file != nullptr)
    {
        std::fclose(m_file);
        m_file = nullptr;
    }
    m_isOpen = false;
}

bool FileHandler::Fail(bool in_throwOnError, int in_errno)
{
    if (in_errno != 0)
    {
        m_lastError = StringConverter::ToUtf8(Platform::SystemError::Text(in_errno));
    }
    if (in_throwOnError)
    {
        throw SupportException(u"LogFileWriteErr", {m_path, StringConverter::FromUtf8(m_lastError)});
    }
    return false;
}

bool FileHandler::WriteFormattedLine(bool in_throwOnError, const char* in_format, ...)
{
    va_list args;
    va_start(args, in_format);
    bool written = false;
    try
    {
        written = WriteFormattedLineV(in_format, args, in_throwOnError);
    }
    catch (...)
    {
        va_end(args);
        throw;
    }
    va_end(args);
    return written;
}

bool FileHandler::WriteFormattedLineV(const char* in_format, va_list in_args, bool in_throwOnError)
{
    va_list copy;
    va_copy(copy, in_args);
    const int length = std::vsnprintf(nullptr, 0, in_format, copy);
    va_end(copy);
    std::string line(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0)
    {
        std::vsnprintf(line.data(), line.size() + 1, in_format, in_args);
    }
    return WriteLine(line, in_throwOnError);
}

bool FileHandler::WriteLine(std::string_view in_line, bool in_throwOnError)
{
    std::lock_guard<std::mutex> guard(m_lock);
    if (!m_isOpen && !OpenFileLocked(FileOpenMode::Append))
    {
        return Fail(in_throwOnError, 0);
    }
    const char* lineEnd = Platform::FileAccess::LineEnd();
    const size_t lineEndLength = std::strlen(lineEnd);
    if (std::fwrite(in_line.data(), 1, in_line.size(), m_file) != in_line.size() ||
        std::fwrite(lineEnd, 1, lineEndLength, m_file) != lineEndLength || std::fflush(m_file) != 0)
    {
        const int error = errno;
        std::clearerr(m_file);
        return Fail(in_throwOnError, error);
    }
    m_fileSize += in_line.size() + lineEndLength;
    if (m_maxFileSize != 0 && m_fileSize >= m_maxFileSize)
    {
        RotateLogFilesLocked();
    }
    return true;
}

tarni_wstring FileHandler::GetFileName(int in_index) const
{
    if (in_index == 0)
    {
        return m_path;
    }
    tarni_wstring stem;
    tarni_wstring extension;
    SplitPath(m_path, stem, extension);
    return stem + u"." + StringConverter::FromNumber(static_cast<long long>(in_index)) + extension;
}

int FileHandler::FindOldestExistingFile() const
{
    tarni_wstring stem;
    tarni_wstring extension;
    SplitPath(m_path, stem, extension);
    const fs::path stemPath(stem);
    const tarni_wstring stemName = stemPath.filename().u16string();
    fs::path folder = stemPath.parent_path();
    if (folder.empty())
    {
        folder = fs::path(u".");
    }

    // Every file named stem*; the index is what lies between "stem." and the extension.
    int highest = -1;
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error))
    {
        const tarni_wstring name = entries->path().filename().u16string();
        if (name.size() < stemName.size() || name.compare(0, stemName.size(), stemName) != 0)
        {
            continue;
        }
        const tarni_wstring rest = name.substr(stemName.size());
        if (rest == extension)
        {
            highest = highest < 0 ? 0 : highest;
            continue;
        }
        if (rest.size() < 2 + extension.size() || rest[0] != u'.' ||
            rest.compare(rest.size() - extension.size(), extension.size(), extension) != 0)
        {
            continue;
        }
        const tarni_wstring digits = rest.substr(1, rest.size() - 1 - extension.size());
        long long index = 0;
        bool isNumber = digits.size() <= 9;
        for (size_t i = 0; isNumber && i < digits.size(); ++i)
        {
            isNumber = digits[i] >= u'0' && digits[i] <= u'9';
            index = index * 10 + (digits[i] - u'0');
        }
        if (isNumber && index > highest)
        {
            highest = static_cast<int>(index);
        }
    }
    if (error)
    {
        throw SupportException(u"GetFileErr", {m_path, StringConverter::FromUtf8(error.message())});
    }
    return highest;
}

void FileHandler::RotateLogFiles()
{
    std::lock_guard<std::mutex> guard(m_lock);
    RotateLogFilesLocked();
}

void FileHandler::RotateLogFilesLocked()
{
    CloseFileLocked();
    if (m_maxFileCount > 1)
    {
        if (m_oldestFileIndex < 0)
        {
            const int found = FindOldestExistingFile();
            m_oldestFileIndex = found < m_maxFileCount - 1 ? found : m_maxFileCount - 1;
        }
        std::error_code ignored;
        if (m_oldestFileIndex < m_maxFileCount - 1)
        {
            ++m_oldestFileIndex;
        }
        else
        {
            fs::remove(fs::path(GetFileName(m_oldestFileIndex)), ignored);
        }
        for (int k = m_oldestFileIndex; k >= 1; --k)
        {
            fs::rename(fs::path(GetFileName(k - 1)), fs::path(GetFileName(k)), ignored);
        }
    }
    OpenFileLocked(FileOpenMode::Truncate);
}
}  // namespace Tarni::Support
