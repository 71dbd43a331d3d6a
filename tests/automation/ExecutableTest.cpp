// What the built executable carries beside its code. It lies beside the test program.
#include "platform/ProgramPath.h"
#include "platform/UniqueHandle.h"

#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "PimStoreBridge.h"

namespace
{
std::wstring ServerPath()
{
    return std::filesystem::path(ProgramPath()).replace_filename(L"PimStoreBridge.exe").wstring();
}

class ExecutableTest : public testing::Test
{
  protected:
    std::string Resource(const wchar_t* type, WORD number)
    {
        const HRSRC found = FindResourceW(m_module.Get(), MAKEINTRESOURCEW(number), type);
        if (!found)
            return {};
        const void* data = LockResource(LoadResource(m_module.Get(), found));
        return {static_cast<const char*>(data), SizeofResource(m_module.Get(), found)};
    }

    UniqueModule m_module{LoadLibraryExW(ServerPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)};
};

// The text behind the first "name=" in quotes after the position.
std::string Attribute(const std::string& xml, size_t from, const std::string& name)
{
    const size_t begin = xml.find(name + "=\"", from) + name.size() + 2;
    return xml.substr(begin, xml.find('"', begin) - begin);
}
} // namespace

TEST_F(ExecutableTest, TheManifestNamesEveryInterfaceAndNoRightsBeyondTheCallers)
{
    const std::string manifest = Resource(MAKEINTRESOURCEW(24), 1); // RT_MANIFEST
    ASSERT_FALSE(manifest.empty());
    // The interfaces of the published contract.
    std::set<std::string> missing = {
        "INPersonalInformationService {E3B64E79-7E3F-4AE0-92D6-1C376986769C}",
        "INUserProperties {D86F6244-9DA4-45E7-A70C-F4B9D368107E}",
        "INAddressBook {F364CD01-1458-4DE6-AF22-BE25E018B7CB}",
        "INContactItem {A16EB35C-3146-4748-BBF4-B4AA58B0E308}",
        "INContactGroup {31D2A87D-F677-44E6-AB03-AB0C0C68A9DD}",
        "INCalendar {3460B834-1265-4D02-8042-125D5185F1D5}",
        "INAppointment {4CAE83A1-C680-41E1-AE0C-53BCCE330E54}",
        "INEnumerator {E9DEF49B-2D21-47DC-9744-4E0B58C6ED37}",
        "INEntityItem {77CFD2D5-F266-4BE3-BB62-0796BAFF6365}",
        "INContactCategory {D93C6E4F-7669-4054-BE10-6D0F76F24B61}",
        "INObjectFactory {809CC074-D516-4640-9A6C-AE1D699BF645}",
    };
    const std::string element = "<comInterfaceExternalProxyStub ";
    for (size_t at = manifest.find(element); at != std::string::npos;
         at = manifest.find(element, at + 1))
    {
        EXPECT_EQ(
            1u,
            missing.erase(Attribute(manifest, at, "name") + ' ' + Attribute(manifest, at, "iid")));
        EXPECT_EQ("{00020424-0000-0000-C000-000000000046}",
                  Attribute(manifest, at, "proxyStubClsid32"));
        EXPECT_EQ("{814F6F5C-D022-414A-B904-9AAF66150348}", Attribute(manifest, at, "tlbid"));
    }
    EXPECT_THAT(missing, testing::IsEmpty());
    EXPECT_EQ("asInvoker",
              Attribute(manifest, manifest.find("<requestedExecutionLevel "), "level"));
    // A code page of its own would change the texts in binary blobs.
    EXPECT_EQ(std::string::npos, manifest.find("activeCodePage"));
}

TEST_F(ExecutableTest, TheManifestIsOneTheSystemAccepts)
{
    ACTCTXW context{};
    context.cbSize = sizeof(context);
    const std::wstring path = ServerPath();
    context.lpSource = path.c_str();
    context.lpResourceName = MAKEINTRESOURCEW(1);
    context.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
    const HANDLE handle = CreateActCtxW(&context);
    ASSERT_NE(INVALID_HANDLE_VALUE, handle);

    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(handle, &cookie));
    ACTCTX_SECTION_KEYED_DATA data{};
    data.cbSize = sizeof(data);
    EXPECT_TRUE(FindActCtxSectionGuid(0,
                                      nullptr,
                                      ACTIVATION_CONTEXT_SECTION_COM_INTERFACE_REDIRECTION,
                                      &IID_INAppointment,
                                      &data));
    EXPECT_TRUE(DeactivateActCtx(0, cookie));
    ReleaseActCtx(handle);
}

