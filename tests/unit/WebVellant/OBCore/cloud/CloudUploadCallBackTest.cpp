// The callback as a provider of another module sees it: a pointer to a table of 24 slots, and
// the fields of the upload step beside them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "OBCore/cloud/CloudUploadCallBack.h"
#include "tests/support/Allocations.h"

namespace {

using obcore::CloudUploadCallBack;
using obtest::ForgetReleased;
using obtest::LastReleased;
using namespace ObPVX;

// Calls a slot by number, with the object first. The asm hides what the object is, so that the
// compiler can't take the table for known.
template <class Result, class... Arguments>
Result CallSlot(void* object, std::size_t number, Arguments... arguments) {
    asm volatile("" : "+r"(object) : : "memory");
    void* const* table = *static_cast<void* const**>(object);
    return reinterpret_cast<Result (*)(void*, Arguments...)>(table[number])(object, arguments...);
}

void* TableOf(const void* object) {
    asm volatile("" : "+r"(object) : : "memory");
    void* table;
    std::memcpy(&table, object, sizeof(table));
    return table;
}

// One-byte results count by their low byte only.
std::uint8_t AskByte(void* object, std::size_t number) {
    return CallSlot<std::uint8_t>(object, number);
}

std::vector<std::uint8_t> FieldBytes(const CloudUploadCallBack& callback) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&callback);
    return {bytes + sizeof(void*), bytes + sizeof(callback)};
}

std::size_t OffsetOf(const CloudUploadCallBack& callback, const void* field) {
    return static_cast<std::size_t>(static_cast<const std::uint8_t*>(field) -
                                    reinterpret_cast<const std::uint8_t*>(&callback));
}

class UploadCallback : public testing::Test {
protected:
    // Calls a slot that is to leave every field as it is.
    template <class Call>
    void ExpectNoChange(Call call) {
        const auto before = FieldBytes(callback_);
        call();
        EXPECT_EQ(FieldBytes(callback_), before);
    }

    CloudUploadCallBack callback_;
};

TEST_F(UploadCallback, IsOneChainFromItsRoot) {
    EXPECT_TRUE((std::is_base_of_v<ObPvxCallback, ObPvxCloudCallback>));
    EXPECT_TRUE((std::is_base_of_v<ObPvxCloudCallback, ObPvxCloudCallback2>));
    EXPECT_TRUE((std::is_base_of_v<ObPvxCloudCallback2, ObPvxCloudCallback3>));
    EXPECT_TRUE((std::is_base_of_v<ObPvxCloudCallback3, ObPvxCloudCallback4>));
    EXPECT_TRUE((std::is_base_of_v<ObPvxCloudCallback4, CloudUploadCallBack>));
    EXPECT_FALSE(std::has_virtual_destructor_v<CloudUploadCallBack>);
    EXPECT_EQ(static_cast<void*>(static_cast<ObPvxCallback*>(&callback_)),
              static_cast<void*>(&callback_));
}

TEST_F(UploadCallback, HasItsFieldsInOrder) {
    const void* fields[] = {
        &callback_.status,    &callback_.statusFlag, &callback_.count,
        &callback_.countFlag, &callback_.amount,     &callback_.spare,
        &callback_.finished,  &callback_.cancelled,  &callback_.retryWithNewName};
    const std::size_t offsets[] = {8, 12, 16, 20, 24, 32, 33, 34, 36};
    for (std::size_t index = 0; index < std::size(fields); ++index) {
        EXPECT_EQ(OffsetOf(callback_, fields[index]), offsets[index]) << index;
    }
    EXPECT_EQ(sizeof(callback_), 40u);
}

TEST_F(UploadCallback, BeginsWithEveryFieldZero) {
    alignas(CloudUploadCallBack) std::uint8_t memory[sizeof(CloudUploadCallBack)];
    std::memset(memory, 0xCC, sizeof(memory));
    asm volatile("" : : "r"(memory) : "memory");
    const auto* callback = new (memory) CloudUploadCallBack;
    EXPECT_EQ(callback->status, 0u);
    EXPECT_EQ(callback->statusFlag, 0);
    EXPECT_EQ(callback->count, 0u);
    EXPECT_EQ(callback->countFlag, 0);
    EXPECT_EQ(callback->amount, 0u);
    EXPECT_EQ(callback->spare, 0);
    EXPECT_EQ(callback->finished, 0);
    EXPECT_EQ(callback->cancelled, 0);
    EXPECT_EQ(callback->retryWithNewName, 0);
}

TEST_F(UploadCallback, AnswersFalseAtItsFalseSlots) {
    for (std::size_t number : {1, 3, 9, 20}) {
        ExpectNoChange([&] { EXPECT_EQ(AskByte(&callback_, number), 0) << number; });
    }
}

TEST_F(UploadCallback, AnswersTrueAtSlot21) {
    ExpectNoChange([&] { EXPECT_EQ(AskByte(&callback_, 21), 1); });
}

TEST_F(UploadCallback, DoesNothingAtItsEmptySlots) {
    for (std::size_t number : {2, 4, 16, 17, 22}) {
        ExpectNoChange([&] {
            CallSlot<void>(&callback_, number, std::uint64_t{0x1111}, std::uint64_t{0x2222},
                           std::uint64_t{0x3333});
        });
    }
}

TEST_F(UploadCallback, KeepsTheStatusOfSlot5ForSlot6) {
    CallSlot<void>(&callback_, 5, std::uint32_t{0xFEDCBA98});
    EXPECT_EQ(callback_.status, 0xFEDCBA98u);
    EXPECT_EQ(CallSlot<std::uint32_t>(&callback_, 6), 0xFEDCBA98u);
}

