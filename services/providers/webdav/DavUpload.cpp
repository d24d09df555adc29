#include "services/providers/webdav/DavUpload.h"

#include <algorithm>
#include <utility>

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/dav/DavTransfer.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/webdav/DavAccount.h"
#include "services/providers/webdav/DavSentence.h"

namespace providers {
namespace {

// A server that doesn't respond isn't waited for when there is only something to clear up.
constexpr HttpTimes kTimesOfClearing{5'000, 5'000, 5'000, 5'000};
constexpr DavPatience kPatienceOfClearing{0, 0, 0, 0};

// An event that is set after so many milliseconds, whatever a server does meanwhile.
class Limit {
public:
    explicit Limit(DWORD milliseconds) : timer_(CreateWaitableTimerW(nullptr, TRUE, nullptr)) {
        LARGE_INTEGER due;
        due.QuadPart = -10'000LL * milliseconds;
        if (timer_) SetWaitableTimer(timer_.Get(), &due, 0, nullptr, nullptr, FALSE);
    }
    HANDLE Event() const { return timer_.Get(); }

private:
    ObLib::UniqueKernelHandle timer_;
};

DavError Unreadable(DWORD code) { return DavErrorOf(HttpError{HttpFault::FileUnreadable, code}); }
DavError NameIsTaken() { return {DavFault::Taken, 412, {}, std::nullopt}; }

std::uint64_t Joined(DWORD high, DWORD low) { return static_cast<std::uint64_t>(high) << 32 | low; }

constexpr std::string_view kOwnStart = "upload-";
constexpr std::string_view kOwnEnd = ".tmp";

// A name that nobody else uses; empty when none can be made.
std::string OwnName() {
    const std::string guid = ToUtf8(NewGuidText());
    if (guid.size() < 3) return {};
    return std::string(kOwnStart) + guid.substr(1, guid.size() - 2) + std::string(kOwnEnd);
}

UploadResult Ended(const DavError& error, const DavAccess& access, const std::wstring& name) {
    if (error.fault == DavFault::Taken) return {UploadEnd::NameTaken, {}, {}};
    if (IsHttp(error, HttpFault::Cancelled)) return {UploadEnd::Cancelled, {}, {}};
    return {UploadEnd::Failed, {}, DavUploadSentence(error, access.root.origin, name)};
}

} // namespace

DavUpload::DavUpload(const HttpSession& session, const DavPatience& patience,
                     std::optional<Notes> notes)
    : session_(session), patience_(patience), notes_(std::move(notes)) {}

std::optional<DavUpload::Source> DavUpload::SourceOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(file, &info)) return std::nullopt;
    return Source{Joined(info.nFileIndexHigh, info.nFileIndexLow), info.dwVolumeSerialNumber,
                  Joined(info.nFileSizeHigh, info.nFileSizeLow),
                  Joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime)};
}

// Goes on with the same file; another one takes its place.
void DavUpload::Begin(const DavAccess& access, const Source& source) {
    if (unfinished_ &&
        (unfinished_->source != source || unfinished_->url.origin != access.root.origin))
        Discard(access);
    if (unfinished_) return;
    unfinished_ = Unfinished{source, {}};
    mayBeStored_ = false;
}

DavResult<HttpUrl> DavUpload::Folder(const DavClient& client, const DavAccess& access,
                                     const UploadFile& file) const {
    return client.MakeFolders(access.root, PartsOf(file.folder));
}

