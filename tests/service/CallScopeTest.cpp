#include "service/CallScope.h"

#include <gtest/gtest.h>

#include <string>

TEST(CallScopeTest, RunsAnActionAtOnceOutsideAnyCall)
{
    bool ran = false;
    CallScope::Defer([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(CallScopeTest, DefersUntilTheOutermostCallEndsAndKeepsTheOrder)
{
    std::string trace;
    {
        CallScope outer;
        {
            CallScope inner;
            EXPECT_EQ(2, CallScope::Depth());
            CallScope::Defer([&] { trace += 'a'; });
            CallScope::Defer([&] { trace += 'b'; });
        }
        EXPECT_EQ("", trace);
        EXPECT_EQ(1, CallScope::Depth());
    }
    EXPECT_EQ("ab", trace);
    EXPECT_EQ(0, CallScope::Depth());
}

TEST(CallScopeTest, RunsWhatADeferredActionDefers)
{
    std::string trace;
    {
        CallScope scope;
        CallScope::Defer([&] {
            trace += 'a';
            CallScope::Defer([&] { trace += 'b'; });
        });
    }
    EXPECT_EQ("ab", trace);
}
