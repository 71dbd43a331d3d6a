#include "tests/service/FakeBackEnds.h"

FakeBackEnds* FakeBackEnds::s_current = nullptr;

const ProviderRow FakeBackEnds::kRows[3] = {
    {L"Microsoft Outlook", &FakeBackEnds::Start<0>},
    {L"Outlook Express", &FakeBackEnds::Start<1>},
    {L"Windows Mail", &FakeBackEnds::Start<2>},
};

FakeBackEnds::FakeBackEnds()
{
    s_current = this;
    start = [this](std::unique_ptr<IProvider>& slot) {
        slot = MakeProvider();
        return S_OK;
    };
}

FakeBackEnds::~FakeBackEnds()
{
    s_current = nullptr;
}

std::unique_ptr<FakeProvider> FakeBackEnds::MakeProvider()
{
    auto provider = std::make_unique<FakeProvider>(log);
    if (prepareProvider)
        prepareProvider(*provider);
    return provider;
}
