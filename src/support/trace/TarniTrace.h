#pragma once
// The low-level trace: a process-wide, printf-style trace that is off unless
// the environment variable "TR4CE" is set to LEVEL[FLAGS][:PATH]. It serves
// assertion failures, aborts and the support library's own internals.
//
// The level test reads one process-wide word; the first test reads the
// environment once (_tarni_trace_check). Every entry point leaves errno and
// the system's last error as its caller had them.
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace Tarni::Support
{
/// The trace state before the environment has been read.
constexpr int TRACE_UNCHECKED = 0x7FFFFFFF;
/// The level lives in the low byte of the state, the flags above it.
constexpr int TRACE_LEVEL_MASK = 0xFF;

enum TraceFlag : int
{
    TRACE_FLUSH = 0x100,     ///< "f": 4096-byte file buffer, flushed after each write
    TRACE_SECONDS = 0x200,   ///< "s": seconds since the trace started
    TRACE_THREAD = 0x400,    ///< "t": thread id folded to 16 bits
    TRACE_NO_FILE = 0x800,   ///< "n": no source file name, no start-up line
    TRACE_PID = 0x1000,      ///< "p": process id
    TRACE_LOCK = 0x2000,     ///< "l": unbuffered, locked writes for a shared file
    TRACE_TIME = 0x8000,     ///< "T": local hour, minute, second
};

/// The name of the environment variable.
constexpr const char* TRACE_VARIABLE = "TR4CE";

extern std::atomic<int> g_tarniTraceState;

/// Reads the environment on first use and sets the trace up; returns the state.
int _tarni_trace_check();

/// Sets the trace up from a value of the variable (nullptr: off). Used by
/// _tarni_trace_check and by tests that need a particular set-up.
int _tarni_trace_configure(const char* in_value);

inline int tarni_trace_state()
{
    const int state = g_tarniTraceState.load(std::memory_order_relaxed);
    return state == TRACE_UNCHECKED ? _tarni_trace_check() : state;
}

inline int tarni_trace_level()
{
    return tarni_trace_state() & TRACE_LEVEL_MASK;
}

/// One trace line, written when in_level is at most the trace level.
void do_tarni_trace(int in_level, const char* in_function, const char* in_file, int in_line,
                    const char* in_format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 5, 6)))
#endif
    ;
void do_tarni_trace_va(int in_level, const char* in_function, const char* in_file, int in_line,
                       const char* in_format, va_list in_args);

/// A hex-dump style table of 32-bit numbers, sixteen to a row.
void tarni_tdump(int in_level, const std::uint32_t* in_values, size_t in_count);

/// Writes bytes to the trace output as they are (one write, under the file
/// lock with the "l" flag). A failure aborts the process.
void tarni_trace_write(const char* in_bytes, size_t in_length);
void tarni_trace_flush();

/// Locks or unlocks the first byte of the trace file (no-op on standard error).
void tarni_trace_lock_file(bool in_lock);

/// "Current stack trace:" and one line per frame, at the given trace level.
void tarni_trace_stack(int in_level);
/// "Loaded modules:" and one line per module, at the given trace level.
void tarni_trace_modules(int in_level);

/// A process-wide tag added to every decorated line (nullptr clears it).
void tarni_trace_set_tag(const char* in_tag);

/// Where the trace goes: the file path, or "stderr".
const char* tarni_trace_path();

/// Writes the stack to the trace and standard error and aborts the process.
[[noreturn]] void tarni_abort();

/// A failed check: "<function>:<line>: failed: <expression>" on standard
/// error and the trace, the stack trace, then abort.
[[noreturn]] void tarni_fail(const char* in_function, int in_line, const char* in_expression);
}  // namespace Tarni::Support

/// Traces a printf-style line at a level, with the calling function, file and line.
#define TARNI_TRACE(level, ...)                                                                  \
    do                                                                                           \
    {                                                                                            \
        if (::Tarni::Support::tarni_trace_level() >= (level))                                    \
            ::Tarni::Support::do_tarni_trace((level), __func__, __FILE__, __LINE__, __VA_ARGS__); \
    } while (0)
