// The text of a link, field by field.
#include "OBCore/cloud/ShareText.h"

#include "OBCore/cloud/ProviderTexts.h"
#include "OBCore/cloud/ShareUploaded.h"
#include "OBCore/cloud/UploadSteps.h"
#include "tests/unit/WebVellant/OBCore/cloud/CloudFixture.h"

namespace {

using obcontract::CloudItem;
using obcontract::DownloadList;
using obcore::AppendShareTail;
using obcore::FormatShareText;
using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;
using namespace obcore::slots;

std::wstring TextOf(UINT id) { return obcore::LoadText(obcore::TextId{id}, 4096); }

std::wstring Filled(std::wstring text, const std::wstring& place, const std::wstring& value) {
    return text.replace(text.find(place), place.size(), value);
}

// The six fields after an item's link.
std::wstring Tail(const std::wstring& name, int days) {
    const std::wstring expiry = days < 0 ? L"" : Filled(TextOf(145), L"%d", std::to_wstring(days));
    return L"|" + Filled(TextOf(130), L"%s", name) + L"|" + TextOf(131) + L"|" + TextOf(132) +
           L"|" + TextOf(133) + L"|" + expiry + TextOf(134) + L"|#POPUP_MESSAGE_BEGIN#" +
           TextOf(160) + L"#POPUP_MESSAGE_END#";
}

std::vector<std::wstring> Fields(const std::wstring& text) {
    std::vector<std::wstring> fields(1);
    for (const wchar_t unit : text) {
        if (unit == L'|') {
            fields.emplace_back();
        } else {
            fields.back() += unit;
        }
    }
    return fields;
}

class ShareText : public obtest::CloudFixture {
protected:
    void Add(const std::wstring& name, const std::wstring& link) {
        CloudItem item{};
        name.copy(item.name, std::size(item.name) - 1);
        link.copy(item.link, std::size(item.link) - 1);
        OnDownloadList::AddItem::Call(list_, &item);
    }
    std::wstring Format(std::int32_t days = -1) {
        std::wstring text = L"left over";
        FakeModules::ForgetCalls();
        FormatShareText(list_, L"Cloud", days, text);
        return text;
    }
    void SetUp() override {
        CloudFixture::SetUp();
        list_ = OnCloudProvider::CreateDownloadList::Call(Provider(7));
    }
    void TearDown() override {
        OnCloudProvider::DestroyDownloadList::Call(Provider(7), list_);
        CloudFixture::TearDown();
    }

