#include "obwmv/HostEntry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <vector>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "OBCore/exchange/ExchangeMapping.h"
#include "OBCore/picker/Drivers.h"

using obcontract::ExchangeBlock;

namespace {

std::function<BOOL(OPENFILENAMEW&, obcontract::ExchangeBlock&)> openFileNameDriver;
std::function<HRESULT(HWND, obcontract::ExchangeBlock&)> dialogDriver;
int driverRuns = 0;

} // namespace

// In the place of the picker's room, which isn't linked here.
BOOL obcore::OpenFileNameDriver(OPENFILENAMEW* request, ExchangeBlock& block) {
    ++driverRuns;
    return openFileNameDriver(*request, block);
}

HRESULT obcore::DialogDriver(HWND owner, ExchangeBlock& block) {
    ++driverRuns;
    return dialogDriver(owner, block);
}

namespace {

using obwmv::HostEntry;

constexpr std::uint32_t kId = 55;
constexpr std::size_t kBytes = 65536;
const HWND kOwner = reinterpret_cast<HWND>(0x20406);

class HostEntryTest : public testing::Test {
protected:
    void SetUp() override {
        driverRuns = 0;
        openFileNameDriver = [](OPENFILENAMEW&, obcontract::ExchangeBlock&) -> BOOL { return 0; };
        dialogDriver = [](HWND, obcontract::ExchangeBlock&) -> HRESULT { return 0; };
        block = obcore::CreateExchangeBlock(kId, mapping);
        ASSERT_TRUE(block);
        // What a host of an earlier test in this process left open is the same section.
        std::memset(block.Get(), 0, kBytes);
    }
    std::uint8_t* Bytes() { return reinterpret_cast<std::uint8_t*>(block.Get()); }
    void Poke32(std::size_t offset, std::uint32_t value) {
        std::memcpy(Bytes() + offset, &value, 4);
    }
    std::vector<std::uint8_t> Copy() { return {Bytes(), Bytes() + kBytes}; }

    ObLib::UniqueKernelHandle mapping;
    obcore::MappedExchangeBlock block;
};

void Put32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, 4);
}

template <std::size_t Size>
void PutUnits(std::vector<std::uint8_t>& bytes, std::size_t offset, const wchar_t (&units)[Size]) {
    std::memcpy(bytes.data() + offset, units, (Size - 1) * sizeof(wchar_t));
}

TEST_F(HostEntryTest, FailsWithoutABlockOfThatId) {
    EXPECT_EQ(HostEntry(kOwner, kId + 1), -1);
    EXPECT_EQ(driverRuns, 0);
}

TEST_F(HostEntryTest, FailsOnASectionThatIsTooSmall) {
    const ObLib::UniqueKernelHandle small(CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, L"WEBVELLANT_SM_56"));
    ASSERT_TRUE(small);
    EXPECT_EQ(HostEntry(kOwner, 56), -1);
    EXPECT_EQ(driverRuns, 0);
}

TEST_F(HostEntryTest, LeavesABlockOfAnyOtherStatusAlone) {
    for (const std::uint32_t status : {2u, 3u, 4u, 5u, 0x10000u, 0xFFFFFFFFu}) {
        Poke32(0, status);
        const auto before = Copy();
        EXPECT_EQ(HostEntry(kOwner, kId), -1) << status;
        EXPECT_EQ(Copy(), before) << status;
    }
    EXPECT_EQ(driverRuns, 0);
}

TEST_F(HostEntryTest, RunsTheDialogDriverOnADialogRequest) {
    Poke32(0, 1);
    Poke32(12, 0x1238);
    HWND owner = nullptr;
    std::uint32_t statusSeen = 99;
    std::uint32_t optionsSeen = 0;
    dialogDriver = [&](HWND window, obcontract::ExchangeBlock& seen) -> HRESULT {
        owner = window;
        statusSeen = static_cast<std::uint32_t>(seen.Status);
        optionsSeen = seen.DialogOptions;
        return static_cast<HRESULT>(0x800704C7);
    };
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    EXPECT_EQ(owner, kOwner);
    EXPECT_EQ(statusSeen, 1u);
    EXPECT_EQ(optionsSeen, 0x1238u);
    // Status 1 stays: a run that ends with no files and no link.
    std::vector<std::uint8_t> expected(kBytes);
    Put32(expected, 0, 1);
    Put32(expected, 4, 0x800704C7);
    Put32(expected, 12, 0x1238);
    EXPECT_EQ(Copy(), expected);
}

TEST_F(HostEntryTest, LeavesTheFilesOfTheDialogPathByteForByte) {
    Poke32(0, 1);
    dialogDriver = [](HWND, obcontract::ExchangeBlock& answer) -> HRESULT {
        obcore::WriteDialogAnswer(answer, {L"C:\\a", L"C:\\b"});
        obcore::WriteCleanupNames(answer, L"C:\\t", L"");
        return 0;
    };
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    std::vector<std::uint8_t> expected(kBytes);
    Put32(expected, 0, 4);
    Put32(expected, 16, 100);
    Put32(expected, 20, 110);
    Put32(expected, 28, 76);
    Put32(expected, 32, 78);
    PutUnits(expected, 76, L"\0C:\\a\0C:\\b\0\0C:\\t\0\0");
    EXPECT_EQ(Copy(), expected);
}

