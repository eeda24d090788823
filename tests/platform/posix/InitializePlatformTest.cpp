// The platform set-up of the user-interface thread on Linux: the
// environment's locale with a UTF-8 character type while initialised, the
// previous locale back afterwards, and only the outermost pair doing it.
#include <gtest/gtest.h>

#include <langinfo.h>

#include <clocale>
#include <string>

#include "platform/InitializePlatform.h"

using namespace Tarni::Platform;

TEST(InitializePlatform, TheTerminalGetsAUtf8LocaleAndThePreviousOneComesBack)
{
    std::setlocale(LC_ALL, "C");
    InitializePlatform(0, PLATFORM_APARTMENT_SINGLE_THREADED);
    EXPECT_EQ(std::string(nl_langinfo(CODESET)), "UTF-8");

    InitializePlatform(0, PLATFORM_APARTMENT_SINGLE_THREADED);
    UninitializePlatform();
    EXPECT_EQ(std::string(nl_langinfo(CODESET)), "UTF-8") << "an inner pair leaves the set-up alone";

    UninitializePlatform();
    EXPECT_EQ(std::string(std::setlocale(LC_ALL, nullptr)), "C");
    UninitializePlatform();  // one too many does nothing
    EXPECT_EQ(std::string(std::setlocale(LC_ALL, nullptr)), "C");
}
