#include "OBCore/picker/FileTypes.h"

#include <iterator>

#include "tests/unit/WebVellant/OBCore/picker/PickerFixture.h"

namespace {

using namespace obcore;
using namespace obtest;

template <std::size_t Size>
Calls Read(const wchar_t (&list)[Size]) {
    return ReadStringList(list, list + Size);
}

TEST(FileTypeList, IsReadUpToItsEmptyString) {
    EXPECT_EQ(Read(L"Text\0*.txt\0All\0*.*\0"), (Calls{L"Text", L"*.txt", L"All", L"*.*"}));
    EXPECT_EQ(Read(L"One\0\0Two\0"), Calls{L"One"});
    EXPECT_EQ(Read(L"\0\0"), Calls{});
}

TEST(FileTypeList, IsEmptyWithoutAList) { EXPECT_EQ(ReadStringList(nullptr, nullptr), Calls{}); }

TEST(FileTypeList, EndsWhereTheMemoryEnds) {
    const wchar_t open[] = {L'a', L'b', L'\0', L'c', L'd'};
    EXPECT_EQ(ReadStringList(open, std::end(open)), (Calls{L"ab", L"cd"}));
    EXPECT_EQ(ReadStringList(open, open + 3), Calls{L"ab"});
    EXPECT_EQ(ReadStringList(open, open), Calls{});
}

class FileTypesOfTheDialog : public PickerTest {
protected:
    Calls Set(const Calls& strings) {
        const auto dialog = shell.Make();
        SetFileTypes(*dialog.Get(), strings);
        return FakeFileDialog::CallsOf({L"SetFileTypes"});
    }
};

TEST_F(FileTypesOfTheDialog, AreSetInPairs) {
    EXPECT_EQ(Set({L"Text", L"*.txt", L"All", L"*.*"}),
              Calls{L"SetFileTypes(2, \"Text\", \"*.txt\", \"All\", \"*.*\")"});
}

TEST_F(FileTypesOfTheDialog, AreNotSetFromAnOddNumber) {
    EXPECT_EQ(Set({L"Text"}), Calls{});
    EXPECT_EQ(Set({L"Text", L"*.txt", L"All"}), Calls{});
}

TEST_F(FileTypesOfTheDialog, AreSetToNoneFromAnEmptyList) {
    EXPECT_EQ(Set({}), Calls{L"SetFileTypes(0)"});
}

} // namespace
