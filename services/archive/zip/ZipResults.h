// What Zip answers. 0 is the contract's success; every other code is this service's own, so that
// support can distinguish failures. Callers only look at zero or not.
#pragma once

#include <cstdint>

namespace obarchive {

enum class ZipResult : std::uint32_t {
    Ok = 0,

    // The call was not fit to run; nothing was opened or made.
    BadContext = 1,        // no such context, or a destroyed one
    NoFiles = 2,           // AddFileW was never called with a path
    NoTarget = 3,          // SetZipNameW was never called with a path
    UnknownMethod = 4,     // a compression or encryption method that this service hasn't got
    PasswordMissing = 5,   // encryption without a password
    RecoveryNotThere = 6,  // a public key was set, and recovery by it can't be carried out
    TargetExists = 7,      // a file or folder is at the target; nothing is ever overwritten
    PathTooLong = 8,       // a path that the system can't take
    EncryptionMissing = 9, // a password without encryption

    // A source could not be stored as it is.
    SourceMissing = 20,    // not there, or gone by the time that it was read
    SourceLocked = 21,     // another program keeps it from being read
    SourceUnreadable = 22, // no right to read, a folder, a broken disk
    SourceChanged = 23,    // written to, cut or grown while it was read

    // The zip could not be written.
    DiskFull = 40,
    TargetUnwritable = 41, // folder missing, no right to write, or gone at the end
    OutOfMemory = 42,
    EngineFailed = 43,

    Cancelled = 60,  // the progress callback asked for it
    Unexpected = 61, // an exception reached the export's edge
};

} // namespace obarchive
