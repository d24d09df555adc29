#include "services/providers/transforms/CombinePdfs.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/files/FirstBytes.h"
#include "services/providers/files/ResultName.h"
#include "services/providers/transforms/ChangeCopy.h"
#include "services/providers/transforms/PdfPasswords.h"
#include "services/providers/transforms/PersonalData.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using namespace obcontract;

constexpr RefusalTexts kTexts = {OB_TEXT_COMBINE_DAMAGED, OB_TEXT_COMBINE_TOO_LARGE, 0,
                                 OB_TEXT_COMBINE_FAILED};

// Of a bookmark: short enough for many PDFs in one work process.
constexpr std::size_t kLongestTitle = 100;
static_assert(kLongestTitle <= kMostCombineTitle);

struct PdfFile {
    std::wstring path;
    WorkingCopy copy;
    std::optional<std::uint32_t> number; // among those that become one
};

// As the work process knows a PDF: after space and a BOM.
bool IsPdf(HANDLE file) {
    constexpr std::string_view kBom = "\xEF\xBB\xBF";
    constexpr std::string_view kHeader = "%PDF-";
    const std::string bytes = FirstBytes(file, 1024);
    std::string_view begin = bytes;
    if (begin.starts_with(kBom)) begin.remove_prefix(kBom.size());
    begin.remove_prefix(std::min(begin.find_first_not_of(" \t\r\n"), begin.size()));
    return begin.starts_with(kHeader);
}

// The file's name without its extension.
std::wstring TitleOf(const std::wstring& path) {
    std::wstring title = FileNameOf(path);
    constexpr std::size_t kExtension = 4;
    if (HasExtension(path, L"pdf") && title.size() > kExtension) {
        title.resize(title.size() - kExtension);
    }
    if (title.size() <= kLongestTitle) return title;
    title.resize(IS_HIGH_SURROGATE(title[kLongestTitle - 1]) ? kLongestTitle - 1 : kLongestTitle);
    return title;
}

WorkOrder AddOrder(const std::wstring& path, WorkSignatures signatures) {
    return {WorkKind::CombineAdd, WorkCombineAdd{signatures, 0}, std::wstring_view(TitleOf(path))};
}

class Combination {
public:
    explicit Combination(StageCall& call) : call_(call) {}
    // After a cancel the files may be deleted already, but not the folder while they were open.
    ~Combination() {
        if (!call_.wait.IsEnded()) return;
        ObLib::RanGuarded([&] {
            for (const PdfFile& file : files_) call_.run.unfinished.AddFolderOf(file.copy);
        });
    }
    Combination(const Combination&) = delete;
    Combination& operator=(const Combination&) = delete;

    bool Run(std::vector<std::wstring>& paths) {
        if (!Open(paths)) return false;
        if (files_.size() < 2) return true;
        if (!HasRoom()) return SayThatTheyAreTooMany();
        series_ = std::make_unique<WorkSeries>(call_.run.process);
        if (!AddAll()) return false;
        if (count_ < 2) return true;
        if (!Write()) return false;
        series_.reset(); // it has the copies open
        if (!Place()) return false;
        Record();
        ShortenList(paths);
        return true;
    }

private:
    bool Open(const std::vector<std::wstring>& paths);
    bool HasRoom() const;
    bool SayThatTheyAreTooMany();
    bool AddAll();
    bool Add(PdfFile& file);
    bool AddSigned(PdfFile& file);
    bool Take(PdfFile& file, WorkResult result);
    WorkReport Send(const PdfFile& file, WorkSignatures signatures);
    bool Write();
    bool Place();
    void Record();
    void ShortenList(std::vector<std::wstring>& paths) const;
    PdfFile& First() { return *std::ranges::find(files_, 0u, &PdfFile::number); }
    const std::wstring& PathOf(std::uint32_t number);

    StageCall& call_;
    std::vector<PdfFile> files_;
    std::uint32_t count_ = 0; // of those that become one
    std::unique_ptr<WorkSeries> series_;
    std::unique_ptr<NewFile> made_;
    std::optional<WorkReport> written_;
};

// A file that is twice in the list is one file.
bool Combination::Open(const std::vector<std::wstring>& paths) {
    std::set<std::wstring, PathOrder> seen;
    for (const std::wstring& path : paths) {
        if (!seen.insert(path).second) continue;
        auto copy = OpenCopy(call_, path, {});
        if (!copy) return false;
        if (IsPdf(copy->Handle())) files_.push_back({path, std::move(*copy), {}});
    }
    return true;
}

// Each is sent twice at most: as it is, and with its password or without its signature.
bool Combination::HasRoom() const {
    constexpr std::size_t kPassword = sizeof(WorkHeader) + kMostPasswordBytes;
    std::size_t bytes = 0;
    for (const PdfFile& file : files_) {
        bytes += 2 * AddOrder(file.path, WorkSignatures::Keep).RecordSize() + kPassword;
    }
    return bytes + kLargestWorkPayload <= WorkProcess::kPipeRoom;
}

