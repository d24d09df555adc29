// The contract between the provider manager and its work process, PVXTransform64.exe: records on
// two anonymous pipes, one for each direction.
//
// A record is a header and its payload, both little-endian and without gaps. The manager sends one
// request at a time and reads replies until Done or Failed. A request begins with WorkFiles, and
// the settings of its kind follow: a further transform is one more row of kWorkRequests. The work
// process ends when its request pipe is closed, and with the first record that isn't valid.
//
// The files are named by no path: the manager opens them and duplicates the handles into the work
// process, which therefore needs no right on any file. The manager trusts no reply: a picture that
// took the work process over can send any bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace obcontract {

inline constexpr wchar_t kTransformWorkFileName[] = L"PVXTransform64.exe";

// "PVXW" in the order of the bytes.
inline constexpr std::uint32_t kWorkMagic = 0x57585650;

// No record of either side is larger; a larger size in a header isn't valid.
inline constexpr std::uint32_t kLargestWorkPayload = 4096;

enum class WorkKind : std::uint32_t {
    // Requests; each one's settings are in kWorkRequests.
    Clean = 1,      // removes personal data
    CheckClean = 2, // reports what a clean would find, Changed if it would change the file
    Resize = 3,     // makes a picture smaller
    Measure = 4,    // reports how many bytes a file takes in a zip
    // Pictures that are made smaller together. The process keeps what it has of them until its end:
    // each FitAdd adds one picture, FitSearch finds the step for all of them, FitWrite writes one.
    // FitWatermark or FitPictureWatermark comes first where some of them get a watermark.
    FitAdd = 5,
    FitSearch = 6,
    FitWrite = 7,
    ConvertPhoto = 8, // makes a JPEG or PNG of a photo of another kind
    Watermark = 9,    // lays a text over a picture or the pages of a PDF
    // PDFs that become one, which the process keeps open until its end: each CombineAdd adds one,
    // CombineWrite writes all of them.
    CombineAdd = 10,
    CombineWrite = 11,
    PictureToPdf = 12, // makes a PDF of a picture
    RemoveDates = 13,  // writes a PDF without what differs each time a program makes it
    // No request and without files: its payload is the password of the PDF in the next request, 1
    // to kMostPasswordBytes bytes of UTF-8 without a NUL. The manager ends the process after that
    // request, as libraries make copies that nobody can wipe.
    Password = 14,
    PictureWatermark = 15,    // lays a picture over a picture or the pages of a PDF
    FitWatermark = 16,        // of the pictures that FitAdd adds with one: a text
    FitPictureWatermark = 17, // the same: a picture
    FitCheck = 18,            // reports whether FitAdd takes a picture
    // Replies.
    Progress = 0x101,
    Finding = 0x102,
    Done = 0x103,   // the request's last record
    Failed = 0x104, // the request's last record
};

struct WorkHeader {
    std::uint32_t magic; // kWorkMagic
    WorkKind kind;
    std::uint32_t size;     // bytes of the payload
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkHeader) == 16);
static_assert(offsetof(WorkHeader, magic) == 0);
static_assert(offsetof(WorkHeader, kind) == 4);
static_assert(offsetof(WorkHeader, size) == 8);
static_assert(offsetof(WorkHeader, reserved) == 12);

// The files of a request, as handles of the work process, which closes them when the request ends;
// those of FitAdd and CombineAdd with the process.
struct WorkFiles {
    std::uint64_t source; // a file on disk, for reading; zero when the request reads none
    std::uint64_t target; // a new empty file, for writing and reading back; zero as above
};
static_assert(sizeof(WorkFiles) == 16);
static_assert(offsetof(WorkFiles, source) == 0);
static_assert(offsetof(WorkFiles, target) == 8);

// The settings of Clean and CheckClean.
struct WorkClean {
    std::uint64_t reserved; // zero
};
static_assert(sizeof(WorkClean) == 8);
static_assert(offsetof(WorkClean, reserved) == 0);

enum class WorkAim : std::uint32_t {
    LongestEdge = 1, // at most so many pixels
    Percent = 2,     // of both sides, 1 to 99
    Bytes = 3,       // at most so many
};

