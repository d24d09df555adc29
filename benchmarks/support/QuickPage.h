// A page whose own dialogs return at once, and which may be asked millions of times.
#pragma once

#include <string>

#include "tests/support/FakeBrowserContext.h"

namespace bench {

inline obtest::FakeBrowserContext QuickPage(const std::wstring& url) {
    obtest::FakeBrowserContext page;
    page.pageUrl = url;
    page.keepsCalls = false;
    page.openFileNameAnswer = TRUE;
    page.showAnswer = S_OK;
    return page;
}

} // namespace bench
