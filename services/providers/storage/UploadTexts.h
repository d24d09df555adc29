// What the caller of an upload writes into its progress window.
#pragma once

#include <string>

namespace providers {

struct UploadTexts {
    std::wstring title;
    std::wstring body;
};

} // namespace providers
