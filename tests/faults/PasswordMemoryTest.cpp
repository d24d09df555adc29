// A whole encrypting run, from the prompt to the zip. Afterwards the password is nowhere in the
// process except where the run's own buffer was on the stack. The test never has the password in
// one piece: it stores it masked, types it letter by letter and compares byte by byte.
#include <cstdint>
#include <thread>

#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ScopeExit.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/faults/HostRole.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/PasswordUiDriver.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/ReadableMemory.h"

namespace obtest {
namespace {

constexpr std::uint8_t kMask = 0xA5;
constexpr std::uint8_t kMasked[] = {'Q' ^ kMask, 'z' ^ kMask, '7' ^ kMask, '!' ^ kMask,
                                    'k' ^ kMask, 'B' ^ kMask, 'V' ^ kMask, 'x' ^ kMask,
                                    '3' ^ kMask, 'j' ^ kMask, 'w' ^ kMask, 'P' ^ kMask};

// Volatile, or the compiler may put the plain letters together.
std::uint8_t Letter(std::size_t index) {
    const volatile std::uint8_t mask = kMask;
    return kMasked[index] ^ mask;
}

// Whether the password is at `at`, each letter `width` bytes wide.
bool StandsAt(const std::uint8_t* at, std::size_t width) {
    for (std::size_t index = 0; index < std::size(kMasked); ++index) {
        if (at[index * width] != Letter(index)) return false;
        if (width == 2 && at[index * width + 1] != 0) return false;
    }
    return true;
}

int TimesIn(const std::uint8_t* at, std::size_t size) {
    const std::uint8_t* const end = at + size - 2 * std::size(kMasked);
    int times = 0;
    const std::uint8_t first = Letter(0);
    for (; at <= end; ++at)
        if (*at == first) times += StandsAt(at, 1) + StandsAt(at, 2);
    return times;
}

// Searches for UTF-8 and UTF-16 in everything that this process can read except the calling
// thread's stack: the run's own buffer was there and isn't cleared.
int TimesInMemory() {
    int times = 0;
    MEMORY_BASIC_INFORMATION own = {};
    VirtualQuery(&own, &own, sizeof(own));
    obtest::ForEachReadableRegion(
        [&](const MEMORY_BASIC_INFORMATION& region, const std::uint8_t* bytes) {
            if (region.AllocationBase != own.AllocationBase)
                times += TimesIn(bytes, region.RegionSize);
        });
    return times;
}

void TypeInto(HWND field) {
    for (std::size_t index = 0; index < std::size(kMasked); ++index)
        SendMessageW(field, WM_CHAR, Letter(index), 1);
}

class PasswordOfARun : public HostRole {
protected:
    void SetUp() override {
        HostRole::SetUp();
        SetUserValue(L"AutoEncrypt", L"1");
        file_ = sources_.File(L"secret.txt", std::string(70000, 's'));
    }

    // Types into both fields, searches memory meanwhile, and closes the prompt with this button.
    std::thread Person(bool confirms) {
        return std::thread([this, confirms] {
            const OpenPasswordPrompt prompt = OpenPasswordPrompt::Await(GetCurrentProcessId());
            ASSERT_TRUE(prompt.Window()) << "no prompt";
            TypeInto(GetDlgItem(prompt.Window(), OB_PASSWORD_FIRST));
            TypeInto(GetDlgItem(prompt.Window(), OB_PASSWORD_REPEAT));
            whileOpen_ = TimesInMemory();
            if (confirms)
                EXPECT_TRUE(prompt.PressOk());
            else
                prompt.PressCancel();
        });
    }

    std::wstring file_;
    int whileOpen_ = 0;
};

TEST_F(PasswordOfARun, IsNotInMemoryAfterTheZip) {
    std::thread user = Person(true);
    const Answer answer = Open({file_});
    user.join();
    EXPECT_GE(whileOpen_, 2) << "the search would find it";
    EXPECT_EQ(TimesInMemory(), 0);
    ASSERT_EQ(answer.files.size(), 1u);
    ExpectOnlyTheZipIsLeft(answer);
    // Still it is the zip's password: no byte of the file is in the zip as plain text.
    const auto zip = ReadFileContent(answer.files.front());
    ASSERT_TRUE(zip);
    EXPECT_EQ(zip->find("ssssssss"), std::string::npos);
}

TEST_F(PasswordOfARun, IsNotInMemoryAfterACancel) {
    std::thread user = Person(false);
    const Answer answer = Show({file_});
    user.join();
    EXPECT_GE(whileOpen_, 2) << "the search would find it";
    EXPECT_EQ(TimesInMemory(), 0);
    ExpectNothingGiven(answer);
    EXPECT_EQ(Left(), Texts{});
}

BOOL WINAPI WriteToFullDisk(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    if (written) *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(PasswordOfARun, IsNotInMemoryAfterAFailedZip) {
    const ImportPatch<decltype(&WriteFile)> full("kernel32.dll", "WriteFile", &WriteToFullDisk,
                                                 GetModuleHandleW(L"obofcsvc64.dll"));
    ASSERT_TRUE(full.Ok());
    std::thread user = Person(true);
    const Answer answer = Open({file_});
    user.join();
    ExpectNothingGiven(answer);
    EXPECT_GE(whileOpen_, 2) << "the search would find it";
    EXPECT_EQ(TimesInMemory(), 0);
}

// Replaced entries of the service, which note where the password's buffer is.
obcontract::ArchiveServiceEntries real;
const char* travelled = nullptr;
std::size_t lettersLeft = 0;

std::uint32_t GiveLongPassword(HWND, std::uint32_t*, char* password, std::uint32_t capacity) {
    for (std::uint32_t index = 0; index + 1 < capacity; ++index) password[index] = 'x';
    password[capacity - 1] = '\0';
    return 1;
}

void NotePassword(obcontract::ZipContext context, const char* password) {
    travelled = password;
    real.SetPassword(context, password);
}

// The next step of the run: looks at the buffer's place on the stack before much else of the run
// can overwrite it.
void LookAtPassword(obcontract::ZipContext context, std::uint32_t method) {
    for (std::uint32_t index = 0; index < obcontract::kPasswordCapacity; ++index)
        lettersLeft += static_cast<const volatile char*>(travelled)[index] == 'x';
    real.SetCompression(context, method);
}

TEST_F(PasswordOfARun, LeavesItsBufferOnTheStackUncleared) {
    // The table of entries is one object of the program and isn't constant, so it can be changed.
    auto& entries = const_cast<obcontract::ArchiveServiceEntries&>(obcore::ArchiveService());
    real = entries;
    const ObLib::ScopeExit restore([&entries]() noexcept { entries = real; });
    entries.PasswordNewDlg_C = &GiveLongPassword;
    entries.SetPassword = &NotePassword;
    entries.SetCompression = &LookAtPassword;
    travelled = nullptr;
    lettersLeft = 0;
    EXPECT_EQ(Open({file_}).result, 1);
    EXPECT_TRUE(travelled);
    EXPECT_GE(lettersLeft, 64u);
}

} // namespace
} // namespace obtest
