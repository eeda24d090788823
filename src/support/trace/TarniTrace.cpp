#include "support/trace/TarniTrace.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/ErrorStatePreserver.h"
#include "platform/FileAccess.h"
#include "platform/ProcessInfo.h"
#include "platform/StackTrace.h"
#include "support/trace/TraceBuffer.h"

namespace Tarni::Support
{
std::atomic<int> g_tarniTraceState{TRACE_UNCHECKED};

namespace
{
// Bytes of automatic storage for one line. buf_vprintf wants 1024 free bytes
// before it formats the message, so the block holds a 1024-byte line and that
// reserve without touching the heap.
constexpr size_t LINE_STORAGE = 2048;

// Where the trace goes. Created once and never destroyed: the trace must work
// while static objects are being torn down, and the file is never closed.
struct TraceOutput
{
    std::FILE* file = stderr;
    std::string path = "stderr";
    std::mutex writeLock;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::atomic<const char*> tag{nullptr};
    // Every tag ever set: a line being built may still read an old one.
    std::vector<std::unique_ptr<char[]>> tags;
};

TraceOutput& Output()
{
    static TraceOutput* output = new TraceOutput;
    return *output;
}

std::mutex& CheckLock()
{
    static std::mutex* lock = new std::mutex;
    return *lock;
}

[[noreturn]] void FailOnFile(const char* in_what, int in_error)
{
    std::fprintf(stderr, "%s: Failed to %s with error %s to tracefile %s, aborting...\n", TRACE_VARIABLE, in_what,
                 std::strerror(in_error), Output().path.c_str());
    std::abort();
}

unsigned FoldedThreadId()
{
    const unsigned long id = Platform::ProcessInfo::CurrentThreadId();
    return static_cast<unsigned>(((id >> 16) ^ id) & 0xFFFF);
}

bool EndsWithLogIgnoringCase(const std::string& in_path)
{
    if (in_path.size() < 4)
    {
        return false;
    }
    const char* tail = in_path.c_str() + in_path.size() - 4;
    return tail[0] == '.' && (tail[1] | 0x20) == 'l' && (tail[2] | 0x20) == 'o' && (tail[3] | 0x20) == 'g';
}

int FlagOf(char in_letter)
{
    switch (in_letter)
    {
        case 'f': return TRACE_FLUSH;
        case 'l': return TRACE_LOCK;
        case 'n': return TRACE_NO_FILE;
        case 'p': return TRACE_PID;
        case 's': return TRACE_SECONDS;
        case 't': return TRACE_THREAD;
        case 'T': return TRACE_TIME;
        default: return 0;
    }
}

// Hands stack and module lines to the trace output.
void TraceLineSink(void*, const char* in_line)
{
    tarni_trace_write(in_line, std::strlen(in_line));
    tarni_trace_write("\n", 1);
}

void StderrLineSink(void*, const char* in_line)
{
    std::fprintf(stderr, "%s\n", in_line);
}

bool TraceGoesToFile()
{
    return Output().file != stderr;
}
}  // namespace

int _tarni_trace_configure(const char* in_value)
{
    Platform::ErrorStatePreserver saved;
    TraceOutput& output = Output();
    {
        std::lock_guard<std::mutex> guard(output.writeLock);
        if (output.file != stderr)
        {
            std::fclose(output.file);
        }
        output.file = stderr;
        output.path = "stderr";
        output.start = std::chrono::steady_clock::now();
    }
    if (in_value == nullptr)
    {
        g_tarniTraceState.store(0);
        return 0;
    }

    // LEVEL[FLAGS][:PATH]
    const char* cursor = in_value;
    int level = 0;
    while (*cursor >= '0' && *cursor <= '9')
    {
        level = level * 10 + (*cursor - '0');
        if (level > TRACE_LEVEL_MASK)
        {
            level = TRACE_LEVEL_MASK;
        }
        ++cursor;
    }
    int flags = 0;
    for (; *cursor != '\0' && *cursor != ':'; ++cursor)
    {
        flags |= FlagOf(*cursor);
    }
    if (level == 0)
    {
        g_tarniTraceState.store(0);
        return 0;
    }

    if (*cursor == ':' && cursor[1] != '\0')
    {
        std::string path(cursor + 1);
        if (!EndsWithLogIgnoringCase(path))
        {
            path += ".log";
        }
        if (Platform::FileAccess::IsNetworkPath(path.c_str()))
        {
            std::fprintf(stderr, "\"%s\" is a network path for %s, reverting to stderr.\n", path.c_str(),
                         TRACE_VARIABLE);
        }
        else if (std::FILE* file = Platform::FileAccess::OpenSharedAppend(path.c_str()); file == nullptr)
        {
            std::fprintf(stderr, "Failed to open \"%s\" for %s, reverting to stderr: %s\n", path.c_str(),
                         TRACE_VARIABLE, std::strerror(errno));
        }
        else
        {
            if ((flags & TRACE_LOCK) != 0)
            {
                std::setvbuf(file, nullptr, _IONBF, 0);
            }
            else if ((flags & TRACE_FLUSH) != 0)
            {
                std::setvbuf(file, nullptr, _IOFBF, 4096);
            }
            std::lock_guard<std::mutex> guard(output.writeLock);
            output.file = file;
            output.path = path;
        }
    }
    if (!TraceGoesToFile())
    {
        // Standard error is not shared through a file lock.
        flags &= ~TRACE_LOCK;
    }

    const int state = level | flags;
    g_tarniTraceState.store(state);
    if ((flags & TRACE_NO_FILE) == 0)
    {
        do_tarni_trace(1, "_tarni_trace_check", __FILE__, __LINE__, "Starting to trace with %s=\"%s\" from PID=%d\n",
                       TRACE_VARIABLE, in_value, static_cast<int>(Platform::ProcessInfo::CurrentProcessId()));
    }
    return state;
}

int _tarni_trace_check()
{
    Platform::ErrorStatePreserver saved;
    std::lock_guard<std::mutex> guard(CheckLock());
    const int state = g_tarniTraceState.load();
    if (state != TRACE_UNCHECKED)
    {
        return state;
    }
    return _tarni_trace_configure(std::getenv(TRACE_VARIABLE));
}

void do_tarni_trace(int in_level, const char* in_function, const char* in_file, int in_line, const char* in_format,
                    ...)
{
    va_list args;
    va_start(args, in_format);
    do_tarni_trace_va(in_level, in_function, in_file, in_line, in_format, args);
    va_end(args);
}

void do_tarni_trace_va(int in_level, const char* in_function, const char* in_file, int in_line,
                       const char* in_format, va_list in_args)
{
    Platform::ErrorStatePreserver saved;
    const int state = tarni_trace_state();
    const int traceLevel = state & TRACE_LEVEL_MASK;
    if (traceLevel == 0 || in_level > traceLevel)
    {
        return;
    }

    char storage[LINE_STORAGE];
    TraceBuffer line;
    buf_init(&line, storage, sizeof(storage), BUF_AUTO);

    // An anonymous namespace shows as "`anonymous namespace'::..."; keep what follows.
    const char* function = in_function != nullptr ? in_function : "";
    if (function[0] == '`')
    {
        if (const char* end = std::strstr(function, "':"); end != nullptr)
        {
            function = end + 2;
        }
    }
    buf_printf(&line, "%s:%d\t", function, in_line);

    const size_t messageStart = line.put;
    buf_vprintf(&line, in_format, in_args);
    // A message ending in a line feed gets its decoration on the same line.
    if (line.put > messageStart && line.data[line.put - 1] == '\n')
    {
        --line.put;
    }
    const bool hasMessage = line.put > messageStart;
    if (hasMessage && (line.data[line.put - 1] == ' ' || line.data[line.put - 1] == ':'))
    {
        const char* error = std::strerror(saved.SavedErrno());
        buf_put(&line, error, std::strlen(error));
    }

    const char* tag = Output().tag.load(std::memory_order_acquire);
    if (tag != nullptr || (state & (TRACE_SECONDS | TRACE_THREAD | TRACE_TIME | TRACE_NO_FILE)) != 0)
    {
        char stamp[64];
        buf_put(&line, "\t", 1);
        if ((state & TRACE_TIME) != 0)
        {
            std::tm now = {};
            Platform::ProcessInfo::LocalTime(std::time(nullptr), now);
            const int length = std::snprintf(stamp, sizeof(stamp), " %02d:%02d:%02d", now.tm_hour, now.tm_min,
                                             now.tm_sec);
            buf_put(&line, stamp, static_cast<size_t>(length));
        }
        if ((state & TRACE_SECONDS) != 0)
        {
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - Output().start;
            const int length = std::snprintf(stamp, sizeof(stamp), " @%.5f", elapsed.count());
            buf_put(&line, stamp, static_cast<size_t>(length));
        }
        if ((state & TRACE_THREAD) != 0)
        {
            const int length = std::snprintf(stamp, sizeof(stamp), " #%04X", FoldedThreadId());
            buf_put(&line, stamp, static_cast<size_t>(length));
        }
        if ((state & TRACE_PID) != 0)
        {
            const int length = std::snprintf(stamp, sizeof(stamp), " pid:%u",
                                             static_cast<unsigned>(Platform::ProcessInfo::CurrentProcessId()));
            buf_put(&line, stamp, static_cast<size_t>(length));
        }
        if (tag != nullptr)
        {
            buf_put(&line, " ", 1);
            buf_put(&line, tag, std::strlen(tag));
        }
        if ((state & TRACE_NO_FILE) == 0 && in_file != nullptr)
        {
            const char* name = in_file;
            for (const char* c = in_file; *c != '\0'; ++c)
            {
                if (*c == '\\' || *c == '/')
                {
                    name = c + 1;
                }
            }
            buf_put(&line, " ", 1);
            buf_put(&line, name, std::strlen(name));
        }
    }
    if (hasMessage)
    {
        buf_put(&line, "\n", 1);
    }
    tarni_trace_write(line.data, line.put);
    buf_release(&line);
}

void tarni_tdump(int in_level, const std::uint32_t* in_values, size_t in_count)
{
    Platform::ErrorStatePreserver saved;
    const int state = tarni_trace_state();
    const int traceLevel = state & TRACE_LEVEL_MASK;
    if (traceLevel == 0 || in_level > traceLevel || in_count == 0)
    {
        return;
    }
    std::uint32_t all = 0;
    for (size_t i = 0; i < in_count; ++i)
    {
        all |= in_values[i];
    }
    int bits = 0;
    while (bits < 32 && (all >> bits) != 0)
    {
        ++bits;
    }
    const int width = 1 + bits * 3 / 10;

    char storage[LINE_STORAGE];
    TraceBuffer dump;
    buf_init(&dump, storage, sizeof(storage), BUF_AUTO);
    char cell[32];
    for (size_t row = 0; row < in_count; row += 16)
    {
        for (size_t i = row; i < in_count && i < row + 16; ++i)
        {
            const int length = std::snprintf(cell, sizeof(cell), " %*d", width, static_cast<int>(in_values[i]));
            buf_put(&dump, cell, static_cast<size_t>(length));
        }
        if ((state & TRACE_THREAD) != 0)
        {
            char stamp[16];
            std::snprintf(stamp, sizeof(stamp), " #%04X", FoldedThreadId());
            const int length = std::snprintf(cell, sizeof(cell), "%8s", stamp);
            buf_put(&dump, cell, static_cast<size_t>(length));
        }
        buf_put(&dump, "\n", 1);
    }
    tarni_trace_write(dump.data, dump.put);
    buf_release(&dump);
}

void tarni_trace_write(const char* in_bytes, size_t in_length)
{
    Platform::ErrorStatePreserver saved;
    TraceOutput& output = Output();
    const int state = tarni_trace_state();
    const bool shared = (state & TRACE_LOCK) != 0 && TraceGoesToFile();

    std::unique_lock<std::mutex> guard(output.writeLock, std::defer_lock);
    if (shared)
    {
        guard.lock();
        tarni_trace_lock_file(true);
    }
    // Only a trace file is worth dying for: standard error may not be connected at all.
    const bool toFile = TraceGoesToFile();
    if (in_length != 0 && std::fwrite(in_bytes, 1, in_length, output.file) != in_length && toFile)
    {
        FailOnFile("write to", errno);
    }
    if ((state & TRACE_FLUSH) != 0 && std::fflush(output.file) != 0 && toFile)
    {
        FailOnFile("flush", errno);
    }
    if (shared)
    {
        tarni_trace_lock_file(false);
    }
}

void tarni_trace_flush()
{
    Platform::ErrorStatePreserver saved;
    if (std::fflush(Output().file) != 0 && TraceGoesToFile())
    {
        FailOnFile("flush", errno);
    }
}

void tarni_trace_lock_file(bool in_lock)
{
    Platform::ErrorStatePreserver saved;
    if (!TraceGoesToFile())
    {
        return;
    }
    if (!Platform::FileAccess::LockFirstByte(Output().file, in_lock))
    {
        FailOnFile(in_lock ? "lock" : "unlock", errno);
    }
}

void tarni_trace_stack(int in_level)
{
    Platform::ErrorStatePreserver saved;
    const int traceLevel = tarni_trace_level();
    if (traceLevel == 0 || in_level > traceLevel)
    {
        return;
    }
    tarni_trace_write("Current stack trace:\n", 21);
    Platform::StackTrace::ForEachFrame(1, TraceLineSink, nullptr);
}

void tarni_trace_modules(int in_level)
{
    Platform::ErrorStatePreserver saved;
    const int traceLevel = tarni_trace_level();
    if (traceLevel == 0 || in_level > traceLevel)
    {
        return;
    }
    tarni_trace_write("Loaded modules:\n", 16);
    Platform::StackTrace::ForEachModule(TraceLineSink, nullptr);
}

void tarni_trace_set_tag(const char* in_tag)
{
    TraceOutput& output = Output();
    char* copy = nullptr;
    if (in_tag != nullptr)
    {
        std::lock_guard<std::mutex> guard(output.writeLock);
        output.tags.push_back(std::make_unique<char[]>(std::strlen(in_tag) + 1));
        copy = output.tags.back().get();
        std::strcpy(copy, in_tag);
    }
    output.tag.store(copy, std::memory_order_release);
}

const char* tarni_trace_path()
{
    return Output().path.c_str();
}

void tarni_abort()
{
    std::fputs("Current stack trace:\n", stderr);
    Platform::StackTrace::ForEachFrame(1, StderrLineSink, nullptr);
    if (TraceGoesToFile() && tarni_trace_level() > 0)
    {
        tarni_trace_stack(1);
    }
    std::fflush(nullptr);
    std::abort();
}

void tarni_fail(const char* in_function, int in_line, const char* in_expression)
{
    std::fprintf(stderr, "%s:%d: failed: %s\n", in_function, in_line, in_expression);
    if (TraceGoesToFile() && tarni_trace_level() > 0)
    {
        do_tarni_trace(1, in_function, nullptr, in_line, "failed: %s", in_expression);
    }
    tarni_abort();
}
}  // namespace Tarni::Support
