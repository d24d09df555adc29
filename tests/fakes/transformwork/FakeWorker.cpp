// A work process that misbehaves as a test asks: a taken-over, damaged or hanging
// PVXTransform64.exe. The file "worker.txt" beside it names in one word what it does with a
// request. It only reads, as the real one has no right to write. Its findings name its process, so
// that a test can distinguish one process from the next.
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "contracts/TransformWork.h"
#include "tests/fakes/Recording.h"

namespace {

using namespace obcontract;

HANDLE requests;
HANDLE replies;

struct Taken {
    WorkHeader header;
    WorkFiles files;
    std::vector<char> settings;
};

// The header of a request; a password before it is passed over.
bool TakeHeader(WorkHeader& header) {
    if (!ObLib::ReadWhole(requests, &header, sizeof header)) return false;
    if (header.kind != WorkKind::Password) return true;
    std::vector<char> password(header.size);
    return ObLib::ReadWhole(requests, password.data(), password.size()) && TakeHeader(header);
}

bool TakeRequest(Taken& taken) {
    if (!TakeHeader(taken.header) ||
        !ObLib::ReadWhole(requests, &taken.files, sizeof taken.files)) {
        return false;
    }
    taken.settings.resize(taken.header.size - sizeof taken.files);
    return ObLib::ReadWhole(requests, taken.settings.data(), taken.settings.size());
}

void SendRaw(const void* bytes, std::size_t size) { ObLib::WriteWhole(replies, bytes, size); }

template <class Payload>
void Send(WorkKind kind, const Payload& payload) {
    const WorkHeader header{kWorkMagic, kind, sizeof payload, 0};
    SendRaw(&header, sizeof header);
    SendRaw(&payload, sizeof payload);
}

HANDLE HandleOf(std::uint64_t value) { return reinterpret_cast<HANDLE>(value); }

void WriteTarget(const Taken& taken, const char* text) {
    ObLib::WriteWhole(HandleOf(taken.files.target), text, std::strlen(text));
}

[[noreturn]] void Hang() {
    for (;;) Sleep(INFINITE);
}

[[noreturn]] void Crash() {
    *static_cast<volatile int*>(nullptr) = 1;
    std::abort();
}

// Commits memory until the system refuses it, as a decoder that a damaged file has led astray, and
// crashes with the null that it got. The megabytes that it got go to "eaten.txt". Wine refuses
// none, so there is an end.
[[noreturn]] void EatMemory() {
    constexpr std::size_t kMegabyte = std::size_t{1} << 20;
    constexpr int kMost = 512;
    int eaten = 0;
    while (eaten < kMost &&
           VirtualAlloc(nullptr, kMegabyte, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)) {
        ++eaten;
    }
    std::ofstream(obtest::BesideProgram(L"eaten.txt").c_str()) << eaten;
    Crash();
}

void Find(const char* key, std::uint32_t count) {
    WorkFinding finding{};
    finding.count = count;
    std::memcpy(finding.key, key, std::strlen(key));
    Send(WorkKind::Finding, finding);
}

void Act(const std::string& word, const Taken& taken) {
    if (word == "crash") Crash();
    if (word == "eat") EatMemory();
    if (word == "hang") Hang();
    if (word == "exit") ExitProcess(7);
    if (word == "garbage") {
        const std::vector<char> bytes(100, 'x');
        SendRaw(bytes.data(), bytes.size());
        Hang();
    }
    if (word == "huge") {
        const WorkHeader header{kWorkMagic, WorkKind::Finding, 0xffffffff, 0};
        SendRaw(&header, sizeof header);
        Hang();
    }
    if (word == "half") {
        const WorkHeader header{kWorkMagic, WorkKind::Done, sizeof(WorkDone), 0};
        SendRaw(&header, sizeof header);
        ExitProcess(0);
    }
    if (word == "flood") {
        for (std::uint64_t step = 1;; ++step) Find(("key" + std::to_string(step)).c_str(), 1);
    }
    if (word == "standstill") {
        for (;;) Send(WorkKind::Progress, WorkProgress{1, 2});
    }
    if (word == "crash-after-writing") {
        WriteTarget(taken, "half a file");
        Crash();
    }
    if (word == "hang-after-writing") {
        WriteTarget(taken, "half a file");
        Hang();
    }
    if (word == "wrong-size") {
        WriteTarget(taken, "short");
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 1000});
        return;
    }
    if (word == "no-output") {
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
        return;
    }
    if (word == "crash-after-progress") {
        Send(WorkKind::Progress, WorkProgress{1, 2});
        Crash();
    }
    if (word == "crash-after-finding") {
        Find("position", 1);
        Crash();
    }
    if (word == "jpeg") {
        WriteTarget(taken, "\xFF\xD8\xFF jpeg");
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 8});
        return;
    }
    if (word == "pdf") {
        WriteTarget(taken, "%PDF-made");
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 9});
        return;
    }
    if (word == "full") {
        WriteTarget(taken, "half");
        Send(WorkKind::Failed, WorkFailed{WorkFailure::Unwritable, 0});
        return;
    }
    if (word == "too-large") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::TooLarge, 0});
        return;
    }
    if (word == "survives" && taken.header.kind == WorkKind::CheckClean) {
        Find("position", 1);
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
        return;
    }
    if (taken.header.kind == WorkKind::CheckClean) {
        Send(WorkKind::Done, WorkDone{WorkOutcome::Unchanged, 0, 0});
        return;
    }
    Send(WorkKind::Progress, WorkProgress{1, 2});
    Find("position", 2);
    Find(("process-" + std::to_string(GetCurrentProcessId())).c_str(), 1);
    WriteTarget(taken, "clean");
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 5});
    if (word == "crash-after-done") Crash();
}

