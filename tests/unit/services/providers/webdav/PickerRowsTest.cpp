// In which order, and under which names, the picker lists what a server's folder contains.
#include "services/providers/webdav/PickerRows.h"

#include <gtest/gtest.h>

#include "tests/unit/services/providers/webdav/FakeDavAccount.h"

using namespace providers;

namespace {

std::vector<std::wstring> Names(const std::vector<PickerRow>& rows) {
    std::vector<std::wstring> names;
    for (const PickerRow& row : rows) names.push_back(row.name);
    return names;
}

using List = std::vector<std::wstring>;

TEST(PickerRows, HaveFoldersFirstAndNumbersInTheirOrder) {
    EXPECT_EQ(Names(RowsOf({File(L"b10.txt"), Folder(L"z"), File(L"B2.txt"), File(L"a.txt"),
                            Folder(L"Y 10"), Folder(L"y 9"), File(L"b1.txt")})),
              (List{L"y 9", L"Y 10", L"z", L"a.txt", L"b1.txt", L"B2.txt", L"b10.txt"}));
}

TEST(PickerRows, LeaveOutNamesThatBeginWithADot) {
    EXPECT_EQ(Names(RowsOf({File(L".htaccess"), Folder(L".trash"), Folder(L".."), File(L"."),
                            File(L""), File(L"a."), File(L"b..")})),
              (List{L"a.", L"b.."}));
}

TEST(PickerRows, LeaveOutFilesWhoseUploadIsNotFinished) {
    const std::wstring part = L"upload-01234567-89AB-CDEF-0123-456789ABCDEF.tmp";
    EXPECT_EQ(Names(RowsOf({File(part), Folder(part), File(L"upload-of-mine.tmp"),
                            File(L"upload-.tmp"), File(part + L"2"), File(L"my " + part)})),
              (List{part, L"my " + part, part + L"2", L"upload-.tmp", L"upload-of-mine.tmp"}));
}

TEST(PickerRows, ShowNoNameThatLooksLikeAnother) {
    EXPECT_EQ(ShownName(L"a\r\nb\tc\x7F\x85"), L"a\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFD");
    EXPECT_EQ(ShownName(L"fdp.\u202Eexe"), L"fdp.\uFFFDexe");
    EXPECT_EQ(ShownName(L"\u2066a\u2069\u2028"), L"\uFFFDa\uFFFD\uFFFD");
    EXPECT_EQ(ShownName(L"\u05D0\u05D1 \u0627.pdf | 100% \U0001F4CE"),
              L"\u05D0\u05D1 \u0627.pdf | 100% \U0001F4CE");
    const auto rows = RowsOf({File(L"a\nb")});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].name, L"a\uFFFDb");
    EXPECT_EQ(rows[0].item.name, L"a\nb"); // what the server is asked for stays as it is
}

// Digits by the thousand and halves of pairs, whose order the shell doesn't define.
TEST(PickerRows, KeepEveryOddName) {
    std::vector<DavItem> items;
    for (int index = 0; index < 500; ++index) {
        std::wstring name(
            static_cast<std::size_t>(index * 7 % 300 + 1),
            static_cast<wchar_t>(index % 3 == 0 ? L'0' + index % 10 : 0xD7F0 + index));
        items.push_back(File(name + std::to_wstring(index)));
    }
    EXPECT_EQ(RowsOf(items).size(), items.size());
}

TEST(PickerRows, AreFoundByTheirFirstLettersInAnyCase) {
    const auto rows = RowsOf({Folder(L"Music"), File(L"alpha"), File(L"Beta"), File(L"bob")});
    EXPECT_EQ(FindRow(rows, L"b", 0), 2U);
    EXPECT_EQ(FindRow(rows, L"B", 3), 3U);
    EXPECT_EQ(FindRow(rows, L"m", 1), 0U); // from the first one again
    EXPECT_EQ(FindRow(rows, L"bo", 0), 3U);
    EXPECT_EQ(FindRow(rows, L"bobby", 0), std::nullopt);
    EXPECT_EQ(FindRow({}, L"b", 0), std::nullopt);
}

} // namespace