// The settings of Resize. A picture that passes is Unchanged: one that meets the aim already, an
// animation and a file of many pages.
struct WorkResize {
    WorkAim aim;
    std::uint32_t quality; // of lossy forms, as in JPEG, 1 to 100; Bytes finds its own
    std::uint64_t value;   // not zero
};
static_assert(sizeof(WorkResize) == 16);
static_assert(offsetof(WorkResize, aim) == 0);
static_assert(offsetof(WorkResize, quality) == 4);
static_assert(offsetof(WorkResize, value) == 8);

// Kinds of photos, each a bit.
enum class WorkPhotoKinds : std::uint32_t {
    None = 0,
    Heic = 1,
    Avif = 2,
    Webp = 4,
    Tiff = 8,
    Bmp = 16,
    JpegXr = 32,
    Raw = 64,
    All = 127,
};

// The settings of ConvertPhoto. Changed: the target is a whole JPEG or PNG, which its first bytes
// show. Unchanged: an animation or a file of many pages. Not supported: another kind of file, one
// that isn't to be converted or, with the finding "no-decoder", one that nothing on the machine
// decodes.
struct WorkPhoto {
    std::uint32_t quality; // of a JPEG, 1 to 100
    WorkPhotoKinds kinds;  // that are converted
};
static_assert(sizeof(WorkPhoto) == 8);
static_assert(offsetof(WorkPhoto, quality) == 0);
static_assert(offsetof(WorkPhoto, kinds) == 4);

enum class WorkPage : std::uint32_t {
    AsPicture = 1, // as large as the picture is at its own resolution
    A4 = 2,
    Letter = 3,
};

// The settings of PictureToPdf. Changed: the target is a whole PDF, which its first bytes show.
// Unchanged: an animation. Not supported: another kind of file or, with the finding "no-decoder", a
// photo that nothing on the machine decodes.
struct WorkPdf {
    WorkPage page;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkPdf) == 8);
static_assert(offsetof(WorkPdf, page) == 0);
static_assert(offsetof(WorkPdf, reserved) == 4);

enum class WorkPlace : std::uint32_t {
    TopLeft = 1,
    TopRight = 2,
    BottomLeft = 3,
    BottomRight = 4,
    Centre = 5,
};

// The settings of Watermark, before the text: 1 to kMostWatermarkText units of UTF-16, without a
// NUL. What passes, as for Resize, is Unchanged.
struct WorkWatermark {
    WorkPlace place;
    std::uint32_t opacity; // percent, 1 to 100
};
static_assert(sizeof(WorkWatermark) == 8);
static_assert(offsetof(WorkWatermark, place) == 0);
static_assert(offsetof(WorkWatermark, opacity) == 4);
inline constexpr std::uint32_t kMostWatermarkText = 100;

enum class WorkSignatures : std::uint32_t {
    Keep = 0,  // a PDF with a signature is Signed
    Break = 1, // form fields lose their signatures
};

// The settings of CombineAdd, before the title of the PDF's bookmark: 1 to kMostCombineTitle units
// of UTF-16, without a NUL. Changed: the PDF is added, with the next number from 0 on. Not
// supported: another kind of file, or a PDF whose content isn't that of its pages. A PDF that isn't
// added leaves nothing.
struct WorkCombineAdd {
    WorkSignatures signatures;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkCombineAdd) == 8);
static_assert(offsetof(WorkCombineAdd, signatures) == 0);
static_assert(offsetof(WorkCombineAdd, reserved) == 4);
inline constexpr std::uint32_t kMostCombineTitle = 255;

// The settings of CombineWrite are WorkPlain. `CombineWrite` ends the series.

// The settings of Measure and RemoveDates. Measure is always Changed, with the bytes in WorkDone.
// RemoveDates is Changed or fails: dates and identifiers of the whole file go, and the pages stay.
struct WorkPlain {
    std::uint64_t reserved; // zero
};
static_assert(sizeof(WorkPlain) == 8);
static_assert(offsetof(WorkPlain, reserved) == 0);

// The settings of FitCheck. Changed: with kinds, the file is a photo of one of them that is to be
// converted; without, a picture that can be made smaller. Its headers alone were read. Unchanged:
// an animation or a file of many pages. Not supported: another kind of file.
struct WorkFitCheck {
    WorkPhotoKinds kinds;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkFitCheck) == 8);
static_assert(offsetof(WorkFitCheck, kinds) == 0);
static_assert(offsetof(WorkFitCheck, reserved) == 4);

