#include "thrift/connectiontest/TEBoundedCall.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "driversupport/DSCancellation.h"
#include "platform/ModulePin.h"

namespace Tarni::ThriftExtension
{
namespace
{
std::atomic<int> g_abandoned{0};

// What the waiting thread and the worker share; the worker keeps it alive
// for as long as it runs.
struct Shared
{
    std::mutex mutex;
    std::condition_variable changed;
    std::function<void()> call;
    std::exception_ptr error;
    bool finished = false;
    bool cancelled = false;
    bool abandoned = false;
};

void Work(const std::shared_ptr<Shared>& in_shared)
{
    try
    {
        in_shared->call();
    }
    catch (...)
    {
        in_shared->error = std::current_exception();
    }
    // What the call owns is released here, on the worker, once it is done.
    in_shared->call = nullptr;
    std::lock_guard<std::mutex> lock(in_shared->mutex);
    in_shared->finished = true;
    if (in_shared->abandoned)
    {
        --g_abandoned;
    }
    in_shared->changed.notify_all();
}

// A worker that is given up on goes on running code of the module that holds
// this file (and of the libraries it links): the connection test also runs
// inside the setup library, which the ODBC administrator may unload once the
// dialog is closed. The module is pinned before the first worker is left
// behind, so that it stays loaded until the process ends.
void PinThisModule()
{
    static std::once_flag pinned;
    std::call_once(pinned, [] { Platform::ModulePin::PinModuleOf(reinterpret_cast<const void*>(&Work)); });
}
}  // namespace

TEBoundedCall::Outcome TEBoundedCall::Run(std::function<void()> in_call, int in_timeoutMs,
                                          DriverSupport::DSCancellation& io_cancellation)
{
    if (io_cancellation.IsCancelled())
    {
        return Outcome::Cancelled;
    }
    auto shared = std::make_shared<Shared>();
    shared->call = std::move(in_call);
    std::thread worker([shared] { Work(shared); });

    const std::size_t handler = io_cancellation.AddHandler([shared] {
        std::lock_guard<std::mutex> lock(shared->mutex);
        shared->cancelled = true;
        shared->changed.notify_all();
    });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(in_timeoutMs);
    bool finished = false;
    bool cancelled = false;
    {
        std::unique_lock<std::mutex> lock(shared->mutex);
        shared->changed.wait_until(lock, deadline, [&shared] { return shared->finished || shared->cancelled; });
        finished = shared->finished;
        cancelled = shared->cancelled;
        if (!finished)
        {
            shared->abandoned = true;
            ++g_abandoned;
        }
    }
    io_cancellation.RemoveHandler(handler);
    if (finished)
    {
        worker.join();
        if (shared->error)
        {
            std::rethrow_exception(shared->error);
        }
        return Outcome::Finished;
    }
    PinThisModule();
    worker.detach();
    return cancelled ? Outcome::Cancelled : Outcome::TimedOut;
}

int TEBoundedCall::AbandonedCalls()
{
    return g_abandoned.load();
}
}  // namespace Tarni::ThriftExtension
