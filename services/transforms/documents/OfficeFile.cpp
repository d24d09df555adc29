#include "services/transforms/documents/OfficeFile.h"

#include "services/transforms/documents/Odf.h"
#include "services/transforms/documents/OldContainer.h"
#include "services/transforms/documents/Ooxml.h"
#include "services/transforms/documents/Package.h"

namespace transforms::documents {
namespace {

using namespace personal;
using namespace std::string_view_literals;

constexpr std::string_view kOoxmlPart = "[Content_Types].xml";
constexpr std::string_view kOdfPart = "mimetype";
constexpr std::string_view kOldContainer = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
// The name of a stream, in the container's own characters.
constexpr std::string_view kEncryptedPackage = "E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0"sv;

bool Contains(Bytes file, std::string_view text) {
    return TextOf(file).find(text) != std::string_view::npos;
}

Analysis Clean(Bytes file, PictureSteps* steps) {
    Package package(file, steps);
    if (IsOoxml(package)) {
        CleanOoxml(package);
    } else if (IsOdf(package)) {
        CleanOdf(package);
    } else {
        return Failed(CleanOutcome::NotSupported);
    }
    return package.Conclude();
}

} // namespace

bool IsOfficePackage(Bytes file) {
    return StartsWith(file, "PK\x3\x4") && (Contains(file, kOoxmlPart) || Contains(file, kOdfPart));
}

Analysis AnalyzeOfficePackage(Bytes file, const DocumentControl& control) {
    try {
        return Clean(file, control.steps);
    } catch (const PackageRefusal& refusal) {
        return Failed(refusal.outcome);
    }
}

bool IsOldContainer(Bytes file) { return StartsWith(file, kOldContainer); }

Analysis AnalyzeOldContainer(Bytes file, const DocumentControl&) {
    return Failed(Contains(file, kEncryptedPackage) || NeedsPassword(file)
                      ? CleanOutcome::Encrypted
                      : CleanOutcome::NotSupported);
}

} // namespace transforms::documents
