// The platform set-up of the user-interface thread on Windows: COM in a
// single-threaded apartment while initialised (the shell's choosers need it),
// undone by the outermost UninitializePlatform.
#include <gtest/gtest.h>

#include <objbase.h>

#include "platform/InitializePlatform.h"

using namespace Tarni::Platform;

TEST(InitializePlatform, ComRunsInASingleThreadedApartmentUntilTheOutermostUninitialize)
{
    InitializePlatform(0, PLATFORM_APARTMENT_SINGLE_THREADED);
    InitializePlatform(0, PLATFORM_APARTMENT_SINGLE_THREADED);
    // Already initialised in that apartment: S_FALSE; another model: refused.
    HRESULT again = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    EXPECT_EQ(again, S_FALSE);
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);

    UninitializePlatform();
    again = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    EXPECT_EQ(again, S_FALSE) << "an inner pair leaves COM initialised";
    CoUninitialize();

    UninitializePlatform();
    again = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    EXPECT_EQ(again, S_OK) << "the outermost uninitialise ends the apartment";
    CoUninitialize();
}
