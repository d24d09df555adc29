// Puts PDFs one after the other into one file.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "services/transforms/personal/Bytes.h"
#include "services/transforms/personal/Findings.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::combine {

struct PdfPart {
    std::string title;             // of its bookmark, UTF-8
    personal::Bytes file;          // outlives the combiner
    bool breaksSignatures = false; // fields lose their signatures; otherwise the part is refused
    std::string_view password;     // as for DocumentControl
};

// Takes the new file, from its start to its end. False: the rest isn't wanted.
class PdfSink {
public:
    virtual ~PdfSink() = default;
    virtual bool Write(personal::Bytes bytes) = 0;
};

// Learns that the work goes on, and on which part.
class PdfCombineSteps : public PictureSteps {
public:
    virtual void Enter(std::size_t part) noexcept = 0;
};

// Pages in the order of the parts. Each part has a bookmark of its title with its own bookmarks
// below. Links and bookmarks lead to the same pages as before; a form field whose name another part
// has too gets another one, and its part loses its scripts; layers are shown or hidden as before;
// attached files stay attached. What belongs to a file as a whole isn't taken over: its
// information, scripts, tags, page labels and a form in XML. If a part is encrypted, the file has
// the key, passwords and permissions of one such part: of those that don't open without a password,
// or of all if there are none, the one with the strongest cipher, and the first of several. Equal
// parts give equal bytes. One thread; throws std::bad_alloc alone.
class PdfCombiner {
public:
    // `steps`, which may be null, outlives the combiner.
    explicit PdfCombiner(PdfCombineSteps* steps = nullptr);
    ~PdfCombiner();
    PdfCombiner(const PdfCombiner&) = delete;
    PdfCombiner& operator=(const PdfCombiner&) = delete;

    // Cleaned: the part is taken, with the next number from 0 on. Otherwise why it can't be one,
    // and nothing of it is in the file: NotSupported for what isn't a PDF, a PDF that is a folder
    // of files and one whose pages are described in XML alone; Damaged, Encrypted, Locked,
    // OtherCipher, Signed.
    CleanOutcome Add(const PdfPart& part);
    std::size_t Count() const noexcept;

    // Once, after at least one part. False when the sink wanted no more or a part is damaged, which
    // Failed then has.
    bool Write(PdfSink& sink);
    std::optional<std::size_t> Failed() const noexcept;

private:
    class Work;
    std::unique_ptr<Work> work_;
};

} // namespace transforms::combine
