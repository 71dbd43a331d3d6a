#include "icalendar/VObject.h"

#include "icalendar/VAlarm.h"
#include "icalendar/VCalendar.h"
#include "icalendar/VEvent.h"
#include "icalendar/VStandard.h"
#include "icalendar/VTimeZone.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace
{

std::vector<CVObject*> ChildrenOf(const CVObject& node)
{
    std::vector<CVObject*> children;
    node.GetChildren(children);
    return children;
}

void AddLines(CVObject& root, std::initializer_list<const wchar_t*> lines)
{
    for (const wchar_t* line : lines)
        root.AddLine(line);
}

// Records what it is given, and says so when it is destroyed.
class Recorder : public CVObject
{
  public:
    explicit Recorder(std::wstring* log = nullptr, std::wstring text = {})
        : CVObject(L"RECORDER"), m_log(log), m_text(std::move(text))
    {
    }
    ~Recorder() override
    {
        if (m_log)
            *m_log += m_text;
    }
    int SetProperty(std::wstring_view name, std::wstring_view value) override
    {
        properties.emplace_back(name, value);
        return 7;
    }
    std::wstring GetProperties() const override { return m_text; }

    std::vector<std::pair<std::wstring, std::wstring>> properties;

  private:
    std::wstring* m_log;
    std::wstring m_text;
};

TEST(VObjectTest, TheBaseIgnoresPropertiesAndWritesNothing)
{
    CVObject root;
    EXPECT_EQ(root.SetProperty(L"UID", L"1"), 1);
    EXPECT_EQ(root.GetProperties(), L"");
    EXPECT_EQ(root.GetName(), L"");
    std::wstring out = L"before";
    root.Serialize(out);
    EXPECT_EQ(out, L"before");
}

TEST(VObjectTest, OpensTheFiveKnownComponentsAndNoOther)
{
    CVObject root;
    for (const wchar_t* name : {L"VCALENDAR", L"VTIMEZONE", L"STANDARD", L"VALARM", L"VEVENT"})
    {
        EXPECT_EQ(root.RouteLine(L"BEGIN", name), 1);
        EXPECT_EQ(root.RouteLine(L"END", name), 1);
    }
    for (const wchar_t* name : {L"DAYLIGHT", L"VTODO", L"vevent", L" VEVENT", L"VEVENT ", L""})
        EXPECT_EQ(root.RouteLine(L"BEGIN", name), 0) << name;

    const auto children = ChildrenOf(root);
    ASSERT_EQ(children.size(), 5u);
    EXPECT_TRUE(dynamic_cast<CVCalendar*>(children[0]));
    EXPECT_TRUE(dynamic_cast<CVTimeZone*>(children[1]));
    EXPECT_TRUE(dynamic_cast<CVStandard*>(children[2]));
    EXPECT_TRUE(dynamic_cast<CVAlarm*>(children[3]));
    EXPECT_TRUE(dynamic_cast<CVEvent*>(children[4]));
    EXPECT_EQ(children[0]->GetName(), L"VCALENDAR");
    EXPECT_EQ(children[1]->GetName(), L"VTIMEZONE");
    EXPECT_EQ(children[2]->GetName(), L"STANDARD");
    EXPECT_EQ(children[3]->GetName(), L"VALARM");
    EXPECT_EQ(children[4]->GetName(), L"VEVENT");
}

TEST(VObjectTest, AMissingEndLeavesAComponentOutOfTheChildren)
{
    CVObject root;
    AddLines(root, {L"BEGIN:VCALENDAR", L"BEGIN:VEVENT", L"UID:1", L"BEGIN:VALARM", L"END:VALARM"});
    EXPECT_TRUE(ChildrenOf(root).empty());
    // It takes lines and components again, as the deepest one.
    AddLines(root, {L"BEGIN:VALARM", L"END:VALARM", L"UID:2", L"END:VEVENT", L"END:VCALENDAR"});
    ASSERT_EQ(ChildrenOf(root).size(), 1u);
    const auto events = ChildrenOf(*ChildrenOf(root)[0]);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(static_cast<CVEvent*>(events[0])->Id(), L"2");
    EXPECT_EQ(ChildrenOf(*events[0]).size(), 2u);
    AddLines(root, {L"BEGIN:VEVENT", L"UID:3"});
    EXPECT_EQ(ChildrenOf(root).size(), 1u);
}

TEST(VObjectTest, AnEndWithNothingOpenIsRefused)
{
    CVObject root;
    EXPECT_EQ(root.RouteLine(L"END", L"VEVENT"), 0);
    EXPECT_EQ(root.RouteLine(L"end", L"VEVENT"), 1); // a property, since names are exact
}

TEST(VObjectTest, AnEndClosesTheDeepestComponentWhateverItNames)
{
    CVObject root;
    AddLines(root, {L"BEGIN:VCALENDAR", L"BEGIN:VEVENT", L"END:", L"UID:1"});
    EXPECT_TRUE(ChildrenOf(root).empty());
    EXPECT_EQ(root.RouteLine(L"END", L"NONSENSE"), 1);
    ASSERT_EQ(ChildrenOf(root).size(), 1u);
    EXPECT_EQ(ChildrenOf(*ChildrenOf(root)[0]).size(), 1u);
}

TEST(VObjectTest, GivesAPropertyToTheDeepestOpenComponent)
{
    CVObject root;
    AddLines(root,
             {L"BEGIN:VEVENT",
              L"UID:outer",
              L"BEGIN:VEVENT",
              L"UID:inner",
              L"END:VEVENT",
              L"SUMMARY:outer text",
              L"END:VEVENT"});
    const auto* outer = dynamic_cast<CVEvent*>(ChildrenOf(root).at(0));
    ASSERT_TRUE(outer);
    const auto* inner = dynamic_cast<CVEvent*>(ChildrenOf(*outer).at(0));
    ASSERT_TRUE(inner);
    EXPECT_EQ(outer->Fields().uid, L"outer");
    EXPECT_EQ(outer->Fields().summary, L"outer text");
    EXPECT_EQ(inner->Fields().uid, L"inner");
    EXPECT_EQ(inner->Fields().summary, L"");
}

TEST(VObjectTest, ReturnsTheResultOfSetPropertyAndRoutesARefusedLineWithEmptyParts)
{
    Recorder root;
    EXPECT_EQ(root.RouteLine(L"X;P=1", L"v"), 7);
    root.AddLine(L"no colon");
    root.AddLine(L"");
    ASSERT_EQ(root.properties.size(), 3u);
    EXPECT_EQ(root.properties[0], std::make_pair(std::wstring(L"X;P=1"), std::wstring(L"v")));
    EXPECT_EQ(root.properties[1], std::make_pair(std::wstring(), std::wstring()));
    EXPECT_EQ(root.properties[2], std::make_pair(std::wstring(), std::wstring()));
}

TEST(VObjectTest, TheEndOfAnUnknownComponentClosesTheOneAroundIt)
{
    // A zone whose DAYLIGHT comes behind its STANDARD: from there on everything ends one level too
    // early.
    CVObject root;
    AddLines(root,
             {L"BEGIN:VCALENDAR",
              L"BEGIN:VTIMEZONE",
              L"TZID:Zone",
              L"BEGIN:STANDARD",
              L"TZNAME:Standard",
              L"END:STANDARD",
              L"BEGIN:DAYLIGHT",
              L"TZID:overwritten by what stands in the unknown component",
              L"END:DAYLIGHT",
              L"END:VTIMEZONE",
              L"BEGIN:VEVENT",
              L"UID:1",
              L"END:VEVENT"});
    EXPECT_EQ(root.RouteLine(L"END", L"VCALENDAR"), 0);

    const auto children = ChildrenOf(root);
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0]->GetName(), L"VCALENDAR");
    EXPECT_EQ(children[1]->GetName(), L"VEVENT");
    const auto zones = ChildrenOf(*children[0]);
    ASSERT_EQ(zones.size(), 1u);
    EXPECT_EQ(static_cast<CVTimeZone*>(zones[0])->tzid,
              L"overwritten by what stands in the unknown component");
    ASSERT_EQ(ChildrenOf(*zones[0]).size(), 1u);
}

