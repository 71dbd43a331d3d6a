// Entry function of the tests against the real server process: a client in a single-threaded
// apartment, or one of its roles.
#include "endtoend/Roles.h"
#include "endtoend/ServerFixture.h"

#include <gmock/gmock.h>

int wmain(int argc, wchar_t** argv)
{
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    if (const std::optional<int> exitCode = PlayRole(argc, argv))
    {
        CoUninitialize();
        return *exitCode;
    }
    testing::InitGoogleMock(&argc, argv);
    testing::AddGlobalTestEnvironment(new ServerEnvironment);
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
