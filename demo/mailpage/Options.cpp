#include "demo/mailpage/Options.h"

#include <array>

namespace mailpage {
namespace {

struct Switch {
    const wchar_t* name;
    bool Options::*field;
    bool value;
};

struct Text {
    const wchar_t* name;
    std::wstring Options::*field;
};

constexpr std::array kSwitches{
    Switch{L"--single", &Options::single, true},
    Switch{L"--no-fallback-dialog", &Options::fallbackDialog, false},
    Switch{L"--auto", &Options::automatic, true},
    Switch{L"--keep-open", &Options::keepOpen, true},
};

constexpr std::array kTexts{
    Text{L"--url", &Options::url},           Text{L"--filter", &Options::filter},
    Text{L"--result", &Options::resultFile}, Text{L"--picture", &Options::pictureFile},
    Text{L"--outbox", &Options::outbox},
};

bool TakeSwitch(Options& options, const std::wstring& name) {
    for (const Switch& entry : kSwitches) {
        if (name != entry.name) continue;
        options.*entry.field = entry.value;
        return true;
    }
    return false;
}

bool TakeText(Options& options, const std::wstring& name, const std::wstring& value) {
    for (const Text& entry : kTexts) {
        if (name != entry.name) continue;
        options.*entry.field = value;
        return true;
    }
    return false;
}

bool TakeEntry(Options& options, const std::wstring& name, const std::wstring& value) {
    if (name != L"--entry" || (value != L"open" && value != L"dialog")) return false;
    options.entry = value == L"dialog" ? Entry::Dialog : Entry::OpenFileName;
    return true;
}

} // namespace

std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments,
                                    std::wstring& problem) {
    Options options;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::wstring& name = arguments[index];
        if (TakeSwitch(options, name)) continue;
        const bool hasValue = index + 1 < arguments.size();
        if (!hasValue || !(TakeText(options, name, arguments[index + 1]) ||
                           TakeEntry(options, name, arguments[index + 1]))) {
            problem = L"Unknown or incomplete option: " + name;
            return std::nullopt;
        }
        ++index;
    }
    return options;
}

} // namespace mailpage
