// Tables and folders of the embedded store, beyond what every store has to keep to.
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

#include <climits>
#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class StoreTableTest : public StoreTest
{
  protected:
    ComPtr<IMAPITable> Contents(ULONG flags = MAPI_UNICODE)
    {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK, Contacts()->GetContentsTable(flags, table.GetAddressOf()));
        return table;
    }
    // Subjects of the next rows.
    std::vector<std::wstring> Next(IMAPITable* table, LONG count, ULONG flags = 0)
    {
        LPSRowSet rows = nullptr;
        std::vector<std::wstring> texts;
        EXPECT_EQ(S_OK, table->QueryRows(count, flags, &rows));
        for (ULONG i = 0; rows && i < rows->cRows; ++i)
            texts.push_back(rows->aRow[i].lpProps[0].Value.lpszW);
        m_library.FreeProws(rows);
        return texts;
    }
    void Delete(const EntryBytes& id)
    {
        SBinary entry{static_cast<ULONG>(id.size()), const_cast<BYTE*>(id.data())};
        SBinaryArray list{1, &entry};
        EXPECT_EQ(S_OK, Contacts()->DeleteMessages(&list, 0, nullptr, 0));
    }
    void AddWith(const wchar_t* subject, SPropValue value)
    {
        ComPtr<IMessage> message;
        ASSERT_EQ(S_OK, Contacts()->CreateMessage(nullptr, 0, message.GetAddressOf()));
        SPropValue values[] = {TextValue(PR_SUBJECT_W, subject), value};
        ASSERT_EQ(S_OK, message->SetProps(2, values, nullptr));
        ASSERT_EQ(S_OK, message->SaveChanges(0));
    }
    static LPTSTR Name(const wchar_t* text)
    {
        return reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(text));
    }
};

} // namespace

TEST_F(StoreTableTest, ATableStaysAsItWasButForRowsThatAreGone)
{
    const auto folder = Contacts();
    const EntryBytes first = AddMessage(folder.Get(), L"IPM.Contact", L"1");
    AddMessage(folder.Get(), L"IPM.Contact", L"2");
    const auto table = Contents();
    Tags columns{PR_SUBJECT_W};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    AddMessage(folder.Get(), L"IPM.Contact", L"3");
    Delete(first);
    ULONG count = 0;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(2u, count);
    EXPECT_THAT(Next(table.Get(), 1), ElementsAre(L"2"))
        << "an empty set would say that the table has ended";
    EXPECT_THAT(Next(table.Get(), 5), IsEmpty());
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"2", L"3"));
}

TEST_F(StoreTableTest, ATableOfADeletedFolderHasNoRowsLeft)
{
    ComPtr<IMAPIFolder> folder;
    ASSERT_EQ(S_OK, MakeSubfolder(Contacts().Get(), L"Sub", folder));
    AddMessage(folder.Get(), L"IPM.Contact", L"1");
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, folder->GetContentsTable(0, table.GetAddressOf()));
    ASSERT_EQ(S_OK,
              DeleteSubfolder(Contacts().Get(), Binary(folder.Get(), PR_ENTRYID), DEL_MESSAGES));
    EXPECT_THAT(Next(table.Get(), 5), IsEmpty());
}

TEST_F(StoreTableTest, RowsOfOtherFoldersBetweenDoNotShow)
{
    const auto calendar = OpenFolder(Binary(RootFolder().Get(), kCalendarFolder));
    for (const wchar_t* subject : {L"1", L"2", L"3"})
    {
        AddMessage(Contacts().Get(), L"IPM.Contact", subject);
        AddMessage(calendar.Get(), L"IPM.Appointment", L"other");
        AddMessage(Contacts().Get(), L"IPM.Contact", L"hidden", MAPI_ASSOCIATED);
    }
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"1", L"2", L"3"));
    EXPECT_THAT(Column(Contents(MAPI_ASSOCIATED).Get(), PR_SUBJECT_W),
                ElementsAre(L"hidden", L"hidden", L"hidden"));
}

