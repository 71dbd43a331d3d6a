// Tables: columns, rows, position, restriction, order.
#include "tests/storeconformance/StoreConformanceTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{
constexpr ULONG kRank = PROP_TAG(PT_LONG, 0x6800);

SRestriction Compare(ULONG relation, SPropValue& value)
{
    SRestriction restriction = {};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {relation, value.ulPropTag, &value};
    return restriction;
}

SRestriction Contains(ULONG fuzzyLevel, SPropValue& value)
{
    SRestriction restriction = {};
    restriction.rt = RES_CONTENT;
    restriction.res.resContent = {fuzzyLevel, value.ulPropTag, &value};
    return restriction;
}

SRestriction Exists(ULONG tag)
{
    SRestriction restriction = {};
    restriction.rt = RES_EXIST;
    restriction.res.resExist.ulPropTag = tag;
    return restriction;
}

struct SortBy
{
    ULONG count = 0;
    ULONG categories = 0;
    ULONG expanded = 0;
    SSortOrder order[2] = {};

    SortBy(std::initializer_list<SSortOrder> orders)
    {
        for (const SSortOrder& one : orders)
            order[count++] = one;
    }
    SSortOrderSet* Get() { return reinterpret_cast<SSortOrderSet*>(this); }
};
} // namespace

TEST_P(ItemConformanceTest, RowsHoldTheColumnsInTheirOrder)
{
    const EntryIdBytes id = AddItem(L"one");
    const auto table = Contents();
    const Rows rows = AllRows(table.Get(), {PR_SUBJECT_W, PR_GIVEN_NAME_W, PR_ENTRYID});
    ASSERT_EQ(1u, rows->cRows);
    ASSERT_EQ(3u, rows->aRow[0].cValues);
    const SPropValue* const values = rows->aRow[0].lpProps;
    ASSERT_EQ(PR_SUBJECT_W, values[0].ulPropTag);
    EXPECT_STREQ(L"one", values[0].Value.lpszW);
    // No value keeps its place, and makes no warning.
    EXPECT_EQ(CHANGE_PROP_TYPE(PR_GIVEN_NAME_W, PT_ERROR), values[1].ulPropTag);
    EXPECT_EQ(MAPI_E_NOT_FOUND, values[1].Value.err);
    ASSERT_EQ(PR_ENTRYID, values[2].ulPropTag);
    const SBinary& row = values[2].Value.bin;
    EXPECT_EQ(id, EntryIdBytes(row.lpb, row.lpb + row.cb));
}

TEST_P(ItemConformanceTest, ColumnsOfNarrowTextGiveNarrowText)
{
    AddItem(L"one");
    const Rows rows = AllRows(Contents(0).Get(), {PR_SUBJECT_A});
    ASSERT_EQ(1u, rows->cRows);
    ASSERT_EQ(PR_SUBJECT_A, rows->aRow[0].lpProps[0].ulPropTag);
    EXPECT_STREQ("one", rows->aRow[0].lpProps[0].Value.lpszA);
}

TEST_P(ItemConformanceTest, ReadsOnFromWhereItStands)
{
    for (const wchar_t* const subject : {L"one", L"two", L"three"})
        AddItem(subject);
    const auto table = Contents();
    ASSERT_EQ(S_OK, table->SetColumns(Tags({PR_SUBJECT_W}).Get(), 0));
    SortBy sort{{PR_SUBJECT_W, TABLE_SORT_ASCEND}};
    ASSERT_EQ(S_OK, table->SortTable(sort.Get(), 0));
    const auto query = [&](LONG count, ULONG flags = 0) {
        LPSRowSet set = nullptr;
        EXPECT_EQ(S_OK, table->QueryRows(count, flags, &set));
        const Rows rows = Own(set);
        std::vector<std::wstring> texts;
        for (ULONG i = 0; rows && i < rows->cRows; ++i)
            texts.push_back(rows->aRow[i].lpProps[0].Value.lpszW);
        return texts;
    };
    ULONG count = 0;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(3u, count);
    EXPECT_THAT(query(2, TBL_NOADVANCE), ElementsAre(L"one", L"three"));
    EXPECT_THAT(query(2), ElementsAre(L"one", L"three"));
    EXPECT_THAT(query(2), ElementsAre(L"two"));
    // The end gives no rows, and no failure.
    EXPECT_THAT(query(2), IsEmpty());
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(3u, count);

    LONG sought = 9;
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_BEGINNING, 1, &sought));
    EXPECT_EQ(1, sought);
    EXPECT_THAT(query(1), ElementsAre(L"three"));
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_CURRENT, -5, &sought));
    EXPECT_EQ(-2, sought);
    EXPECT_THAT(query(1), ElementsAre(L"one"));
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_END, -1, &sought));
    EXPECT_THAT(query(5), ElementsAre(L"two"));
}