TEST_F(HostEntryTest, LeavesALinkByteForByte) {
    Poke32(0, 1);
    dialogDriver = [](HWND, obcontract::ExchangeBlock& answer) -> HRESULT {
        obcore::WriteLinkAnswer(answer, L"url");
        obcore::WriteCleanupNames(answer, L"", L"");
        return static_cast<HRESULT>(0x800704C7);
    };
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    std::vector<std::uint8_t> expected(kBytes);
    Put32(expected, 0, 2);
    Put32(expected, 4, 0x800704C7);
    Put32(expected, 16, 84);
    Put32(expected, 20, 86);
    Put32(expected, 24, 76);
    PutUnits(expected, 76, L"url\0\0\0");
    EXPECT_EQ(Copy(), expected);
}

TEST_F(HostEntryTest, TakesAnOpenFileNameRequestBeforeItsDriverRuns) {
    Poke32(24, 0x00070005);
    Poke32(28, 2);
    Poke32(32, 33);
    Poke32(36, 260);
    Poke32(40, 44);
    Poke32(44, 0x00081000);
    Poke32(48, 1);
    Poke32(52, 76);
    Poke32(72, 84);
    std::memcpy(Bytes() + 76, L"C:\\", 8);
    OPENFILENAMEW taken = {};
    std::uint32_t statusSeen = 99;
    openFileNameDriver = [&](OPENFILENAMEW& request, obcontract::ExchangeBlock& seen) -> BOOL {
        taken = request;
        statusSeen = static_cast<std::uint32_t>(seen.Status);
        EXPECT_STREQ(request.lpstrInitialDir, L"C:\\");
        EXPECT_EQ(reinterpret_cast<std::uint8_t*>(request.lpstrFile),
                  reinterpret_cast<std::uint8_t*>(&seen) + 84);
        std::memcpy(request.lpstrFile, L"C:\\f\0", 12);
        obcore::WriteCleanupNames(seen, L"T", nullptr);
        return 1;
    };
    std::vector<std::uint8_t> expected = Copy();
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    EXPECT_EQ(statusSeen, 3u);
    EXPECT_EQ(taken.lStructSize, 152u);
    EXPECT_EQ(taken.hwndOwner, kOwner);
    EXPECT_EQ(taken.nFileExtension, 5);
    EXPECT_EQ(taken.nFileOffset, 7);
    EXPECT_EQ(taken.nFilterIndex, 2u);
    EXPECT_EQ(taken.nMaxCustFilter, 33u);
    EXPECT_EQ(taken.nMaxFile, 260u);
    EXPECT_EQ(taken.nMaxFileTitle, 44u);
    EXPECT_EQ(taken.Flags, 0x00081000u);
    EXPECT_EQ(taken.FlagsEx, 1u);
    EXPECT_EQ(taken.lpstrTitle, nullptr);
    EXPECT_EQ(taken.lpstrFilter, nullptr);
    EXPECT_EQ(taken.lpstrCustomFilter, nullptr);
    EXPECT_EQ(taken.lpstrFileTitle, nullptr);

    Put32(expected, 0, 3);
    Put32(expected, 4, 1);
    Put32(expected, 16, 96);
    PutUnits(expected, 84, L"C:\\f\0\0T\0");
    EXPECT_EQ(Copy(), expected);
}

TEST_F(HostEntryTest, LeavesStatus3AndResult0WhenTheUserCancels) {
    Poke32(72, 76);
    Poke32(4, 77);
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    std::vector<std::uint8_t> expected(kBytes);
    Put32(expected, 0, 3);
    Put32(expected, 72, 76);
    EXPECT_EQ(Copy(), expected);
}

TEST_F(HostEntryTest, HandsOnNoTextOutsideTheBlock) {
    Poke32(52, 65536);
    Poke32(56, 0xFFFFFFFC);
    Poke32(72, 0x7FFFFFFE);
    openFileNameDriver = [](OPENFILENAMEW& request, obcontract::ExchangeBlock&) -> BOOL {
        EXPECT_EQ(request.lpstrInitialDir, nullptr);
        EXPECT_EQ(request.lpstrTitle, nullptr);
        EXPECT_EQ(request.lpstrFile, nullptr);
        return 0;
    };
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    EXPECT_EQ(driverRuns, 1);
}

TEST_F(HostEntryTest, LetsAnExceptionOfADriverPassAndStoresNoResult) {
    Poke32(4, 0);
    openFileNameDriver = [](OPENFILENAMEW&, obcontract::ExchangeBlock&) -> BOOL {
        throw std::runtime_error("driver");
    };
    EXPECT_THROW(HostEntry(kOwner, kId), std::runtime_error);
    EXPECT_EQ(static_cast<int>(block.Get()->Status), 3);
    EXPECT_EQ(block.Get()->Result, 0);
}

TEST_F(HostEntryTest, KeepsTheBlockMappedAndOpenToTheProcessesEnd) {
    Poke32(0, 1);
    obcontract::ExchangeBlock* hostBlock = nullptr;
    dialogDriver = [&](HWND, obcontract::ExchangeBlock& seen) -> HRESULT {
        hostBlock = &seen;
        return 9;
    };
    EXPECT_EQ(HostEntry(kOwner, kId), 0);
    block.Reset();
    mapping.Reset();
    EXPECT_EQ(hostBlock->Result, 9);
    const ObLib::UniqueKernelHandle still(
        OpenFileMappingW(FILE_MAP_READ, FALSE, L"WEBVELLANT_SM_55"));
    EXPECT_TRUE(still);
}

} // namespace
