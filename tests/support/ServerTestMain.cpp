// Entry function of the in-process tests: a single-threaded apartment like the server's, with the
// server's class objects registered, so that items made with CoCreateInstance land here.
#include "automation/ClassObjects.h"
#include "support/TestModule.h"

#include <gmock/gmock.h>

int wmain(int argc, wchar_t** argv)
{
    testing::InitGoogleMock(&argc, argv);
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    int result = 2;
    {
        TestModule module;
        ClassObjects classObjects;
        if (SUCCEEDED(
                classObjects.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE)))
            result = RUN_ALL_TESTS();
    }
    CoUninitialize();
    return result;
}
