// All that the library has: one of each, for the life of the process.
#pragma once

#include "tests/recordingstore/library/Content.h"
#include "tests/recordingstore/library/Memory.h"
#include "tests/recordingstore/library/Recorder.h"

#include <new>
#include <utility>

struct Library
{
    Recorder recorder;
    Content content;
    BufferMemory memory;
};

Library& TheLibrary() noexcept;

// Frees one buffer, and keeps the books where it is none. line: the call that does it.
HRESULT FreeOne(void* buffer, const std::string& line);

// Sets every output that there is to nothing.
template <typename... Outputs> void ClearOutputs(Outputs*... outputs)
{
    ((outputs ? void(*outputs = {}) : void()), ...);
}

// Runs one call that was begun with that fault. The body gets the fault, for those that change what
// it delivers; on failure and for a null output the outputs are cleared.
template <typename Body, typename... Outputs>
HRESULT RunCall(StoreFault fault, Body&& body, Outputs*... outputs) noexcept
{
    HRESULT result = S_OK;
    try
    {
        switch (fault)
        {
        case StoreFault::OutOfMemory:
            result = E_OUTOFMEMORY;
            break;
        case StoreFault::CallFailed:
            result = MAPI_E_CALL_FAILED;
            break;
        case StoreFault::NullOutput:
            break;
        default:
            result = body(fault);
        }
    }
    catch (const std::bad_alloc&)
    {
        result = E_OUTOFMEMORY;
    }
    catch (...)
    {
        result = E_UNEXPECTED;
    }
    if (FAILED(result) || fault == StoreFault::NullOutput)
        ClearOutputs(outputs...);
    else if (fault == StoreFault::FewerValues)
        result = MAPI_W_ERRORS_RETURNED;
    else if (fault == StoreFault::FailsWithWork)
        result = MAPI_E_CALL_FAILED;
    TheLibrary().recorder.End(result);
    return result;
}