TEST_F(StoreTableTest, ReadsBackwardsFromWhereItStands)
{
    for (const wchar_t* subject : {L"1", L"2", L"3", L"4"})
        AddMessage(Contacts().Get(), L"IPM.Contact", subject);
    const auto table = Contents();
    Tags columns{PR_SUBJECT_W};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    ASSERT_EQ(S_OK, table->SeekRow(BOOKMARK_END, 0, nullptr));
    EXPECT_THAT(Next(table.Get(), -2), ElementsAre(L"3", L"4"));
    EXPECT_THAT(Next(table.Get(), LONG_MIN), ElementsAre(L"1", L"2"));
    EXPECT_THAT(Next(table.Get(), -1), IsEmpty());
    EXPECT_THAT(Next(table.Get(), LONG_MAX, TBL_NOADVANCE), ElementsAre(L"1", L"2", L"3", L"4"));
    ULONG row = 9;
    ULONG numerator = 9;
    ULONG denominator = 9;
    ASSERT_EQ(S_OK, table->SeekRowApprox(1, 2));
    ASSERT_EQ(S_OK, table->QueryPosition(&row, &numerator, &denominator));
    EXPECT_EQ(2u, row);
    EXPECT_EQ(4u, denominator);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->SeekRowApprox(1, 0));
    EXPECT_EQ(MAPI_E_INVALID_BOOKMARK, table->SeekRow(77, 0, nullptr));
}

TEST_F(StoreTableTest, FindsRowsForwardsAndBackwards)
{
    for (const wchar_t* subject : {L"a1", L"b1", L"a2", L"b2"})
        AddMessage(Contacts().Get(), L"IPM.Contact", subject);
    const auto table = Contents();
    Tags columns{PR_SUBJECT_W};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    SPropValue value = TextValue(PR_SUBJECT_W, L"A");
    SRestriction restriction{};
    restriction.rt = RES_CONTENT;
    restriction.res.resContent = {FL_PREFIX | FL_IGNORECASE, PR_SUBJECT_W, &value};
    ASSERT_EQ(S_OK, table->FindRow(&restriction, BOOKMARK_BEGINNING, 0));
    EXPECT_THAT(Next(table.Get(), 1), ElementsAre(L"a1"));
    ASSERT_EQ(S_OK, table->FindRow(&restriction, BOOKMARK_CURRENT, 0));
    EXPECT_THAT(Next(table.Get(), 1), ElementsAre(L"a2"));
    EXPECT_EQ(MAPI_E_NOT_FOUND, table->FindRow(&restriction, BOOKMARK_CURRENT, 0));
    ASSERT_EQ(S_OK, table->FindRow(&restriction, BOOKMARK_END, DIR_BACKWARD));
    EXPECT_THAT(Next(table.Get(), 1), ElementsAre(L"a2"));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->FindRow(nullptr, BOOKMARK_BEGINNING, 0));
}

TEST_F(StoreTableTest, SortingAndRestrictingGoTogether)
{
    for (const wchar_t* subject : {L"b1", L"x", L"a1", L"B2", L"a2"})
        AddMessage(Contacts().Get(), L"IPM.Contact", subject);
    const auto table = Contents();
    SSortOrderSet order{1, 0, 0, {{PR_SUBJECT_W, TABLE_SORT_DESCEND}}};
    ASSERT_EQ(S_OK, table->SortTable(&order, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"x", L"B2", L"b1", L"a2", L"a1"));
    SPropValue value = TextValue(PR_SUBJECT_W, L"x");
    SRestriction notX{};
    notX.rt = RES_PROPERTY;
    notX.res.resProperty = {RELOP_NE, PR_SUBJECT_W, &value};
    ASSERT_EQ(S_OK, table->Restrict(&notX, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"B2", L"b1", L"a2", L"a1"));
    LPSSortOrderSet kept = nullptr;
    ASSERT_EQ(S_OK, table->QuerySortOrder(&kept));
    ASSERT_EQ(1u, kept->cSorts);
    EXPECT_EQ(PR_SUBJECT_W, kept->aSort[0].ulPropTag);
    m_library.FreeBuffer(kept);
    // Without an order the rows come as they were made.
    SSortOrderSet none{0, 0, 0, {{0, 0}}};
    ASSERT_EQ(S_OK, table->SortTable(&none, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"b1", L"a1", L"B2", L"a2"));
    ASSERT_EQ(S_OK, table->Restrict(nullptr, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"b1", L"x", L"a1", L"B2", L"a2"));

    SSortOrderSet categories{1, 1, 0, {{PR_SUBJECT_W, TABLE_SORT_ASCEND}}};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->SortTable(&categories, 0));
    SSortOrderSet huge{0xFFFFFFFF, 0, 0, {{PR_SUBJECT_W, TABLE_SORT_ASCEND}}};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->SortTable(&huge, 0));
    SSortOrderSet unknown{1, 0, 0, {{PR_SUBJECT_W, 9}}};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->SortTable(&unknown, 0));
}

