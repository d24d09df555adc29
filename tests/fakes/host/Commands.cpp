#include "tests/fakes/host/Commands.h"

#include <cstring>
#include <cwchar>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ExchangeBlock.h"
#include "tests/fakes/Recording.h"

namespace obtest {
namespace {

using Arguments = std::vector<std::wstring>;
using Outcome = std::optional<int>;

constexpr Outcome kGoOn = std::nullopt;

// Spelt out rather than taken from the product, so that the two are tested against each other.
bool MapBlock(HostRun& run) {
    if (run.block) return true;
    const std::wstring name =
        L"WEBVELLANT_SM_" + std::to_wstring(static_cast<std::int32_t>(run.id));
    const HANDLE mapping = OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str());
    if (!mapping) return false;
    run.block = static_cast<std::uint8_t*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 65536));
    return run.block != nullptr;
}

// Bytes that would be outside the block are left out: a script can ask for them all the same.
void PutBytes(HostRun& run, std::int64_t offset, const void* bytes, std::size_t count) {
    const auto* source = static_cast<const std::uint8_t*>(bytes);
    for (std::size_t index = 0; index < count; ++index) {
        const std::int64_t at = offset + static_cast<std::int64_t>(index);
        if (at >= 0 && at < obcontract::kExchangeBlockSize) run.block[at] = source[index];
    }
}

template <class Number>
Outcome Poke(const Arguments& arguments, HostRun& run) {
    const auto value = static_cast<Number>(HostNumber(arguments[1]));
    PutBytes(run, HostNumber(arguments[0]), &value, sizeof(value));
    return kGoOn;
}

Outcome Fill(const Arguments& arguments, HostRun& run) {
    const std::string bytes(static_cast<std::size_t>(HostNumber(arguments[1])),
                            static_cast<char>(HostNumber(arguments[2])));
    PutBytes(run, HostNumber(arguments[0]), bytes.data(), bytes.size());
    return kGoOn;
}

Outcome Units(const Arguments& arguments, HostRun& run) {
    std::wstring units;
    for (std::size_t index = 1; index < arguments.size(); ++index)
        units += static_cast<wchar_t>(HostNumber(arguments[index]));
    PutBytes(run, HostNumber(arguments[0]), units.data(), units.size() * sizeof(wchar_t));
    return kGoOn;
}

