#include "contracts/BrowserContext.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

using obcontract::BrowserContext;

namespace {

// The arguments that the function in a slot of the hook received.
struct Asked {
    int slot = -1;
    void* self = nullptr;
    void* first = nullptr;
    void* second = nullptr;
};
Asked asked;

// A hook of another compiler: a pointer to ten functions and nothing else. Each answers its own
// number, above a word with another value.
template <int Slot>
std::uint64_t Answer(void* self, void* first, void* second) {
    asked = {Slot, self, first, second};
    return 0xABCD0000'00000000 + Slot;
}

template <int... Slot>
void* const* TableOf(std::integer_sequence<int, Slot...>) {
    static void* const table[] = {reinterpret_cast<void*>(&Answer<Slot>)...};
    return table;
}

template <class Type>
Type* Pointer(std::uintptr_t value) {
    return reinterpret_cast<Type*>(value);
}

class BrowserContextSlots : public testing::Test {
protected:
    void SetUp() override { asked = {}; }

    void ExpectAsked(int slot, void* first = nullptr, void* second = nullptr) const {
        EXPECT_EQ(asked.slot, slot);
        EXPECT_EQ(asked.self, &table_);
        if (first) {
            EXPECT_EQ(asked.first, first);
        }
        if (second) {
            EXPECT_EQ(asked.second, second);
        }
    }

    void* const* table_ = TableOf(std::make_integer_sequence<int, 10>());
    // By way of a volatile: the compiler must not look through to the table.
    void* volatile object_ = &table_;
    BrowserContext& context_ = *static_cast<BrowserContext*>(object_);
    IFileDialog* const dialog_ = Pointer<IFileDialog>(0x11);
};

TEST_F(BrowserContextSlots, RunTheBrowsersOwnDialogsAndQueriesFromZeroToThree) {
    auto* const request = Pointer<OPENFILENAMEW>(0x22);
    EXPECT_EQ(context_.CallGetOpenFileName(request), 0);
    ExpectAsked(0, request);
    const HWND owner = Pointer<HWND__>(0x33);
    EXPECT_EQ(context_.CallShow(dialog_, owner), 1);
    ExpectAsked(1, dialog_, owner);
    auto* const item = Pointer<IShellItem*>(0x44);
    EXPECT_EQ(context_.CallGetResult(dialog_, item), 2);
    ExpectAsked(2, dialog_, item);
    auto* const items = Pointer<IShellItemArray*>(0x55);
    EXPECT_EQ(context_.CallGetResults(dialog_, items), 3);
    ExpectAsked(3, dialog_, items);
}

TEST_F(BrowserContextSlots, ReturnPageAndWindowFromFourToSeven) {
    EXPECT_EQ(context_.GetPageUrl(), Pointer<const wchar_t>(0xABCD0000'00000004));
    ExpectAsked(4);
    EXPECT_EQ(context_.GetBrowserWindowClasses(),
              Pointer<const wchar_t* const>(0xABCD0000'00000005));
    ExpectAsked(5);
    EXPECT_EQ(context_.GetBrowserWindowClassCount(), 6);
    ExpectAsked(6);
    EXPECT_EQ(context_.IsPickerWanted(), 7);
    ExpectAsked(7);
}

TEST_F(BrowserContextSlots, TakeTheLinkTextAndTheCleanupNamesAtEightAndNine) {
    wchar_t text[] = L"link";
    context_.InsertLinkText(text);
    ExpectAsked(8, text);
    wchar_t folder[] = L"C:\\run";
    wchar_t file[] = L"C:\\run\\mail.zip";
    context_.NoteCleanupFiles(folder, file);
    ExpectAsked(9, folder, file);
}

} // namespace
