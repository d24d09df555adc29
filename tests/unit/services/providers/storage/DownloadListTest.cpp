#include <algorithm>
#include <cstring>
#include <string>

#include "services/providers/storage/RecordTexts.h"
#include "tests/unit/services/providers/storage/InstanceFixture.h"

namespace {

using namespace obcontract;

CloudItem Item(const std::wstring& name) {
    const auto item = providers::ItemOf(providers::ProfileOf(7, {L"key", L"label"}), name, L"link");
    return item.value_or(CloudItem{});
}

class DownloadListTest : public obtest::InstanceFixture {
protected:
    void SetUp() override {
        InstanceFixture::SetUp();
        list_ = On::CreateDownloadList::Call(Seven());
        ASSERT_NE(list_, nullptr);
    }

    bool Has(std::uint32_t index) {
        CloudItem item;
        return OnDownloads::GetItem::Call(list_, index, &item) != 0;
    }

    DownloadList* list_ = nullptr;
};

TEST_F(DownloadListTest, ReturnsEachItemByteByByteAndThenNone) {
    const CloudItem one = Item(L"one");
    const CloudItem two = Item(L"two");
    EXPECT_FALSE(Has(0));
    OnDownloads::AddItem::Call(list_, &one);
    OnDownloads::AddItem::Call(list_, &two);
    CloudItem read;
    std::memset(&read, 0xCC, sizeof(read));
    EXPECT_TRUE(OnDownloads::GetItem::Call(list_, 1, &read));
    EXPECT_EQ(std::memcmp(&read, &two, sizeof(read)), 0);
    EXPECT_FALSE(Has(2));
    EXPECT_FALSE(OnDownloads::GetItem::Call(list_, 0, nullptr));
}

TEST_F(DownloadListTest, TakesNoNullAndNoTextWithoutAnEnd) {
    OnDownloads::AddItem::Call(list_, nullptr);
    for (int field = 0; field < 4; ++field) {
        CloudItem item = Item(L"name");
        if (field == 0) std::ranges::fill(item.name, L'x');
        if (field == 1) std::ranges::fill(item.link, L'x');
        if (field == 2) std::ranges::fill(item.profile.accountKey, L'x');
        if (field == 3) std::ranges::fill(item.profile.accountLabel, L'x');
        OnDownloads::AddItem::Call(list_, &item);
    }
    EXPECT_FALSE(Has(0));
}

TEST_F(DownloadListTest, BelongsToTheInstanceThatMadeIt) {
    EXPECT_TRUE(sevenInstance_->Find(list_));
    EXPECT_FALSE(eightInstance_->Find(list_));
    On::DestroyDownloadList::Call(Eight(), list_);
    EXPECT_TRUE(sevenInstance_->Find(list_));
    On::DestroyDownloadList::Call(Seven(), list_);
    EXPECT_FALSE(sevenInstance_->Find(list_));
    On::DestroyDownloadList::Call(Seven(), nullptr);
}

TEST(RecordTexts, ARecordTakesTextsUpToItsFields) {
    const ProviderProfile profile{};
    EXPECT_TRUE(providers::ItemOf(profile, std::wstring(1568, L'n'), std::wstring(2408, L'l')));
    EXPECT_FALSE(providers::ItemOf(profile, std::wstring(1569, L'n'), L"l"));
    EXPECT_FALSE(providers::ItemOf(profile, L"n", std::wstring(2409, L'l')));
}

TEST(RecordTexts, AProfilesLabelIsCutAndItsKeyIsWholeOrEmpty) {
    const std::wstring label(60, L'l');
    const auto whole = providers::ProfileOf(7, {std::wstring(999, L'k'), label});
    EXPECT_EQ(whole.accountKey, std::wstring(999, L'k'));
    EXPECT_EQ(whole.accountLabel, std::wstring(50, L'l'));
    EXPECT_STREQ(providers::ProfileOf(7, {std::wstring(1000, L'k'), label}).accountKey, L"");
}

TEST(RecordTexts, ATextInABufferEndsWithinIt) {
    EXPECT_EQ(providers::TextIn(L"abc", 4), L"abc");
    EXPECT_FALSE(providers::TextIn(L"abc", 3));
    EXPECT_FALSE(providers::TextIn(nullptr, 3));
}

} // namespace
