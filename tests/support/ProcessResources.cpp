#include "tests/support/ProcessResources.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <algorithm>
#include <cstdint>

#include "tests/support/TestFolder.h"

namespace obtest {
namespace {

constexpr SIZE_T kMemoryOfNoLeak = SIZE_T{4} << 20; // bytes: heaps grow in steps

std::wstring TemporaryFolder() {
    wchar_t folder[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, folder);
    return std::wstring(folder, wcslen(folder) - 1);
}

// The system's list of the handles of all processes.
struct SystemHandle {
    std::uintptr_t object;
    std::uintptr_t process;
    std::uintptr_t handle;
    std::uint32_t details[4];
};
static_assert(sizeof(SystemHandle) == 40);

struct SystemHandles {
    std::uintptr_t count;
    std::uintptr_t reserved;
};

constexpr ULONG kExtendedHandleInformation = 64;
constexpr LONG kLengthMismatch = static_cast<LONG>(0xC0000004);

// The list, in as much memory as it needs; empty when the system has none.
std::vector<std::byte> ReadSystemHandles() {
    using Query = LONG WINAPI(ULONG, void*, ULONG, ULONG*);
    auto* const query = reinterpret_cast<Query*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::byte> list(std::size_t{64} << 10);
    LONG status = kLengthMismatch;
    while (query != nullptr && status == kLengthMismatch) {
        list.resize(list.size() * 2);
        status = query(kExtendedHandleInformation, list.data(), static_cast<ULONG>(list.size()),
                       nullptr);
    }
    if (status != 0) list.clear();
    return list;
}

DWORD CountInSystemHandles() {
    const std::vector<std::byte> list = ReadSystemHandles();
    if (list.empty()) return 0;
    const auto& head = *reinterpret_cast<const SystemHandles*>(list.data());
    const auto* const first =
        reinterpret_cast<const SystemHandle*>(list.data() + sizeof(SystemHandles));
    return static_cast<DWORD>(std::count_if(first, first + head.count, [](const auto& entry) {
        return entry.process == GetCurrentProcessId();
    }));
}

// An entry of the table of GDI handles as Wine has it.
struct GdiHandleEntry {
    std::uint64_t object;
    std::uint32_t owner;
    std::uint16_t unique;
    std::uint8_t type; // 0: free
    std::uint8_t flags;
    std::uint64_t user;
};
static_assert(sizeof(GdiHandleEntry) == 24);

constexpr std::size_t kGdiTableOffset = 0xF8; // in the process environment block, 64 bits
constexpr std::size_t kGdiHandles = 0x4000;

const GdiHandleEntry* GdiTable() {
    using CurrentPeb = const std::byte* WINAPI();
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    auto* const block = reinterpret_cast<CurrentPeb*>(
        reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetCurrentPeb")));
    if (block == nullptr) return nullptr;
    return *reinterpret_cast<const GdiHandleEntry* const*>(block() + kGdiTableOffset);
}

DWORD CountInGdiTable() {
    const GdiHandleEntry* const table = GdiTable();
    DWORD count = 0;
    for (std::size_t at = 0; table != nullptr && at < kGdiHandles; ++at) {
        if (table[at].type != 0) ++count;
    }
    return count;
}

// Handles of the system are even numbers of 16 bits below their generation, which may be left out.
constexpr std::uintptr_t kFirstUserHandle = 0x20;
constexpr std::uintptr_t kLastUserHandle = 0xFFEF;

DWORD CountMenus() {
    DWORD count = 0;
    for (std::uintptr_t handle = kFirstUserHandle; handle < kLastUserHandle; handle += 2) {
        if (IsMenu(reinterpret_cast<HMENU>(handle))) ++count;
    }
    return count;
}

bool IsOwn(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
}

BOOL CALLBACK CountOwn(HWND window, LPARAM count) {
    if (IsOwn(window)) ++*reinterpret_cast<DWORD*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    CountOwn(window, count);
    if (IsOwn(window)) EnumChildWindows(window, &CountOwn, count);
    return TRUE;
}

TimerWatch* theWatch = nullptr;

} // namespace

DWORD CountHandles() {
    DWORD counted = 0;
    GetProcessHandleCount(GetCurrentProcess(), &counted);
    return counted != 0 ? counted : CountInSystemHandles();
}

DWORD CountGdiObjects() {
    const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    return counted != 0 ? counted : CountInGdiTable();
}

DWORD CountWindows() {
    DWORD count = 0;
    const auto counter = reinterpret_cast<LPARAM>(&count);
    EnumWindows(&CountWithChildren, counter);
    HWND message = nullptr;
    while ((message = FindWindowExW(HWND_MESSAGE, message, nullptr, nullptr)) != nullptr) {
        CountWithChildren(message, counter);
    }
    return count;
}

DWORD CountUserObjects() {
    const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    return counted != 0 ? counted : CountWindows() + CountMenus();
}

ProcessResources ProcessResources::Now() {
    ProcessResources now;
    now.handles = CountHandles();
    now.gdiObjects = CountGdiObjects();
    now.userObjects = CountUserObjects();
    now.windows = CountWindows();
    now.files = ListTree(TemporaryFolder());
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    now.committed = counters.PagefileUsage;
    return now;
}

void ExpectNoMoreThan(const ProcessResources& before) {
    const ProcessResources after = ProcessResources::Now();
    EXPECT_LE(after.handles, before.handles);
    EXPECT_LE(after.gdiObjects, before.gdiObjects);
    EXPECT_LE(after.userObjects, before.userObjects);
    EXPECT_LE(after.windows, before.windows);
    EXPECT_EQ(after.files, before.files);
    EXPECT_LE(after.committed, before.committed + kMemoryOfNoLeak);
}

TimerWatch::TimerWatch()
    : set_("user32.dll", "SetTimer", &TimerWatch::Set),
      end_("user32.dll", "KillTimer", &TimerWatch::End) {
    theWatch = this;
}

TimerWatch::~TimerWatch() { theWatch = nullptr; }

UINT_PTR WINAPI TimerWatch::Set(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC call) {
    const UINT_PTR set = theWatch->set_.Real()(window, id, milliseconds, call);
    // A timer without a window has the id that the system gives it.
    if (set != 0) theWatch->running_.emplace(window, window != nullptr ? id : set);
    if (set != 0) ++theWatch->started_;
    return set;
}

BOOL WINAPI TimerWatch::End(HWND window, UINT_PTR id) {
    theWatch->running_.erase({window, id});
    return theWatch->end_.Real()(window, id);
}

} // namespace obtest