// What is in the source, from its start: the manager, which shares the position, may have read it.
std::string Source(const Taken& taken) {
    char bytes[1000];
    DWORD count = 0;
    OVERLAPPED atStart{};
    ReadFile(HandleOf(taken.files.source), bytes, sizeof bytes, &count, &atStart);
    return {bytes, count};
}

template <class Record>
Record SettingsAs(const Taken& taken) {
    Record record{};
    std::memcpy(&record, taken.settings.data(), sizeof record);
    return record;
}

// A file whose content begins with "pic" is a photo that can be converted, one with "jpe" a picture
// of another kind.
bool IsPhoto(const Taken& taken) { return Source(taken).starts_with("pic"); }
bool IsPicture(const Taken& taken) { return IsPhoto(taken) || Source(taken).starts_with("jpe"); }

void SendPassed() { Send(WorkKind::Done, WorkDone{WorkOutcome::NotSupported, 0, 0}); }
void SendFailed(WorkFailure why) { Send(WorkKind::Failed, WorkFailed{why, 0}); }

// The settings of the pictures that were added.
std::vector<WorkFitAdd> added;

bool IsNoted(const WorkFitAdd& settings) {
    return settings.kinds != WorkPhotoKinds::None || settings.isStamped;
}

void ActInFitAdd(const std::string& word, const Taken& taken) {
    const auto settings = SettingsAs<WorkFitAdd>(taken);
    if (word == "fit-crash-in-add") Crash();
    if (word == "fit-hang-in-add") Hang();
    if (!IsPicture(taken) || (word.starts_with("fit-refuse") && IsNoted(settings)))
        return SendPassed();
    added.push_back(settings);
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
}

// Names each photo that was added as one. False when there is none.
bool SendUnsupported() {
    bool hasNamed = false;
    for (std::size_t number = 0; number < added.size(); ++number) {
        if (added[number].kinds == WorkPhotoKinds::None) continue;
        Find((kWorkPictureKey + std::to_string(number)).c_str(), 1);
        hasNamed = true;
    }
    return hasNamed;
}

void ActInFitSearch(const std::string& word) {
    Send(WorkKind::Progress, WorkProgress{1, 5, 1, 0});
    if (word == "fit-crash-in-search") Crash();
    if (word == "fit-hang-in-search") Hang();
    if (word == "fit-unsupported-other") {
        Find("picture.0", 1);
        return SendPassed();
    }
    if (word == "fit-cannot") return SendFailed(WorkFailure::CannotFit);
    if (word == "fit-damaged") return SendFailed(WorkFailure::Damaged);
    if (word == "fit-unsupported" && SendUnsupported()) return SendPassed();
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 14});
}

