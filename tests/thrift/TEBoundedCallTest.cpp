// A call run within a limit: its result and its exception come back when it
// finishes in time; on the limit or a cancel the wait ends at once and the
// call, left behind, still ends by itself with what it owns.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include "driversupport/DSCancellation.h"
#include "thrift/connectiontest/TEBoundedCall.h"

namespace
{
using Tarni::DriverSupport::DSCancellation;
using Tarni::ThriftExtension::TEBoundedCall;
using Clock = std::chrono::steady_clock;

TEST(TEBoundedCall, FinishedCallsReturnTheirResultOrException)
{
    DSCancellation cancellation;
    auto result = std::make_shared<int>(0);
    EXPECT_EQ(TEBoundedCall::Run([result] { *result = 42; }, 5000, cancellation), TEBoundedCall::Outcome::Finished);
    EXPECT_EQ(*result, 42);
    EXPECT_THROW(TEBoundedCall::Run([] { throw std::runtime_error("in the call"); }, 5000, cancellation),
                 std::runtime_error);
}

TEST(TEBoundedCall, LimitAndCancelEndTheWaitAndTheCallEndsOnItsOwn)
{
    auto release = std::make_shared<std::atomic<bool>>(false);
    auto owned = std::make_shared<int>(7);
    const auto blocked = [release, owned] {
        while (!release->load())
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    };
    DSCancellation never;
    auto start = Clock::now();
    EXPECT_EQ(TEBoundedCall::Run(blocked, 200, never), TEBoundedCall::Outcome::TimedOut);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));

    DSCancellation cancellation;
    std::thread canceller([&cancellation] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        cancellation.Cancel();
    });
    start = Clock::now();
    EXPECT_EQ(TEBoundedCall::Run(blocked, 30000, cancellation), TEBoundedCall::Outcome::Cancelled);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
    canceller.join();
    // Once cancelled, no call is started at all.
    EXPECT_EQ(TEBoundedCall::Run([] { FAIL() << "ran after the cancel"; }, 1000, cancellation),
              TEBoundedCall::Outcome::Cancelled);

    // Both workers still hold the call's state; released, they end and let it go.
    EXPECT_EQ(TEBoundedCall::AbandonedCalls(), 2);
    release->store(true);
    const auto limit = Clock::now() + std::chrono::seconds(5);
    while ((TEBoundedCall::AbandonedCalls() > 0 || owned.use_count() > 2) && Clock::now() < limit)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_EQ(TEBoundedCall::AbandonedCalls(), 0);
    EXPECT_EQ(owned.use_count(), 2);  // here and in `blocked`
}
}  // namespace
