#include "services/providers/transforms/FitMail.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "ObLib/Src/MailRoom.h"
#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/Utf8.h"
#include "services/providers/settings/PhotoSettings.h"
#include "services/providers/transforms/FittedFile.h"
#include "services/providers/transforms/PersonalData.h"
#include "services/providers/transforms/Resize.h"
#include "services/providers/ui/SizeText.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using namespace obcontract;

// A zip's own bytes: what it writes for each file besides the name, which is in it twice, and at
// its end, with room for what encryption adds.
constexpr std::uint64_t kZipEntry = 240;
constexpr std::uint64_t kZipEnd = 4096;

// Whether the picture's watermark is still to be added, while it is made smaller.
bool IsStampedInPass(const FittedFile& file) { return file.note.isStamped && !file.isSettled; }

class Fit {
public:
    explicit Fit(StageCall& call)
        : call_(call), limit_(call.plan.resize.Number() * kBytesOfMegabyte) {}
    // After a cancel the files may be deleted already, but not the folder while they were open.
    ~Fit() {
        if (!call_.wait.IsEnded()) return;
        ObLib::RanGuarded([&] {
            for (const FittedFile& file : files_) call_.run.unfinished.AddFolderOf(file.copy);
        });
    }
    Fit(const Fit&) = delete;
    Fit& operator=(const Fit&) = delete;

    bool Run(std::vector<std::wstring>& paths) {
        if (!Open(paths)) return false;
        const auto fits = AllFits();
        if (!fits || (!*fits && !MakeSmaller())) return false;
        return PlaceAll(paths);
    }

private:
    // How one attempt to make the pictures smaller ended.
    enum class Attempt { Done, Again, Stopped };

    std::uint64_t Room() const { return ObLib::RoomForFiles(limit_); }
    bool Open(const std::vector<std::wstring>& paths);
    bool LoadWatermark();
    const WatermarkOrder* Watermark() const { return watermark_ ? &*watermark_ : nullptr; }
    std::uint64_t Total() const; // a picture that was written counts as what was written
    std::uint64_t Others() const;
    std::optional<bool> AllFits();
    std::optional<bool> KnownFits();
    bool MeasureKnown();
    bool Measure(FittedFile& file);
    bool MakeSmaller();
    Attempt TryToMakeSmaller();
    bool SendWatermark();
    Attempt AddAll();
    WorkReport Add(FittedFile& file);
    void TakeAdded(FittedFile& file);
    Attempt DoAlone(std::vector<FittedFile*> files);
    Attempt Search();
    static Attempt DoneOrStopped(bool goesOn) { return goesOn ? Attempt::Done : Attempt::Stopped; }
    bool Say(UINT text);
    bool SayWhatCannotFit();
    bool WriteAll();
    bool Write(FittedFile& file);
    bool PlaceAll(std::vector<std::wstring>& paths);
    void Rename(const std::wstring& from, const std::wstring& to, std::vector<std::wstring>& paths);
    FittedFile* FileOf(std::uint32_t number);
    std::vector<FittedFile*> Named(const WorkReport& report);
    // The first of those that the condition is true for, or else the first of all.
    template <class Condition>
    const FittedFile& FirstWith(Condition condition) const {
        const auto first = std::ranges::find_if(files_, condition);
        return first == files_.end() ? files_.front() : *first;
    }
    WorkReport Ask(const WorkOrder& order, HANDLE source, HANDLE target) {
        return series_->Run(order, source, target, call_.wait);
    }

    StageCall& call_;
    std::uint64_t limit_; // of the mail as it is sent
    std::vector<FittedFile> files_;
    std::optional<WatermarkOrder> watermark_; // where a picture is to have one
    std::uint64_t zip_ = 0;                   // the zip's own bytes
    std::uint32_t pictures_ = 0;
    std::unique_ptr<WorkSeries> series_;
    // A file that took over the process of the steps doesn't get to measure others.
    WorkProcess measuring_{call_.run.process.Settings()};
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
        FittedFile file{.path = path, .copy = std::move(*copy)};
        file.copySize = static_cast<std::uint64_t>(size.QuadPart);
        const auto noted = call_.run.record.noted.find(path);
        if (noted != call_.run.record.noted.end()) file.note = noted->second;
        if (!file.note) file.Count(file.copySize);
        files_.push_back(std::move(file));
        if (call_.isZipped) zip_ += kZipEntry + 2 * ObLib::ToUtf8(FileNameOf(path)).size();
    }
    if (call_.isZipped) zip_ += kZipEnd;
    return LoadWatermark();
}

bool Fit::LoadWatermark() {
    const auto isStamped = [](const FittedFile& file) { return file.note.isStamped; };
    if (std::ranges::none_of(files_, isStamped)) return true;
    watermark_ = WatermarkOrder::Load(call_);
    return watermark_.has_value();
}

