#include <gtest/gtest.h>

#include "demo/mailpage/LinkText.h"

namespace {

using mailpage::LinkText;
using mailpage::ReadLinkText;

const std::wstring kPopup = L"#POPUP_MESSAGE_BEGIN#Check the recipients.#POPUP_MESSAGE_END#";

std::wstring Group(const std::wstring& name, const std::wstring& link) {
    return L"| |" + name + L"|" + link + L"|Shared from: Folder|Open it.|Copy it.|Ask.||" + kPopup;
}

void ExpectFile(const LinkText& text, std::size_t index, const wchar_t* name, const wchar_t* link) {
    ASSERT_LT(index, text.files.size());
    EXPECT_EQ(text.files[index].name, name);
    EXPECT_EQ(text.files[index].link, link);
}

TEST(MailPageLinkText, HasNameLinkAndSentencesOfAnUploadedFile) {
    const LinkText text = ReadLinkText(L"0" + Group(L"Report.zip", L"https://a/b"));
    ASSERT_EQ(text.files.size(), 1u);
    ExpectFile(text, 0, L"Report.zip", L"https://a/b");
    EXPECT_EQ(text.message, L"Report.zip\nhttps://a/b\nShared from: Folder\nOpen it.\nCopy it.\n"
                            L"Ask.\n");
    EXPECT_EQ(text.popup, L"Check the recipients.");
}

TEST(MailPageLinkText, HasEachUploadedFile) {
    const LinkText text =
        ReadLinkText(L"0" + Group(L"one.zip", L"https://a/1") + Group(L"two.zip", L"https://a/2"));
    ASSERT_EQ(text.files.size(), 2u);
    ExpectFile(text, 0, L"one.zip", L"https://a/1");
    ExpectFile(text, 1, L"two.zip", L"https://a/2");
    EXPECT_NE(text.message.find(L"Ask.\n\ntwo.zip\n"), std::wstring::npos)
        << "a blank line between";
    EXPECT_EQ(text.message.find(L'|'), std::wstring::npos);
    EXPECT_EQ(text.message.find(L'#'), std::wstring::npos);
}

TEST(MailPageLinkText, TakesANameWithASeparator) {
    const LinkText text = ReadLinkText(L"0" + Group(L"a|b| |c.zip", L"https://a/b"));
    ASSERT_EQ(text.files.size(), 1u);
    ExpectFile(text, 0, L"a|b| |c.zip", L"https://a/b");
}

TEST(MailPageLinkText, HasNamesLinksAndProvidersOfPickedFiles) {
    const LinkText text =
        ReadLinkText(L"||a b.zip https://a/1||c.pdf https://a/2|||Service *: |||Folder||Server||");
    ASSERT_EQ(text.files.size(), 2u);
    ExpectFile(text, 0, L"a b.zip", L"https://a/1");
    ExpectFile(text, 1, L"c.pdf", L"https://a/2");
    EXPECT_EQ(text.message,
              L"a b.zip\nhttps://a/1\nc.pdf\nhttps://a/2\n\nService *: Folder, Server\n");
    EXPECT_EQ(text.popup, L"");
}

TEST(MailPageLinkText, LeavesAnyOtherTextAsItIs) {
    const std::wstring texts[] = {
        L"https://a/b",
        L"",
        L"0",
        L"0| |",
        L"||",
        L"|||",
        L"0| |Report.zip|https://a/b",                          // cut short
        L"0| |Report.zip|https://a/b|#POPUP_MESSAGE_END#",      // no beginning
        L"0| |Report.zip|" + kPopup,                            // no link
        L"0" + Group(L"one.zip", L"https://a/1") + L"|and more" // something after a file
    };
    for (const std::wstring& given : texts) {
        const LinkText text = ReadLinkText(given);
        ASSERT_EQ(text.files.size(), 1u);
        ExpectFile(text, 0, L"", given.c_str());
        EXPECT_EQ(text.message, given);
    }
}

} // namespace
