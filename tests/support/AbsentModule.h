// A file of the test program's folder that isn't there for a scope.
#pragma once

#include <windows.h>

#include <string>

#include "tests/fakes/Recording.h"

namespace obtest {

class AbsentModule {
public:
    explicit AbsentModule(const wchar_t* fileName)
        : path_(BesideProgram(fileName)), away_(path_ + L".away"),
          moved_(MoveFileW(path_.c_str(), away_.c_str()) != FALSE) {}
    ~AbsentModule() {
        if (moved_) MoveFileW(away_.c_str(), path_.c_str());
    }
    AbsentModule(const AbsentModule&) = delete;
    AbsentModule& operator=(const AbsentModule&) = delete;

    // False when the file wasn't there or can't be moved: the test must not go on then.
    bool Ok() const { return moved_; }

private:
    std::wstring path_;
    std::wstring away_;
    bool moved_;
};

} // namespace obtest
