#include "outlook/store/LiveObjects.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{
class Holder final : public LiveObject
{
  public:
    Holder(LiveObjects* registry,
           std::vector<std::string>& detached,
           std::string name,
           std::function<void()> then = {})
        : LiveObject(registry), m_detached(detached), m_name(std::move(name)),
          m_then(std::move(then))
    {
    }

    void Detach() noexcept override
    {
        m_detached.push_back(m_name);
        if (m_then)
            m_then();
    }

  private:
    std::vector<std::string>& m_detached;
    std::string m_name;
    std::function<void()> m_then;
};

using Names = std::vector<std::string>;

class LiveObjectsTest : public testing::Test
{
  protected:
    Names detached;
    LiveObjects registry;
};
} // namespace

TEST_F(LiveObjectsTest, DetachesEachOnceTheOldestFirst)
{
    Holder first(&registry, detached, "first");
    Holder second(&registry, detached, "second");
    Holder third(&registry, detached, "third");
    registry.DetachAll();
    EXPECT_EQ((Names{"first", "second", "third"}), detached);
    registry.DetachAll();
    EXPECT_EQ(3u, detached.size());
}

TEST_F(LiveObjectsTest, WhatEndedBeforeIsNotDetached)
{
    auto first = std::make_unique<Holder>(&registry, detached, "first");
    auto second = std::make_unique<Holder>(&registry, detached, "second");
    auto third = std::make_unique<Holder>(&registry, detached, "third");
    auto fourth = std::make_unique<Holder>(&registry, detached, "fourth");
    second.reset();
    fourth.reset();
    first.reset();
    registry.DetachAll();
    EXPECT_EQ((Names{"third"}), detached);
    third.reset();
    registry.DetachAll();
    EXPECT_EQ(1u, detached.size());
}

TEST_F(LiveObjectsTest, TakesNewOnesWhenTheLastOneEnded)
{
    {
        Holder only(&registry, detached, "only");
    }
    registry.DetachAll();
    EXPECT_EQ(Names{}, detached);
    Holder next(&registry, detached, "next");
    registry.DetachAll();
    EXPECT_EQ((Names{"next"}), detached);
}

TEST_F(LiveObjectsTest, AnObjectMayEndOthersAndItselfWhileItIsDetached)
{
    std::unique_ptr<Holder> second;
    std::unique_ptr<Holder> first =
        std::make_unique<Holder>(&registry, detached, "first", [&] { second.reset(); });
    second = std::make_unique<Holder>(&registry, detached, "second");
    std::unique_ptr<Holder> third;
    third = std::make_unique<Holder>(&registry, detached, "third", [&] {
        // The action lives in the object that it ends: nothing of it is used afterwards.
        third.reset();
    });
    Holder fourth(&registry, detached, "fourth");
    registry.DetachAll();
    EXPECT_EQ((Names{"first", "third", "fourth"}), detached);
}

TEST_F(LiveObjectsTest, TheEndOfTheRegistryDetachesWhatIsLeft)
{
    auto shortLived = std::make_unique<LiveObjects>();
    Holder only(shortLived.get(), detached, "only");
    shortLived.reset();
    EXPECT_EQ((Names{"only"}), detached);
}

TEST_F(LiveObjectsTest, WithoutARegistryNothingIsEntered)
{
    Holder alone(nullptr, detached, "alone");
    registry.DetachAll();
    EXPECT_EQ(Names{}, detached);
}
