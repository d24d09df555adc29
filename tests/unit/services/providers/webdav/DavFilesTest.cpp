#include <gtest/gtest.h>

#include "tests/unit/services/providers/webdav/DavUploadFixture.h"

namespace providers {
namespace {

class DavFilesTest : public DavUploadAccount {};
INSTANTIATE_TEST_SUITE_P(Servers, DavFilesTest, testing::Values("apache", "sabre"));

TEST_P(DavFilesTest, KnowsTheSpaceWhereTheServerReportsIt) {
    const auto space = DavSpace(client_, root_);
    ASSERT_TRUE(space.has_value());
    EXPECT_EQ(IsApache(), space->freeBytes == obcontract::SizeUnknown);
    EXPECT_EQ(IsApache(), space->totalBytes == obcontract::SizeUnknown);
    EXPECT_EQ(!IsApache(), space->totalBytes > space->freeBytes);
    relay_.On("PROPFIND", "status 500");
    EXPECT_FALSE(DavSpace(client_, root_).has_value());
}

// As of a server without a limit.
TEST_P(DavFilesTest, KnowsNoTotalThatIsNoNumber) {
    const std::string reply = "status 207|=<multistatus xmlns='DAV:'><response><href>" +
                              root_.path +
                              "</href><propstat><prop><quota-available-bytes>9223372036854775807"
                              "</quota-available-bytes><quota-used-bytes>1</quota-used-bytes>"
                              "</prop></propstat></response></multistatus>";
    relay_.On("PROPFIND", reply.c_str());
    const auto space = DavSpace(client_, root_);
    ASSERT_TRUE(space.has_value());
    EXPECT_EQ(INT64_MAX, space->freeBytes);
    EXPECT_EQ(obcontract::SizeUnknown, space->totalBytes);
}

TEST_P(DavFilesTest, DeletesAnUploadedFileThatIsUnchanged) {
    const UploadResult result = Upload(L"a.zip", L"");
    ASSERT_EQ(UploadEnd::Done, result.end);
    relay_.On("PROPFIND", "refuse", 0, 10);
    EXPECT_EQ(DeletionEnd::Unreachable, DeleteDavFile(client_, root_, result.stored));
    relay_.Begin(GetParam());
    EXPECT_EQ(DeletionEnd::Gone, DeleteDavFile(client_, root_, result.stored));
    EXPECT_EQ(std::vector<std::wstring>{}, Files());
    EXPECT_EQ(DeletionEnd::Gone, DeleteDavFile(client_, root_, result.stored));
}

TEST_P(DavFilesTest, KeepsAFileThatHasChangedOrIsElsewhere) {
    UploadResult result = Upload(L"a.zip", L"");
    ASSERT_EQ(UploadEnd::Done, result.end);
    ASSERT_EQ("done", Put("a.zip", "changed by somebody else"));
    EXPECT_EQ(DeletionEnd::Changed, DeleteDavFile(client_, root_, result.stored));
    result.stored.path = L"http://192.0.2.1/dav/a.zip";
    EXPECT_EQ(DeletionEnd::Changed, DeleteDavFile(client_, root_, result.stored));
    EXPECT_EQ((std::vector<std::wstring>{L"a.zip"}), Files());
}

} // namespace
} // namespace providers