TEST(VObjectTest, WritesBeginPropertiesChildrenAndEnd)
{
    Recorder root(nullptr, L"R\r\n");
    root.AddChild(std::make_unique<Recorder>(nullptr, L"1\r\n"));
    root.FirstChild()->AddChild(std::make_unique<Recorder>(nullptr, L"1a\r\n"));
    root.AddChild(std::make_unique<Recorder>(nullptr, L"2\r\n"));
    std::wstring out = L"kept;";
    root.Serialize(out);
    EXPECT_EQ(out,
              L"kept;BEGIN:RECORDER\r\nR\r\n"
              L"BEGIN:RECORDER\r\n1\r\n"
              L"BEGIN:RECORDER\r\n1a\r\nEND:RECORDER\r\n"
              L"END:RECORDER\r\n"
              L"BEGIN:RECORDER\r\n2\r\nEND:RECORDER\r\n"
              L"END:RECORDER\r\n");
}

TEST(VObjectTest, LeavesAComponentWithoutPropertiesOutWithItsChildren)
{
    Recorder root(nullptr, L"R\r\n");
    root.AddChild(std::make_unique<Recorder>());
    root.FirstChild()->AddChild(std::make_unique<Recorder>(nullptr, L"lost\r\n"));
    root.AddChild(std::make_unique<Recorder>(nullptr, L"2\r\n"));
    std::wstring out;
    root.Serialize(out);
    EXPECT_EQ(out,
              L"BEGIN:RECORDER\r\nR\r\nBEGIN:RECORDER\r\n2\r\nEND:RECORDER\r\nEND:RECORDER\r\n");
}

