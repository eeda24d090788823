#pragma once
// The call stack of the current thread and the list of loaded modules, as
// text lines handed to a sink one by one. The sink gets lines without a line
// end. Used by the trace on fatal errors, so it allocates as little as it can.

namespace Tarni::Platform
{
class StackTrace
{
public:
    using LineSink = void (*)(void* in_context, const char* in_line);

    /// One line per frame, the innermost first, skipping in_skip frames of the caller.
    static void ForEachFrame(int in_skip, LineSink in_sink, void* in_context);

    /// One line per loaded module: its base address and path.
    static void ForEachModule(LineSink in_sink, void* in_context);
};
}  // namespace Tarni::Platform
