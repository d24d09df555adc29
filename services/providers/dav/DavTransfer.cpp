#include "services/providers/dav/DavTransfer.h"

#include <algorithm>
#include <string>
#include <utility>

namespace providers {
namespace {

bool IsUnsupported(const DavError& error) {
    return error.status == 400 || error.status == 405 || error.status == 415 ||
           error.status == 416 || error.status == 501;
}

} // namespace

DavTransfer::DavTransfer(const DavClient& client, HttpUrl url, const DavSource& source,
                         std::function<void(std::uint64_t)> progress, std::uint64_t resumableSize)
    : client_(client), url_(std::move(url)), source_(source), progress_(std::move(progress)),
      resumableSize_(resumableSize), pause_(client.Patience().pause) {}

std::optional<DavError> DavTransfer::SendPart(std::uint64_t from, std::uint64_t size) {
    HttpRequest request;
    request.method = parts_ == Parts::Patch && from > 0 ? "PATCH" : "PUT";
    request.url = url_;
    request.headers = {{"Content-Type", "application/octet-stream"}};
    request.body = HttpFilePart{source_.file, from, size};
    request.progress = [this, from](std::uint64_t sent) { progress_(from + sent); };
    const std::string range = std::to_string(from) + "-" + std::to_string(from + size - 1);
    if (request.method == "PATCH") {
        // By its place and not as an end: a request that the server still works on can't shift it.
        request.headers = {{"Content-Type", "application/x-sabredav-partialupdate"},
                           {"X-Update-Range", "bytes=" + range}};
    } else if (parts_ == Parts::Range && size > 0) {
        request.headers.push_back(
            {"Content-Range", "bytes " + range + "/" + std::to_string(source_.size)});
    }
    const auto result = client_.Send(std::move(request));
    if (const auto* error = std::get_if<DavError>(&result)) return *error;
    return std::nullopt;
}

std::optional<DavError> DavTransfer::LookUp() {
    const auto there = client_.Look(url_);
    if (const auto* error = std::get_if<DavError>(&there)) {
        if (error->fault != DavFault::NotFound) return *error;
        stored_ = 0;
        exists_ = false;
        return std::nullopt;
    }
    const auto& item = std::get<DavItem>(there);
    exists_ = true;
    if (item.isFolder) return DavError{DavFault::InTheWay, 0, {}, std::nullopt};
    // A server that reports no length isn't asked to go on.
    stored_ = item.size.value_or(0);
    return std::nullopt;
}

// For some time where the server may still be storing what was sent.
std::optional<DavError> DavTransfer::LookUpAfter(const DavError& failure) {
    const auto stored = client_.WasDone(failure, [this]() -> DavResult<bool> {
        if (const auto error = LookUp()) return *error;
        return IsWhole();
    });
    if (const auto* error = std::get_if<DavError>(&stored)) return *error;
    return std::nullopt;
}

// A server may ignore the range of a request and store the part as if it were the file. A byte
// after others shows it: the file has to be one byte longer then.
DavResult<bool> DavTransfer::TakesRanges() {
    if (stored_ == 0) {
        parts_ = Parts::None;
        if (const auto error = SendPart(0, 0))
            return *error; // what was there before a request survives a break of it
    }
    parts_ = Parts::Range;
    const std::uint64_t end = std::max<std::uint64_t>(stored_ + 1, 2);
    for (std::uint64_t at = stored_; at < end; ++at) {
        if (const auto error = SendPart(at, 1)) {
            if (IsUnsupported(*error)) return false;
            return *error;
        }
    }
    if (const auto error = LookUp()) return *error;
    return stored_ == end;
}

// How the server takes a part of a file.
DavResult<DavTransfer::Parts> DavTransfer::FindParts() {
    const auto patch = client_.CanPatch(url_);
    if (const auto* error = std::get_if<DavError>(&patch)) return *error;
    if (std::get<bool>(patch)) return Parts::Patch;
    const auto ranges = TakesRanges();
    if (const auto* error = std::get_if<DavError>(&ranges)) return *error;
    return std::get<bool>(ranges) ? Parts::Range : Parts::None;
}

std::optional<DavError> DavTransfer::Prepare() {
    for (;;) {
        if (source_.size - stored_ <= 2) { // too little to find anything out
            SendAsAWhole();
            return std::nullopt;
        }
        const auto parts = FindParts();
        if (const auto* found = std::get_if<Parts>(&parts)) {
            if (*found == Parts::None) SendAsAWhole();
            parts_ = *found;
            return std::nullopt;
        }
        const auto& failure = std::get<DavError>(parts);
        if (!IsHttp(failure, HttpFault::BrokenOff)) return failure;
        if (const auto error = BeforeNextTry(failure)) return error;
        if (const auto error = LookUp()) return error;
        if (stored_ > source_.size) stored_ = 0;
    }
}

void DavTransfer::SendAsAWhole() {
    parts_ = Parts::None;
    stored_ = 0;
    exists_ = false;
}

// The error that ends the transfer, or nothing after a pause.
std::optional<DavError> DavTransfer::BeforeNextTry(const DavError& failure) {
    if (++breaks_ > client_.Patience().breaks) return failure;
    return client_.Pause(std::exchange(pause_, pause_ * 2));
}

// A break isn't the end: where the server is decides how it goes on. Other failures are.
std::optional<DavError> DavTransfer::AfterFailure(const DavError& failure) {
    if (parts_ != Parts::None && stored_ > 0 && IsUnsupported(failure)) {
        SendAsAWhole();
        return std::nullopt;
    }
    if (!MayHaveActed(failure)) return failure;
    if (const auto error = LookUpAfter(failure)) return error;
    if (IsWhole()) return std::nullopt;
    if (!IsHttp(failure, HttpFault::BrokenOff)) return failure;
    if (stored_ > furthest_ && stored_ < source_.size) {
        furthest_ = stored_;
        breaks_ = 0;
        pause_ = client_.Patience().pause;
    }
    if (const auto error = BeforeNextTry(failure)) return error;
    if (stored_ > source_.size || parts_ == Parts::None) SendAsAWhole();
    if (stored_ > 0 && parts_ == Parts::Unknown) return Prepare();
    return std::nullopt;
}

std::optional<DavError> DavTransfer::Run(bool resumes) {
    if (resumes) {
        if (const auto error = LookUp()) return error;
        if (stored_ > source_.size) stored_ = 0;
    }
    if (!IsWhole() && (source_.size >= resumableSize_ || stored_ > 0)) {
        if (const auto error = Prepare()) return error;
    }
    while (!IsWhole()) {
        progress_(stored_);
        if (const auto failure = SendPart(stored_, source_.size - stored_)) {
            if (const auto error = AfterFailure(*failure)) return error;
            continue;
        }
        if (const auto error = LookUp()) return error;
        if (IsWhole()) break;
        if (parts_ != Parts::Range && parts_ != Parts::Patch)
            return DavError{DavFault::WrongSize, 0, {}, std::nullopt};
        SendAsAWhole(); // the parts didn't fit together
    }
    progress_(source_.size);
    return std::nullopt;
}

} // namespace providers
