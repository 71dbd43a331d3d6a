#include "automation/RecordArray.h"

#include "platform/Bstr.h"
#include "support/RegistrySandbox.h"
#include "support/TypeLibraryRegistration.h"

#include <gtest/gtest.h>

using Microsoft::WRL::ComPtr;

namespace
{
// The library is registered for this process alone.
class RecordArrayTest : public testing::Test
{
  protected:
    void SetUp() override { ASSERT_EQ(S_OK, registration.Result()); }

    RegistrySandbox classes{HKEY_CLASSES_ROOT};
    TypeLibraryRegistration registration;
};

GUID RecordOf(SAFEARRAY* array)
{
    ComPtr<IRecordInfo> description;
    GUID guid = GUID_NULL;
    if (SUCCEEDED(SafeArrayGetRecordInfo(array, description.GetAddressOf())))
        description->GetGuid(&guid);
    return guid;
}

ULONG LengthOf(SAFEARRAY* array)
{
    return array->rgsabound[0].cElements;
}
} // namespace

TEST_F(RecordArrayTest, BuildsTheElementTypeFromTheRegisteredLibrary)
{
    const UniqueSafeArray folders = CreateRecordArray(kFolderInfoRecord, 3, 0x409);
    ASSERT_TRUE(folders);
    EXPECT_EQ(3u, LengthOf(folders.Get()));
    EXPECT_EQ(0, folders.Get()->rgsabound[0].lLbound);
    EXPECT_TRUE(IsEqualGUID(kFolderInfoRecord, RecordOf(folders.Get())));
    EXPECT_EQ(sizeof(_tagFolderInfo), SafeArrayGetElemsize(folders.Get()));

    const UniqueSafeArray contacts = CreateRecordArray(kBasicContactInfoRecord, 1, 0x409);
    ASSERT_TRUE(contacts);
    EXPECT_TRUE(IsEqualGUID(kBasicContactInfoRecord, RecordOf(contacts.Get())));
    EXPECT_EQ(sizeof(_tagBasicContactInfo), SafeArrayGetElemsize(contacts.Get()));
}

// German, Chinese and a language without a country: the library is registered in English only.
TEST_F(RecordArrayTest, FindsTheLibraryUnderAnotherLocale)
{
    for (const LCID locale : {0x407u, 0x804u, 0x0Cu})
        EXPECT_TRUE(CreateRecordArray(kFolderInfoRecord, 1, locale)) << locale;
}

TEST_F(RecordArrayTest, AnArrayMayBeEmpty)
{
    const UniqueSafeArray array = CreateRecordArray(kFolderInfoRecord, 0, 0x409);
    ASSERT_TRUE(array);
    EXPECT_EQ(0u, LengthOf(array.Get()));
}

TEST_F(RecordArrayTest, AnUnknownRecordGivesNothing)
{
    // The appointment class is in the library, but no record.
    EXPECT_FALSE(CreateRecordArray(CLSID_NAppointment, 1, 0x409));
    EXPECT_FALSE(CreateRecordArray(GUID_NULL, 1, 0x409));
}

TEST_F(RecordArrayTest, MakesOneRecordPerItemInOrder)
{
    const std::vector<int> items = {5, 6, 7};
    const UniqueSafeArray array = MakeRecordArray<_tagFolderInfo>(
        kFolderInfoRecord, items, [](_tagFolderInfo& record, int item) {
            EXPECT_EQ(nullptr, record.bstrEntryID);
            EXPECT_EQ(0, record.lItemCount);
            record.lItemCount = item;
        });
    const SafeArrayAccess<_tagFolderInfo> records(array.Get());
    ASSERT_TRUE(records);
    EXPECT_EQ(5, records.Data()[0].lItemCount);
    EXPECT_EQ(6, records.Data()[1].lItemCount);
    EXPECT_EQ(7, records.Data()[2].lItemCount);
}

TEST(RecordArrayWithoutLibraryTest, GivesNothing)
{
    const RegistrySandbox classes(HKEY_CLASSES_ROOT);
    EXPECT_FALSE(CreateRecordArray(kFolderInfoRecord, 1, 0x409));
}
