// Work on a large document is seen to go on in each of its phases.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/services/transforms/documents/DocumentSamples.h"
#include "tests/unit/services/transforms/documents/LargeSamples.h"

using namespace samples;

namespace {

class CountedSteps : public transforms::PictureSteps {
public:
    void Step() noexcept override { ++count_; }
    std::size_t Count() const { return count_; }

private:
    std::size_t count_ = 0;
};

std::size_t StepsOf(const std::string& file, CleanOutcome outcome) {
    CountedSteps steps;
    EXPECT_EQ(transforms::CleanFile(BytesOf(file), {.steps = &steps}).outcome, outcome);
    return steps.Count();
}

// Each page is read, visited and written.
TEST(DocumentSteps, OfAPdfComeForEachPage) {
    EXPECT_GT(StepsOf(ManyPages(5000), CleanOutcome::Cleaned), 3 * 5000u);
}

TEST(DocumentSteps, OfACleanPdfComeForEachPageToo) {
    const CleanedDocument cleaned = CleanDocument(ManyPages(100));
    EXPECT_GT(StepsOf(cleaned.file, CleanOutcome::NothingFound), 3 * 100u);
}

TEST(DocumentSteps, OfATextComeForEachParagraphOfOneLargePart) {
    EXPECT_GT(StepsOf(ManyParagraphs(20000), CleanOutcome::Cleaned), 20000u);
}

TEST(DocumentSteps, OfAPackageComeForEachOfManyParts) {
    EXPECT_GT(StepsOf(ManyPictures(500), CleanOutcome::Cleaned), 500u);
}

} // namespace
