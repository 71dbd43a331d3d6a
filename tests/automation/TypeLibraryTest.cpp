// The type library as clients read it out of the built server, against the published contract.
#include "automation/TypeLibraryDump.h"

#include "platform/Bstr.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

using Microsoft::WRL::ComPtr;

namespace
{
// The lines of the contract without comments and blank lines.
std::vector<std::string> ReadContract()
{
    std::vector<std::string> facts;
    std::ifstream file(TestData() / "contract" / "type_library.txt");
    for (std::string line; std::getline(file, line);)
    {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line.front() != '#')
            facts.push_back(line);
    }
    return facts;
}

// The library that the built server carries as its first TYPELIB resource. The server lies beside
// the test program.
ComPtr<ITypeLib> LoadLibraryUnderTest()
{
    wchar_t program[MAX_PATH] = {};
    EXPECT_GT(GetModuleFileNameW(nullptr, program, MAX_PATH), 0u);
    const std::wstring server =
        std::filesystem::path(program).replace_filename(L"PimStoreBridge.exe").wstring() + L"\\1";
    ComPtr<ITypeLib> library;
    const HRESULT result = LoadTypeLibEx(server.c_str(), REGKIND_NONE, &library);
    EXPECT_EQ(S_OK, result);
    return library;
}
} // namespace

TEST(TypeLibraryTest, SaysTheWholeContractAndNothingElse)
{
    std::vector<std::string> expected = ReadContract();
    // 1 library, 11 classes with 14 implementations, 5 enumerations with 29 members, 10 records
    // with 48 fields, 11 interfaces with 138 operations: a data file that was cut short must not
    // pass.
    ASSERT_EQ(size_t{1 + 11 + 14 + 5 + 29 + 10 + 48 + 11 + 138}, expected.size());
    const ComPtr<ITypeLib> library = LoadLibraryUnderTest();
    ASSERT_TRUE(library);
    std::vector<std::string> actual = DumpTypeLibrary(*library.Get());

    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    std::vector<std::string> missing;
    std::set_difference(expected.begin(),
                        expected.end(),
                        actual.begin(),
                        actual.end(),
                        std::back_inserter(missing));
    std::vector<std::string> unexpected;
    std::set_difference(actual.begin(),
                        actual.end(),
                        expected.begin(),
                        expected.end(),
                        std::back_inserter(unexpected));
    EXPECT_THAT(missing, testing::IsEmpty());
    EXPECT_THAT(unexpected, testing::IsEmpty());
}

TEST(TypeLibraryTest, DescribesTheRecordsThatCrossInArraysAndNotTheAddress)
{
    const ComPtr<ITypeLib> library = LoadLibraryUnderTest();
    ASSERT_TRUE(library);
    int described = 0;
    std::vector<std::wstring> refused;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i)
    {
        ComPtr<ITypeInfo> info;
        ASSERT_EQ(S_OK, library->GetTypeInfo(i, &info));
        TYPEKIND kind = TKIND_MAX;
        ASSERT_EQ(S_OK, library->GetTypeInfoType(i, &kind));
        if (kind != TKIND_RECORD)
            continue;
        Bstr name;
        ASSERT_EQ(S_OK, info->GetDocumentation(-1, name.Put(), nullptr, nullptr, nullptr));
        ComPtr<IRecordInfo> record;
        GUID guid = {};
        if (SUCCEEDED(GetRecordInfoFromTypeInfo(info.Get(), &record)) &&
            SUCCEEDED(record->GetGuid(&guid)) && guid != GUID_NULL)
            ++described;
        else
            refused.push_back(TextOf(name.Get()));
    }
    EXPECT_EQ(9, described);
    // Without a GUID no client can be told the element type of an array of it.
    EXPECT_EQ(std::vector<std::wstring>{L"_tagNAddress"}, refused);
}
