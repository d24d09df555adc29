// A file of the product that is missing for a scope.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace obtest {

// Moves a file of C:\app away, and back at the end.
class Missing {
public:
    explicit Missing(const std::wstring& name)
        : path_(L"C:\\app\\" + name), moved_(path_ + L".away") {
        EXPECT_TRUE(MoveFileW(path_.c_str(), moved_.c_str())) << "error " << GetLastError();
    }
    ~Missing() { MoveFileW(moved_.c_str(), path_.c_str()); }
    Missing(const Missing&) = delete;
    Missing& operator=(const Missing&) = delete;

private:
    std::wstring path_;
    std::wstring moved_;
};

} // namespace obtest
