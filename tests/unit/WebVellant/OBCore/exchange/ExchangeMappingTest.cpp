#include "OBCore/exchange/ExchangeMapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/support/ImportPatch.h"

namespace {

using obcontract::ExchangeBlock;
using namespace obcore;
using ObLib::UniqueKernelHandle;

constexpr std::uint32_t kId = 4711;

class ExchangeMapping : public testing::Test {
protected:
    UniqueKernelHandle mapping;
};

UniqueKernelHandle SectionOf(const wchar_t* name, DWORD bytes) {
    return UniqueKernelHandle(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, bytes, name));
}

TEST_F(ExchangeMapping, NamesTheBlockByTheIdAsASignedNumber) {
    EXPECT_EQ(ExchangeBlockName(1), L"WEBVELLANT_SM_1");
    EXPECT_EQ(ExchangeBlockName(2147483647u), L"WEBVELLANT_SM_2147483647");
    EXPECT_EQ(ExchangeBlockName(2147483648u), L"WEBVELLANT_SM_-2147483648");
    EXPECT_EQ(ExchangeBlockName(0xFFFFFFFFu), L"WEBVELLANT_SM_-1");
}

TEST_F(ExchangeMapping, MakesABlockOf65536ZeroBytes) {
    const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
    ASSERT_TRUE(block);
    ASSERT_TRUE(mapping);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(block.Get());
    EXPECT_EQ(std::count(bytes, bytes + 65536, 0), 65536);
    MEMORY_BASIC_INFORMATION region = {};
    ASSERT_NE(VirtualQuery(bytes, &region, sizeof(region)), 0u);
    EXPECT_EQ(region.RegionSize, 65536u);
    EXPECT_EQ(region.Type, static_cast<DWORD>(MEM_MAPPED));
}

TEST_F(ExchangeMapping, LetsTheHostSeeWhatTheBrowserSideWrote) {
    const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
    ASSERT_TRUE(block);
    block.Get()->DialogOptions = 0x1234;
    UniqueKernelHandle hostMapping;
    const MappedExchangeBlock hostBlock = OpenExchangeBlock(kId, hostMapping);
    ASSERT_TRUE(hostBlock);
    EXPECT_EQ(hostBlock.Get()->DialogOptions, 0x1234u);
    hostBlock.Get()->TextArea[65459] = 0x5A;
    EXPECT_EQ(block.Get()->TextArea[65459], 0x5A);
}

TEST_F(ExchangeMapping, TakesAnExistingBlockWithItsContents) {
    UniqueKernelHandle earlierMapping;
    const MappedExchangeBlock earlier = CreateExchangeBlock(kId, earlierMapping);
    ASSERT_TRUE(earlier);
    std::memset(earlier.Get(), 0xA5, sizeof(ExchangeBlock));
    const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
    ASSERT_TRUE(block);
    EXPECT_EQ(std::memcmp(block.Get(), earlier.Get(), sizeof(ExchangeBlock)), 0);
    EXPECT_EQ(block.Get()->TextArea[0], 0xA5);
}

TEST_F(ExchangeMapping, FailsOnAnExistingSectionThatIsTooSmall) {
    const UniqueKernelHandle small = SectionOf(L"WEBVELLANT_SM_4711", 4096);
    ASSERT_TRUE(small);
    EXPECT_FALSE(CreateExchangeBlock(kId, mapping));
    EXPECT_FALSE(mapping);
    EXPECT_FALSE(OpenExchangeBlock(kId, mapping));
    EXPECT_FALSE(mapping);
}

TEST_F(ExchangeMapping, FailsWhenTheNameIsThatOfAnotherKindOfObject) {
    const UniqueKernelHandle event(CreateEventW(nullptr, TRUE, FALSE, L"WEBVELLANT_SM_4711"));
    ASSERT_TRUE(event);
    EXPECT_FALSE(CreateExchangeBlock(kId, mapping));
    EXPECT_FALSE(mapping);
}

TEST_F(ExchangeMapping, FindsNoBlockOfAnotherId) {
    const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
    ASSERT_TRUE(block);
    UniqueKernelHandle hostMapping;
    EXPECT_FALSE(OpenExchangeBlock(kId + 1, hostMapping));
    EXPECT_FALSE(hostMapping);
}

TEST_F(ExchangeMapping, EndsWithItsOwners) {
    {
        const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
        ASSERT_TRUE(block);
    }
    mapping.Reset();
    EXPECT_FALSE(OpenExchangeBlock(kId, mapping));
}

struct MappingCall {
    HANDLE file = nullptr;
    SECURITY_ATTRIBUTES security = {};
    DWORD protection = 0;
    DWORD sizeHigh = 1;
    DWORD sizeLow = 0;
    std::wstring name;
};
MappingCall mappingCall;

