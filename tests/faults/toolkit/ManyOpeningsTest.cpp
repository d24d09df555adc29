// A thousand openings of a dialog with a control of each class leave nothing.
#include "tests/faults/toolkit/ToolkitSuite.h"
#include "tests/support/Openings.h"

namespace obtest {
namespace {

constexpr ULONGLONG kLimit = 10000; // milliseconds
constexpr ULONGLONG kLimitOfOneObject = 3000;

class ManyOpenings : public ToolkitSuite {};

TEST_F(ManyOpenings, LeaveNoObjectWindowOrTimer) {
    for (int round = 0; round < 5; ++round) EveryControlDialog().Open();
    PumpPosted();
    const ProcessResources before = ProcessResources::Now();
    Openings openings(kLimit);
    while (openings.More()) {
        EveryControlDialog().Open();
        PumpPosted();
        openings.Made();
    }
    openings.Print();
    ExpectNoMoreThan(before);
}

TEST_F(ManyOpenings, OfOneObjectLeaveNothingEither) {
    EveryControlDialog dialog;
    for (int round = 0; round < 5; ++round) DestroyWindow(dialog.Open().window);
    PumpPosted();
    const ProcessResources before = ProcessResources::Now();
    const std::size_t controls = dialog.Controls().size();
    Openings openings(kLimitOfOneObject);
    while (openings.More()) {
        DestroyWindow(dialog.Open().window);
        PumpPosted();
        openings.Made();
    }
    openings.Print();
    EXPECT_EQ(controls, dialog.Controls().size());
    ExpectNoMoreThan(before);
}

} // namespace
} // namespace obtest