TEST_P(ItemConformanceTest, AFolderWithoutMessagesGivesATableWithoutRows)
{
    const auto table = Contents();
    ULONG count = 9;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(0u, count);
    const Rows rows = AllRows(table.Get(), {PR_ENTRYID});
    ASSERT_TRUE(rows);
    EXPECT_EQ(0u, rows->cRows);
}

TEST_P(ItemConformanceTest, ShowsTheRowsThatARestrictionLetsThrough)
{
    LONG rank = 0;
    for (const wchar_t* const subject : {L"Ann", L"anne", L"Bert"})
    {
        const auto message = NewItem(subject, false);
        Set(message.Get(), {LongProp(kRank, ++rank)});
        if (rank == 3)
            Set(message.Get(), {TextProp(PR_GIVEN_NAME_W, L"B")});
        Save(message.Get());
    }
    const auto table = Contents();
    const auto shown = [&](SRestriction* restriction) {
        EXPECT_EQ(S_OK, table->Restrict(restriction, 0));
        ULONG count = 0;
        EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
        const std::vector<std::wstring> subjects = Column(table.Get(), PR_SUBJECT_W);
        EXPECT_EQ(subjects.size(), count);
        return subjects;
    };
    SPropValue ann = TextProp(PR_SUBJECT_W, L"ann");
    SPropValue exactAnn = TextProp(PR_SUBJECT_W, L"Ann");
    SPropValue two = LongProp(kRank, 2);

    SRestriction prefix = Contains(FL_PREFIX | FL_IGNORECASE, ann);
    EXPECT_THAT(shown(&prefix), UnorderedElementsAre(L"Ann", L"anne"));
    SRestriction full = Contains(FL_FULLSTRING, exactAnn);
    EXPECT_THAT(shown(&full), UnorderedElementsAre(L"Ann"));
    SRestriction equal = Compare(RELOP_EQ, two);
    EXPECT_THAT(shown(&equal), UnorderedElementsAre(L"anne"));
    SRestriction greater = Compare(RELOP_GE, two);
    EXPECT_THAT(shown(&greater), UnorderedElementsAre(L"anne", L"Bert"));
    SRestriction exists = Exists(PR_GIVEN_NAME_W);
    EXPECT_THAT(shown(&exists), UnorderedElementsAre(L"Bert"));

    SRestriction parts[] = {prefix, greater};
    SRestriction both = {};
    both.rt = RES_AND;
    both.res.resAnd = {2, parts};
    EXPECT_THAT(shown(&both), UnorderedElementsAre(L"anne"));
    SRestriction either = {};
    either.rt = RES_OR;
    either.res.resOr = {2, parts};
    EXPECT_THAT(shown(&either), UnorderedElementsAre(L"Ann", L"anne", L"Bert"));
    SRestriction neither = {};
    neither.rt = RES_NOT;
    neither.res.resNot = {0, &prefix};
    EXPECT_THAT(shown(&neither), UnorderedElementsAre(L"Bert"));
    // None lets all through again.
    EXPECT_THAT(shown(nullptr), UnorderedElementsAre(L"Ann", L"anne", L"Bert"));
}

