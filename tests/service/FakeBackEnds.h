// Three back ends under the real names, whose start does what the test says, and a service manager
// over them that stands for the process-wide one.
#pragma once

#include "service/ServiceManager.h"
#include "tests/service/FakeProvider.h"

#include <functional>
#include <memory>
#include <string>

class FakeBackEnds
{
  public:
    FakeBackEnds();
    ~FakeBackEnds();
    FakeBackEnds(const FakeBackEnds&) = delete;
    FakeBackEnds& operator=(const FakeBackEnds&) = delete;

    // Everything that starts, providers and tables were asked, in order.
    CallLog log;
    // What a start does; the default stores a FakeProvider and gives S_OK.
    std::function<HRESULT(std::unique_ptr<IProvider>&)> start;
    // Prepares each new provider.
    std::function<void(FakeProvider&)> prepareProvider;

    // A new provider that writes into the log.
    std::unique_ptr<FakeProvider> MakeProvider();

  private:
    static FakeBackEnds* s_current;
    template <int Row> static HRESULT Start(std::unique_ptr<IProvider>& slot)
    {
        s_current->log.push_back(L"start " + std::wstring(kRows[Row].name));
        return s_current->start(slot);
    }
    static const ProviderRow kRows[3];

  public:
    CServiceManager manager{kRows};

  private:
    ScopedServiceManager m_current{manager};
};
