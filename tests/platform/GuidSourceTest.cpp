#include "platform/GuidSource.h"

#include <gtest/gtest.h>

namespace
{

TEST(GuidSourceTest, TheSystemsGuidsAreInTheirRegistryForm)
{
    const std::wstring form = L"{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    for (int i = 0; i < 100; ++i)
    {
        const std::wstring text = NewGuidText();
        ASSERT_EQ(text.size(), form.size());
        for (std::size_t at = 0; at < form.size(); ++at)
        {
            if (form[at] == L'x')
                EXPECT_NE(std::wstring_view(L"0123456789ABCDEF").find(text[at]),
                          std::wstring_view::npos)
                    << text;
            else
                EXPECT_EQ(text[at], form[at]) << text;
        }
    }
}

TEST(GuidSourceTest, TwoGuidsDiffer)
{
    EXPECT_NE(NewGuidText(), NewGuidText());
}

TEST(GuidSourceTest, AReplacementServesUntilItEnds)
{
    {
        const ScopedGuidSource fixed([] { return std::wstring(L"fixed"); });
        EXPECT_EQ(NewGuidText(), L"fixed");
    }
    EXPECT_NE(NewGuidText(), L"fixed");
}

} // namespace
