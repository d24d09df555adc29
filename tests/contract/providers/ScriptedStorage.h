// What the real manager's scripted storage providers and their tests share.
#pragma once

// The name of an event.
inline constexpr wchar_t kReleaseEvent[] = L"ob-scripted-storage-release";
