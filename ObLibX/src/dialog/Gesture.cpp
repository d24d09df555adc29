#include "ObLibX/src/dialog/Gesture.h"

namespace ObLibX {
namespace {

// A function of user32.dll, which every program with a window has; looked up at each call.
template <class Function>
Function* Find(const char* name) {
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    if (user == nullptr) return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(user, name)));
}

} // namespace

BOOL GetGestureInfo(HGESTUREINFO gesture, GESTUREINFO* info) {
    auto* const call = Find<BOOL WINAPI(HGESTUREINFO, GESTUREINFO*)>("GetGestureInfo");
    return call != nullptr ? call(gesture, info) : FALSE;
}

BOOL CloseGestureInfoHandle(HGESTUREINFO gesture) {
    auto* const call = Find<BOOL WINAPI(HGESTUREINFO)>("CloseGestureInfoHandle");
    return call != nullptr ? call(gesture) : FALSE;
}

BOOL SetGestureConfig(HWND window, DWORD reserved, UINT count, GESTURECONFIG* config, UINT size) {
    auto* const call =
        Find<BOOL WINAPI(HWND, DWORD, UINT, GESTURECONFIG*, UINT)>("SetGestureConfig");
    return call != nullptr ? call(window, reserved, count, config, size) : FALSE;
}

} // namespace ObLibX
