#include "support/trace/TraceBuffer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/trace/TarniAssert.h"

namespace Tarni::Support
{
void buf_init(TraceBuffer* io_my, char* in_data, size_t in_size, unsigned in_flags)
{
    io_my->data = in_data;
    io_my->size = in_size;
    io_my->flags = in_flags;
    io_my->get = 0;
    io_my->put = 0;
}

void _buf_fit(TraceBuffer* io_my, size_t in_n)
{
    if (in_n == 0 || io_my->size - io_my->put >= in_n)
    {
        return;
    }
    TARNI_ASSERT_MSG(!buf_mapped(io_my), "!buf_mapped(my)");
    TARNI_ASSERT(in_n <= (~size_t(0) >> 2) - io_my->put);

    const size_t wanted = (io_my->put + in_n - 1) | 7;
    size_t size = 8;
    while (size <= wanted)
    {
        size <<= 1;
    }

    char* data = nullptr;
    if ((io_my->flags & BUF_AUTO) != 0)
    {
        data = static_cast<char*>(std::malloc(size));
        TARNI_ASSERT(data != nullptr);
        std::memcpy(data, io_my->data, io_my->put);
        io_my->flags &= ~BUF_AUTO;
    }
    else
    {
        data = static_cast<char*>(std::realloc(io_my->data, size));
        TARNI_ASSERT(data != nullptr);
    }
    io_my->data = data;
    io_my->size = size;
}

char* buf_gain(TraceBuffer* io_my, size_t in_n)
{
    buf_fit(io_my, in_n);
    char* start = io_my->data + io_my->put;
    io_my->put += in_n;
    return start;
}

void buf_put(TraceBuffer* io_my, const char* in_bytes, size_t in_n)
{
    if (in_n != 0)
    {
        std::memcpy(buf_gain(io_my, in_n), in_bytes, in_n);
    }
}

void buf_vprintf(TraceBuffer* io_my, const char* in_format, va_list in_args)
{
    buf_fit(io_my, 1024);
    va_list copy;
    va_copy(copy, in_args);
    const int length = std::vsnprintf(io_my->data + io_my->put, io_my->size - io_my->put, in_format, copy);
    va_end(copy);
    if (length < 0)
    {
        return;
    }
    if (static_cast<size_t>(length) >= io_my->size - io_my->put)
    {
        // Too long for the free space: make room for all of it and format again.
        buf_fit(io_my, static_cast<size_t>(length) + 1);
        va_copy(copy, in_args);
        std::vsnprintf(io_my->data + io_my->put, io_my->size - io_my->put, in_format, copy);
        va_end(copy);
    }
    io_my->put += static_cast<size_t>(length);
}

void buf_printf(TraceBuffer* io_my, const char* in_format, ...)
{
    va_list args;
    va_start(args, in_format);
    buf_vprintf(io_my, in_format, args);
    va_end(args);
}

void buf_fix(TraceBuffer* io_my)
{
    if ((io_my->flags & (BUF_AUTO | BUF_MAPPED)) != 0 || io_my->put == io_my->size || io_my->data == nullptr)
    {
        return;
    }
    const size_t size = io_my->put != 0 ? io_my->put : 1;
    if (char* data = static_cast<char*>(std::realloc(io_my->data, size)); data != nullptr)
    {
        io_my->data = data;
        io_my->size = size;
    }
}

void buf_release(TraceBuffer* io_my)
{
    if ((io_my->flags & (BUF_AUTO | BUF_MAPPED)) == 0)
    {
        std::free(io_my->data);
    }
    buf_init(io_my, nullptr, 0, 0);
}
}  // namespace Tarni::Support
