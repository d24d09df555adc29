// The text of a pick: names, sentence, providers.
#include "OBCore/cloud/PickedText.h"

#include "tests/unit/WebVellant/OBCore/cloud/PickFixture.h"

namespace {

using obtest::MessageBoxWatcher;

class PickedText : public obtest::PickFixture {
protected:
    std::wstring TextOf(const wchar_t* items) {
        Answer(L"GetSharedListFromOpenPicker", items);
        EXPECT_TRUE(Pick());
        return record_.linkText;
    }
    static std::wstring Middle() { return L"|||" + Sentence() + L" *: |||"; }
};

TEST_F(PickedText, NamesEachFileAndItsProvider) {
    Answer(L"provider7.GetDisplayName", L"Cloud");
    EXPECT_EQ(TextOf(L"a.pdf|1;b.pdf|2"), L"||a.pdf||b.pdf" + Middle() + L"Cloud||Cloud||");
}

TEST_F(PickedText, IsInTheOrderOfCodeUnitsWithItsProvidersInThatOrder) {
    // Upper case before lower case, a prefix before what it begins, half a pair before U+E000.
    EXPECT_EQ(TextOf(L"b|1|8;B|1;a|1;ab|1|8;\uFF41|1;\xD83D\xDE00|1|8;\u00E9|1"),
              L"||B||a||ab||b||\u00E9||\xD83D\xDE00||\uFF41" + Middle() +
                  L"provider7||provider7||provider8||provider8||provider7||provider8||provider7||");
}

TEST_F(PickedText, HasOneEntryForFilesOfOneNameWithTheLaterProvider) {
    EXPECT_EQ(TextOf(L"a|1;a|2|8"), L"||a" + Middle() + L"provider8||");
    EXPECT_EQ(TextOf(L"a|1|8;a|2"), L"||a" + Middle() + L"provider7||");
}

TEST_F(PickedText, AssertsAMissingProviderAndLeavesItsNameEmpty) {
    const MessageBoxWatcher boxes;
    EXPECT_EQ(TextOf(L"a|1;b|2|99"), L"||a||b" + Middle() + L"provider7||||");
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
}

TEST_F(PickedText, HasNoLinksNoExpiryAndNoPopup) {
    const std::wstring text = TextOf(L"a|https://secret");
    EXPECT_EQ(text.find(L"https"), std::wstring::npos);
    EXPECT_EQ(text.find(L"POPUP"), std::wstring::npos);
    EXPECT_TRUE(text.starts_with(L"||"));
}

TEST_F(PickedText, KeepsThePipesOfAName) {
    auto* list = obcore::slots::OnCloudProvider::CreateDownloadList::Call(Provider(7));
    obcontract::CloudItem item{};
    item.profile.providerId = 7;
    wcscpy(item.name, L"a|b");
    obcore::slots::OnDownloadList::AddItem::Call(list, &item);
    std::wstring text = L"left over";
    obcore::FormatPickedText(job_.OwnedProviderManager, list, text);
    EXPECT_EQ(text, L"||a|b" + Middle() + L"provider7||");
    obcore::ProviderManager().DeleteDownloadList(Provider(7), list);
}

TEST_F(PickedText, EndsANameThatFillsItsFieldWithTheField) {
    auto* list = obcore::slots::OnCloudProvider::CreateDownloadList::Call(Provider(7));
    const std::wstring name(1569, L'n');
    obcontract::CloudItem item{};
    item.profile.providerId = 7;
    name.copy(item.name, name.size());
    obcore::slots::OnDownloadList::AddItem::Call(list, &item);
    std::wstring text;
    obcore::FormatPickedText(job_.OwnedProviderManager, list, text);
    EXPECT_EQ(text, L"||" + name + Middle() + L"provider7||");
    obcore::ProviderManager().DeleteDownloadList(Provider(7), list);
}

TEST_F(PickedText, NeverGivesAFileTheProviderOfTheOneBefore) {
    Answer(L"GetItem.nameOnly", L"1");
    const MessageBoxWatcher boxes;
    EXPECT_EQ(TextOf(L"a|1|8;b|2|8"), L"||a||b" + Middle() + L"provider8||||");
    ASSERT_EQ(boxes.Seen().size(), 1u); // nobody has the second one
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
}

TEST_F(PickedText, OfAnEmptyListIsTheSentenceAlone) {
    auto* list = obcore::slots::OnCloudProvider::CreateDownloadList::Call(Provider(7));
    std::wstring text;
    obcore::FormatPickedText(job_.OwnedProviderManager, list, text);
    EXPECT_EQ(text, Middle());
    obcore::ProviderManager().DeleteDownloadList(Provider(7), list);
}

} // namespace
