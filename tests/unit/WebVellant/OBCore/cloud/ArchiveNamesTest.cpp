#include "OBCore/cloud/ArchiveNames.h"

#include <gtest/gtest.h>

namespace {

using obcore::IsArchiveName;
using obcore::WithExtension;

TEST(ArchiveNames, KnowThirtyTwoExtensions) {
    const wchar_t* const extensions[] = {
        L"zip", L"zipx", L"z",   L"gz",  L"tz",  L"taz", L"tgz", L"lzh",  L"lha", L"tar",    L"cab",
        L"wmz", L"yfs",  L"wsz", L"rar", L"bz2", L"bz",  L"tbz", L"tbz2", L"7z",  L"xz",     L"txz",
        L"iso", L"img",  L"exe", L"uu",  L"xxe", L"bhx", L"b64", L"hqx",  L"mim", L"roaming"};
    static_assert(std::size(extensions) == 32);
    for (const wchar_t* extension : extensions) {
        EXPECT_TRUE(IsArchiveName(std::wstring(L"C:\\t\\file.") + extension)) << extension;
    }
}

TEST(ArchiveNames, CountInUpperCaseToo) {
    EXPECT_TRUE(IsArchiveName(L"C:\\t\\Report.ZIP"));
    EXPECT_TRUE(IsArchiveName(L"Report.TbZ2"));
    EXPECT_TRUE(IsArchiveName(L"x.roaming"));
}

TEST(ArchiveNames, AreNoOthers) {
    for (const wchar_t* path :
         {L"C:\\t\\report.pdf", L"report.zi", L"report.zipxx", L"report", L"report.", L"", L"zip",
          L"report.zip.txt", L"C:\\folder.zip\\report", L"C:\\folder.zip\\", L"report. zip",
          L"report.z\u0131p", L"report.\u017Fip"}) {
        EXPECT_FALSE(IsArchiveName(path)) << path;
    }
}

TEST(ArchiveNames, GetAnotherExtension) {
    EXPECT_EQ(WithExtension(L"C:\\t\\report.pdf", L".zip"), L"C:\\t\\report.zip");
    EXPECT_EQ(WithExtension(L"C:\\t.d\\report", L".zipx"), L"C:\\t.d\\report.zipx");
    EXPECT_EQ(WithExtension(L"a.b.pdf", L".zip"), L"a.b.zip");
    EXPECT_EQ(WithExtension(L"", L".zip"), L".zip");
}

TEST(ArchiveNames, GetAnotherExtensionInAPathOfMoreThan260Characters) {
    const std::wstring folder = L"C:\\" + std::wstring(200, L'a') + L'\\' + std::wstring(200, L'b');
    EXPECT_EQ(WithExtension(folder + L"\\report.pdf", L".zip"), folder + L"\\report.zip");
}

TEST(ArchiveNames, StayWhenTheNameGetsTooLong) {
    for (const std::size_t length : {258u, 259u, 260u, 300u}) {
        const std::wstring path = L"C:\\" + std::wstring(length, L'n');
        EXPECT_EQ(WithExtension(path, L".zip"), path) << length;
    }
    const std::wstring fits = L"C:\\" + std::wstring(255, L'n');
    EXPECT_EQ(WithExtension(fits, L".zip"), fits + L".zip");
}

} // namespace
