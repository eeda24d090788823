#include <gtest/gtest.h>

#include <string>

#include "support/trace/TraceBuffer.h"

using namespace Tarni::Support;

TEST(TraceBuffer, GrowsToThePowerOfTwoAboveTheNeededSize)
{
    char storage[16];
    TraceBuffer buffer;
    buf_init(&buffer, storage, sizeof(storage), BUF_AUTO);
    buf_put(&buffer, "0123456789", 10);
    EXPECT_EQ(storage, buffer.data);  // still in automatic storage

    // (10 + 10 - 1) | 7 = 23: the next power of two is 32.
    _buf_fit(&buffer, 10);
    EXPECT_NE(storage, buffer.data);
    EXPECT_EQ(32U, buffer.size);
    EXPECT_EQ(0U, buffer.flags & BUF_AUTO);
    EXPECT_EQ("0123456789", std::string(buffer.data, buffer.put));

    // (10 + 54 - 1) | 7 = 63: 64 is above it.
    buf_gain(&buffer, 54);
    EXPECT_EQ(64U, buffer.size);
    EXPECT_EQ(64U, buffer.put);
    // (64 + 1 - 1) | 7 = 71: 128.
    buf_put(&buffer, "x", 1);
    EXPECT_EQ(128U, buffer.size);
    EXPECT_EQ("0123456789", std::string(buffer.data, 10));

    buf_fix(&buffer);
    EXPECT_EQ(65U, buffer.size);
    buf_release(&buffer);
}

TEST(TraceBuffer, FormatsTextLongerThanItsFreeSpace)
{
    char storage[2048];
    TraceBuffer buffer;
    buf_init(&buffer, storage, sizeof(storage), BUF_AUTO);
    buf_printf(&buffer, "%s:%d\t", "function", 12);
    EXPECT_EQ(storage, buffer.data);  // 1024 bytes were free already

    const std::string text(5000, 'y');
    buf_printf(&buffer, "[%s]", text.c_str());
    EXPECT_EQ("function:12\t[" + text + "]", std::string(buffer.data, buffer.put));
    EXPECT_GE(buffer.size, buffer.put + 1);
    buf_release(&buffer);
}

#if GTEST_HAS_DEATH_TEST
TEST(TraceBufferDeathTest, AMappedBufferCannotGrow)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    char foreign[8];
    TraceBuffer buffer;
    buf_init(&buffer, foreign, sizeof(foreign), BUF_MAPPED);
    buf_put(&buffer, "1234", 4);
    EXPECT_DEATH(buf_put(&buffer, "56789", 5), "_buf_fit:.*: failed: !buf_mapped\\(my\\)");
}
#endif