TEST_F(StoreTableTest, RestrictsByBitsSizesAndOtherColumns)
{
    for (const wchar_t* subject : {L"one", L"three"})
    {
        ComPtr<IMessage> message;
        ASSERT_EQ(S_OK, Contacts()->CreateMessage(nullptr, 0, message.GetAddressOf()));
        SPropValue values[] = {TextValue(PR_SUBJECT_W, subject),
                               TextValue(PR_DISPLAY_NAME_W, L"one"),
                               LongValue(PR_IMPORTANCE, subject[0] == L'o' ? 5 : 2)};
        ASSERT_EQ(S_OK, message->SetProps(3, values, nullptr));
        ASSERT_EQ(S_OK, message->SaveChanges(0));
    }
    const auto table = Contents();
    const auto shown = [&](const SRestriction& restriction) {
        SRestriction copy = restriction;
        EXPECT_EQ(S_OK, table->Restrict(&copy, 0));
        return Column(table.Get(), PR_SUBJECT_W);
    };
    SRestriction restriction{};
    restriction.rt = RES_BITMASK;
    restriction.res.resBitMask = {BMR_NEZ, PR_IMPORTANCE, 4};
    EXPECT_THAT(shown(restriction), ElementsAre(L"one"));
    restriction.res.resBitMask.relBMR = BMR_EQZ;
    EXPECT_THAT(shown(restriction), ElementsAre(L"three"));
    restriction.rt = RES_SIZE;
    // "three" and its terminator take 12 bytes.
    restriction.res.resSize = {RELOP_GE, PR_SUBJECT_W, 12};
    EXPECT_THAT(shown(restriction), ElementsAre(L"three"));
    restriction.rt = RES_COMPAREPROPS;
    restriction.res.resCompareProps = {RELOP_EQ, PR_SUBJECT_W, PR_DISPLAY_NAME_W};
    EXPECT_THAT(shown(restriction), ElementsAre(L"one"));
    restriction.rt = RES_SUBRESTRICTION;
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(&restriction, 0));
    SPropValue value = TextValue(PR_SUBJECT_W, L"x");
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_RE, PR_SUBJECT_W, &value};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(&restriction, 0));
    SRestriction wide{};
    wide.rt = RES_AND;
    wide.res.resAnd = {0xFFFFFFFF, &restriction};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(&wide, 0));
}

TEST_F(StoreTableTest, ComparesNumbersInEveryWay)
{
    constexpr ULONG kNumber = PROP_TAG(PT_LONG, 0x6800);
    AddWith(L"-1", LongValue(kNumber, -1));
    AddWith(L"2", LongValue(kNumber, 2));
    AddWith(L"3", LongValue(kNumber, 3));
    AddMessage(Contacts().Get(), L"IPM.Contact", L"none");
    const auto table = Contents();
    SPropValue value = LongValue(kNumber, 2);
    const auto shown = [&](ULONG relation) {
        SRestriction restriction{};
        restriction.rt = RES_PROPERTY;
        restriction.res.resProperty = {relation, kNumber, &value};
        EXPECT_EQ(S_OK, table->Restrict(&restriction, 0));
        return Column(table.Get(), PR_SUBJECT_W);
    };
    EXPECT_THAT(shown(RELOP_LT), ElementsAre(L"-1"));
    EXPECT_THAT(shown(RELOP_LE), ElementsAre(L"-1", L"2"));
    EXPECT_THAT(shown(RELOP_GT), ElementsAre(L"3"));
    EXPECT_THAT(shown(RELOP_GE), ElementsAre(L"2", L"3"));
    EXPECT_THAT(shown(RELOP_EQ), ElementsAre(L"2"));
    EXPECT_THAT(shown(RELOP_NE), ElementsAre(L"-1", L"3"));
    // A value of another type is as one that is missing.
    value.ulPropTag = PROP_TAG(PT_I2, 0x6800);
    EXPECT_THAT(shown(RELOP_NE), IsEmpty());
}

