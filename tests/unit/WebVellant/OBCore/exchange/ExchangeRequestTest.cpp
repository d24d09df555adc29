#include "OBCore/exchange/ExchangeRequest.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/unit/WebVellant/OBCore/exchange/GuardedBlock.h"

namespace {

using namespace obcore;
using obtest::GuardedBlock;
using obtest::LongText;
using obtest::Raw;

OPENFILENAMEW RequestWithNumbers() {
    OPENFILENAMEW request = {};
    request.lStructSize = sizeof(request);
    request.nFileExtension = 0x0102;
    request.nFileOffset = 0x0304;
    request.nFilterIndex = 0x05060708;
    request.nMaxCustFilter = 0x090A0B0C;
    request.nMaxFile = 0x0D0E0F10;
    request.nMaxFileTitle = 0x11121314;
    request.Flags = 0x15161718;
    request.FlagsEx = 0x191A1B1C;
    return request;
}

class OpenFileNameFields : public testing::Test {
protected:
    void SetUp() override { request = RequestWithNumbers(); }
    void ExpectOffsets(std::vector<std::int32_t> offsets) {
        for (std::size_t index = 0; index < offsets.size(); ++index)
            EXPECT_EQ(block.I32(52 + 4 * static_cast<std::int32_t>(index)), offsets[index])
                << index;
    }
    OPENFILENAMEW request;
    GuardedBlock block;
};

TEST_F(OpenFileNameFields, AreByteForByteAtTheirOffsets) {
    wchar_t file[] = L"preset.txt";
    wchar_t custom[] = L"custom\0*.c\0";
    request.lpstrFile = file;
    request.lpstrCustomFilter = custom;
    request.lpstrFileTitle = file;
    request.lpstrInitialDir = L"C:\\d";
    request.lpstrTitle = L"Title";
    request.lpstrDefExt = L"txt";
    request.lpTemplateName = L"Tpl";
    request.lpstrFilter = L"All\0*.*\0";
    WriteOpenFileNameRequest(*block, request);

    GuardedBlock expected;
    for (std::uint8_t byte = 0; byte < 28; ++byte) {
        // Each number has its bytes in falling order, so little-endian they are reversed.
        const int field = byte < 4 ? 2 : 4;
        const int at = 24 + byte / field * field + (field - 1 - byte % field);
        expected.Poke8(at, static_cast<std::uint8_t>(byte + 1));
    }
    const std::int32_t offsets[] = {76, 86, 98, 106, 114, 132};
    for (int index = 0; index < 6; ++index) expected.Poke32(52 + 4 * index, offsets[index]);
    expected.PutUnits(76, Raw(L"C:\\d\0Title\0txt\0Tpl\0All\0*.*\0\0\0\0"));
    EXPECT_EQ(block.Copy(), expected.Copy());
}

TEST_F(OpenFileNameFields, KeepsTheExtensionBeforeTheOffset) {
    WriteOpenFileNameRequest(*block, request);
    EXPECT_EQ(block.U16(24), 0x0102);
    EXPECT_EQ(block.U16(26), 0x0304);
}

TEST_F(OpenFileNameFields, ClearsItsFieldsAndTouchesNothingBetween) {
    GuardedBlock used(0xCC);
    const OPENFILENAMEW empty = {};
    WriteOpenFileNameRequest(*used, empty);
    GuardedBlock expected(0xCC);
    expected.Poke32(0, 0);
    for (std::int32_t offset = 24; offset < 76; offset += 4) expected.Poke32(offset, 0);
    expected.Poke32(72, 76);
    expected.Poke32(76, 0);
    EXPECT_EQ(used.Copy(), expected.Copy());
}

TEST_F(OpenFileNameFields, WithoutTextsHasItsFileSlotFirst) {
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({0, 0, 0, 0, 0, 76});
}

TEST_F(OpenFileNameFields, GivesAbsentTextsNoRoom) {
    request.lpstrTitle = L"T";
    request.lpTemplateName = L"";
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({0, 76, 0, 80, 0, 82});
    EXPECT_EQ(block.Units(76, 5), Raw(L"T\0\0\0\0"));
}

TEST_F(OpenFileNameFields, WithoutAFilterHaveTheFileSlotRightAfterTheTexts) {
    request.lpstrInitialDir = L"C:\\";
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({76, 0, 0, 0, 0, 84});
}

TEST_F(OpenFileNameFields, CutsATextTo32730WideCharactersWithItsNul) {
    const std::wstring text = LongText(40000);
    request.lpstrInitialDir = text.c_str();
    request.lpstrTitle = L"Title";
    request.lpstrFilter = L"All\0*.*\0";
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({76, 65536, 0, 0, 65536, 65536});
    EXPECT_EQ(block.Units(76, 32730), LongText(32729) + Raw(L"\0"));
}

TEST_F(OpenFileNameFields, LeavesTheSlotTheRoomThatThereIs) {
    const std::wstring text = LongText(32728);
    request.lpstrInitialDir = text.c_str();
    block.PutUnits(65534, L"x");
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({76, 0, 0, 0, 0, 65534});
    EXPECT_EQ(block.Units(65532, 2), Raw(L"\0\0"));
}

TEST_F(OpenFileNameFields, ForcesTwoNulsAtTheEndOfAFilterThatIsCut) {
    const std::wstring text = LongText(32721); // 8 wide characters remain
    request.lpstrInitialDir = text.c_str();
    request.lpstrFilter = L"Images\0*.png\0";
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({76, 0, 0, 0, 65520, 65536});
    EXPECT_EQ(block.Units(65520, 8), Raw(L"Images\0\0"));
}

TEST_F(OpenFileNameFields, OverwritesTheLastCharactersOfAFilterThatIsCut) {
    const std::wstring text = LongText(32724); // 5 wide characters remain
    request.lpstrInitialDir = text.c_str();
    request.lpstrFilter = L"Images\0*.png\0";
    WriteOpenFileNameRequest(*block, request);
    EXPECT_EQ(block.Units(65526, 5), Raw(L"Ima\0\0"));
}

TEST_F(OpenFileNameFields, CutsAFilterToASingleNul) {
    const std::wstring text = LongText(32728); // 1 wide character remains
    request.lpstrInitialDir = text.c_str();
    request.lpstrFilter = L"Images\0*.png\0";
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({76, 0, 0, 0, 65534, 65536});
    EXPECT_EQ(block.U16(65534), 0);
}

TEST_F(OpenFileNameFields, GivesAnEmptyFilterTwoNuls) {
    const wchar_t onlyOne[] = {L'\0', L'x'};
    request.lpstrFilter = onlyOne;
    WriteOpenFileNameRequest(*block, request);
    ExpectOffsets({0, 0, 0, 0, 76, 80});
    EXPECT_EQ(block.Units(76, 4), Raw(L"\0\0\0\0"));
}

class TakenRequest : public testing::Test {
protected:
    OPENFILENAMEW Take() { return ReadOpenFileNameRequest(*block, owner); }
    const wchar_t* At(std::int32_t offset) {
        return reinterpret_cast<const wchar_t*>(block.Bytes() + offset);
    }
    const HWND owner = reinterpret_cast<HWND>(0x10234);
    GuardedBlock block;
};

TEST_F(TakenRequest, PointsIntoTheBlockAndCarriesTheNumbers) {
    OPENFILENAMEW written = RequestWithNumbers();
    written.lpstrInitialDir = L"C:\\d";
    written.lpstrTitle = L"Title";
    written.lpstrDefExt = L"txt";
    written.lpTemplateName = L"Tpl";
    written.lpstrFilter = L"All\0*.*\0";
    WriteOpenFileNameRequest(*block, written);
    const OPENFILENAMEW taken = Take();
    EXPECT_EQ(taken.lStructSize, 152u);
    EXPECT_EQ(taken.hwndOwner, owner);
    EXPECT_EQ(taken.nFileExtension, written.nFileExtension);
    EXPECT_EQ(taken.nFileOffset, written.nFileOffset);
    EXPECT_EQ(taken.nFilterIndex, written.nFilterIndex);
    EXPECT_EQ(taken.nMaxCustFilter, written.nMaxCustFilter);
    EXPECT_EQ(taken.nMaxFile, written.nMaxFile);
    EXPECT_EQ(taken.nMaxFileTitle, written.nMaxFileTitle);
    EXPECT_EQ(taken.Flags, written.Flags);
    EXPECT_EQ(taken.FlagsEx, written.FlagsEx);
    EXPECT_EQ(taken.lpstrInitialDir, At(76));
    EXPECT_EQ(taken.lpstrTitle, At(86));
    EXPECT_EQ(taken.lpstrDefExt, At(98));
    EXPECT_EQ(taken.lpTemplateName, At(106));
    EXPECT_EQ(taken.lpstrFilter, At(114));
    EXPECT_EQ(taken.lpstrFile, At(132));
    EXPECT_STREQ(taken.lpstrTitle, L"Title");
}

TEST_F(TakenRequest, LeavesNullWhatIsntCarried) {
    WriteOpenFileNameRequest(*block, RequestWithNumbers());
    const OPENFILENAMEW taken = Take();
    EXPECT_EQ(taken.hInstance, nullptr);
    EXPECT_EQ(taken.lpstrCustomFilter, nullptr);
    EXPECT_EQ(taken.lpstrFileTitle, nullptr);
    EXPECT_EQ(taken.lCustData, 0);
    EXPECT_EQ(taken.lpfnHook, nullptr);
    EXPECT_EQ(taken.pvReserved, nullptr);
    EXPECT_EQ(taken.dwReserved, 0u);
}

TEST_F(TakenRequest, HasNullForAbsentTexts) {
    WriteOpenFileNameRequest(*block, {});
    const OPENFILENAMEW taken = Take();
    EXPECT_EQ(taken.lpstrInitialDir, nullptr);
    EXPECT_EQ(taken.lpstrTitle, nullptr);
    EXPECT_EQ(taken.lpstrDefExt, nullptr);
    EXPECT_EQ(taken.lpTemplateName, nullptr);
    EXPECT_EQ(taken.lpstrFilter, nullptr);
    EXPECT_EQ(taken.lpstrFile, At(76));
}

TEST_F(TakenRequest, CountsOffsetsAtWhichNoTextCanBeAsAbsent) {
    for (const std::int32_t offset : {24, 75, 77, 65535, 65536, INT_MAX, -4, INT_MIN}) {
        for (std::int32_t field = 52; field < 76; field += 4) block.Poke32(field, offset);
        const OPENFILENAMEW taken = Take();
        EXPECT_EQ(taken.lpstrInitialDir, nullptr) << offset;
        EXPECT_EQ(taken.lpstrTitle, nullptr) << offset;
        EXPECT_EQ(taken.lpstrDefExt, nullptr) << offset;
        EXPECT_EQ(taken.lpTemplateName, nullptr) << offset;
        EXPECT_EQ(taken.lpstrFilter, nullptr) << offset;
        EXPECT_EQ(taken.lpstrFile, nullptr) << offset;
    }
}

TEST_F(TakenRequest, CountsTextsThatRunOutOfTheBlockAsAbsent) {
    block.PutUnits(65526, L"abcde");
    for (std::int32_t field = 52; field < 76; field += 4) block.Poke32(field, 65526);
    OPENFILENAMEW taken = Take();
    EXPECT_EQ(taken.lpstrInitialDir, nullptr);
    EXPECT_EQ(taken.lpTemplateName, nullptr);
    EXPECT_EQ(taken.lpstrFilter, nullptr);
    EXPECT_EQ(taken.lpstrFile, At(65526));
    // Ended as a text, but not closed as a list.
    block.PutUnits(65534, Raw(L"\0"));
    taken = Take();
    EXPECT_EQ(taken.lpstrInitialDir, At(65526));
    EXPECT_EQ(taken.lpstrFilter, nullptr);
}

} // namespace
