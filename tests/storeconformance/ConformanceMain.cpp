// Entry function of the conformance tests.
#include "platform/WindowsHeaders.h"

#include <gmock/gmock.h>

int wmain(int argc, wchar_t** argv)
{
    testing::InitGoogleMock(&argc, argv);
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