TEST_F(StoreTableTest, FindsTextAsAWholeInPartsAndAtTheFront)
{
    for (const wchar_t* subject : {L"abc", L"Abcd", L"xabc", L"ab"})
        AddMessage(Contacts().Get(), L"IPM.Contact", subject);
    const auto table = Contents();
    SPropValue value = TextValue(PR_SUBJECT_W, L"abc");
    const auto shown = [&](ULONG fuzzy) {
        SRestriction restriction{};
        restriction.rt = RES_CONTENT;
        restriction.res.resContent = {fuzzy, PR_SUBJECT_W, &value};
        EXPECT_EQ(S_OK, table->Restrict(&restriction, 0));
        return Column(table.Get(), PR_SUBJECT_W);
    };
    EXPECT_THAT(shown(FL_FULLSTRING), ElementsAre(L"abc"));
    EXPECT_THAT(shown(FL_PREFIX), ElementsAre(L"abc"));
    EXPECT_THAT(shown(FL_PREFIX | FL_LOOSE), ElementsAre(L"abc", L"Abcd"));
    EXPECT_THAT(shown(FL_SUBSTRING), ElementsAre(L"abc", L"xabc"));
    EXPECT_THAT(shown(FL_SUBSTRING | FL_IGNORECASE), ElementsAre(L"abc", L"Abcd", L"xabc"));
    value = TextValue(PR_SUBJECT_W, L"");
    EXPECT_THAT(shown(FL_SUBSTRING), ElementsAre(L"abc", L"Abcd", L"xabc", L"ab"));
    EXPECT_THAT(shown(FL_FULLSTRING), IsEmpty());
}

TEST_F(StoreTableTest, RestrictionsHaveALimitInDepthAndNumber)
{
    AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto table = Contents();
    const auto nested = [](size_t levels) {
        std::vector<SRestriction> chain(levels);
        for (size_t i = 0; i + 1 < levels; ++i)
        {
            chain[i].rt = RES_NOT;
            chain[i].res.resNot = {0, &chain[i + 1]};
        }
        chain.back().rt = RES_EXIST;
        chain.back().res.resExist = {0, PR_SUBJECT_W, 0};
        return chain;
    };
    auto deepest = nested(64);
    EXPECT_EQ(S_OK, table->Restrict(deepest.data(), 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), IsEmpty()) << "63 times not";
    auto tooDeep = nested(65);
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(tooDeep.data(), 0));

    std::vector<SRestriction> parts(9999, deepest.back());
    SRestriction all{};
    all.rt = RES_AND;
    all.res.resAnd = {9999, parts.data()};
    EXPECT_EQ(S_OK, table->Restrict(&all, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"one"));
    parts.push_back(parts.front());
    all.res.resAnd = {10000, parts.data()};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(&all, 0));
    // A count that the nodes before it leave no room for is refused before its list is read.
    SRestriction halves[2] = {all, {}};
    halves[0].res.resAnd.cRes = 9000;
    halves[1].rt = RES_OR;
    halves[1].res.resOr = {1000, parts.data()};
    SRestriction both{};
    both.rt = RES_AND;
    both.res.resAnd = {2, halves};
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, table->Restrict(&both, 0));
    halves[1].res.resOr.cRes = 997;
    EXPECT_EQ(S_OK, table->Restrict(&both, 0));
}