Outcome Text(const Arguments& arguments, HostRun& run) {
    const std::wstring& text = arguments[1];
    PutBytes(run, HostNumber(arguments[0]), text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    return kGoOn;
}

void PutList(HostRun& run, std::int64_t offset, const Arguments& texts, std::size_t first) {
    std::wstring list;
    for (std::size_t index = first; index < texts.size(); ++index)
        list.append(texts[index]).push_back(L'\0');
    list.push_back(L'\0');
    PutBytes(run, offset, list.data(), list.size() * sizeof(wchar_t));
}

Outcome List(const Arguments& arguments, HostRun& run) {
    PutList(run, HostNumber(arguments[0]), arguments, 1);
    return kGoOn;
}

Outcome Slot(const Arguments& arguments, HostRun& run) {
    std::int32_t offset = 0;
    std::memcpy(&offset, run.block + 72, sizeof(offset));
    PutList(run, offset, arguments, 0);
    return kGoOn;
}

Outcome Status(const Arguments& arguments, HostRun& run) {
    return Poke<std::uint32_t>({L"0", arguments[0]}, run);
}

Outcome Result(const Arguments& arguments, HostRun& run) {
    return Poke<std::uint32_t>({L"4", arguments[0]}, run);
}

ObLib::UniqueKernelHandle NewFile(const std::wstring& name) {
    return ObLib::UniqueKernelHandle(CreateFileW(BesideProgram(name.c_str()).c_str(), GENERIC_WRITE,
                                                 FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0,
                                                 nullptr));
}

Outcome Dump(const Arguments& arguments, HostRun& run) {
    const auto file = NewFile(arguments[0]);
    DWORD written = 0;
    WriteFile(file.Get(), run.block, obcontract::kExchangeBlockSize, &written, nullptr);
    if (written == obcontract::kExchangeBlockSize) return kGoOn;
    return kHostScriptFailed;
}

Outcome Owner(const Arguments&, HostRun& run) {
    wchar_t className[64] = L"";
    GetClassNameW(run.owner, className, 64);
    wchar_t title[64] = L"";
    GetWindowTextW(run.owner, title, 64);
    RECT place = {};
    GetWindowRect(run.owner, &place);
    const HWND ownersOwner = GetWindow(run.owner, GW_OWNER);
    wchar_t line[512];
    _snwprintf(line, 512,
               L"owner class=%ls title=[%ls] style=0x%08X exstyle=0x%08X rect=%d,%d,%d,%d "
               L"owned-by=%lld enabled=%d",
               className, title, static_cast<unsigned>(GetWindowLongW(run.owner, GWL_STYLE)),
               static_cast<unsigned>(GetWindowLongW(run.owner, GWL_EXSTYLE)),
               static_cast<int>(place.left), static_cast<int>(place.top),
               static_cast<int>(place.right), static_cast<int>(place.bottom),
               static_cast<long long>(reinterpret_cast<INT_PTR>(ownersOwner)),
               IsWindowEnabled(ownersOwner ? ownersOwner : run.owner) ? 1 : 0);
    RecordHostLine(line);
    return kGoOn;
}

Outcome PostQuit(const Arguments& arguments, HostRun& run) {
    const DWORD thread = GetWindowThreadProcessId(run.owner, nullptr);
    const auto value = static_cast<WPARAM>(HostNumber(arguments[0]));
    if (PostThreadMessageW(thread, WM_QUIT, value, 0)) return kGoOn;
    return kHostScriptFailed;
}

Outcome MakeFile(const Arguments& arguments, HostRun&) {
    if (NewFile(arguments[0])) return kGoOn;
    return kHostScriptFailed;
}

Outcome WaitFile(const Arguments& arguments, HostRun&) {
    const std::wstring path = BesideProgram(arguments[0].c_str());
    const std::int64_t limit = arguments.size() > 1 ? HostNumber(arguments[1]) : 20000;
    const ULONGLONG begin = GetTickCount64();
    while (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        if (GetTickCount64() - begin > static_cast<ULONGLONG>(limit)) return kHostWaitedInVain;
        Sleep(5);
    }
    return kGoOn;
}

Outcome SleepFor(const Arguments& arguments, HostRun&) {
    Sleep(static_cast<DWORD>(HostNumber(arguments[0])));
    return kGoOn;
}

Outcome Crash(const Arguments&, HostRun&) {
    RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    return kHostScriptFailed;
}

Outcome Exit(const Arguments& arguments, HostRun&) {
    return static_cast<int>(HostNumber(arguments[0]));
}

enum class Needs { Nothing, Block };

struct CommandRow {
    const wchar_t* name;
    std::size_t leastArguments;
    Needs needs;
    Outcome (*run)(const Arguments& arguments, HostRun& run);
};

constexpr CommandRow kCommands[] = {
    {L"poke8", 2, Needs::Block, &Poke<std::uint8_t>},
    {L"poke16", 2, Needs::Block, &Poke<std::uint16_t>},
    {L"poke32", 2, Needs::Block, &Poke<std::uint32_t>},
    {L"fill", 3, Needs::Block, &Fill},
    {L"units", 2, Needs::Block, &Units},
    {L"text", 2, Needs::Block, &Text},
    {L"list", 1, Needs::Block, &List},
    {L"slot", 0, Needs::Block, &Slot},
    {L"status", 1, Needs::Block, &Status},
    {L"result", 1, Needs::Block, &Result},
    {L"dump", 1, Needs::Block, &Dump},
    {L"owner", 0, Needs::Nothing, &Owner},
    {L"post-quit", 1, Needs::Nothing, &PostQuit},
    {L"make-file", 1, Needs::Nothing, &MakeFile},
    {L"wait-file", 1, Needs::Nothing, &WaitFile},
    {L"sleep", 1, Needs::Nothing, &SleepFor},
    {L"crash", 0, Needs::Nothing, &Crash},
    {L"exit", 1, Needs::Nothing, &Exit},
};

Outcome Fail(const HostCommand& command, const wchar_t* why) {
    RecordHostLine(std::wstring(L"error ") + why + L": " + command.line);
    return kHostScriptFailed;
}

} // namespace

Outcome RunHostCommand(const HostCommand& command, HostRun& run) {
    for (const CommandRow& row : kCommands) {
        if (command.name != row.name) continue;
        if (command.arguments.size() < row.leastArguments) return Fail(command, L"too few values");
        if (row.needs == Needs::Block && !MapBlock(run)) return Fail(command, L"no block");
        return row.run(command.arguments, run);
    }
    return Fail(command, L"no such command");
}

void RecordHostLine(const std::wstring& line) {
    AppendUtf8File(BesideProgram(kHostCallsFileName), line + L"\n");
}

} // namespace obtest
