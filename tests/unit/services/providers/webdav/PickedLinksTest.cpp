// Links to the files of one selection: made once each, all of them or none.
#include "services/providers/webdav/PickedLinks.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/services/providers/webdav/FakeDavAccount.h"

using namespace providers;

namespace {

class PickedLinksTest : public testing::Test {
protected:
    LinkedFiles Make(const std::vector<std::wstring>& names) {
        std::vector<DavItem> items;
        for (const std::wstring& name : names) items.push_back(File(name));
        begun_.clear();
        return links_.Make(AccountOf(fake_), RowsOf(items), cancelled_.Get(),
                           [this](std::size_t index) { begun_.push_back(index); });
    }
    void ExpectRefusal(const std::vector<std::wstring>& names, const std::wstring& sentence) {
        const LinkedFiles linked = Make(names);
        EXPECT_TRUE(linked.files.empty());
        EXPECT_EQ(linked.sentence, sentence);
    }
    static std::wstring NotLinked(const std::wstring& name, const std::wstring& why) {
        return L"\u201C" + name + L"\u201D has no link yet, and nothing was put into the mail. " +
               why;
    }
    static std::wstring TooLong(const std::wstring& name) {
        return L"The link to \u201C" + name +
               L"\u201D is too long for the mail. Please leave the file out.";
    }

    const std::wstring tooMany_ =
        L"The links to so many files don't fit into one mail. Please choose fewer files.";
    const std::shared_ptr<FakeDavAccount> fake_ = std::make_shared<FakeDavAccount>();
    const ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    PickedLinks links_{L"WebDAV"};
    std::vector<std::size_t> begun_;
};

TEST_F(PickedLinksTest, HaveTheAccountTheShownNameAndTheLinkOfEachFile) {
    fake_->links[L"b"] = Link(L"https://l/2", L"secret");
    const LinkedFiles linked = Make({L"a\n", L"b"});
    ASSERT_EQ(linked.files.size(), 2U);
    EXPECT_EQ(linked.files[0].account.key, L"{key}");
    EXPECT_EQ(linked.files[0].name, L"a\uFFFD");
    EXPECT_EQ(linked.files[0].link, L"https://l/a\n");
    EXPECT_EQ(linked.files[1].link, L"https://l/2");
    EXPECT_EQ(linked.passwords, (std::vector<std::wstring>{L"", L"secret"}));
    EXPECT_EQ(begun_, (std::vector<std::size_t>{0, 1}));
}

TEST_F(PickedLinksTest, EndAtTheFirstFailure) {
    fake_->links[L"b"].sentence = L"The server is too busy.";
    ExpectRefusal({L"a", L"b", L"c"}, NotLinked(L"b", L"The server is too busy."));
    EXPECT_EQ(fake_->shares, 2);
}

TEST_F(PickedLinksTest, FailWithoutAReasonWhenTheProviderGivesNone) {
    fake_->links[L"a"] = {};
    ExpectRefusal({L"a"}, NotLinked(L"a", L"The link can't be made."));
    fake_->links[L"a"] = Link(L"");
    fake_->links[L"a"].sentence = L"Not about this.";
    ExpectRefusal({L"a"}, NotLinked(L"a", L"The link can't be made."));
    fake_->throws = true;
    ExpectRefusal({L"c"}, NotLinked(L"c", L"The link can't be made."));
}

// Otherwise the server would have two, and nobody would know the password of the first.
TEST_F(PickedLinksTest, AreMadeOnceForAFile) {
    fake_->links[L"a"] = Link(L"https://l/1", L"secret");
    fake_->links[L"b"].sentence = L"No.";
    ExpectRefusal({L"a", L"b"}, NotLinked(L"b", L"No."));
    fake_->links[L"a"] = Link(L"https://l/2", L"another");
    const LinkedFiles linked = Make({L"a"});
    ASSERT_EQ(linked.files.size(), 1U);
    EXPECT_EQ(linked.files[0].link, L"https://l/1");
    EXPECT_EQ(linked.passwords[0], L"secret");
    EXPECT_EQ(fake_->shares, 2);
}

TEST_F(PickedLinksTest, OfAnotherAccountAreLinksOfTheirOwn) {
    const auto rows = RowsOf({File(L"a")});
    for (const wchar_t* key : {L"{1}", L"{2}", L"{1}"}) {
        links_.Make(AccountOf(fake_, key), rows, cancelled_.Get(), [](std::size_t) {});
    }
    EXPECT_EQ(fake_->shares, 2);
}

TEST_F(PickedLinksTest, AreEndedUnlessTheyAreHandedOut) {
    const LinkedFiles first = Make({L"a", L"b"});
    const LinkedFiles second = Make({L"b", L"c"});
    links_.EndAllBut(second.files);
    EXPECT_EQ(fake_->EndedLinks(), std::vector<std::wstring>{L"https://l/a"});
    links_.EndAllBut({});
    EXPECT_EQ(fake_->EndedLinks().size(), 1U) << "each once";
    Make({L"b"});
    EXPECT_EQ(fake_->shares, 4) << "a link that was handed out isn't given a second time";
}

TEST_F(PickedLinksTest, AreNotMadeForNamesThatNeverFit) {
    const std::wstring longName(1568, L'n');
    ExpectRefusal({L"a", longName}, TooLong(longName));
    std::vector<std::wstring> many;
    for (int index = 0; index < 100; ++index)
        many.push_back(std::wstring(400, L'a' + index % 26) + std::to_wstring(index));
    ExpectRefusal(many, tooMany_);
    EXPECT_EQ(fake_->shares, 0);
}

TEST_F(PickedLinksTest, OfFullLengthAreTaken) {
    const std::wstring link = L"https://l/" + std::wstring(1556, L'x');
    fake_->links[L"a"] = Link(link);
    EXPECT_EQ(Make({L"a"}).files.at(0).link, link);
    fake_->links[L"b"] = Link(link + L"x");
    ExpectRefusal({L"b"}, TooLong(L"b"));
    fake_->links[L"c"] = Link(link.substr(0, 1564) + L"|"); // which takes three characters
    ExpectRefusal({L"c"}, TooLong(L"c"));
}

TEST_F(PickedLinksTest, StopOnceTheyCannotFitTheMail) {
    std::vector<std::wstring> many;
    for (int index = 0; index < 40; ++index) {
        many.push_back(L"n" + std::to_wstring(index));
        fake_->links[many.back()] = Link(L"https://l/" + std::wstring(1500, L'x') + many.back());
    }
    ExpectRefusal(many, tooMany_);
    EXPECT_LT(fake_->shares, 25);
    EXPECT_GT(fake_->shares, 15);
}

TEST_F(PickedLinksTest, EndWithoutASentenceAfterACancel) {
    fake_->isShareSilent = true;
    fake_->links[L"a"] = {};
    std::thread user([this] {
        EXPECT_TRUE(obtest::WaitUntil([this] { return fake_->shares == 1; }));
        SetEvent(cancelled_.Get());
    });
    ExpectRefusal({L"a", L"b"}, L"");
    user.join();
    ExpectRefusal({L"c"}, L"");
    EXPECT_EQ(fake_->shares, 1);
}

} // namespace
