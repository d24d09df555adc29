// Accounts of servers whose certificates can't be used: what the user reads, and that nothing is
// sent.
#include <gtest/gtest.h>

#include "contracts/ProviderManager.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/webdav/DavCheck.h"
#include "services/providers/webdav/WebDav.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/providers/webdav/DavUploadFixture.h"

namespace providers {
namespace {

class DavCertificates : public testing::Test {
protected:
    DavCertificates() { obtest::ClearProductRegistry(); }
    ~DavCertificates() override {
        for (const StorageAccount& account : book_.Accounts(kWebDavId)) {
            RemoveDavAccount(book_, account.key);
        }
        obtest::ClearProductRegistry();
    }

    UploadResult UploadTo(const HttpUrl& root) {
        const auto account =
            AddDavAccount(book_, {root, user_, L"https://h/{path}", false}, password_);
        EXPECT_TRUE(account.has_value());
        if (!account) return {};
        const std::wstring file = folder_.File(L"a.zip", "content");
        return provider_.Upload(account->key, {file, L"a.zip", L"Quillbox"}, progress_);
    }
    // Under Wine what is wrong isn't known, and the sentence names the certificate alone.
    static void ExpectCertificate(const std::wstring& sentence, const wchar_t* server) {
        EXPECT_NE(std::wstring::npos, sentence.find(L"certificate")) << ToUtf8(sentence);
        EXPECT_NE(std::wstring::npos, sentence.find(L"localhost")) << ToUtf8(server);
    }

    AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    WebDav provider_{book_, kNoPauses};
    const std::wstring user_ = obtest::ServerValue(L"SERVER_USER");
    const ObLib::Secret password_{ToUtf8(obtest::ServerValue(L"SERVER_PASSWORD")).c_str()};
    obtest::TestFolder folder_;
    RecordedProgress progress_;
};

constexpr const wchar_t* kBadServers[] = {L"TLS_EXPIRED_URL", L"TLS_EARLY_URL",
                                          L"TLS_OTHERHOST_URL", L"TLS_UNKNOWN_URL"};

TEST_F(DavCertificates, AreExplainedAtTheLogin) {
    for (const wchar_t* server : kBadServers) {
        DavServers servers(book_, kNoPauses);
        const DavCheckResult result =
            CheckDavLogin(servers, ServerUrl(server), user_, password_, nullptr);
        ExpectCertificate(result.sentence, server);
        EXPECT_TRUE(result.isAboutAddress);
    }
}

TEST_F(DavCertificates, EndAnUploadBeforeItsFirstByte) {
    for (const wchar_t* server : kBadServers) {
        const UploadResult result = UploadTo(ServerUrl(server));
        EXPECT_EQ(UploadEnd::Failed, result.end);
        ExpectCertificate(result.sentence, server);
        EXPECT_TRUE(result.sentence.starts_with(L"\u201Ca.zip\u201D wasn't uploaded."));
    }
    EXPECT_TRUE(obtest::ListTree(FilesOf("apache")).empty());
    EXPECT_EQ(0, progress_.asked_) << "there is no way around one";
}

// The same server with a good one.
TEST_F(DavCertificates, ThatAreGoodLetAnUploadPass) {
    const UploadResult result = UploadTo(ServerUrl(L"TLS_GOOD_URL"));
    EXPECT_EQ(UploadEnd::Done, result.end) << ToUtf8(result.sentence);
    EXPECT_TRUE(result.stored.path.starts_with(L"https://localhost"));
}

} // namespace
} // namespace providers
