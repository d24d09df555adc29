#include "OBCore/modules/ForeignTexts.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"

namespace {

using namespace obcontract;
using obcore::DisplayNameOf;
using obcore::TextIn;

TEST(ForeignText, EndsAtTheFirstNul) {
    const wchar_t buffer[8] = L"one\0two";
    EXPECT_EQ(TextIn(buffer), L"one");
    EXPECT_EQ(TextIn(std::array<wchar_t, 3>{}), L"");
}

TEST(ForeignText, IsTheWholeBufferWithoutANul) {
    const wchar_t buffer[4] = {L'f', L'u', L'l', L'l'};
    EXPECT_EQ(TextIn(std::span(buffer).first(3)), L"ful");
    EXPECT_EQ(TextIn(buffer), L"full");
    EXPECT_EQ(TextIn({}), L"");
}

// A provider that has a name and nothing else.
class NamedProvider : public CloudProvider {
public:
    explicit NamedProvider(const std::wstring& name) : CloudProvider{}, name_(name) {
        constexpr std::size_t slot = obcore::slots::OnCloudProvider::GetDisplayName::kNumber;
        slots_[slot] = reinterpret_cast<void*>(&GiveName);
        table = slots_.data();
    }

    ProviderKind Kind() const { return kind_; }
    std::uint32_t Capacity() const { return capacity_; }

private:
    // Fills the buffer to its end when the name is that long.
    static void GiveName(CloudProvider* provider, ProviderKind kind, wchar_t* buffer,
                         std::uint32_t* capacity) {
        auto& self = *static_cast<NamedProvider*>(provider);
        self.kind_ = kind;
        self.capacity_ = *capacity;
        std::copy_n(self.name_.begin(), std::min<std::size_t>(self.name_.size(), *capacity),
                    buffer);
    }

    std::array<void*, kCloudProviderSlotCount> slots_{};
    std::wstring name_;
    ProviderKind kind_{};
    std::uint32_t capacity_ = 0;
};

TEST(ProviderDisplayNames, AreThoseOfTheStorageInABufferOf128Characters) {
    NamedProvider provider(L"Network Folder");
    EXPECT_EQ(DisplayNameOf(&provider), L"Network Folder");
    EXPECT_EQ(provider.Kind(), ProviderKind::Storage);
    EXPECT_EQ(provider.Capacity(), 128u);
}

TEST(ProviderDisplayNames, EndWithTheBufferWithoutANul) {
    NamedProvider provider(std::wstring(130, L'x'));
    EXPECT_EQ(DisplayNameOf(&provider), std::wstring(128, L'x'));
}

TEST(ProviderDisplayNames, AreEmptyWhenTheProviderFillsNone) {
    NamedProvider provider(L"");
    EXPECT_EQ(DisplayNameOf(&provider), L"");
}

// Items that a list numbers from 0; the second one has a name only.
struct TwoItems {
    static Bool Call(TwoItems* list, std::uint32_t index, CloudItem* item) {
        list->asked.push_back(index);
        if (index == 2) return 0;
        item->name[0] = L'a';
        if (index == 0) item->link[0] = L'b';
        return 1;
    }
    std::vector<std::uint32_t> asked;
};

TEST(ForeignItems, AreReadUpToTheRefusedOneAndBeginAsZeros) {
    TwoItems list;
    std::vector<std::wstring> seen;
    obcore::ForEachItem<TwoItems>(&list, [&](const CloudItem& item) {
        seen.push_back(TextIn(item.name) + L":" + TextIn(item.link));
    });
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"a:b", L"a:"}));
    EXPECT_EQ(list.asked, (std::vector<std::uint32_t>{0, 1, 2}));
}

} // namespace