TEST_F(ExecutableTest, CarriesTwelveScriptsAndItsName)
{
    for (WORD number = 101; number <= 112; ++number)
        EXPECT_FALSE(Resource(L"REGISTRY", number).empty()) << number;
    EXPECT_TRUE(Resource(L"REGISTRY", 100).empty());
    EXPECT_TRUE(Resource(L"REGISTRY", 113).empty());
    // Carried, but in no object map.
    EXPECT_THAT(Resource(L"REGISTRY", 111),
                testing::AllOf(testing::HasSubstr("NObjectFactory32"),
                               testing::HasSubstr("{D9BC912B-B0E5-4C9D-BB10-BA0FFED765CD}")));
    wchar_t name[64] = {};
    EXPECT_EQ(14, LoadStringW(m_module.Get(), 100, name, 64));
    EXPECT_STREQ(L"PimStoreBridge", name);
}

TEST_F(ExecutableTest, CarriesItsVersion)
{
    std::istringstream expected(PIM_VERSION);
    int numbers[3] = {};
    char dot = 0;
    expected >> numbers[0] >> dot >> numbers[1] >> dot >> numbers[2];
    const std::string raw = Resource(MAKEINTRESOURCEW(16), 1);
    // VS_FIXEDFILEINFO starts with its signature.
    const size_t at = raw.find(std::string("\xbd\x04\xef\xfe", 4));
    ASSERT_NE(std::string::npos, at);
    VS_FIXEDFILEINFO fixed{};
    std::memcpy(&fixed, raw.data() + at, sizeof(fixed));
    EXPECT_EQ(numbers[0], HIWORD(fixed.dwFileVersionMS));
    EXPECT_EQ(numbers[1], LOWORD(fixed.dwFileVersionMS));
    EXPECT_EQ(numbers[2], HIWORD(fixed.dwFileVersionLS));
}

TEST_F(ExecutableTest, IsSmallWindowlessAndNeedsSystemLibrariesOnly)
{
    EXPECT_LT(std::filesystem::file_size(ServerPath()), 4u * 1024 * 1024);

    std::ifstream file(ServerPath().c_str(), std::ios::binary);
    const std::string image((std::istreambuf_iterator<char>(file)), {});
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image.data());
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(image.data() + dos->e_lfanew);
    EXPECT_EQ(IMAGE_FILE_MACHINE_AMD64, nt->FileHeader.Machine);
    EXPECT_EQ(IMAGE_SUBSYSTEM_WINDOWS_GUI, nt->OptionalHeader.Subsystem);
    // Address layout at random also beyond 4 GiB, and no code in data.
    EXPECT_EQ(0x160, nt->OptionalHeader.DllCharacteristics & 0x160);

    const auto& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* sections = IMAGE_FIRST_SECTION(nt);
    const auto at = [&](DWORD address) -> const char* {
        for (WORD i = 0; i < nt->FileHeader.NumberOfSections; ++i)
            if (address >= sections[i].VirtualAddress &&
                address - sections[i].VirtualAddress < sections[i].SizeOfRawData)
                return image.data() + sections[i].PointerToRawData +
                       (address - sections[i].VirtualAddress);
        return nullptr;
    };
    const std::set<std::string> system = {"ADVAPI32.dll",
                                          "KERNEL32.dll",
                                          "OLEAUT32.dll",
                                          "SHELL32.dll",
                                          "SHLWAPI.dll",
                                          "USER32.dll",
                                          "VERSION.dll",
                                          "msvcrt.dll",
                                          "ole32.dll"};
    int count = 0;
    for (auto* import =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(at(imports.VirtualAddress));
         import->Name;
         ++import, ++count)
        EXPECT_TRUE(system.contains(at(import->Name))) << at(import->Name);
    EXPECT_GT(count, 3);
}
