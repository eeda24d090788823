#include "driversupport/DSCancellation.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

using Tarni::DriverSupport::DSCancellation;

TEST(DSCancellation, HandlersRunOnceAndOnlyWhileRegistered)
{
    DSCancellation cancellation;
    int kept = 0;
    int removed = 0;
    cancellation.AddHandler([&kept] { ++kept; });
    const std::size_t id = cancellation.AddHandler([&removed] { ++removed; });
    cancellation.RemoveHandler(id);
    EXPECT_FALSE(cancellation.IsCancelled());

    cancellation.Cancel();
    cancellation.Cancel();
    EXPECT_TRUE(cancellation.IsCancelled());
    EXPECT_EQ(kept, 1);
    EXPECT_EQ(removed, 0);

    // Work that registers after the cancel is stopped at once.
    int late = 0;
    cancellation.AddHandler([&late] { ++late; });
    EXPECT_EQ(late, 1);
}

TEST(DSCancellation, CancelFromAnotherThreadUnblocksTheWork)
{
    DSCancellation cancellation;
    std::atomic<bool> released{false};
    const std::size_t id = cancellation.AddHandler([&released] { released = true; });
    std::thread canceller([&cancellation] { cancellation.Cancel(); });
    while (!released)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    canceller.join();
    cancellation.RemoveHandler(id);
    EXPECT_TRUE(cancellation.IsCancelled());
}