// The settings of FitAdd. Changed: the picture can be made smaller and has the next number from 0
// on. A photo of one of the kinds becomes a JPEG or PNG, as by ConvertPhoto; a picture with a
// watermark gets it in its new size. Such pictures are always written, but for one that keeps its
// form and is too small for the watermark. Unchanged and not supported: as for FitCheck, and not
// supported for a photo that nothing on the machine opens.
struct WorkFitAdd {
    std::uint8_t quality;   // at most, of a JPEG that a photo becomes: 1 to 100; zero without kinds
    std::uint8_t isStamped; // 1: with the watermark that was given before; otherwise zero
    std::uint16_t reserved; // zero
    WorkPhotoKinds kinds;   // that are converted
};
static_assert(sizeof(WorkFitAdd) == 8);
static_assert(offsetof(WorkFitAdd, quality) == 0);
static_assert(offsetof(WorkFitAdd, isStamped) == 1);
static_assert(offsetof(WorkFitAdd, reserved) == 2);
static_assert(offsetof(WorkFitAdd, kinds) == 4);

// The settings of FitWatermark are those of Watermark, of FitPictureWatermark those of
// PictureWatermark. One of them comes once, before the first FitAdd, and is Changed.

// The settings of FitSearch, which is Changed when a step was found and Unchanged when all fits.
// Not supported: some pictures have a form for which ConvertPhoto or Watermark isn't supported
// either. For each there is a finding with this key and the picture's number after it, up to as
// many as a request has.
inline constexpr char kWorkPictureKey[] = "picture.";
struct WorkFitSearch {
    std::uint64_t mailLimit;  // bytes of the mail as it is sent; not zero
    std::uint64_t otherBytes; // of the files that weren't added
};
static_assert(sizeof(WorkFitSearch) == 16);
static_assert(offsetof(WorkFitSearch, mailLimit) == 0);
static_assert(offsetof(WorkFitSearch, otherBytes) == 8);

// The settings of FitWrite, which is Unchanged for a picture that goes out as it is.
struct WorkFitWrite {
    std::uint32_t number;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkFitWrite) == 8);
static_assert(offsetof(WorkFitWrite, number) == 0);
static_assert(offsetof(WorkFitWrite, reserved) == 4);

// The settings of PictureWatermark; otherwise as Watermark. BadPicture and nothing written when the
// picture can't be laid over anything: it is damaged, too large, an animation or another kind of
// file.
struct WorkPictureWatermark {
    WorkPlace place;
    std::uint32_t opacity; // percent, 1 to 100
    // A file on disk for reading, as those of WorkFiles. Always the last member of the settings.
    std::uint64_t picture;
};
static_assert(sizeof(WorkPictureWatermark) == 16);
static_assert(offsetof(WorkPictureWatermark, place) == 0);
static_assert(offsetof(WorkPictureWatermark, opacity) == 4);
static_assert(offsetof(WorkPictureWatermark, picture) == 8);

// What a request of each kind consists of: WorkFiles with or without these files, and settings of
// `least` to `most` bytes.
struct WorkRequestForm {
    WorkKind kind;
    std::uint32_t least;
    std::uint32_t most;
    bool hasSource;
    bool hasTarget;
    bool hasPicture = false; // the settings end with its handle
};
inline constexpr WorkRequestForm kWorkRequests[] = {
    {WorkKind::Clean, sizeof(WorkClean), sizeof(WorkClean), true, true},
    {WorkKind::CheckClean, sizeof(WorkClean), sizeof(WorkClean), true, false},
    {WorkKind::Resize, sizeof(WorkResize), sizeof(WorkResize), true, true},
    {WorkKind::ConvertPhoto, sizeof(WorkPhoto), sizeof(WorkPhoto), true, true},
    {WorkKind::Watermark, sizeof(WorkWatermark) + 2, sizeof(WorkWatermark) + 2 * kMostWatermarkText,
     true, true},
    {WorkKind::CombineAdd, sizeof(WorkCombineAdd) + 2,
     sizeof(WorkCombineAdd) + 2 * kMostCombineTitle, true, false},
    {WorkKind::CombineWrite, sizeof(WorkPlain), sizeof(WorkPlain), false, true},
    {WorkKind::PictureToPdf, sizeof(WorkPdf), sizeof(WorkPdf), true, true},
    {WorkKind::RemoveDates, sizeof(WorkPlain), sizeof(WorkPlain), true, true},
    {WorkKind::PictureWatermark, sizeof(WorkPictureWatermark), sizeof(WorkPictureWatermark), true,
     true, true},
    {WorkKind::Measure, sizeof(WorkPlain), sizeof(WorkPlain), true, false},
    {WorkKind::FitCheck, sizeof(WorkFitCheck), sizeof(WorkFitCheck), true, false},
    {WorkKind::FitWatermark, sizeof(WorkWatermark) + 2,
     sizeof(WorkWatermark) + 2 * kMostWatermarkText, false, false},
    {WorkKind::FitPictureWatermark, sizeof(WorkPictureWatermark), sizeof(WorkPictureWatermark),
     false, false, true},
    {WorkKind::FitAdd, sizeof(WorkFitAdd), sizeof(WorkFitAdd), true, false},
    {WorkKind::FitSearch, sizeof(WorkFitSearch), sizeof(WorkFitSearch), false, false},
    {WorkKind::FitWrite, sizeof(WorkFitWrite), sizeof(WorkFitWrite), false, true},
};
inline constexpr std::uint32_t kMostPasswordBytes = 127; // a PDF's own limit
inline constexpr std::uint32_t kMostWorkSettings = kLargestWorkPayload - sizeof(WorkFiles);

