#include "services/providers/transforms/FitMail.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/transforms/Resize.h"
#include "services/providers/ui/SizeText.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using obcontract::WorkKind;
using obcontract::WorkPlain;

// A zip's own bytes: what it writes for each file besides the name, which is in it twice, and at
// its end, with room for what encryption adds.
constexpr std::uint64_t kZipEntry = 240;
constexpr std::uint64_t kZipEnd = 4096;

// One file of the mail.
struct FitFile {
    std::wstring path;
    WorkingCopy copy;
    std::uint64_t size = 0;
    std::uint64_t bytes = 0;             // that it counts for if it stays as it is
    std::optional<std::uint32_t> number; // of a picture that can be made smaller
    std::unique_ptr<NewFile> smaller;    // null for a file that stays
    std::optional<WorkReport> written;
};

std::uint64_t Utf8Length(const std::wstring& text) {
    return static_cast<std::uint64_t>(
        std::max(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                     nullptr, 0, nullptr, nullptr),
                 0));
}

class Fit {
public:
    explicit Fit(StageCall& call)
        : call_(call), limit_(call.plan.resize.Number() * kBytesOfMegabyte) {}
    // After a cancel the files may be deleted already, but not the folder while they were open.
    ~Fit() {
        if (!call_.wait.IsEnded()) return;
        ObLib::RanGuarded([&] {
            for (const FitFile& file : files_) call_.run.unfinished.AddFolderOf(file.copy);
        });
    }
    Fit(const Fit&) = delete;
    Fit& operator=(const Fit&) = delete;

    bool Run(const std::vector<std::wstring>& paths) {
        if (!Open(paths)) return false;
        if (Total() <= Room()) return true;
        if (call_.isZipped && !MeasureAll()) return false;
        if (Total() <= Room()) return true;
        return MakeSmaller();
    }

private:
    std::uint64_t Room() const { return limit_ / 137 * 100 + limit_ % 137 * 100 / 137; }
    bool Open(const std::vector<std::wstring>& paths);
    std::uint64_t Total() const; // a picture that was written counts as what was written
    std::uint64_t Others() const;
    bool MeasureAll();
    bool MakeSmaller();
    bool AddAll();
    bool Search();
    bool Say(UINT text);
    bool SayWhatCannotFit();
    bool WriteAll();
    bool Write(FitFile& file);
    bool PlaceAll();
    const std::wstring& PathOf(std::uint32_t number) const;
    WorkReport Ask(WorkKind kind, const auto& settings, HANDLE source, HANDLE target) {
        return series_->Run(WorkOrder(kind, settings), source, target, call_.wait);
    }

    StageCall& call_;
    std::uint64_t limit_; // of the mail as it is sent
    std::vector<FitFile> files_;
    std::uint64_t zip_ = 0; // the zip's own bytes
    std::uint32_t pictures_ = 0;
    std::unique_ptr<WorkSeries> series_;
};

// A file that is twice in the list is in the mail once.
bool Fit::Open(const std::vector<std::wstring>& paths) {
    std::set<std::wstring, PathOrder> seen;
    for (const std::wstring& path : paths) {
        if (!seen.insert(path).second) continue;
        auto copy = OpenCopy(call_, path, {});
        if (!copy) return false;
        LARGE_INTEGER size{};
        if (!GetFileSizeEx(copy->Handle(), &size)) return Refuse(call_, OB_TEXT_UNREADABLE, path);
        const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
        files_.push_back({path, std::move(*copy), bytes, bytes, {}, nullptr, {}});
        if (call_.isZipped) zip_ += kZipEntry + 2 * Utf8Length(FileNameOf(path));
    }
    if (call_.isZipped) zip_ += kZipEnd;
    return true;
}

std::uint64_t Fit::Total() const {
    std::uint64_t total = zip_;
    for (const FitFile& file : files_) total += file.written ? file.written->size : file.bytes;
    return total;
}

std::uint64_t Fit::Others() const {
    std::uint64_t others = zip_;
    for (const FitFile& file : files_) {
        if (!file.number) others += file.bytes;
    }
    return others;
}

