// The object map against the list of classes that the server serves.
#include "automation/ObjectMap.h"
#include "automation/RegistrationScripts.h"

#include "support/ComAssert.h"

#include <gtest/gtest.h>

#include "PimStoreBridge.h"

TEST(ObjectMapTest, ServesTenClassesInOrderWithTheirScripts)
{
    const struct
    {
        const wchar_t* clsid;
        WORD script;
    } expected[] = {
        {L"{9A6E5D54-5D41-4786-A05C-F131F1650024}", 103}, // NAddressBook
        {L"{41948936-1A00-4634-BFAB-2413A2E278F5}", 107}, // NAppointment
        {L"{08D909D0-A234-4B4D-BB81-8670B71136AD}", 104}, // NCalendar
        {L"{C7AFAC25-5922-42B0-B945-F2F3DC2F5D45}", 109}, // NContactCategory
        {L"{B13373CD-6AC8-476B-A47B-DBBFBE2A06B1}", 106}, // NContactGroup
        {L"{A826684F-AC63-4107-ABF4-CE8A643FED86}", 105}, // NContactItem
        {L"{8CC4BA51-8792-4029-A7AE-1A9C205C8A74}", 110}, // NEnumerator
        {L"{DCE159F5-F435-4BF3-A418-9E3FFEE444CB}", 112}, // NObjectFactory64
        {L"{412CD822-6DF9-4BF2-A642-CEDFAE8FF4B6}", 102}, // NPersonalInformationService
        {L"{8D9DF242-16AB-4362-A153-13BCB8A28262}", 108}, // NUserProperties
    };
    const auto map = GetObjectMap();
    ASSERT_EQ(std::size(expected), map.size());
    for (size_t i = 0; i < map.size(); ++i)
    {
        CLSID clsid;
        ASSERT_EQ(S_OK, CLSIDFromString(expected[i].clsid, &clsid));
        EXPECT_TRUE(IsEqualGUID(clsid, *map[i].clsid)) << i;
        EXPECT_EQ(expected[i].script, map[i].script) << i;
    }
}

TEST(ObjectMapTest, TheListOfScriptsIsThatOfTheMap)
{
    std::vector<WORD> scripts;
    for (const ObjectMapEntry& row : GetObjectMap())
        scripts.push_back(row.script);
    EXPECT_EQ(scripts, std::vector<WORD>(std::begin(kClassScripts), std::end(kClassScripts)));
}

TEST(ObjectMapTest, EveryCreatorClearsItsOutputAndRefusesNull)
{
    for (const ObjectMapEntry& row : GetObjectMap())
    {
        EXPECT_EQ(E_POINTER, row.create(nullptr, IID_IUnknown, nullptr)) << row.script;
        void* result = &result;
        // No object has this interface, whether or not the class can make one now.
        EXPECT_TRUE(FAILED(row.create(nullptr, IID_IStorage, &result))) << row.script;
        EXPECT_EQ(nullptr, result) << row.script;
    }
}

TEST(ObjectMapTest, TheFactoryOfTheOtherProcessorWidthIsNotServed)
{
    void* result = nullptr;
    EXPECT_EQ(
        REGDB_E_CLASSNOTREG,
        CoCreateInstance(CLSID_NObjectFactory32, nullptr, kServerContext, IID_IUnknown, &result));
}
