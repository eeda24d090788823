#pragma once
// A file read or written as a whole: reading with a size limit, and
// replacing a file atomically (a temporary file in the same folder, flushed
// to disk, then renamed over the target), so that a failure never leaves a
// half-written file under the target's name.
#include <cstddef>
#include <string>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class WholeFile
{
public:
    enum class Status
    {
        Ok,
        Folder,  ///< the path names a folder
        Failed,  ///< the system's error code is in errorCode
    };

    struct Contents
    {
        Status status = Status::Ok;
        int errorCode = 0;
        std::string bytes;  ///< at most the limit given to Read
    };

    /// Reads at most in_limit bytes of the file (read one more than you
    /// accept to tell a file that is too large).
    static Contents Read(const tarni_wstring& in_path, std::size_t in_limit);

    /// Replaces the file (or creates it) with the bytes. A symbolic link is
    /// followed and its target replaced; an existing file keeps its
    /// permissions. 0 on success, else the system's error code; the target
    /// is then unchanged and no temporary file is left.
    static int Replace(const tarni_wstring& in_path, const std::string& in_bytes);
};
}  // namespace Tarni::Platform