DavResult<StoredFile> DavUpload::Try(const DavAccess& access, const UploadFile& file, HANDLE source,
                                     UploadProgress& progress) {
    const DavClient client(session_, access.login, progress.Cancelled(), patience_);
    const auto folder = Folder(client, access, file);
    if (const auto* error = std::get_if<DavError>(&folder)) return *error;
    const HttpUrl target = UrlBelow(std::get<HttpUrl>(folder), ToUtf8(file.name));
    const auto taken = client.Look(target);
    if (std::holds_alternative<DavItem>(taken)) return NameIsTaken();
    if (std::get<DavError>(taken).fault != DavFault::NotFound) return std::get<DavError>(taken);

    const std::uint64_t size = unfinished_->source.size;
    const bool resumes = mayBeStored_;
    if (!resumes) {
        const std::string name = OwnName();
        if (name.empty()) return DavErrorOf(HttpError{HttpFault::Failed, ERROR_GEN_FAILURE});
        unfinished_->url = UrlBelow(std::get<HttpUrl>(folder), name);
        Note();
    }
    mayBeStored_ = true;
    DavTransfer transfer(client, unfinished_->url, {source, size}, [&](std::uint64_t sent) {
        RenewNote();
        progress.Show(sent, size);
    });
    const auto broken = transfer.Run(resumes);
    mayComeLate_ = broken && (MayHaveActed(*broken) || IsHttp(*broken, HttpFault::Cancelled));
    if (broken) return *broken;
    moving_ = target;
    if (const auto error = client.Move(unfinished_->url, target, size)) {
        if (!MayHaveActed(*error) && !IsHttp(*error, HttpFault::Cancelled)) moving_.reset();
        return *error;
    }
    return Stored(client, target, file.name, size);
}

// The file is there, whatever the look brings. Without a version it is never deleted.
StoredFile DavUpload::Stored(const DavClient& client, const HttpUrl& target,
                             const std::wstring& name, std::uint64_t size) const {
    const auto stored = client.Look(target);
    const auto* item = std::get_if<DavItem>(&stored);
    const std::wstring version =
        item && item->size == size ? FromUtf8(item->version).value_or(L"") : L"";
    return StoredFile{FromUtf8(HttpUrlText(target)).value_or(L""), name, version, size};
}

// After a move that was given up: what the server has done decides.
std::optional<StoredFile> DavUpload::StoredAfterAll(const DavAccess& access,
                                                    const std::wstring& name) {
    const auto target = std::exchange(moving_, std::nullopt);
    if (!target) return std::nullopt;
    const HttpSession session(kTimesOfClearing);
    const Limit limit(patience_.clearing);
    const DavClient client(session, access.login, limit.Event(), kPatienceOfClearing);
    const auto moved = client.HasMoved(unfinished_->url, *target, unfinished_->source.size);
    const auto* isMoved = std::get_if<bool>(&moved);
    if (!isMoved || !*isMoved) return std::nullopt;
    return Stored(client, *target, name, unfinished_->source.size);
}

void DavUpload::Note() {
    note_.reset();
    if (!notes_) return;
    noted_ = GetTickCount64();
    note_.emplace(notes_->book, NotedPart{kWebDavId, notes_->accountKey,
                                          FromUtf8(HttpUrlText(unfinished_->url)).value_or(L"")});
}

// An old note is one of a process that is gone, and an upload may take longer than that.
void DavUpload::RenewNote() {
    if (!note_ || GetTickCount64() - noted_ < notes_->renewal) return;
    PartNote old = *note_;
    Note();
    old.Remove();
}

// What can't be removed now stays noted.
void DavUpload::Discard(const DavAccess& access) {
    bool isGone = !mayBeStored_;
    if (mayBeStored_ && unfinished_->url.origin == access.root.origin) {
        const HttpSession session(kTimesOfClearing);
        const Limit limit(patience_.clearing);
        isGone = !DavClient(session, access.login, limit.Event(), kPatienceOfClearing)
                      .Discard(unfinished_->url);
    }
    if (!isGone || mayComeLate_) note_.reset();
    Forget();
}

// Nothing is under the upload's own name any more, or its note is to stay.
void DavUpload::Forget() {
    if (note_) note_->Remove();
    note_.reset();
    unfinished_.reset();
    mayBeStored_ = false;
    mayComeLate_ = false;
    moving_.reset();
}

