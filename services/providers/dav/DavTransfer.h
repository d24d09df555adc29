// Brings the bytes of a file to a server, and goes on after a break where the server is.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "services/providers/dav/DavClient.h"

namespace providers {

struct DavSource {
    HANDLE file = nullptr; // can read; open until the transfer has ended
    std::uint64_t size = 0;
};

// From this size on a file is sent so that a break keeps what came, where the server can: that
// takes three small requests more.
inline constexpr std::uint64_t kResumableSize = 8u << 20; // bytes

// Stores a file under an address of this client's own, which has nobody else's file, and checks its
// length there. `progress` gets the number of bytes that the server has, which goes back when bytes
// have to be sent again. After an error a part may be stored: a later call of the same file goes on
// with `resumes` set.
class DavTransfer {
public:
    DavTransfer(const DavClient& client, HttpUrl url, const DavSource& source,
                std::function<void(std::uint64_t sent)> progress,
                std::uint64_t resumableSize = kResumableSize);

    std::optional<DavError> Run(bool resumes = false);

private:
    enum class Parts { Unknown, None, Range, Patch };

    std::optional<DavError> Prepare();
    DavResult<Parts> FindParts();
    DavResult<bool> TakesRanges();
    std::optional<DavError> SendPart(std::uint64_t from, std::uint64_t size);
    std::optional<DavError> AfterFailure(const DavError& failure);
    std::optional<DavError> LookUp();
    std::optional<DavError> LookUpAfter(const DavError& failure);
    void SendAsAWhole();
    std::optional<DavError> BeforeNextTry(const DavError& failure);
    bool IsWhole() const { return exists_ && stored_ == source_.size; }

    const DavClient& client_;
    HttpUrl url_;
    DavSource source_;
    std::function<void(std::uint64_t)> progress_;
    std::uint64_t resumableSize_;
    Parts parts_ = Parts::Unknown; // how the server takes a part of a file
    std::uint64_t stored_ = 0;     // bytes that the server has
    std::uint64_t furthest_ = 0;   // the most that it had after a break
    bool exists_ = false;          // on the server
    int breaks_ = 0;               // in a row without a byte more than ever
    DWORD pause_ = 0;
};

} // namespace providers