bool Combination::SayThatTheyAreTooMany() {
    if (!call_.wait.IsEnded()) {
        ShowSentence(call_.wait.Owner(), OwnText(OB_TEXT_COMBINE_TOO_MANY));
    }
    return false;
}

bool Combination::AddAll() {
    return std::ranges::all_of(files_, [&](PdfFile& file) { return Add(file); });
}

// A user may type any number of passwords, and the series has room for few requests: it gets a
// password only after that has opened the PDF in another process.
WorkReport Combination::Send(const PdfFile& file, WorkSignatures signatures) {
    const HANDLE source = file.copy.Handle();
    return RunWithPassword(call_, file.path, AddOrder(file.path, signatures),
                           [&](const WorkOrder& order) {
                               if (order.HasPassword()) {
                                   WorkReport tried = series_->Try(order, source, call_.wait);
                                   if (tried.result != WorkResult::Changed) return tried;
                               }
                               return series_->Run(order, source, nullptr, call_.wait);
                           });
}

// True also for a file that stays as it is.
bool Combination::Add(PdfFile& file) {
    const WorkReport report = Send(file, WorkSignatures::Keep);
    if (report.result == WorkResult::Signed) return AddSigned(file);
    if (NeedsPassword(report.result)) return true; // the user leaves the file as it is
    if (report.result == WorkResult::OtherCipher) {
        return Ask(call_, OB_TEXT_COMBINE_ENCRYPTED, file.path);
    }
    return Take(file, report.result);
}

bool Combination::AddSigned(PdfFile& file) {
    if (Ask(call_, OB_TEXT_COMBINE_SIGNED, file.path)) {
        return Take(file, Send(file, WorkSignatures::Break).result);
    }
    return !call_.wait.IsEnded();
}

bool Combination::Take(PdfFile& file, WorkResult result) {
    if (result == WorkResult::NotSupported) return true;
    if (result != WorkResult::Changed) return RefuseResult(call_, result, kTexts, file.path);
    file.number = count_++;
    return true;
}

// The PDF that the work process read last. The number comes from the work process and may be
// invalid; then the first file is named.
const std::wstring& Combination::PathOf(std::uint32_t number) {
    const auto file = std::ranges::find(files_, number, &PdfFile::number);
    return file == files_.end() ? First().path : file->path;
}

bool Combination::Write() {
    made_ = NewFile::MakeBeside(First().copy, call_.run.unfinished);
    if (!made_) return Refuse(call_, OB_TEXT_UNWRITABLE, First().path);
    written_ = series_->Run(WorkOrder(WorkKind::CombineWrite, WorkPlain{}), nullptr,
                            made_->Handle(), call_.wait);
    if (written_->result == WorkResult::Changed && BeginsAsPdf(made_->Handle())) return true;
    const bool isOdd = written_->result == WorkResult::Changed;
    return RefuseResult(call_, isOdd ? WorkResult::ProcessFailed : written_->result, kTexts,
                        PathOf(written_->number));
}

// The result is in its place before the first of the other copies is deleted.
bool Combination::Place() {
    PdfFile& first = First();
    if (!TakePlace(call_, *made_, first.copy, *written_)) {
        return Refuse(call_, OB_TEXT_UNWRITABLE, first.path);
    }
    for (PdfFile& file : files_) {
        if (!file.number || *file.number == 0) continue;
        if (!NewFile::Delete(file.copy, [&] { return call_.wait.IsEnded(); })) {
            return Refuse(call_, OB_TEXT_UNWRITABLE, file.path);
        }
    }
    return true;
}

void Combination::Record() {
    const std::wstring& result = First().path;
    for (const PdfFile& file : files_) {
        if (file.number && *file.number != 0) JoinCleaned(call_.run.record, file.path, result);
    }
    call_.run.record.made.insert(result);
    call_.run.passwords.known.erase(result); // the result may have another PDF's password
}

void Combination::ShortenList(std::vector<std::wstring>& paths) const {
    std::set<std::wstring, PathOrder> gone;
    for (const PdfFile& file : files_) {
        if (file.number && *file.number != 0) gone.insert(file.path);
    }
    const std::wstring& result = std::ranges::find(files_, 0u, &PdfFile::number)->path;
    bool isThere = false;
    const PathOrder isBefore;
    std::erase_if(paths, [&](const std::wstring& path) {
        if (gone.contains(path)) return true;
        const bool isResult = !isBefore(path, result) && !isBefore(result, path);
        return isResult && std::exchange(isThere, true);
    });
}

} // namespace

bool CombinePdfs(StageCall& call, std::vector<std::wstring>& paths) {
    return Combination(call).Run(paths);
}

} // namespace providers