UploadResult DavUpload::Run(DavAccess access, const UploadFile& file, UploadProgress& progress,
                            const AskForLogin& ask) {
    const ObLib::UniqueKernelHandle source(
        CreateFileW(ObLib::WithLongPathPrefix(file.localPath).c_str(), GENERIC_READ,
                    FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!source) return Ended(Unreadable(GetLastError()), access, file.name);
    const auto identity = SourceOf(source.Get());
    if (!identity) return Ended(Unreadable(GetLastError()), access, file.name);
    Begin(access, *identity);
    for (;;) {
        auto result = Try(access, file, source.Get(), progress);
        if (std::holds_alternative<DavError>(result)) {
            if (auto stored = StoredAfterAll(access, file.name)) result = std::move(*stored);
        }
        if (auto* stored = std::get_if<StoredFile>(&result)) {
            Forget();
            return {UploadEnd::Done, std::move(*stored), {}};
        }
        const auto& error = std::get<DavError>(result);
        std::optional<HttpLogin> login;
        if (error.fault == DavFault::WrongLogin && ask) {
            const bool isAsked = progress.Ask([&](HWND owner) { login = ask(owner); });
            if (!isAsked || !login) {
                Discard(access);
                return {UploadEnd::Cancelled, {}, {}};
            }
            access.login = std::move(*login);
            continue;
        }
        // What is whole and only lacks a name is kept for the next run.
        if (error.fault != DavFault::Taken || !mayBeStored_) Discard(access);
        return Ended(error, access, file.name);
    }
}

bool IsPartName(std::string_view name) {
    if (!name.starts_with(kOwnStart) || !name.ends_with(kOwnEnd)) return false;
    name.remove_prefix(kOwnStart.size());
    if (name.size() < kOwnEnd.size()) return false;
    name.remove_suffix(kOwnEnd.size());
    return IsGuidText(L"{" + FromUtf8(name).value_or(L"") + L"}");
}

std::vector<std::string> PartsOf(const std::wstring& folder) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < folder.size();) {
        const std::size_t end = std::min(folder.find(L'\\', at), folder.size());
        if (end > at) parts.push_back(ToUtf8(std::wstring_view(folder).substr(at, end - at)));
        at = end + 1;
    }
    return parts;
}

std::optional<AccountSpace> DavSpace(const DavClient& client, const HttpUrl& root,
                                     DavError* failure) {
    const auto there = client.Look(root);
    if (const auto* error = std::get_if<DavError>(&there); error && failure) *failure = *error;
    const auto* item = std::get_if<DavItem>(&there);
    if (!item) return std::nullopt;
    AccountSpace space;
    if (!item->freeBytes) return space;
    space.freeBytes = static_cast<std::int64_t>(*item->freeBytes);
    // Servers without a limit report the largest numbers that there are.
    const std::uint64_t total = *item->freeBytes + item->usedBytes.value_or(0);
    if (item->usedBytes && total <= INT64_MAX) space.totalBytes = static_cast<std::int64_t>(total);
    return space;
}

DeletionEnd DeleteDavFile(const DavClient& client, const HttpUrl& root, const StoredFile& file,
                          DavError* failure) {
    const auto url = ParseHttpUrl(ToUtf8(file.path));
    if (!url || !IsBelow(*url, root)) return DeletionEnd::Changed;
    const auto result = client.Delete(*url, ToUtf8(file.version));
    const auto* end = std::get_if<DavDeletion>(&result);
    if (!end && failure) *failure = std::get<DavError>(result);
    if (!end) return DeletionEnd::Unreachable;
    return *end == DavDeletion::Gone ? DeletionEnd::Gone : DeletionEnd::Changed;
}

DeletionEnd RemoveDavPart(const DavClient& client, const HttpUrl& root, const std::wstring& path,
                          DavError* failure) {
    const auto url = ParseHttpUrl(ToUtf8(path));
    if (!url || !url->query.empty() || !IsBelow(*url, root) ||
        !IsPartName(std::string_view(url->path).substr(url->path.rfind('/') + 1))) {
        return DeletionEnd::Changed;
    }
    const auto error = client.Discard(*url);
    if (error && failure) *failure = *error;
    return error ? DeletionEnd::Unreachable : DeletionEnd::Gone;
}

} // namespace providers
