#include "platform/ConsoleInterrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace Tarni::Platform
{
namespace
{
// The write end of the pipe of the object alive, for the signal handler.
std::atomic<int> g_interruptPipe{-1};

extern "C" void OnSigint(int)
{
    const int saved = errno;
    const int fd = g_interruptPipe.load();
    if (fd >= 0)
    {
        const char byte = 'i';
        [[maybe_unused]] const ssize_t written = ::write(fd, &byte, 1);
    }
    errno = saved;
}
}  // namespace

struct ConsoleInterrupt::State
{
    std::function<void()> onInterrupt;
    int pipe[2] = {-1, -1};
    struct sigaction previous {};
    std::thread watcher;
};

ConsoleInterrupt::ConsoleInterrupt(std::function<void()> in_onInterrupt) : m_state(std::make_unique<State>())
{
    m_state->onInterrupt = std::move(in_onInterrupt);
    if (::pipe2(m_state->pipe, O_CLOEXEC) != 0)
    {
        return;  // Ctrl-C keeps ending the program
    }
    State* state = m_state.get();
    state->watcher = std::thread([state] {
        for (;;)
        {
            char byte = 0;
            const ssize_t got = ::read(state->pipe[0], &byte, 1);
            if (got < 0 && errno == EINTR)
            {
                continue;
            }
            if (got <= 0 || byte == 'q')
            {
                return;
            }
            state->onInterrupt();
        }
    });
    g_interruptPipe.store(m_state->pipe[1]);
    struct sigaction action {};
    action.sa_handler = &OnSigint;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, &m_state->previous);
}

ConsoleInterrupt::~ConsoleInterrupt()
{
    if (m_state->pipe[1] < 0)
    {
        return;
    }
    ::sigaction(SIGINT, &m_state->previous, nullptr);
    g_interruptPipe.store(-1);
    const char quit = 'q';
    [[maybe_unused]] const ssize_t written = ::write(m_state->pipe[1], &quit, 1);
    m_state->watcher.join();
    ::close(m_state->pipe[0]);
    ::close(m_state->pipe[1]);
}
}  // namespace Tarni::Platform