    DownloadList* list_ = nullptr;
};

TEST_F(ShareText, IsOnlyAZeroForAnEmptyList) { EXPECT_EQ(Format(), L"0"); }

TEST_F(ShareText, HasTenFieldsForOneFile) {
    Add(L"a.zip", L"https://x/a");
    const std::wstring text = Format();
    EXPECT_EQ(text, L"0| |a.zip|https://x/a" + Tail(L"Cloud", -1));
    const auto fields = Fields(text);
    ASSERT_EQ(fields.size(), 10u);
    EXPECT_EQ(fields[0], L"0");
    EXPECT_EQ(fields[1], L" ");
    EXPECT_EQ(fields[2], L"a.zip");
    EXPECT_EQ(fields[3], L"https://x/a");
    EXPECT_NE(fields[4].find(L"Cloud"), std::wstring::npos);
    EXPECT_EQ(fields[8], TextOf(134));
    EXPECT_TRUE(CallsOf({L"AddFileToDeletionSchedule"}).empty());
}

TEST_F(ShareText, RepeatsTheGroupForEachFile) {
    Add(L"a.zip", L"https://x/a");
    Add(L"b.zip", L"https://x/b");
    EXPECT_EQ(Format(), L"0| |a.zip|https://x/a" + Tail(L"Cloud", -1) + L"| |b.zip|https://x/b" +
                            Tail(L"Cloud", -1));
}

TEST_F(ShareText, NamesTheDaysBeforeTheClosingTextInOneField) {
    Add(L"a.zip", L"https://x/a");
    for (const int days : {0, 1, 30, 2147483647}) {
        EXPECT_EQ(Format(days), L"0| |a.zip|https://x/a" + Tail(L"Cloud", days));
        EXPECT_EQ(CallsOf({L"AddFileToDeletionSchedule"}),
                  Lines{L"AddFileToDeletionSchedule(item(\"a.zip\", \"https://x/a\"), " +
                        std::to_wstring(days) + L")"});
    }
}

TEST_F(ShareText, LeavesTheDaysOutWhereTheDeletionIsNotScheduled) {
    Answer(L"AddFileToDeletionSchedule.b", L"0");
    Add(L"a", L"1");
    Add(L"b", L"2");
    Add(L"c", L"3");
    EXPECT_EQ(Format(7), L"0| |a|1" + Tail(L"Cloud", 7) + L"| |b|2" + Tail(L"Cloud", -1) +
                             L"| |c|3" + Tail(L"Cloud", 7));
}

TEST_F(ShareText, KeepsPipesOfItsFieldsAsTheyAre) {
    Add(L"a|b", L"c|d");
    EXPECT_TRUE(Format().starts_with(L"0| |a|b|c|d|"));
}

TEST_F(ShareText, HasTextsOfFullLength) {
    const std::wstring name(1568, L'n');
    const std::wstring link(2408, L'l');
    Add(name, link);
    EXPECT_EQ(Format(), L"0| |" + name + L"|" + link + Tail(L"Cloud", -1));
}

// A link without a NUL would run on into the name, which follows it in the record.
TEST_F(ShareText, EndsATextThatFillsItsFieldWithTheField) {
    const std::wstring name(1569, L'n');
    const std::wstring link(2409, L'l');
    CloudItem item{};
    name.copy(item.name, name.size());
    link.copy(item.link, link.size());
    OnDownloadList::AddItem::Call(list_, &item);
    Add(L"b", L"2");
    EXPECT_EQ(Format(),
              L"0| |" + name + L"|" + link + Tail(L"Cloud", -1) + L"| |b|2" + Tail(L"Cloud", -1));
}

TEST_F(ShareText, NeverGivesAnItemTheLinkOfTheOneBefore) {
    Answer(L"GetItem.nameOnly", L"1");
    Add(L"a", L"1");
    Add(L"b", L"2");
    EXPECT_EQ(Format(), L"0| |a|1" + Tail(L"Cloud", -1) + L"| |b|" + Tail(L"Cloud", -1));
}

TEST_F(ShareText, TakesADisplayNameThatLooksLikeAFormat) {
    std::wstring text = L"x";
    AppendShareTail(text, L"100%s %d", 3);
    EXPECT_EQ(text, L"x" + Tail(L"100%s %d", 3));
}

TEST_F(ShareText, CopiesEveryUploadedItemToTheListThatIsShared) {
    obcontract::UploadList* uploaded = OnCloudProvider::CreateUploadList::Call(Provider(7), L"ann");
    OnUploadList::AddFile::Call(uploaded, L"C:\\a", L"a", 0, 0, L"");
    OnUploadList::AddFile::Call(uploaded, L"C:\\b", L"b", 0, 0, L"");
    FakeModules::ForgetCalls();
    std::wstring text;
    obcore::ShareUploaded(Provider(7), uploaded, text, 4);
    EXPECT_EQ(CallsOf({L"AddItem", L"ShareItems", L"AddFileToDeletionSchedule"}),
              (Lines{L"AddItem(list, item(\"a\", \"\"))", L"AddItem(list, item(\"b\", \"\"))",
                     L"ShareItems(provider7, list)",
                     L"AddFileToDeletionSchedule(item(\"a\", \"https://7.example/a\"), 4)",
                     L"AddFileToDeletionSchedule(item(\"b\", \"https://7.example/b\"), 4)"}));
    EXPECT_EQ(text, L"0| |a|https://7.example/a" + Tail(L"provider7", 4) +
                        L"| |b|https://7.example/b" + Tail(L"provider7", 4));
    OnCloudProvider::DestroyUploadList::Call(Provider(7), uploaded);
}

TEST_F(ShareText, LeavesTheLinkAloneWhenTheShareFails) {
    obcontract::UploadList* uploaded = OnCloudProvider::CreateUploadList::Call(Provider(7), L"ann");
    Answer(L"provider7.ShareItems", L"0");
    FakeModules::ForgetCalls();
    std::wstring text = L"before";
    obcore::ShareUploaded(Provider(7), uploaded, text, 4);
    EXPECT_EQ(text, L"before");
    EXPECT_EQ(CallsOf({L"DestroyDownloadList", L"GetDisplayName"}),
              Lines{L"DestroyDownloadList(provider7, list)"});
    OnCloudProvider::DestroyUploadList::Call(Provider(7), uploaded);
}

class CloudTargetFolder : public obtest::CloudFixture {
protected:
    std::wstring Made(const wchar_t* root) {
        Answer(L"provider7.GetAccountRootFolder", root);
        std::wstring folder = L"left over";
        obcore::MakeTargetFolder(Provider(7), folder, obtest::Profile(7, L"Ann", L"ann"));
        return folder;
    }
};

TEST_F(CloudTargetFolder, IsNamedAfterTheLocalTime) {
    EXPECT_EQ(Made(L""), L"Quillbox\\20260304050607");
    EXPECT_EQ(Made(L""), L"Quillbox\\20260304050608");
    EXPECT_EQ(CallsOf({L"GetAccountRootFolder"})[0],
              L"GetAccountRootFolder(provider7, \"ann\", 2048)");
}

TEST_F(CloudTargetFolder, IsBelowTheAccountsRoot) {
    EXPECT_EQ(Made(L"root"), L"root\\Quillbox\\20260304050607");
    const std::wstring longest(2047, L'r');
    EXPECT_EQ(Made(longest.c_str()), longest + L"\\Quillbox\\20260304050608");
}

TEST_F(CloudTargetFolder, TakesARootThatFillsItsBuffer) {
    Answer(L"provider7.GetAccountRootFolder.noNul", L"1");
    const std::wstring root(2048, L'r');
    EXPECT_EQ(Made(root.c_str()), root + L"\\Quillbox\\20260304050607");
}

class ProviderName : public obtest::CloudFixture {};

TEST_F(ProviderName, IsAskedWithRoomFor128Characters) {
    Answer(L"provider7.GetDisplayName", std::wstring(200, L'n').c_str());
    std::wstring name = L"left over";
    obcore::ProviderDisplayName(Provider(7), name);
    EXPECT_EQ(name, std::wstring(127, L'n'));
    EXPECT_EQ(CallsOf({L"GetDisplayName"}), Lines{L"GetDisplayName(provider7, 1, 128)"});
}

TEST_F(ProviderName, EndsWithItsBufferWhereTheProviderLeavesNoNul) {
    Answer(L"provider7.GetDisplayName", std::wstring(200, L'n').c_str());
    Answer(L"provider7.GetDisplayName.noNul", L"1");
    std::wstring name;
    obcore::ProviderDisplayName(Provider(7), name);
    EXPECT_EQ(name, std::wstring(128, L'n'));
}

TEST_F(ProviderName, IsEmptyAfterTheAssertionBoxWithoutAProvider) {
    const MessageBoxWatcher boxes;
    std::wstring name = L"left over";
    obcore::ProviderDisplayName(nullptr, name);
    EXPECT_EQ(name, L"");
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
}

} // namespace
