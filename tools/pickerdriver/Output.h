// The UI driver's output, and how it reports a failure.
#pragma once

#include <string>

namespace pickerdriver {

// Thrown where a step can't be done; the text names the step and the reason.
struct Failure {
    std::wstring text;
};

// One line on the standard output, in UTF-8, at once.
void Say(const std::wstring& line);

std::wstring FromUtf8(const std::string& text);

} // namespace pickerdriver