TEST_P(ItemConformanceTest, SortsByItsColumns)
{
    const struct
    {
        const wchar_t* subject;
        LONG rank;
    } rows[] = {{L"b", 1}, {L"a", 2}, {L"c", 1}};
    for (const auto& [subject, rank] : rows)
    {
        const auto message = NewItem(subject, false);
        Set(message.Get(), {LongProp(kRank, rank)});
        Save(message.Get());
    }
    const auto table = Contents();
    SortBy ascending{{PR_SUBJECT_W, TABLE_SORT_ASCEND}};
    EXPECT_EQ(S_OK, table->SortTable(ascending.Get(), 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"a", L"b", L"c"));
    SortBy descending{{PR_SUBJECT_W, TABLE_SORT_DESCEND}};
    EXPECT_EQ(S_OK, table->SortTable(descending.Get(), 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"c", L"b", L"a"));
    SortBy two{{kRank, TABLE_SORT_DESCEND}, {PR_SUBJECT_W, TABLE_SORT_DESCEND}};
    EXPECT_EQ(S_OK, table->SortTable(two.Get(), 0));
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"a", L"c", L"b"));
}

TEST_P(ItemConformanceTest, RefusesBrokenRestrictionsAndColumns)
{
    AddItem(L"one");
    const auto table = Contents();
    EXPECT_TRUE(FAILED(table->SetColumns(nullptr, 0)));
    EXPECT_TRUE(FAILED(table->SetColumns(Tags({}).Get(), 0)));
    EXPECT_TRUE(FAILED(table->GetRowCount(0, nullptr)));
    EXPECT_TRUE(FAILED(table->QueryRows(1, 0, nullptr)));
    EXPECT_TRUE(FAILED(table->SortTable(nullptr, 0)));
    SRestriction unknown = {};
    unknown.rt = 0x1234;
    EXPECT_TRUE(FAILED(table->Restrict(&unknown, 0)));
    SRestriction empty = {};
    empty.rt = RES_PROPERTY;
    EXPECT_TRUE(FAILED(table->Restrict(&empty, 0)));
    SRestriction all = {};
    all.rt = RES_AND;
    all.res.resAnd = {3, nullptr};
    EXPECT_TRUE(FAILED(table->Restrict(&all, 0)));
    // One that holds itself has no end.
    SRestriction endless = {};
    endless.rt = RES_NOT;
    endless.res.resNot = {0, &endless};
    EXPECT_TRUE(FAILED(table->Restrict(&endless, 0)));
    // What was refused changed nothing.
    EXPECT_THAT(Column(table.Get(), PR_SUBJECT_W), ElementsAre(L"one"));
}

TEST_P(StoreConformanceTest, QueriesAllRowsInOneCall)
{
    for (const wchar_t* const subject : {L"one", L"two", L"three"})
        AddMessage(subject);
    const auto table = Contents();
    SPropValue two = TextProp(PR_SUBJECT_W, L"two");
    SRestriction notTwo = Compare(RELOP_NE, two);
    SortBy sort{{PR_SUBJECT_W, TABLE_SORT_DESCEND}};
    LPSRowSet set = nullptr;
    ASSERT_EQ(S_OK,
              m_mapi->queryAllRows(
                  table.Get(), Tags({PR_SUBJECT_W}).Get(), &notTwo, sort.Get(), 0, &set));
    {
        const Rows rows = Own(set);
        ASSERT_EQ(2u, rows->cRows);
        EXPECT_STREQ(L"three", rows->aRow[0].lpProps[0].Value.lpszW);
        EXPECT_STREQ(L"one", rows->aRow[1].lpProps[0].Value.lpszW);
    }
    set = nullptr;
    EXPECT_EQ(
        MAPI_E_TABLE_TOO_BIG,
        m_mapi->queryAllRows(table.Get(), Tags({PR_SUBJECT_W}).Get(), nullptr, nullptr, 1, &set));
    EXPECT_EQ(nullptr, set);
}