// Noted pictures that aren't known yet count for nothing.
std::uint64_t Fit::Total() const {
    std::uint64_t total = zip_;
    for (const FittedFile& file : files_) total += file.written ? file.written->size : file.bytes;
    return total;
}

std::uint64_t Fit::Others() const {
    std::uint64_t others = zip_;
    for (const FittedFile& file : files_) {
        if (!file.number) others += file.bytes;
    }
    return others;
}

// Whether all files fit without being made smaller, with what was noted for them done: a picture
// counts with its final form and its watermark. Ends with the first picture that is too much.
// Nothing when the run has to stop.
std::optional<bool> Fit::AllFits() {
    for (FittedFile& file : files_) {
        if (file.IsKnown()) continue;
        const auto fits = KnownFits();
        if (!fits || !*fits) return fits;
        if (!DoSteps(call_, file, Watermark())) return {};
    }
    return KnownFits();
}

std::optional<bool> Fit::KnownFits() {
    if (Total() <= Room()) return true;
    if (!call_.isZipped) return false;
    if (!MeasureKnown()) return {};
    return Total() <= Room();
}

bool Fit::MeasureKnown() {
    return std::ranges::all_of(files_, [this](FittedFile& file) {
        return file.isMeasured || !file.IsKnown() || Measure(file);
    });
}

// What a file takes in the zip. Whatever the work process reports, it is never more than the file
// and what a block of a zip adds.
bool Fit::Measure(FittedFile& file) {
    const WorkReport report =
        measuring_.Run({WorkKind::Measure, WorkPlain{}}, file.Unshrunk(), nullptr, call_.wait);
    if (report.result != WorkResult::Changed) return RefuseResize(call_, report.result, file.path);
    file.bytes = std::min(report.size, file.size + file.size / 1024 + 64);
    file.isMeasured = true;
    return true;
}

// The pictures are written whole before the first of them takes its place, and the work process,
// which has the copies open, has ended by then.
bool Fit::MakeSmaller() {
    if (files_.size() > WorkSeries::kMostFiles) return Say(OB_TEXT_FIT_TOO_MANY);
    Attempt attempt = Attempt::Again;
    while (attempt == Attempt::Again) attempt = TryToMakeSmaller();
    if (attempt == Attempt::Stopped) return false;
    if (Total() <= Room()) return true;
    // The work process has lied about what it wrote.
    return RefuseFitted(call_, WorkResult::ProcessFailed,
                        FirstWith([](const FittedFile& file) { return file.written.has_value(); }));
}

// Each further attempt has settled at least one file more.
Fit::Attempt Fit::TryToMakeSmaller() {
    pictures_ = 0;
    series_ = std::make_unique<WorkSeries>(call_.run.process);
    if (!SendWatermark()) return Attempt::Stopped;
    const Attempt added = AddAll();
    if (added != Attempt::Done) return added;
    if (pictures_ == 0 || Others() > Room()) return DoneOrStopped(SayWhatCannotFit());
    const Attempt found = Search();
    if (found != Attempt::Done) return found;
    const bool isWritten = WriteAll();
    series_.reset();
    return DoneOrStopped(isWritten);
}

// Nothing to do where no picture gets one in the pass.
bool Fit::SendWatermark() {
    if (std::ranges::none_of(files_, &IsStampedInPass)) return true;
    const WorkReport report = Ask(watermark_->ForFit(), nullptr, nullptr);
    return report.result == WorkResult::Changed ||
           RefuseWatermark(call_, report.result, FirstWith(&IsStampedInPass).path);
}

// A noted picture is coded from its copy, so that it is coded once.
WorkReport Fit::Add(FittedFile& file) {
    WorkFitAdd settings{};
    settings.isStamped = IsStampedInPass(file);
    if (file.note.isConverted && !file.stepped) {
        const WorkPhoto photo = PhotoSettings::Load(call_.settings).Order();
        settings.quality = static_cast<std::uint8_t>(photo.quality);
        settings.kinds = photo.kinds;
    }
    return Ask({WorkKind::FitAdd, settings}, file.Unshrunk(), nullptr);
}

// Pictures count as they are coded, as they hardly become smaller in a zip; one that stays counts
// with its size, as in the search: on trial it may have taken a little more.
void Fit::TakeAdded(FittedFile& file) {
    file.number = pictures_++;
    if (!file.IsKnown()) file.Count(file.copySize);
    file.bytes = std::min(file.bytes, file.size);
}

Fit::Attempt Fit::AddAll() {
    std::vector<FittedFile*> refused; // noted, but not taken with what was noted
    for (FittedFile& file : files_) {
        file.number.reset();
        if (file.note && !file.isSettled) file.stepped.reset();
        const WorkReport report = Add(file);
        if (report.result == WorkResult::Changed) {
            TakeAdded(file);
        } else if (report.result != WorkResult::Unchanged &&
                   report.result != WorkResult::NotSupported) {
            return DoneOrStopped(RefuseFitted(call_, report.result, file));
        } else if (file.note && !file.isSettled) {
            refused.push_back(&file);
        }
    }
    return refused.empty() ? Attempt::Done : DoAlone(std::move(refused));
}

