// The test's side of the scripted host: stage the target fake_host beside the test program.
#pragma once

#include <string>
#include <vector>

namespace obtest {

struct HostScript {
    // Forgets what was recorded, and gives the host this script (see Script.h) for its next runs.
    static void Play(const std::wstring& script);

    // The record: a line "start COMMANDLINE" of each run, and what its commands added.
    static std::vector<std::wstring> Record();

    // Those lines of the record that begin with this word, without it.
    static std::vector<std::wstring> RecordOf(const std::wstring& word);
};

} // namespace obtest
