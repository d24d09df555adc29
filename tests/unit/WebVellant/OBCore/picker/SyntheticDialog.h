// A dialog with the controls of the shell's that the cloud button needs, in real rectangles. It
// makes them while it handles WM_INITDIALOG, as the shell's does, and lays them out as it is
// resized.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

namespace obtest {

class SyntheticDialog {
public:
    static constexpr int kBoxLeft = 60; // all in pixels of the client area
    static constexpr int kTop = 150;
    static constexpr int kHeight = 24;
    static constexpr int kRowHeight = 30;

    // How the file name box follows the dialog's right edge.
    enum class Box { Grows, Moves };

    bool hasOk = true;
    bool hasBox = true;
    Box box = Box::Grows;
    LONG ownMinimum = 200; // its answer to WM_GETMINMAXINFO
    std::function<void(HWND, UINT, WPARAM)>
        onMessage; // each message that the dialog itself handles

    // Without modal loop; destroyed with this object.
    HWND Create(int width = 600, int height = 300);
    // Until somebody ends it; returns the result.
    INT_PTR Run();
    ~SyntheticDialog();

    HWND dialog = nullptr;
    HWND ok = nullptr;
    HWND nameBox = nullptr;
    HWND fileTypes = nullptr;

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void AddControls();
    void LayOut();
};

// A window's rectangle on the screen.
RECT PlaceOnScreen(HWND window);
int WidthOf(const RECT& place);
int HeightOf(const RECT& place);

// Sets the dialog's width and keeps the rest.
void SetWidth(HWND dialog, int width);

} // namespace obtest