void ActInFitWrite(const std::string& word, const Taken& taken) {
    const std::uint32_t number = SettingsAs<WorkFitWrite>(taken).number;
    if (number == 1 && word == "fit-unchanged")
        return Send(WorkKind::Done, WorkDone{WorkOutcome::Unchanged, 0, 0});
    const bool isPhoto = number < added.size() && added[number].kinds != WorkPhotoKinds::None;
    std::string content = isPhoto ? "\xFF\xD8\xFF small" : "smaller";
    if (number == 1 && word == "fit-too-much") content.resize(900'000, 'x');
    if (number == 1 && word == "fit-odd") content = "neither";
    WriteTarget(taken, content.c_str());
    if (number == 1 && word == "fit-crash-in-write") Crash();
    if (number == 1 && word == "fit-hang-in-write") Hang();
    if (number == 1 && word == "fit-full") return SendFailed(WorkFailure::Unwritable);
    const bool isWrong = number == 1 && word == "fit-wrong-size";
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, content.size() + (isWrong ? 1 : 0)});
}

// The watermark for all pictures.
void ActInFitMark(const std::string& word, const Taken& taken) {
    if (taken.header.kind == WorkKind::FitPictureWatermark) {
        CloseHandle(HandleOf(SettingsAs<WorkPictureWatermark>(taken).picture));
    }
    if (word == "fit-bad-picture") return SendFailed(WorkFailure::BadPicture);
    if (word == "fit-crash-in-mark") Crash();
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
}

void ActInFitCheck(const std::string& word, const Taken& taken) {
    if (word == "fit-crash-in-check") Crash();
    const bool isForPhotos = SettingsAs<WorkFitCheck>(taken).kinds != WorkPhotoKinds::None;
    if (isForPhotos ? !IsPhoto(taken) : !IsPicture(taken)) return SendPassed();
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
}

// One step alone, whose result is as large as the source and begins with what was done.
void ActInStep(const std::string& word, const Taken& taken, const std::string& done) {
    LARGE_INTEGER size{};
    GetFileSizeEx(HandleOf(taken.files.source), &size);
    std::string content = done;
    content.resize(static_cast<std::size_t>(size.QuadPart), 'w');
    if (word == "fit-no-decoder") {
        Find("no-decoder", 1);
        return SendPassed();
    }
    if (word == "fit-damaged-step") return SendFailed(WorkFailure::Damaged);
    WriteTarget(taken, content.c_str());
    if (word == "fit-hang-in-step") Hang();
    if (word == "fit-crash-in-step") Crash();
    if (word == "fit-full-in-step") return SendFailed(WorkFailure::Unwritable);
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, content.size()});
}

void RecordKind(const Taken& taken) {
    std::ofstream kinds(obtest::BesideProgram(L"kinds.txt").c_str(), std::ios::app);
    kinds << static_cast<std::uint32_t>(taken.header.kind) << ' ';
}

// Pictures that are made smaller together: each becomes "smaller", with what the test asks at the
// request that the word names. False for another request.
bool ActInFit(const std::string& word, const Taken& taken) {
    const bool isScripted = word.starts_with("fit-");
    if (isScripted) RecordKind(taken);
    switch (taken.header.kind) {
    case WorkKind::FitCheck:
        return ActInFitCheck(word, taken), true;
    case WorkKind::FitWatermark:
    case WorkKind::FitPictureWatermark:
        return ActInFitMark(word, taken), true;
    case WorkKind::FitAdd:
        return ActInFitAdd(word, taken), true;
    case WorkKind::FitSearch:
        return ActInFitSearch(word), true;
    case WorkKind::FitWrite:
        return ActInFitWrite(word, taken), true;
    case WorkKind::ConvertPhoto:
        if (isScripted && !IsPhoto(taken)) return SendPassed(), true;
        if (isScripted) ActInStep(word, taken, "\xFF\xD8\xFF converted");
        return isScripted;
    case WorkKind::Watermark:
        if (isScripted && Source(taken).starts_with("text")) return SendPassed(), true;
        if (isScripted) ActInStep(word, taken, Source(taken).substr(0, 12) + " marked");
        return isScripted;
    case WorkKind::PictureWatermark:
        if (!isScripted) return false;
        CloseHandle(HandleOf(SettingsAs<WorkPictureWatermark>(taken).picture));
        return ActInStep(word, taken, Source(taken).substr(0, 12) + " marked"), true;
    default:
        return false;
    }
}

