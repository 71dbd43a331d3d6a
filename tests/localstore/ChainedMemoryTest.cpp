#include "localstore/ChainedMemory.h"

#include "support/HeapUse.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <thread>

TEST(ChainedMemoryTest, FreesABufferWithItsChain)
{
    ChainedMemory memory;
    void* buffer = nullptr;
    ASSERT_EQ(S_OK, memory.Allocate(100, &buffer));
    for (int i = 0; i < 3; ++i)
    {
        void* block = nullptr;
        ASSERT_EQ(S_OK, memory.AllocateMore(50, buffer, &block));
        std::memset(block, 1, 50);
    }
    EXPECT_EQ(4u, memory.LiveCount());
    EXPECT_EQ(S_OK, memory.Free(buffer));
    EXPECT_EQ(0u, memory.LiveCount());
}

TEST(ChainedMemoryTest, HoldsNothingOnceAllBuffersAreFreed)
{
    ChainedMemory memory;
    std::array<void*, 1000> buffers{};
    const HeapUse before = UseOfAllHeaps();
    for (void*& buffer : buffers)
        ASSERT_EQ(S_OK, memory.Allocate(10, &buffer));
    for (void* const buffer : buffers)
        ASSERT_EQ(S_OK, memory.Free(buffer));
    EXPECT_EQ(before, UseOfAllHeaps());
}

TEST(ChainedMemoryTest, ZeroBytesGiveABufferToo)
{
    ChainedMemory memory;
    void* buffer = nullptr;
    ASSERT_EQ(S_OK, memory.Allocate(0, &buffer));
    EXPECT_NE(nullptr, buffer);
    void* block = nullptr;
    ASSERT_EQ(S_OK, memory.AllocateMore(0, buffer, &block));
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(S_OK, memory.Free(buffer));
}

TEST(ChainedMemoryTest, RefusesAddressesThatItDidNotHandOut)
{
    ChainedMemory memory;
    void* buffer = nullptr;
    ASSERT_EQ(S_OK, memory.Allocate(100, &buffer));
    void* block = nullptr;
    ASSERT_EQ(S_OK, memory.AllocateMore(100, buffer, &block));
    int local = 42;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Free(&local));
    EXPECT_EQ(42, local);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Free(static_cast<char*>(buffer) + 8));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Free(block)) << "the buffer owns its blocks";
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Free(reinterpret_cast<void*>(1)));
    EXPECT_EQ(2u, memory.LiveCount());

    void* more = &local;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.AllocateMore(8, block, &more));
    EXPECT_EQ(nullptr, more);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.AllocateMore(8, nullptr, &more));

    EXPECT_EQ(S_OK, memory.Free(buffer));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Free(buffer)) << "a second time";
    EXPECT_EQ(S_OK, memory.Free(nullptr));
}

TEST(ChainedMemoryTest, FailsWithoutHarmForNullOutputsAndAbsurdSizes)
{
    ChainedMemory memory;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.Allocate(8, nullptr));
    void* buffer = &memory;
    EXPECT_EQ(MAPI_E_NOT_ENOUGH_MEMORY, memory.Allocate(~size_t{0} / 2, &buffer));
    EXPECT_EQ(nullptr, buffer);
    ASSERT_EQ(S_OK, memory.Allocate(8, &buffer));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, memory.AllocateMore(8, buffer, nullptr));
    void* block = &memory;
    EXPECT_EQ(MAPI_E_NOT_ENOUGH_MEMORY, memory.AllocateMore(~size_t{0} / 2, buffer, &block));
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(1u, memory.LiveCount());
    memory.Free(buffer);
}

TEST(ChainedMemoryTest, ServesSeveralThreads)
{
    ChainedMemory memory;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back([&memory] {
            for (int i = 0; i < 2000; ++i)
            {
                void* buffer = nullptr;
                void* block = nullptr;
                EXPECT_EQ(S_OK, memory.Allocate(16, &buffer));
                EXPECT_EQ(S_OK, memory.AllocateMore(16, buffer, &block));
                EXPECT_EQ(S_OK, memory.Free(buffer));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0u, memory.LiveCount());
}

TEST(ChainedMemoryTest, AnOwnedBufferIsFreedUnlessHandedOut)
{
    ChainedMemory memory;
    {
        ChainedBuffer buffer(memory, 10);
        buffer.More(20);
        EXPECT_EQ(2u, memory.LiveCount());
    }
    EXPECT_EQ(0u, memory.LiveCount());
    void* kept = nullptr;
    {
        ChainedBuffer buffer(memory, 10);
        kept = buffer.Detach();
    }
    EXPECT_EQ(1u, memory.LiveCount());
    EXPECT_EQ(S_OK, memory.Free(kept));
}
