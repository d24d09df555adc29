// A thousand openings of a dialog with a control of each class leave nothing.
#include <cstdlib>

#include "tests/faults/toolkit/ToolkitSuite.h"

namespace obtest {
namespace {

constexpr int kAll = 1000;
constexpr int kLeast = 20;
constexpr ULONGLONG kLimit = 20000; // milliseconds
constexpr ULONGLONG kLimitOfOneObject = 5000;

// A thousand openings of so many controls take one to several minutes. Without OB_OPENINGS the test
// makes as many as fit into its limit.
class Openings {
public:
    explicit Openings(ULONGLONG limit) : limit_(limit) {}
    bool More() const {
        if (asked_ != nullptr) return made_ < _wtoi(asked_);
        return made_ < kAll && (made_ < kLeast || GetTickCount64() - begin_ < limit_);
    }
    void Made() { ++made_; }
    void Print() const {
        printf("%d openings of %d\n", made_, kAll);
        if (made_ < kAll) printf("OB_OPENINGS=%d makes them all.\n", kAll);
    }

private:
    ULONGLONG limit_;
    const wchar_t* asked_ = _wgetenv(L"OB_OPENINGS");
    int made_ = 0;
    ULONGLONG begin_ = GetTickCount64();
};

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