// What each file takes in the zip. Whatever the work process says, it is never more than the file
// and what a block of a zip adds.
bool Fit::MeasureAll() {
    call_.run.process.Stop(); // a file that took the process over doesn't get to measure others
    for (FitFile& file : files_) {
        const WorkReport report = call_.run.process.Run({WorkKind::Measure, WorkPlain{}},
                                                        file.copy.Handle(), nullptr, call_.wait);
        if (report.result != WorkResult::Changed) {
            return RefuseResize(call_, report.result, file.path);
        }
        file.bytes = std::min(report.size, file.bytes + file.bytes / 1024 + 64);
    }
    return true;
}

// The pictures are written whole before the first of them takes its place, and the work process,
// which has the copies open, has ended by then.
bool Fit::MakeSmaller() {
    if (files_.size() > WorkSeries::kMostFiles) return Say(OB_TEXT_FIT_TOO_MANY);
    series_ = std::make_unique<WorkSeries>(call_.run.process);
    if (!AddAll()) return false;
    if (pictures_ == 0 || Others() > Room()) return SayWhatCannotFit();
    if (!Search() || !WriteAll()) return false;
    series_.reset();
    // The work process may have lied.
    if (Total() > Room()) return RefuseResize(call_, WorkResult::ProcessFailed, files_[0].path);
    return PlaceAll();
}

// Pictures count as they are coded, as they hardly become smaller in a zip.
bool Fit::AddAll() {
    for (FitFile& file : files_) {
        const WorkReport report = Ask(WorkKind::FitAdd, WorkPlain{}, file.copy.Handle(), nullptr);
        if (report.result == WorkResult::Changed) {
            file.number = pictures_++;
            // As the search counts a picture that stays; on trial it may take a little more.
            file.bytes = std::min(file.bytes, file.size);
        } else if (report.result != WorkResult::Unchanged &&
                   report.result != WorkResult::NotSupported) {
            return RefuseResize(call_, report.result, file.path);
        }
    }
    return true;
}

// A sentence about all files; false.
bool Fit::Say(UINT text) {
    if (call_.wait.IsEnded()) return false;
    ShowSentence(
        call_.wait.Owner(),
        FormatOwnText(text, {SizeText(Others(), Rounding::Up), SizeText(Room(), Rounding::Down),
                             std::to_wstring(call_.plan.resize.Number())}));
    return false;
}

bool Fit::SayWhatCannotFit() {
    if (pictures_ == 0) return Say(OB_TEXT_FIT_NO_PICTURE);
    return Say(Others() > Room() ? OB_TEXT_FIT_OTHERS : OB_TEXT_FIT_CANNOT);
}

bool Fit::Search() {
    const WorkReport report =
        Ask(WorkKind::FitSearch, obcontract::WorkFitSearch{limit_, Others()}, nullptr, nullptr);
    if (report.result == WorkResult::Changed || report.result == WorkResult::Unchanged) return true;
    if (report.result == WorkResult::CannotFit) return SayWhatCannotFit();
    return RefuseResize(call_, report.result, PathOf(report.number));
}

// The picture on which the work process was last. The number comes from the work process and may be
// invalid; then the first file is named.
const std::wstring& Fit::PathOf(std::uint32_t number) const {
    const auto file = std::ranges::find(files_, number, &FitFile::number);
    return file == files_.end() ? files_.front().path : file->path;
}

bool Fit::WriteAll() {
    return std::ranges::all_of(files_, [&](FitFile& file) { return !file.number || Write(file); });
}

bool Fit::Write(FitFile& file) {
    file.smaller = NewFile::MakeBeside(file.copy, call_.run.unfinished);
    if (!file.smaller) return Refuse(call_, OB_TEXT_UNWRITABLE, file.path);
    WorkReport report = Ask(WorkKind::FitWrite, obcontract::WorkFitWrite{*file.number, 0}, nullptr,
                            file.smaller->Handle());
    if (report.result == WorkResult::Unchanged) {
        file.smaller.reset();
        return true;
    }
    if (report.result != WorkResult::Changed) return RefuseResize(call_, report.result, file.path);
    file.written = std::move(report);
    return true;
}

bool Fit::PlaceAll() {
    for (FitFile& file : files_) {
        if (!file.written) continue;
        if (!TakePlace(call_, *file.smaller, file.copy, *file.written)) {
            return Refuse(call_, OB_TEXT_UNWRITABLE, file.path);
        }
        call_.run.record.made.insert(file.path);
    }
    return true;
}

} // namespace

bool FitMail(StageCall& call, const std::vector<std::wstring>& paths) {
    return Fit(call).Run(paths);
}

} // namespace providers
