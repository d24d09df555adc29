#include "ObLib/Src/ObBuffer.h"

#include <cstring>
#include <new>
#include <utility>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using ObLib::kResizeClears;
using ObLib::kResizeCopies;
using ObLib::kResizeLeaves;
using ObLib::ObBuffer;

// A pair of functions that counts, can be made to fail, and notes the first byte of a released
// block.
struct Pair {
    static inline int allocated = 0;
    static inline int released = 0;
    static inline bool refuse = false;
    static inline char firstByte = 0;
    static inline std::size_t asked = 0;

    static void* Allocate(std::size_t bytes) {
        asked = bytes;
        if (refuse) return nullptr;
        ++allocated;
        void* const block = std::malloc(bytes);
        std::memset(block, 'n', bytes);
        return block;
    }
    static void Release(void* block) {
        ++released;
        firstByte = *static_cast<char*>(block);
        std::free(block);
    }
};

class Buffer : public testing::Test {
protected:
    void SetUp() override {
        Pair::allocated = Pair::released = 0;
        Pair::refuse = false;
        Pair::firstByte = '?';
    }
    static ObBuffer Filled(std::size_t bytes) {
        ObBuffer buffer(&Pair::Allocate, &Pair::Release);
        buffer.Resize(bytes, kResizeLeaves);
        std::memset(buffer.data, 'a', bytes);
        return buffer;
    }
    static char At(const ObBuffer& buffer, std::size_t index) {
        return static_cast<const char*>(buffer.data)[index];
    }
};

TEST_F(Buffer, ANewOneIsEmptyAndUsesMallocAndFree) {
    const ObBuffer buffer;
    EXPECT_EQ(nullptr, buffer.data);
    EXPECT_EQ(0u, buffer.size);
    EXPECT_EQ(0u, buffer.capacity);
    EXPECT_TRUE(buffer.allocate == &std::malloc);
    EXPECT_TRUE(buffer.release == &std::free);
}

TEST_F(Buffer, GrowingByCopyKeepsWhatWasThere) {
    ObBuffer buffer = Filled(4);
    buffer.Resize(9, kResizeCopies);
    EXPECT_EQ(9u, buffer.size);
    EXPECT_EQ(9u, buffer.capacity);
    EXPECT_EQ(9u, Pair::asked);
    EXPECT_EQ(0, std::memcmp(buffer.data, "aaaannnnn", 9));
    EXPECT_EQ('a', Pair::firstByte) << "only mode 1 clears";
}

TEST_F(Buffer, GrowingByClearingZeroesTheOldAndTheNewBlock) {
    ObBuffer buffer = Filled(4);
    buffer.Resize(6, kResizeClears);
    EXPECT_EQ(0, Pair::firstByte);
    EXPECT_EQ(0, std::memcmp(buffer.data, "\0\0\0\0\0\0", 6));
}

TEST_F(Buffer, GrowingByLeavingDoesNeither) {
    ObBuffer buffer = Filled(4);
    buffer.Resize(6, kResizeLeaves);
    EXPECT_EQ('a', Pair::firstByte);
    EXPECT_EQ(0, std::memcmp(buffer.data, "nnnnnn", 6));
}

TEST_F(Buffer, WithinItsCapacityOnlyTheSizeChanges) {
    ObBuffer buffer = Filled(8);
    const void* const block = buffer.data;
    for (const std::int32_t mode : {kResizeCopies, kResizeLeaves}) {
        buffer.Resize(3, mode);
        EXPECT_EQ(3u, buffer.size);
        buffer.Resize(8, mode);
        EXPECT_EQ(8u, buffer.size);
    }
    EXPECT_EQ(8u, buffer.capacity);
    EXPECT_EQ(block, buffer.data);
    EXPECT_EQ('a', At(buffer, 0));
    EXPECT_EQ(1, Pair::allocated);
}

TEST_F(Buffer, WithinItsCapacityModeOneClearsTheBlock) {
    ObBuffer buffer = Filled(8);
    buffer.Resize(2, kResizeClears);
    EXPECT_EQ(2u, buffer.size);
    for (std::size_t index = 0; index < 8; ++index) EXPECT_EQ(0, At(buffer, index));
    EXPECT_EQ(1, Pair::allocated);
}

TEST_F(Buffer, AModeThatThereIsNotEndsTheProcess) {
    ObBuffer buffer = Filled(8);
    EXPECT_FATAL_ASSERT(buffer.Resize(2, 3), "ObBuffer");
    EXPECT_FATAL_ASSERT(buffer.Resize(20, -1), "ObBuffer");
}

TEST_F(Buffer, ARefusedBlockThrowsAndChangesNothing) {
    ObBuffer buffer = Filled(4);
    Pair::refuse = true;
    EXPECT_THROW(buffer.Resize(5, kResizeClears), std::bad_alloc);
    EXPECT_EQ(4u, buffer.size);
    EXPECT_EQ(4u, buffer.capacity);
    EXPECT_EQ('a', At(buffer, 3));
    EXPECT_EQ(0, Pair::released);
}

TEST_F(Buffer, ACopyHasABlockOfItsOwnByMalloc) {
    ObBuffer buffer = Filled(6);
    buffer.Resize(4, kResizeCopies);
    const ObBuffer copy(buffer);
    EXPECT_EQ(4u, copy.size);
    EXPECT_EQ(4u, copy.capacity);
    EXPECT_NE(buffer.data, copy.data);
    EXPECT_EQ('a', At(copy, 3));
    EXPECT_EQ(1, Pair::allocated);
    EXPECT_TRUE(copy.release == &std::free);
}

TEST_F(Buffer, ACopyThatCannotBeAllocatedThrows) {
    ObBuffer buffer = Filled(4);
    buffer.size = std::uint64_t{1} << 62; // no machine has so much
    EXPECT_THROW(ObBuffer{buffer}, std::bad_alloc);
    buffer.size = 4;
}

TEST_F(Buffer, AMoveTakesTheBlockWithItsPair) {
    ObBuffer buffer = Filled(4);
    const void* const block = buffer.data;
    ObBuffer other;
    other.Resize(2, kResizeClears);
    other = std::move(buffer);
    EXPECT_EQ(block, other.data);
    EXPECT_TRUE(other.release == &Pair::Release);
    EXPECT_EQ(nullptr, buffer.data);
    EXPECT_EQ(0u, buffer.size);
    EXPECT_EQ(0u, buffer.capacity);
}

TEST_F(Buffer, AnAssignedCopyReleasesWhatWasThere) {
    ObBuffer buffer = Filled(4);
    ObBuffer other;
    other.Resize(3, kResizeClears);
    buffer = other;
    EXPECT_EQ(1, Pair::released);
    EXPECT_EQ(3u, buffer.size);
    EXPECT_NE(other.data, buffer.data);
    buffer = *&buffer;
    EXPECT_EQ(3u, buffer.size);
}

} // namespace
