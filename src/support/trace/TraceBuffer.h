#pragma once
// The growable byte buffer that trace lines are built in. A buffer starts on
// memory the caller provides: automatic storage (copied to the heap once it
// has to grow) or foreign memory it is mapped onto (which cannot grow).
#include <cstdarg>
#include <cstddef>

namespace Tarni::Support
{
/// The data is mapped onto foreign memory and cannot grow.
constexpr unsigned BUF_MAPPED = 0x1;
/// The data lies in automatic storage and must be copied out before it grows.
constexpr unsigned BUF_AUTO = 0x2;

struct TraceBuffer
{
    char* data;
    size_t size;
    unsigned flags;
    size_t get;
    size_t put;
};

inline bool buf_mapped(const TraceBuffer* in_my)
{
    return (in_my->flags & BUF_MAPPED) != 0;
}

/// Starts a buffer on in_size bytes at in_data, empty, with BUF_AUTO or
/// BUF_MAPPED (or 0 for a block from malloc).
void buf_init(TraceBuffer* io_my, char* in_data, size_t in_size, unsigned in_flags);

/// Makes at least in_n bytes free after the put position. The new size is the
/// smallest power of two above ((put + n - 1) | 7).
void _buf_fit(TraceBuffer* io_my, size_t in_n);

inline void buf_fit(TraceBuffer* io_my, size_t in_n)
{
    if (io_my->size - io_my->put < in_n)
    {
        _buf_fit(io_my, in_n);
    }
}

/// Reserves in_n bytes at the put position, moves the put position past them
/// and returns where they start; the caller fills them.
char* buf_gain(TraceBuffer* io_my, size_t in_n);

/// Appends bytes.
void buf_put(TraceBuffer* io_my, const char* in_bytes, size_t in_n);

/// Appends printf-formatted text (without its terminating null). Makes at
/// least 1024 bytes free first, then formats into the free space.
void buf_vprintf(TraceBuffer* io_my, const char* in_format, va_list in_args);
void buf_printf(TraceBuffer* io_my, const char* in_format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

/// Shrinks a heap block to the put position.
void buf_fix(TraceBuffer* io_my);

/// Frees a heap block; the buffer is empty afterwards.
void buf_release(TraceBuffer* io_my);
}  // namespace Tarni::Support
