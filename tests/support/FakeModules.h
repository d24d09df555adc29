// The test's side of the fake sister modules.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace obtest {

struct FakeModules {
    // Forgets all calls and all scripted answers.
    static void Reset();

    // Forgets the calls only.
    static void ForgetCalls();

    // From now on `call` answers `answer`. Lines of the script end at a line break.
    static void Answer(std::wstring_view call, std::wstring_view answer);

    // Every call into the fakes, in order, from every process that runs in this folder.
    static std::vector<std::wstring> Calls();

    // Those of them that begin with one of these names (up to the opening bracket).
    static std::vector<std::wstring> CallsOf(const std::vector<std::wstring>& names);
};

} // namespace obtest
