#pragma once
// File operations of the log and the trace that differ between platforms:
// opening by wide path, the size of an open file, the line end of a text
// file, sharing and locking a file between processes, network paths.
#include <cstdio>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class FileAccess
{
public:
    /// fopen with a wide path; in_mode as for fopen ("ab", "wb", "rb").
    static std::FILE* Open(const tarni_wstring& in_path, const char* in_mode);

    /// Opens a file for appending so that other processes may read and write
    /// it at the same time (the shared trace file). The path is narrow, as it
    /// comes from the environment.
    static std::FILE* OpenSharedAppend(const char* in_path);

    /// Size in bytes of an open file, 0 when it cannot be determined.
    static unsigned long long Size(std::FILE* in_file);

    /// The line end of a text file on this platform ("\r\n" or "\n").
    static const char* LineEnd();

    /// True when the path lies on a network share or a network file system.
    static bool IsNetworkPath(const char* in_path);

    /// Locks (or unlocks) the first byte of the file, waiting while another
    /// process holds it. Returns false on failure; the system's error code is
    /// then in errno or the last error.
    static bool LockFirstByte(std::FILE* in_file, bool in_lock);
};
}  // namespace Tarni::Platform