std::string combined; // the titles and contents that were added

[[noreturn]] void HangWithASign() {
    std::ofstream(obtest::BesideProgram(L"kinds.txt").c_str()) << "hangs";
    Hang();
}

// PDFs that become one: a content of "%PDF-" and a word selects what the file is; a test may ask
// for more at the request that its word names.
void ActInCombine(const std::string& word, const Taken& taken) {
    if (taken.header.kind == WorkKind::CombineWrite) {
        Send(WorkKind::Progress, WorkProgress{1, 5, 1, 0});
        WriteTarget(taken, word == "combine-odd" ? "no PDF" : ("%PDF-" + combined).c_str());
        if (word == "combine-crash-in-write") Crash();
        if (word == "combine-hang-in-write") HangWithASign();
        if (word == "combine-damaged" || word == "combine-full") {
            const auto why =
                word == "combine-full" ? WorkFailure::Unwritable : WorkFailure::Damaged;
            return Send(WorkKind::Failed, WorkFailed{why, 0});
        }
        const std::uint64_t size = word == "combine-odd" ? 6 : 5 + combined.size();
        return Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, size});
    }
    WorkCombineAdd settings{};
    std::memcpy(&settings, taken.settings.data(), sizeof settings);
    const std::string content = Source(taken).substr(5);
    if (word == "combine-crash-in-add") Crash();
    if (word == "combine-hang-in-add") HangWithASign();
    if (content == "signed" && settings.signatures == WorkSignatures::Keep) {
        return Send(WorkKind::Failed, WorkFailed{WorkFailure::Signed, 0});
    }
    if (content == "cipher") {
        return Send(WorkKind::Failed, WorkFailed{WorkFailure::OtherCipher, 0});
    }
    if (content == "damaged") return Send(WorkKind::Failed, WorkFailed{WorkFailure::Damaged, 0});
    if (content == "huge") return Send(WorkKind::Failed, WorkFailed{WorkFailure::TooLarge, 0});
    if (content == "cover") {
        return Send(WorkKind::Done, WorkDone{WorkOutcome::NotSupported, 0, 0});
    }
    for (std::size_t at = sizeof settings; at < taken.settings.size(); at += sizeof(wchar_t)) {
        combined += static_cast<char>(taken.settings[at]); // the tests' texts are ASCII
    }
    combined += "=" + content + ";";
    Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, 0});
}

// What was asked for, as the content of the target.
std::string ResizeText(const Taken& taken) {
    WorkResize settings{};
    std::memcpy(&settings, taken.settings.data(), sizeof settings);
    return "aim " + std::to_string(static_cast<int>(settings.aim)) + ' ' +
           std::to_string(settings.value);
}

std::string MarkText(const Taken& taken) {
    WorkWatermark settings{};
    std::memcpy(&settings, taken.settings.data(), sizeof settings);
    std::string text = "mark " + std::to_string(static_cast<int>(settings.place)) + ' ' +
                       std::to_string(settings.opacity) + ' ';
    for (std::size_t at = sizeof settings; at < taken.settings.size(); at += sizeof(wchar_t))
        text += static_cast<char>(taken.settings[at]); // the tests' texts are ASCII
    return text;
}

// The same for a picture, whose content is the test's text.
std::string PictureMarkText(const Taken& taken) {
    WorkPictureWatermark settings{};
    std::memcpy(&settings, taken.settings.data(), sizeof settings);
    char content[100] = {};
    DWORD read = 0;
    ReadFile(HandleOf(settings.picture), content, sizeof content, &read, nullptr);
    CloseHandle(HandleOf(settings.picture));
    return "picture " + std::to_string(static_cast<int>(settings.place)) + ' ' +
           std::to_string(settings.opacity) + ' ' + std::string(content, read);
}

