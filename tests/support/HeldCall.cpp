#include "tests/support/HeldCall.h"

#include <windows.h>

#include <stdexcept>

#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/WindowKit.h"

namespace obtest {

std::wstring HeldCall::Await() {
    std::wstring line;
    WaitUntil([&] { return !(line = ReadUtf8File(BesideProgram(kHeldFileName))).empty(); });
    return line;
}

bool HeldCall::AwaitVisit(const wchar_t* call, std::size_t visit) {
    for (std::size_t number = 1;; ++number) {
        if (!WaitUntil([&] { return FakeModules::CallsOf({call}).size() == number; })) return false;
        if (Await().empty()) return false;
        if (number == visit) return true;
        Release();
    }
}

void HeldCall::Release() {
    const std::wstring file = BesideProgram(kHeldFileName);
    const auto isGone = [&] {
        return DeleteFileW(file.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND;
    };
    if (!WaitUntil(isGone)) throw std::runtime_error("the held call's file can't be deleted");
}

} // namespace obtest