// Records, and fails: the test looks at what a failure leaves with it.
HANDLE WINAPI RecordCreateFileMapping(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection,
                                      DWORD sizeHigh, DWORD sizeLow, LPCWSTR name) {
    mappingCall = {file, *security, protection, sizeHigh, sizeLow, name};
    return nullptr;
}

TEST_F(ExchangeMapping, AsksForInheritablePagedMemory) {
    obtest::ImportPatch patch("kernel32.dll", "CreateFileMappingW", &RecordCreateFileMapping);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(CreateExchangeBlock(7, mapping));
    EXPECT_FALSE(mapping);
    EXPECT_EQ(mappingCall.file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(mappingCall.security.nLength, 24u);
    EXPECT_EQ(mappingCall.security.lpSecurityDescriptor, nullptr);
    EXPECT_EQ(mappingCall.security.bInheritHandle, 1);
    EXPECT_EQ(mappingCall.protection, static_cast<DWORD>(PAGE_READWRITE | SEC_COMMIT));
    EXPECT_EQ(mappingCall.sizeHigh, 0u);
    EXPECT_EQ(mappingCall.sizeLow, 0x10000u);
    EXPECT_EQ(mappingCall.name, L"WEBVELLANT_SM_7");
}

struct OpenCall {
    DWORD access = 0;
    BOOL inherit = TRUE;
    std::wstring name;
};
OpenCall openCall;

HANDLE WINAPI RecordOpenFileMapping(DWORD access, BOOL inherit, LPCWSTR name) {
    openCall = {access, inherit, name};
    return nullptr;
}

TEST_F(ExchangeMapping, IsOpenedByTheHostForWritingAndForItselfAlone) {
    obtest::ImportPatch patch("kernel32.dll", "OpenFileMappingW", &RecordOpenFileMapping);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(OpenExchangeBlock(0xFFFFFFFE, mapping));
    EXPECT_FALSE(mapping);
    EXPECT_EQ(openCall.access, static_cast<DWORD>(FILE_MAP_WRITE));
    EXPECT_EQ(openCall.inherit, FALSE);
    EXPECT_EQ(openCall.name, L"WEBVELLANT_SM_-2");
}

struct ViewCall {
    DWORD access = 0;
    DWORD offsetHigh = 1;
    DWORD offsetLow = 1;
    SIZE_T bytes = 0;
};
ViewCall viewCall;

LPVOID WINAPI FailMapViewOfFile(HANDLE, DWORD access, DWORD offsetHigh, DWORD offsetLow,
                                SIZE_T bytes) {
    viewCall = {access, offsetHigh, offsetLow, bytes};
    return nullptr;
}

void ExpectWholeViewForWriting() {
    EXPECT_EQ(viewCall.access, static_cast<DWORD>(FILE_MAP_WRITE));
    EXPECT_EQ(viewCall.offsetHigh, 0u);
    EXPECT_EQ(viewCall.offsetLow, 0u);
    EXPECT_EQ(viewCall.bytes, 65536u);
    viewCall = {};
}

TEST_F(ExchangeMapping, ClosesTheHandleWhenTheViewFails) {
    obtest::ImportPatch patch("kernel32.dll", "MapViewOfFile", &FailMapViewOfFile);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(CreateExchangeBlock(kId, mapping));
    EXPECT_FALSE(mapping);
    ExpectWholeViewForWriting();
    const UniqueKernelHandle gone(OpenFileMappingW(FILE_MAP_READ, FALSE, L"WEBVELLANT_SM_4711"));
    EXPECT_FALSE(gone);
}

TEST_F(ExchangeMapping, ClosesTheHostsHandleWhenItsViewFails) {
    UniqueKernelHandle section = SectionOf(L"WEBVELLANT_SM_4711", 65536);
    ASSERT_TRUE(section);
    obtest::ImportPatch patch("kernel32.dll", "MapViewOfFile", &FailMapViewOfFile);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(OpenExchangeBlock(kId, mapping));
    EXPECT_FALSE(mapping);
    ExpectWholeViewForWriting();
    section.Reset();
    const UniqueKernelHandle gone(OpenFileMappingW(FILE_MAP_READ, FALSE, L"WEBVELLANT_SM_4711"));
    EXPECT_FALSE(gone);
}

TEST_F(ExchangeMapping, GivesTheHostAHandleThatChildrenInherit) {
    const MappedExchangeBlock block = CreateExchangeBlock(kId, mapping);
    ASSERT_TRUE(block);
    DWORD flags = 0;
    ASSERT_TRUE(GetHandleInformation(mapping.Get(), &flags));
    EXPECT_NE(flags & HANDLE_FLAG_INHERIT, 0u);
}

} // namespace