TEST_F(UploadCallback, KeepsTheByteOfSlot7ForSlot8) {
    CallSlot<void>(&callback_, 7, std::uint64_t{0xFFFFFFFFFFFFFF5A}); // the low byte counts
    EXPECT_EQ(callback_.statusFlag, 0x5A);
    EXPECT_EQ(AskByte(&callback_, 8), 0x5A);
    EXPECT_EQ(callback_.count, 0u);
}

TEST_F(UploadCallback, WantsANewNameForReason1) {
    CallSlot<void>(&callback_, 10, std::uint64_t{0}, std::int32_t{1});
    EXPECT_EQ(callback_.retryWithNewName, 1);
}

TEST_F(UploadCallback, IgnoresEveryOtherReasonAndTheValue) {
    for (std::int32_t reason : {2, 0, -1, 257, 0x10001}) {
        ExpectNoChange([&] { CallSlot<void>(&callback_, 10, std::uint64_t{1}, reason); });
    }
}

TEST_F(UploadCallback, StaysAskedForANewNameAfterAnotherReason) {
    CallSlot<void>(&callback_, 10, std::uint64_t{0}, std::int32_t{1});
    CallSlot<void>(&callback_, 10, std::uint64_t{0}, std::int32_t{2});
    EXPECT_EQ(callback_.retryWithNewName, 1);
}

TEST_F(UploadCallback, IsCancelledBySlot11) {
    EXPECT_EQ(AskByte(&callback_, 12), 0);
    CallSlot<void>(&callback_, 11);
    EXPECT_EQ(callback_.cancelled, 1);
    EXPECT_EQ(AskByte(&callback_, 12), 1);
}

TEST_F(UploadCallback, TakesWhetherItIsCancelledAtSlot23) {
    CallSlot<void>(&callback_, 23, std::uint64_t{0xFFFFFFFFFFFFFF07});
    EXPECT_EQ(callback_.cancelled, 7);
    EXPECT_EQ(AskByte(&callback_, 12), 7);
    CallSlot<void>(&callback_, 23, std::uint8_t{0});
    EXPECT_EQ(AskByte(&callback_, 12), 0);
    EXPECT_EQ(callback_.retryWithNewName, 0);
}

TEST_F(UploadCallback, GivesCountAndAmountAtSlots13To15) {
    callback_.countFlag = 0xA5;
    callback_.count = 0x89ABCDEF;
    callback_.amount = 0x0123456789ABCDEF;
    ExpectNoChange([&] {
        EXPECT_EQ(AskByte(&callback_, 13), 0xA5);
        EXPECT_EQ(CallSlot<std::uint32_t>(&callback_, 14), 0x89ABCDEFu);
        EXPECT_EQ(CallSlot<std::uint64_t>(&callback_, 15), 0x0123456789ABCDEFu);
    });
}

TEST_F(UploadCallback, IsFinishedBySlot18) {
    EXPECT_EQ(AskByte(&callback_, 19), 0);
    CallSlot<void>(&callback_, 18);
    EXPECT_EQ(callback_.finished, 1);
    EXPECT_EQ(AskByte(&callback_, 19), 1);
}

TEST_F(UploadCallback, LetsNoSlotReachTheSpareByte) {
    callback_.spare = 0x5A;
    for (std::size_t number = 1; number <= 23; ++number) {
        CallSlot<std::uint64_t>(&callback_, number, std::uint64_t{1}, std::uint64_t{1});
    }
    EXPECT_EQ(callback_.spare, 0x5A);
    EXPECT_EQ(callback_.count, 0u);
    EXPECT_EQ(callback_.countFlag, 0);
    EXPECT_EQ(callback_.amount, 0u);
}

TEST_F(UploadCallback, BecomesItsRootAtSlot0) {
    ObPvxCallback root;
    const void* ownTable = TableOf(&callback_);
    ASSERT_NE(ownTable, TableOf(&root));
    EXPECT_EQ(CallSlot<void*>(&callback_, 0, std::uint32_t{0}), static_cast<void*>(&callback_));
    EXPECT_EQ(TableOf(&callback_), TableOf(&root));
}

TEST_F(UploadCallback, IsFreedAtSlot0OnlyByTheLowBit) {
    for (std::uint32_t flags : {0u, 2u, 0x80000000u}) {
        auto* callback = new CloudUploadCallBack;
        ForgetReleased();
        CallSlot<void*>(callback, 0, flags);
        EXPECT_EQ(LastReleased(), nullptr) << flags;
        ::operator delete(static_cast<void*>(callback));
    }
    for (std::uint32_t flags : {1u, 3u, 0xFFFFFFFFu}) {
        void* callback = new CloudUploadCallBack;
        ForgetReleased();
        EXPECT_EQ(CallSlot<void*>(callback, 0, flags), callback);
        EXPECT_EQ(LastReleased(), callback) << flags;
    }
}

TEST_F(UploadCallback, HasARootOfThreeSlots) {
    ObPvxCallback root;
    EXPECT_EQ(AskByte(&root, 1), 0);
    CallSlot<void>(&root, 2);
    const void* table = TableOf(&root);
    EXPECT_EQ(CallSlot<void*>(&root, 0, std::uint32_t{0}), static_cast<void*>(&root));
    EXPECT_EQ(TableOf(&root), table);
    EXPECT_EQ(sizeof(root), sizeof(void*));
}

} // namespace