TEST_F(StoreTableTest, WhatIsNoNumberSortsBetweenMissingValuesAndNumbers)
{
    constexpr ULONG kNumber = PROP_TAG(PT_DOUBLE, 0x6800);
    const auto number = [](double value) {
        SPropValue result{};
        result.ulPropTag = kNumber;
        result.Value.dbl = value;
        return result;
    };
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    AddWith(L"2", number(2.0));
    AddWith(L"nan", number(kNoNumber));
    AddWith(L"-1", number(-1.0));
    AddWith(L"nan again", number(kNoNumber));
    AddMessage(Contacts().Get(), L"IPM.Contact", L"none");
    AddWith(L"0", number(0.0));
    const auto table = Contents();
    SSortOrderSet order{1, 0, 0, {{kNumber, TABLE_SORT_ASCEND}}};
    ASSERT_EQ(S_OK, table->SortTable(&order, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W),
                ElementsAre(L"none", L"nan", L"nan again", L"-1", L"0", L"2"));
    order.aSort[0].ulOrder = TABLE_SORT_DESCEND;
    ASSERT_EQ(S_OK, table->SortTable(&order, 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W),
                ElementsAre(L"2", L"0", L"-1", L"nan", L"nan again", L"none"));
}

TEST_F(StoreTableTest, ColumnsOfTheStoreItself)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto table = Contents();
    Tags columns{PR_ENTRYID,
                 PR_INSTANCE_KEY,
                 PR_PARENT_ENTRYID,
                 PR_STORE_ENTRYID,
                 PR_OBJECT_TYPE,
                 PR_HASATTACH,
                 PR_LAST_MODIFICATION_TIME};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, table->QueryRows(1, 0, &rows));
    ASSERT_EQ(1u, rows->cRows);
    const SPropValue* values = rows->aRow[0].lpProps;
    const auto bytes = [&](int column) {
        const SBinary& binary = values[column].Value.bin;
        return EntryBytes(binary.lpb, binary.lpb + binary.cb);
    };
    EXPECT_EQ(id, bytes(0));
    EXPECT_EQ(id, bytes(1));
    EXPECT_EQ(Binary(Contacts().Get(), PR_ENTRYID), bytes(2));
    EXPECT_EQ(Binary(m_store.Get(), PR_ENTRYID), bytes(3));
    EXPECT_EQ(MAPI_MESSAGE, values[4].Value.l);
    EXPECT_EQ(0, values[5].Value.b);
    EXPECT_EQ(Time(OpenMessage(id).Get(), PR_LAST_MODIFICATION_TIME), values[6].Value.li.QuadPart);
    m_library.FreeProws(rows);
}

TEST_F(StoreTableTest, AsManyColumnsAsThereAreIds)
{
    AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto table = Contents();
    std::vector<ULONG> all;
    for (ULONG id = 1; id < 0xFFFF; ++id)
        all.push_back(PROP_TAG(PT_UNICODE, id));
    Tags columns(all);
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, table->QueryRows(1, 0, &rows));
    ASSERT_EQ(1u, rows->cRows);
    EXPECT_EQ(0xFFFEu, rows->aRow[0].cValues);
    EXPECT_STREQ(L"one", rows->aRow[0].lpProps[PROP_ID(PR_SUBJECT_W) - 1].Value.lpszW);
    m_library.FreeProws(rows);
    ULONG tooMany[] = {0xFFFFFFFF, PR_SUBJECT_W};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER,
              table->SetColumns(reinterpret_cast<LPSPropTagArray>(tooMany), 0));
}

