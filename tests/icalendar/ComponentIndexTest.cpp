#include "icalendar/ComponentIndex.h"

#include "icalendar/VEvent.h"
#include "icalendar/VTimeZone.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace
{

// A component of a name that an index looks for and a class that it does not.
class Impostor : public CVObject
{
  public:
    Impostor() : CVObject(L"VEVENT") {}
};

std::unique_ptr<CVEvent> Event(const wchar_t* uid)
{
    auto event = std::make_unique<CVEvent>();
    event->Edit().uid = uid;
    return event;
}

template <typename T> std::wstring IdsOf(const CVComponentIndex<T>& index)
{
    std::vector<T*> list;
    index.Snapshot(list);
    std::wstring ids;
    for (const T* component : list)
        ids += component->Id() + L" ";
    return ids;
}

void AddLines(CVObject& root, std::initializer_list<const wchar_t*> lines)
{
    for (const wchar_t* line : lines)
        root.AddLine(line);
}

TEST(ComponentIndexTest, ListsComponentsOfItsNameInFileOrderAtAnyDepth)
{
    CVObject root;
    AddLines(root,
             {L"BEGIN:VEVENT",
              L"UID:1",
              L"END:VEVENT",
              L"BEGIN:VCALENDAR",
              L"BEGIN:VTIMEZONE",
              L"TZID:Z",
              L"BEGIN:VEVENT",
              L"UID:2",
              L"END:VEVENT",
              L"END:VTIMEZONE",
              L"BEGIN:VEVENT",
              L"UID:3",
              L"END:VEVENT",
              L"END:VCALENDAR",
              L"BEGIN:VEVENT",
              L"UID:4",
              L"END:VEVENT"});
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(IdsOf(events), L"1 2 3 4 ");
    CVComponentIndex<CVTimeZone> zones;
    zones.Rebuild(L"VTIMEZONE", &root);
    EXPECT_EQ(IdsOf(zones), L"Z ");
}

TEST(ComponentIndexTest, LooksNeitherBelowAListedComponentNorAtOpenOnes)
{
    CVObject root;
    AddLines(root,
             {L"BEGIN:VEVENT",
              L"UID:outer",
              L"BEGIN:VEVENT",
              L"UID:inner",
              L"END:VEVENT",
              L"END:VEVENT",
              L"BEGIN:VEVENT",
              L"UID:open"});
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(IdsOf(events), L"outer ");
}

TEST(ComponentIndexTest, SkipsAComponentOfTheRightNameAndTheWrongClassWithAllBelowIt)
{
    CVObject root;
    auto impostor = std::make_unique<Impostor>();
    impostor->AddChild(Event(L"below"));
    root.AddChild(std::move(impostor));
    root.AddChild(Event(L"1"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(IdsOf(events), L"1 ");
}

TEST(ComponentIndexTest, RebuildingWithoutNameOrRootChangesNothing)
{
    CVObject root;
    root.AddChild(Event(L"1"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    root.AddChild(Event(L"2"));
    events.Rebuild(L"", &root);
    EXPECT_EQ(IdsOf(events), L"1 ");
    events.Rebuild(L"VEVENT", nullptr);
    EXPECT_EQ(IdsOf(events), L"1 ");
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(IdsOf(events), L"1 2 ");
}

TEST(ComponentIndexTest, SnapshotAppends)
{
    CVObject root;
    root.AddChild(Event(L"1"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    CVEvent other;
    std::vector<CVEvent*> list{&other};
    events.Snapshot(list);
    EXPECT_EQ(list, (std::vector<CVEvent*>{&other, static_cast<CVEvent*>(root.FirstChild())}));
}

TEST(ComponentIndexTest, AttachesToTheFirstCalendarAmongTheChildrenOfTheRoot)
{
    CVObject root;
    AddLines(root,
             {L"BEGIN:VEVENT",
              L"BEGIN:VCALENDAR",
              L"END:VCALENDAR",
              L"END:VEVENT",
              L"BEGIN:VCALENDAR",
              L"END:VCALENDAR",
              L"BEGIN:VCALENDAR",
              L"END:VCALENDAR"});
    CVObject* calendar = root.FirstChild()->NextSibling();
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_TRUE(events.Attach(Event(L"new")));
    ASSERT_TRUE(calendar->FirstChild());
    EXPECT_EQ(static_cast<CVEvent*>(calendar->FirstChild())->Id(), L"new");
    EXPECT_EQ(IdsOf(events), L" new ");
}

TEST(ComponentIndexTest, MakesACalendarWhereTheRootHasNone)
{
    CVObject root;
    root.AddChild(Event(L"1"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_TRUE(events.Attach(Event(L"2")));
    EXPECT_TRUE(events.Attach(Event(L"3")));
    const CVObject* calendar = root.FirstChild()->NextSibling();
    ASSERT_TRUE(calendar);
    EXPECT_EQ(calendar->GetName(), L"VCALENDAR");
    EXPECT_FALSE(calendar->NextSibling());
    EXPECT_TRUE(calendar->FirstChild() && calendar->FirstChild()->NextSibling());
    EXPECT_EQ(IdsOf(events), L"1 2 3 ");
}

TEST(ComponentIndexTest, RefusesANullComponentAndAnIndexWithoutARoot)
{
    CVComponentIndex<CVEvent> events;
    EXPECT_FALSE(events.Attach(Event(L"1")));
    EXPECT_FALSE(events.RemoveByUid(L"1"));
    EXPECT_FALSE(events.Find(L"1"));
    CVObject root;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_FALSE(events.Attach(nullptr));
    EXPECT_EQ(events.Size(), 0u);
}

TEST(ComponentIndexTest, FindsAndRemovesTheFirstOfEqualIds)
{
    CVObject root;
    for (const wchar_t* uid : {L"b", L"a", L"b", L"aa", L"B"})
        root.AddChild(Event(uid));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);

    CVObject* first = root.FirstChild();
    EXPECT_EQ(events.Find(L"b"), first);
    EXPECT_FALSE(events.Find(L"c"));
    EXPECT_FALSE(events.Find(L""));
    EXPECT_TRUE(events.RemoveByUid(L"b"));
    EXPECT_EQ(IdsOf(events), L"a b aa B ");
    EXPECT_NE(root.FirstChild(), first);
    EXPECT_TRUE(events.RemoveByUid(L"b"));
    EXPECT_FALSE(events.RemoveByUid(L"b"));
    EXPECT_EQ(IdsOf(events), L"a aa B ");
    EXPECT_TRUE(events.Find(L"B"));
}

TEST(ComponentIndexTest, FindsTheFirstOfManyEqualIds)
{
    // More than a sort keeps in order by chance.
    CVObject root;
    for (int i = 0; i < 200; ++i)
        root.AddChild(Event(i % 3 ? L"a" : L"b"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(events.Find(L"b"), root.FirstChild());
    EXPECT_EQ(events.Find(L"a"), root.FirstChild()->NextSibling());
}

TEST(ComponentIndexTest, FindsAnEmptyId)
{
    CVObject root;
    root.AddChild(Event(L""));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(events.Find(L""), root.FirstChild());
    EXPECT_TRUE(events.RemoveByUid(L""));
    EXPECT_EQ(events.Size(), 0u);
}

TEST(ComponentIndexTest, FindsAnIdThatChangedOnceItWasTold)
{
    CVObject root;
    root.AddChild(Event(L"1"));
    root.AddChild(Event(L"2"));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    CVEvent* first = events.Find(L"1");
    ASSERT_TRUE(first);
    first->Edit().uid = L"3";
    events.IdsChanged();
    EXPECT_EQ(events.Find(L"3"), first);
    EXPECT_FALSE(events.Find(L"1"));
}

TEST(ComponentIndexTest, AZoneBelowARemovedEventStaysListedAndAlive)
{
    CVObject root;
    AddLines(root,
             {L"BEGIN:VEVENT",
              L"UID:1",
              L"BEGIN:VALARM",
              L"BEGIN:VTIMEZONE",
              L"TZID:Z",
              L"END:VTIMEZONE",
              L"END:VALARM",
              L"END:VEVENT"});
    CVComponentIndex<CVEvent> events;
    CVComponentIndex<CVTimeZone> zones;
    events.Rebuild(L"VEVENT", &root);
    zones.Rebuild(L"VTIMEZONE", &root);
    EXPECT_TRUE(events.RemoveByUid(L"1"));
    EXPECT_FALSE(root.FirstChild());
    ASSERT_TRUE(zones.Find(L"Z"));
    EXPECT_EQ(zones.Find(L"Z")->GetProperties(), L"TZID:Z\r\n");
}

TEST(ComponentIndexTest, WalksAMillionNestedComponents)
{
    constexpr int kDepth = 1'000'000;
    CVObject root;
    for (int i = 0; i < kDepth; ++i)
        root.AddLine(L"BEGIN:VCALENDAR");
    AddLines(root, {L"BEGIN:VEVENT", L"UID:1"});
    for (int i = 0; i <= kDepth; ++i)
        root.AddLine(L"END:");
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    EXPECT_EQ(IdsOf(events), L"1 ");
    EXPECT_TRUE(events.RemoveByUid(L"1"));
}

TEST(ComponentIndexTest, ALookUpInManyEntriesIsNoWalk)
{
    constexpr int kCount = 100'000;
    CVObject root;
    for (int i = 0; i < kCount; ++i)
        root.AddChild(Event(std::to_wstring(i).c_str()));
    CVComponentIndex<CVEvent> events;
    events.Rebuild(L"VEVENT", &root);
    int found = 0;
    for (int i = 0; i < kCount; ++i)
        found += events.Find(std::to_wstring(i)) ? 1 : 0;
    EXPECT_EQ(found, kCount);
}

} // namespace