// `done` grows from record to record and is at most `total`, which may change. A request that takes
// longer than half a minute sends it in between: the manager ends a process that is silent for a
// minute.
struct WorkProgress {
    std::uint64_t done;
    std::uint64_t total; // not zero
    // Of the picture that FitAdd, FitSearch or FitWrite works on, of the PDF that CombineWrite
    // reads; zero for the other kinds.
    std::uint32_t number;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkProgress) == 24);
static_assert(offsetof(WorkProgress, done) == 0);
static_assert(offsetof(WorkProgress, total) == 8);
static_assert(offsetof(WorkProgress, number) == 16);
static_assert(offsetof(WorkProgress, reserved) == 20);

// Something that a file contains. A request has at most kMostWorkFindings of them, each key once.
inline constexpr std::size_t kWorkKeyCapacity = 60;
inline constexpr std::size_t kMostWorkFindings = 256;

struct WorkFinding {
    std::uint32_t count;        // not zero
    char key[kWorkKeyCapacity]; // of a-z, 0-9, '.' and '-'; not empty; zeros up to its end
    // A key that begins with "stays." names content, which a clean leaves as it is.
};
static_assert(sizeof(WorkFinding) == 64);
static_assert(offsetof(WorkFinding, count) == 0);
static_assert(offsetof(WorkFinding, key) == 4);

enum class WorkOutcome : std::uint32_t {
    Changed = 1,      // the target is whole, if the kind has one
    Unchanged = 2,    // nothing to do; the target is empty
    NotSupported = 3, // not a kind of file that the transform works on; the target is empty
};

struct WorkDone {
    WorkOutcome outcome;
    std::uint32_t reserved; // zero
    std::uint64_t size;     // bytes in the target, or by the kind; zero unless Changed
};
static_assert(sizeof(WorkDone) == 16);
static_assert(offsetof(WorkDone, outcome) == 0);
static_assert(offsetof(WorkDone, reserved) == 4);
static_assert(offsetof(WorkDone, size) == 8);

enum class WorkFailure : std::uint32_t {
    Damaged = 1,      // the file isn't what its kind requires
    TooLarge = 2,     // more than the work process takes, or more memory than it has
    Unreadable = 3,   // the source can't be read
    Unwritable = 4,   // the target can't be written, as on a full disk
    NotServed = 5,    // the work process doesn't know the request
    CannotFit = 6,    // the picture can't be made small enough
    Encrypted = 7,    // the PDF needs a password, or another one
    Signed = 8,       // the document has a signature, which any change would break
    Locked = 9,       // the PDF opens, and its owner's password is needed to change it
    OtherCipher = 10, // the document is encrypted, and no password is taken for it
    BadPicture = 11,  // the picture that was to be laid over the file can't be used
};

struct WorkFailed {
    WorkFailure failure;
    std::uint32_t reserved; // zero
};
static_assert(sizeof(WorkFailed) == 8);
static_assert(offsetof(WorkFailed, failure) == 0);
static_assert(offsetof(WorkFailed, reserved) == 4);

} // namespace obcontract
