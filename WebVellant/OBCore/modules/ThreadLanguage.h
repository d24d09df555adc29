// The language of the calling thread, as the system's resource loader sees it.
#pragma once

#include <windows.h>

namespace obcore {

// The thread's first preferred language as a number; 0 when it has none or the call fails.
LANGID GetThreadLanguage();

// Makes `language` the thread's preferred one; 0 clears the thread's choice. A failure is only
// traced.
void SetThreadLanguage(LANGID language);

// Sets a language for a scope and puts back what the thread had. Lives on the thread that it
// changes.
class ThreadLanguageScope {
public:
    explicit ThreadLanguageScope(LANGID language) : saved_(GetThreadLanguage()) {
        SetThreadLanguage(language);
    }
    ThreadLanguageScope(const ThreadLanguageScope&) = delete;
    ThreadLanguageScope& operator=(const ThreadLanguageScope&) = delete;
    ~ThreadLanguageScope() { SetThreadLanguage(saved_); }

private:
    LANGID saved_;
};

} // namespace obcore