// Does for these files what was noted, as it is done without a fit, which may be nothing.
Fit::Attempt Fit::DoAlone(std::vector<FittedFile*> files) {
    series_.reset();
    for (FittedFile* const file : files) {
        file->isSettled = true;
        if (!DoSteps(call_, *file, Watermark())) return Attempt::Stopped;
    }
    if (call_.isZipped && !MeasureKnown()) return Attempt::Stopped;
    return Attempt::Again;
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

Fit::Attempt Fit::Search() {
    const WorkReport report =
        Ask({WorkKind::FitSearch, WorkFitSearch{limit_, Others()}}, nullptr, nullptr);
    if (report.result == WorkResult::Changed || report.result == WorkResult::Unchanged) {
        return Attempt::Done;
    }
    if (report.result == WorkResult::CannotFit) return DoneOrStopped(SayWhatCannotFit());
    std::vector<FittedFile*> named = Named(report);
    const auto isNoted = [](const FittedFile* file) { return file->note && !file->isSettled; };
    const bool isSettling = report.result == WorkResult::NotSupported && !named.empty();
    if (isSettling && std::ranges::all_of(named, isNoted)) return DoAlone(std::move(named));
    // The picture on which the work process was last. Its own word for it isn't trusted to be one.
    FittedFile* const file =
        isSettling ? *std::ranges::find_if_not(named, isNoted) : FileOf(report.number);
    if (!file) return DoneOrStopped(RefuseResize(call_, report.result, files_.front().path));
    return DoneOrStopped(RefuseFitted(call_, report.result, *file));
}

// The pictures for which what is noted isn't supported, as the work process found in the search.
std::vector<FittedFile*> Fit::Named(const WorkReport& report) {
    std::vector<FittedFile*> named;
    for (FittedFile& file : files_) {
        if (!file.number) continue;
        const std::string key = kWorkPictureKey + std::to_string(*file.number);
        if (std::ranges::find(report.found, key, &WorkFound::key) != report.found.end())
            named.push_back(&file);
    }
    return named;
}

// Null when there is none.
FittedFile* Fit::FileOf(std::uint32_t number) {
    const auto file = std::ranges::find(files_, number, &FittedFile::number);
    return file == files_.end() ? nullptr : &*file;
}

bool Fit::WriteAll() {
    return std::ranges::all_of(files_,
                               [&](FittedFile& file) { return !file.number || Write(file); });
}

bool Fit::Write(FittedFile& file) {
    file.smaller = NewFile::MakeBeside(file.copy, call_.run.unfinished);
    if (!file.smaller) return Refuse(call_, OB_TEXT_UNWRITABLE, file.path);
    WorkReport report =
        Ask({WorkKind::FitWrite, WorkFitWrite{*file.number, 0}}, nullptr, file.smaller->Handle());
    // A picture that is too small for a watermark may go out as it is.
    if (report.result == WorkResult::Unchanged && (!file.note.isConverted || file.stepped)) {
        file.smaller.reset();
        return true;
    }
    const bool isImpossible =
        report.result == WorkResult::Unchanged ||
        (report.result == WorkResult::Changed && !IsWhole(*file.smaller, report, file));
    if (isImpossible) return RefuseFitted(call_, WorkResult::ProcessFailed, file);
    if (report.result != WorkResult::Changed) return RefuseFitted(call_, report.result, file);
    file.written = std::move(report);
    return true;
}

bool Fit::PlaceAll(std::vector<std::wstring>& paths) {
    measuring_.Stop(); // it may have a copy open
    for (FittedFile& file : files_) {
        if (!file.written && !file.stepped) continue;
        const std::wstring before = file.path;
        if (!PlaceFitted(call_, file)) return false;
        call_.run.record.made.insert(file.path);
        if (file.path != before) Rename(before, file.path, paths);
    }
    call_.run.record.noted.clear();
    return true;
}

// The file of a converted photo has another name from here on.
void Fit::Rename(const std::wstring& from, const std::wstring& to,
                 std::vector<std::wstring>& paths) {
    RunRecord& record = call_.run.record;
    const auto isOld = [&](const std::wstring& path) {
        return !PathOrder()(path, from) && !PathOrder()(from, path);
    };
    std::ranges::replace_if(paths, isOld, to);
    for (auto& visit : record.visited) {
        if (isOld(visit.second)) visit.second = to;
    }
    record.done.erase(from);
    record.done.insert(to);
    JoinCleaned(record, from, to);
}

} // namespace

bool FitMail(StageCall& call, std::vector<std::wstring>& paths) { return Fit(call).Run(paths); }

} // namespace providers
