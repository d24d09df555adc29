#include "services/providers/webdav/DavSentence.h"

#include <gtest/gtest.h>

#include <set>

namespace providers {
namespace {

const HttpOrigin kServer{true, "cloud.example.org", 443};

DavError Of(DavFault fault, int status = 418) { return {fault, status, {}, std::nullopt}; }
DavError Of(HttpFault fault) { return DavErrorOf(HttpError{fault, 12345}); }
DavError Of(CertificateFault fault) {
    return DavErrorOf(HttpError{HttpFault::Certificate, 12345, fault});
}

std::vector<DavError> EveryError() {
    std::vector<DavError> errors;
    for (int i = static_cast<int>(DavFault::WrongLogin); i <= static_cast<int>(DavFault::Other);
         ++i)
        errors.push_back(Of(static_cast<DavFault>(i)));
    for (int i = 0; i <= static_cast<int>(HttpFault::Failed); ++i)
        errors.push_back(Of(static_cast<HttpFault>(i)));
    for (int i = 0; i <= static_cast<int>(CertificateFault::Other); ++i)
        errors.push_back(Of(static_cast<CertificateFault>(i)));
    return errors;
}

TEST(DavSentenceTest, StatesWhatHappenedAndWhatToDo) {
    for (const DavError& error : EveryError()) {
        const std::wstring sentence = DavSentence(error, kServer);
        if (IsHttp(error, HttpFault::Cancelled)) {
            EXPECT_EQ(L"", sentence);
            continue;
        }
        EXPECT_NE(std::wstring::npos, sentence.find(L"Please ")) << static_cast<int>(error.fault);
        EXPECT_EQ(std::wstring::npos, sentence.find(L'%')) << static_cast<int>(error.fault);
        EXPECT_EQ(L'.', sentence.back());
        const bool isOwnFile = IsHttp(error, HttpFault::FileUnreadable);
        EXPECT_EQ(isOwnFile, sentence.find(L"cloud.example.org") == std::wstring::npos);
    }
}

TEST(DavSentenceTest, NamesTheCodeOfWhatItDoesNotKnow) {
    EXPECT_NE(std::wstring::npos, DavSentence(Of(DavFault::Other, 418), kServer).find(L"418"));
    EXPECT_NE(std::wstring::npos,
              DavSentence(Of(DavFault::ServerFailed, 500), kServer).find(L"500"));
    EXPECT_NE(std::wstring::npos, DavSentence(Of(HttpFault::Failed), kServer).find(L"12345"));
}

TEST(DavSentenceTest, NamesTheTimeThatAServerAsksFor) {
    DavError error = Of(DavFault::TooMany, 429);
    error.retryAfter = 590;
    EXPECT_NE(std::wstring::npos, DavSentence(error, kServer).find(L"in 10 minutes"));
    error.retryAfter = 59;
    EXPECT_TRUE(DavSentence(error, kServer).ends_with(L"in a minute."));
    error.retryAfter = 60;
    EXPECT_TRUE(DavSentence(error, kServer).ends_with(L"in 2 minutes."));
}

TEST(DavSentenceTest, NamesTheProxyThatWantsALogin) {
    DavError error = Of(HttpFault::ProxyLogin);
    EXPECT_NE(std::wstring::npos, DavSentence(error, kServer).find(L"the proxy of your network"));
    error.http.proxy = L"proxy.example.org";
    EXPECT_NE(std::wstring::npos, DavSentence(error, kServer).find(L"proxy.example.org"));
}

TEST(DavSentenceTest, NamesTheFileOfAnUpload) {
    const std::wstring sentence =
        DavUploadSentence(Of(DavFault::NoSpace, 507), kServer, L"my %2 file.zip");
    EXPECT_TRUE(sentence.starts_with(
        L"\u201Cmy %2 file.zip\u201D wasn't uploaded. There is too little free space"));
    EXPECT_TRUE(sentence.ends_with(L"Nothing was attached, and your files are unchanged."));
    EXPECT_EQ(L"", DavUploadSentence(Of(HttpFault::Cancelled), kServer, L"a"));
    EXPECT_NE(std::wstring::npos, DavUploadSentence(Of(DavFault::Forbidden, 403), kServer, L"a")
                                      .find(L"doesn't allow you to store files in the folder"));
}

} // namespace
} // namespace providers