TEST(VObjectTest, AddsAndRemovesChildrenInOrder)
{
    CVObject root;
    root.AddChild(nullptr);
    root.AddChildInFront(nullptr);
    EXPECT_FALSE(root.FirstChild());

    root.AddChildInFront(std::make_unique<Recorder>(nullptr, L"b"));
    root.AddChild(std::make_unique<Recorder>(nullptr, L"c"));
    root.AddChildInFront(std::make_unique<Recorder>(nullptr, L"a"));
    auto children = ChildrenOf(root);
    ASSERT_EQ(children.size(), 3u);
    EXPECT_EQ(children[0]->GetProperties(), L"a");
    EXPECT_EQ(children[1]->GetProperties(), L"b");
    EXPECT_EQ(children[2]->GetProperties(), L"c");

    EXPECT_EQ(root.RemoveChild(&root), nullptr);
    EXPECT_EQ(root.RemoveChild(children[2]).get(), children[2]);
    root.AddChild(std::make_unique<Recorder>(nullptr, L"d"));
    EXPECT_TRUE(root.RemoveChild(children[0]));
    children = ChildrenOf(root);
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0]->GetProperties(), L"b");
    EXPECT_EQ(children[1]->GetProperties(), L"d");
}

TEST(VObjectTest, GetChildrenAppends)
{
    CVObject root;
    root.AddChild(std::make_unique<CVEvent>());
    std::vector<CVObject*> list{&root};
    root.GetChildren(list);
    EXPECT_EQ(list, (std::vector<CVObject*>{&root, root.FirstChild()}));
}

TEST(VObjectTest, DestroysItsChildrenInOrderEachBeforeItsOwnChildren)
{
    std::wstring log;
    {
        Recorder root(&log, L"root ");
        root.AddChild(std::make_unique<Recorder>(&log, L"1 "));
        root.FirstChild()->AddChild(std::make_unique<Recorder>(&log, L"1a "));
        root.FirstChild()->AddChild(std::make_unique<Recorder>(&log, L"1b "));
        root.AddChild(std::make_unique<Recorder>(&log, L"2 "));
    }
    EXPECT_EQ(log, L"root 1 1a 1b 2 ");
}

TEST(VObjectTest, AMillionOpenComponentsCostNoStackAndNoQuadraticTime)
{
    CVObject root;
    for (int i = 0; i < 1'000'000; ++i)
        root.AddLine(L"BEGIN:VCALENDAR");
    EXPECT_FALSE(root.FirstChild());
}

TEST(VObjectTest, AMillionNestedComponentsAreWrittenAndDestroyedWithoutRecursion)
{
    constexpr std::size_t kDepth = 1'000'000;
    CVObject root;
    for (std::size_t i = 0; i < kDepth; ++i)
    {
        root.AddLine(L"BEGIN:VTIMEZONE");
        root.AddLine(L"TZID:x");
    }
    for (std::size_t i = 0; i < kDepth; ++i)
        ASSERT_EQ(root.RouteLine(L"END", L""), 1);
    ASSERT_TRUE(root.FirstChild());
    std::wstring out;
    root.FirstChild()->Serialize(out);
    // BEGIN:VTIMEZONE and TZID:x, each with CR LF; then END:VTIMEZONE with CR LF.
    EXPECT_EQ(out.size(), kDepth * (17 + 8) + kDepth * 15);
}

} // namespace
