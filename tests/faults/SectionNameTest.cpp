// Another process has created a section with the block's name already.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/BrowserRequest.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::BrowserCall;
using obtest::HostScript;
using Lines = std::vector<std::wstring>;

// A section of another program, for the lifetime of this object.
class Squatter {
public:
    Squatter(const std::wstring& name, DWORD size, std::uint8_t fill)
        : section_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size,
                                      name.c_str())),
          view_(static_cast<std::uint8_t*>(
              MapViewOfFile(section_.Get(), FILE_MAP_WRITE, 0, 0, size))),
          size_(size) {
        EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
        if (view_) std::memset(view_.Get(), fill, size);
    }

    std::uint8_t* Bytes() const { return view_.Get(); }

    // Whether everything from `offset` on is still as it was filled.
    bool IsUnchangedFrom(DWORD offset, std::uint8_t fill) const {
        return std::all_of(Bytes() + offset, Bytes() + size_,
                           [fill](std::uint8_t byte) { return byte == fill; });
    }

private:
    ObLib::UniqueKernelHandle section_;
    ObLib::UniqueMappedView<std::uint8_t> view_;
    DWORD size_;
};

class SectionName : public testing::Test {
protected:
    void SetUp() override {
        std::wmemset(file_, L'#', kCapacity);
        request_.lStructSize = sizeof(request_);
        request_.hwndOwner = browser_.Page();
        request_.lpstrFile = file_;
        request_.nMaxFile = kCapacity;
    }

    void TearDown() override { EXPECT_TRUE(context_.OnlyDelivered()); }

    BOOL Open(const std::wstring& script) {
        HostScript::Play(script);
        return obwmv::RunOpenFileNameRequest(&request_, &context_);
    }

    static std::wstring Name() {
        return L"WEBVELLANT_SM_" + std::to_wstring(static_cast<int>(GetCurrentThreadId()));
    }

    bool FileUntouched() const {
        return std::wstring(file_, kCapacity) == std::wstring(kCapacity, L'#');
    }

    static constexpr std::size_t kCapacity = 64;
    wchar_t file_[kCapacity];
    OPENFILENAMEW request_ = {};
    obtest::BrowserWindow browser_;
    obtest::FakeBrowserContext context_;
};

const wchar_t kAnswer[] = L"status 3\nslot \"C:\\f\"\nresult 1";

TEST_F(SectionName, OfASmallerSectionMakesTheRequestACancelAndLeavesThatSectionAlone) {
    const Squatter other(Name(), 4096, 0xA5);
    ASSERT_TRUE(other.Bytes());
    EXPECT_EQ(Open(kAnswer), 0);
    EXPECT_TRUE(HostScript::Record().empty()) << "a host was started";
    EXPECT_TRUE(FileUntouched());
    EXPECT_TRUE(other.IsUnchangedFrom(0, 0xA5));
    EXPECT_TRUE(browser_.Enabled());
}

TEST_F(SectionName, OfALargerSectionServesTheRequestInItsFirstPart) {
    const Squatter other(Name(), 3 * 65536, 0xA5);
    ASSERT_TRUE(other.Bytes());
    EXPECT_EQ(Open(kAnswer), 1);
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
    EXPECT_TRUE(other.IsUnchangedFrom(65536, 0xA5)) << "written past the block's end";
}

// A list that an earlier owner of a larger section left without an end isn't read past the block.
TEST_F(SectionName, OfALargerSectionIsNeverReadPastTheBlock) {
    const Squatter other(Name(), 3 * 65536, 0x41);
    ASSERT_TRUE(other.Bytes());
    EXPECT_EQ(Open(L"status 3\nresult 1\npoke32 72 65526\npoke32 16 0"), 1);
    EXPECT_EQ(std::wstring(file_), L"\x4141\x4141\x4141");
    EXPECT_EQ(file_[5], L'#');
    EXPECT_TRUE(other.IsUnchangedFrom(65536, 0x41));
}

// The whole answer of an earlier run: a file, a result and something to clear up.
void PutStaleAnswer(std::uint8_t* block) {
    const std::int32_t numbers[] = {3, 1, 0, 0, 400, 500};
    std::memcpy(block, numbers, sizeof(numbers));
    const wchar_t folder[] = L"C:\\Users";
    std::memcpy(block + 400, folder, sizeof(folder));
    std::memcpy(block + 500, folder, sizeof(folder));
}

TEST_F(SectionName, OfAStaleAnswerDeliversNoneOfItWhenTheHostFails) {
    const Squatter other(Name(), 65536, 0);
    ASSERT_TRUE(other.Bytes());
    for (const wchar_t* end : {L"exit 1", L"exit -1", L"crash"}) {
        PutStaleAnswer(other.Bytes());
        EXPECT_EQ(Open(end), 0);
        EXPECT_TRUE(FileUntouched());
        EXPECT_TRUE(context_.delivered.empty());
    }
}

TEST_F(SectionName, OfAStaleAnswerIsOverwrittenByTheHostsOwn) {
    const Squatter other(Name(), 65536, 0);
    ASSERT_TRUE(other.Bytes());
    PutStaleAnswer(other.Bytes());
    EXPECT_EQ(Open(std::wstring(kAnswer) + L"\npoke32 16 0\npoke32 20 0"), 1);
    EXPECT_EQ(std::wstring(file_), L"C:\\f");
    EXPECT_TRUE(context_.delivered.empty());
}

// The other program goes on writing while the answer is read: what is delivered is one text that
// ends inside the block, whatever its characters.
TEST_F(SectionName, OfAnotherProgramThatWritesMeanwhileIsReadFromAPrivateCopy) {
    const Squatter other(Name(), 65536, 0);
    ASSERT_TRUE(other.Bytes());

    context_.onCall = [&](BrowserCall call) {
        if (call == BrowserCall::InsertLinkText) std::memset(other.Bytes(), 0x41, 65536);
    };
    EXPECT_EQ(Open(L"status 2\ntext 76 \"https://cloud/1\"\npoke32 24 76\nresult 0\n"
                   L"text 1000 \"C:\\t\"\npoke32 16 1000\npoke32 20 0"),
              0);
    EXPECT_EQ(context_.delivered, (Lines{L"link https://cloud/1", L"cleanup [C:\\t] null"}));
}

} // namespace