std::string TextFor(const Taken& taken) {
    switch (taken.header.kind) {
    case WorkKind::Resize:
        return ResizeText(taken);
    case WorkKind::PictureWatermark:
        return PictureMarkText(taken);
    default:
        return MarkText(taken);
    }
}

// The requests about pictures and zips. False for another one and for a word that isn't about them.
bool ActOnPicture(const std::string& word, const Taken& taken) {
    const WorkKind kind = taken.header.kind;
    if (word == "record") {
        std::ofstream kinds(obtest::BesideProgram(L"kinds.txt").c_str(), std::ios::app);
        kinds << static_cast<std::uint32_t>(kind) << ' ';
        Send(WorkKind::Done, WorkDone{WorkOutcome::Unchanged, 0, 0});
        return true;
    }
    if (kind == WorkKind::Measure) {
        // Half of what any test writes into a file, or all of it.
        const bool isSmall =
            word == "fit-small-zip" || (word.ends_with("small-steps") && !IsPicture(taken));
        const std::uint64_t size = isSmall ? 1000 : ~std::uint64_t{0};
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, size});
        return true;
    }
    if (ActInFit(word, taken)) return true;
    if (kind == WorkKind::CombineAdd || kind == WorkKind::CombineWrite) {
        return ActInCombine(word, taken), true;
    }
    if (kind != WorkKind::Resize && kind != WorkKind::Watermark &&
        kind != WorkKind::PictureWatermark)
        return false;
    if (word == "unchanged") {
        Send(WorkKind::Done, WorkDone{WorkOutcome::Unchanged, 0, 0});
    } else if (word == "not-supported") {
        Send(WorkKind::Done, WorkDone{WorkOutcome::NotSupported, 0, 0});
    } else if (word == "damaged") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::Damaged, 0});
    } else if (word == "cannot") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::CannotFit, 0});
    } else if (word == "signed") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::Signed, 0});
    } else if (word == "bad-picture") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::BadPicture, 0});
    } else if (word == "other-cipher") {
        Send(WorkKind::Failed, WorkFailed{WorkFailure::OtherCipher, 0});
    } else if (word == "good") {
        const std::string text = TextFor(taken);
        WriteTarget(taken, text.c_str());
        Send(WorkKind::Done, WorkDone{WorkOutcome::Changed, 0, text.size()});
    } else {
        return false;
    }
    return true;
}

// Answers every request and reads none, until the pipe ends.
void AnswerUnread() {
    constexpr DWORD kSize = sizeof(WorkHeader) + sizeof(WorkFiles) + sizeof(WorkClean);
    DWORD there = 0;
    for (DWORD answered = 0; PeekNamedPipe(requests, nullptr, 0, nullptr, &there, nullptr);) {
        if (there / kSize > answered) {
            Send(WorkKind::Done, WorkDone{WorkOutcome::Unchanged, 0, 0});
            ++answered;
        } else {
            Sleep(1);
        }
    }
}

std::string ScriptedWord() {
    std::ifstream script(obtest::BesideProgram(L"worker.txt").c_str());
    std::string word = "good";
    script >> word;
    return word;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count != 3) return 2;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    requests = HandleOf(std::wcstoull(words[1], nullptr, 10));
    replies = HandleOf(std::wcstoull(words[2], nullptr, 10));
    std::ofstream(obtest::BesideProgram(L"starts.txt").c_str(), std::ios::app) << 's';
    if (ScriptedWord() == "crash-at-start") Crash();
    if (ScriptedWord() == "answer-unread") AnswerUnread();
    for (Taken taken; TakeRequest(taken);) {
        const std::string word = ScriptedWord();
        if (!ActOnPicture(word, taken)) Act(word, taken);
        if (taken.files.source != 0) CloseHandle(HandleOf(taken.files.source));
        if (taken.files.target != 0) CloseHandle(HandleOf(taken.files.target));
    }
    return 0;
}