TEST_F(StoreTableTest, MakesAndDeletesFolders)
{
    const auto root = RootFolder();
    ComPtr<IMAPIFolder> folder;
    ASSERT_EQ(S_OK,
              root->CreateFolder(FOLDER_GENERIC,
                                 Name(L"Projects"),
                                 Name(L"about"),
                                 nullptr,
                                 MAPI_UNICODE,
                                 folder.GetAddressOf()));
    EXPECT_EQ(L"Projects", Text(folder.Get(), PR_DISPLAY_NAME_W));
    EXPECT_EQ(L"about", Text(folder.Get(), PR_COMMENT_W));
    EXPECT_EQ(24u, Binary(folder.Get(), PR_ENTRYID).size());
    ComPtr<IMAPIFolder> again;
    EXPECT_EQ(MAPI_E_COLLISION,
              root->CreateFolder(FOLDER_GENERIC,
                                 Name(L"PROJECTS"),
                                 nullptr,
                                 nullptr,
                                 MAPI_UNICODE,
                                 again.GetAddressOf()));
    ASSERT_EQ(S_OK,
              root->CreateFolder(FOLDER_GENERIC,
                                 Name(L"PROJECTS"),
                                 nullptr,
                                 nullptr,
                                 MAPI_UNICODE | OPEN_IF_EXISTS,
                                 again.GetAddressOf()));
    EXPECT_EQ(Binary(folder.Get(), PR_ENTRYID), Binary(again.Get(), PR_ENTRYID));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              root->CreateFolder(
                  FOLDER_SEARCH, Name(L"x"), nullptr, nullptr, MAPI_UNICODE, again.GetAddressOf()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER,
              root->CreateFolder(
                  FOLDER_GENERIC, nullptr, nullptr, nullptr, MAPI_UNICODE, again.GetAddressOf()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER,
              root->CreateFolder(
                  FOLDER_GENERIC, Name(L""), nullptr, nullptr, MAPI_UNICODE, again.GetAddressOf()));

    const EntryBytes message = AddMessage(folder.Get(), L"IPM.Note", L"one");
    const EntryBytes id = Binary(folder.Get(), PR_ENTRYID);
    EXPECT_EQ(MAPI_E_HAS_MESSAGES, DeleteSubfolder(root.Get(), id, 0));
    EXPECT_EQ(S_OK, DeleteSubfolder(root.Get(), id, DEL_MESSAGES));
    EXPECT_EQ(MAPI_E_NOT_FOUND, DeleteSubfolder(root.Get(), id, DEL_MESSAGES));
    ComPtr<IUnknown> gone;
    EXPECT_EQ(MAPI_E_NOT_FOUND, Open(m_store.Get(), message, 0, gone.GetAddressOf()));
}

TEST_F(StoreTableTest, FoldersStandInAHundredLevelsAndAreDeletedTogether)
{
    // The root is the first level.
    const auto root = RootFolder();
    ComPtr<IMAPIFolder> folder = root;
    EntryBytes uppermost;
    for (int level = 2; level <= 100; ++level)
    {
        ComPtr<IMAPIFolder> made;
        ASSERT_EQ(S_OK, MakeSubfolder(folder.Get(), L"Deeper", made)) << level;
        if (level == 2)
            uppermost = Binary(made.Get(), PR_ENTRYID);
        folder = made;
    }
    ComPtr<IMAPIFolder> tooDeep;
    EXPECT_EQ(MAPI_E_TOO_COMPLEX, MakeSubfolder(folder.Get(), L"Deeper", tooDeep));
    EXPECT_EQ(nullptr, tooDeep.Get());

    const EntryBytes message = AddMessage(folder.Get(), L"IPM.Note", L"deep");
    EXPECT_EQ(S_OK, DeleteSubfolder(root.Get(), uppermost, DEL_FOLDERS | DEL_MESSAGES));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, ValueError(folder.Get(), PR_DISPLAY_NAME_W));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, MakeSubfolder(folder.Get(), L"Deeper", tooDeep));
    ComPtr<IUnknown> gone;
    EXPECT_EQ(MAPI_E_NOT_FOUND, Open(m_store.Get(), message, 0, gone.GetAddressOf()));
}

