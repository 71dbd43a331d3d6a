// An IWABObject on the stack that only records what it was asked to free.
#pragma once

#include "platform/WindowsHeaders.h"

#include <vector>

// The interface has many operations that no test reaches.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
class WabObjectWithoutOperations : public IWABObject
{
  public:
    WAB_IWABOBJECT_METHODS(override { return E_NOTIMPL; })

  protected:
    ~WabObjectWithoutOperations() = default;
};
#pragma GCC diagnostic pop

class FakeWabMemory final : public WabObjectWithoutOperations
{
  public:
    std::vector<void*> freed;

    STDMETHODIMP QueryInterface(REFIID, void** result) override
    {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP FreeBuffer(LPVOID buffer) override
    {
        freed.push_back(buffer);
        return S_OK;
    }
};
