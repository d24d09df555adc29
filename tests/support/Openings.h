// How often a test opens a dialog: as often as fits into a limit, or as often as the run asks.
#pragma once

#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace obtest {

// A thousand openings take up to minutes. Without OB_OPENINGS a test makes as many as fit into its
// limit, and 20 at least.
class Openings {
public:
    explicit Openings(ULONGLONG milliseconds) : limit_(milliseconds) {}
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
    static constexpr int kAll = 1000;
    static constexpr int kLeast = 20;

    ULONGLONG limit_;
    const wchar_t* asked_ = _wgetenv(L"OB_OPENINGS");
    int made_ = 0;
    ULONGLONG begin_ = GetTickCount64();
};

} // namespace obtest