TEST_F(StoreTableTest, ChangesOfAFolderLastAtOnce)
{
    const auto folder = Contacts();
    const LONGLONG before = Time(folder.Get(), PR_LAST_MODIFICATION_TIME);
    SPropValue value = TextValue(PR_COMMENT_W, L"mine");
    ASSERT_EQ(S_OK, folder->SetProps(1, &value, nullptr));
    EXPECT_EQ(L"mine", Text(Contacts().Get(), PR_COMMENT_W));
    EXPECT_GT(Time(folder.Get(), PR_LAST_MODIFICATION_TIME), before);
    Tags tags{PR_COMMENT_W};
    ASSERT_EQ(S_OK, folder->DeleteProps(tags, nullptr));
    EXPECT_EQ(MAPI_E_NOT_FOUND, ValueError(folder.Get(), PR_COMMENT_W));
    value = LongValue(PR_CONTENT_COUNT, 7);
    SPropProblemArray* problems = nullptr;
    ASSERT_EQ(S_OK, folder->SetProps(1, &value, &problems));
    ASSERT_NE(nullptr, problems);
    EXPECT_EQ(MAPI_E_COMPUTED, problems->aProblem[0].scode);
    m_library.FreeBuffer(problems);
}

TEST_F(StoreTableTest, WhatTheStoreDoesNotOfferSaysSo)
{
    const auto folder = Contacts();
    const auto message = OpenMessage(AddMessage(folder.Get(), L"IPM.Contact", L"one"));
    const auto table = Contents();
    ComPtr<IMAPITable> other;
    ULONG number = 7;
    EXPECT_EQ(MAPI_E_NO_SUPPORT, message->GetRecipientTable(0, other.GetAddressOf()));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, message->ModifyRecipients(0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, message->SubmitMessage(0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, message->SetReadFlag(0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              message->CopyTo(0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              message->CopyProps(nullptr, 0, nullptr, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, folder->CopyMessages(nullptr, nullptr, nullptr, 0, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, folder->EmptyFolder(0, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, folder->SetSearchCriteria(nullptr, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, folder->GetMessageStatus(0, nullptr, 0, &number));
    EXPECT_EQ(0u, number);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, folder->GetHierarchyTable(CONVENIENT_DEPTH, other.GetAddressOf()));
    number = 7;
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->Advise(0, nullptr, &number));
    EXPECT_EQ(0u, number);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->CreateBookmark(nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->ExpandRow(0, nullptr, 0, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_store->SetReceiveFolder(nullptr, 0, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_store->GetReceiveFolderTable(0, other.GetAddressOf()));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_store->Advise(0, nullptr, 0, nullptr, nullptr));
    ComPtr<IAddrBook> book;
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_session->OpenAddressBook(0, nullptr, 0, book.GetAddressOf()));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_session->SetDefaultStore(0, 0, nullptr));
    EXPECT_FALSE(other);
}

TEST_F(StoreTableTest, UnknownFlagsAreRefused)
{
    const auto folder = Contacts();
    ComPtr<IMAPITable> table;
    ComPtr<IMessage> message;
    ComPtr<IUnknown> object;
    constexpr ULONG kUnknown = 0x00800000;
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, folder->GetContentsTable(kUnknown, table.GetAddressOf()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, folder->GetHierarchyTable(kUnknown, table.GetAddressOf()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS,
              folder->CreateMessage(nullptr, kUnknown, message.GetAddressOf()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, Open(m_store.Get(), {}, kUnknown, object.GetAddressOf()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, m_store->SaveChanges(kUnknown));
    SBinaryArray list{};
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, folder->DeleteMessages(&list, 0, nullptr, kUnknown));
    EXPECT_EQ(MAPI_E_INTERFACE_NOT_SUPPORTED,
              folder->CreateMessage(&IID_IMAPIFolder, 0, message.GetAddressOf()));
    const EntryBytes id = Binary(folder.Get(), PR_ENTRYID);
    EXPECT_EQ(MAPI_E_INTERFACE_NOT_SUPPORTED,
              m_store->OpenEntry(static_cast<ULONG>(id.size()),
                                 reinterpret_cast<LPENTRYID>(const_cast<BYTE*>(id.data())),
                                 &IID_IMessage,
                                 0,
                                 nullptr,
                                 object.GetAddressOf()));
    EXPECT_FALSE(object);
}
