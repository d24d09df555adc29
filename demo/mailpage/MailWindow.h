// The browser's window with the mail that is being written.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "demo/mailpage/Attach.h"
#include "demo/mailpage/Drawing.h"
#include "demo/mailpage/Layout.h"

namespace mailpage {

// Control ids, for programs that work the window as a person would.
inline constexpr int kToField = 101;
inline constexpr int kSubjectField = 102;
inline constexpr int kBodyField = 103;
inline constexpr int kAttachButton = 104;
inline constexpr int kSendButton = 105;
inline constexpr int kAttachmentList = 106; // its strings are the full paths and the links
inline constexpr int kStatusLine = 107;

// What the list shows: a file, or a link that the message has.
struct Attachment {
    std::wstring name;
    std::wstring place; // the full path, or the link
    bool isLink = false;
};

// Lives on the thread that runs it, with COM and the drawing library up.
class MailWindow {
public:
    MailWindow(const Options& options, const HookedLibrary& library);
    MailWindow(const MailWindow&) = delete;
    MailWindow& operator=(const MailWindow&) = delete;
    ~MailWindow();

    // Shows the window and dispatches until it is closed. What the library noted for cleaning up is
    // gone at the end. 0, or 1 when the window can't be made.
    int Run();

private:
    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wide, LPARAM narrow);
    LRESULT OnMessage(UINT message, WPARAM wide, LPARAM narrow);

    bool Create();
    bool CreateControls();
    HWND AddControl(const wchar_t* className, const wchar_t* text, DWORD style, int id);
    void OnDpiChanged(UINT dpi, const RECT* suggested);
    void ApplyScale();
    void Arrange();
    void OnCommand(int id);
    void OnPaint();
    void PaintFrame(HDC dc) const;
    void PaintCard(HDC dc) const;
    void PaintButton(const DRAWITEMSTRUCT& item) const;
    void PaintAttachment(const DRAWITEMSTRUCT& item) const;

    void Attach();
    void Take(const AttachAnswer& answer);
    void Add(const Attachment& attachment);
    std::wstring TakeLinks(const std::vector<std::wstring>& texts);
    void InsertText(const std::wstring& text);
    void Send();
    void CleanUp();
    void SetStatus(const std::wstring& text);
    HWND Control(int id) const { return GetDlgItem(window_.Get(), id); }

    const Options& options_;
    const HookedLibrary& library_;
    ObLib::UniqueBrush cardBrush_{CreateSolidBrush(colour::kCard)};
    ObLib::UniqueBrush pageBrush_{CreateSolidBrush(colour::kPage)};
    UniqueIcon icon_;
    Scale scale_;
    std::optional<Fonts> fonts_;
    Layout layout_;
    std::vector<Attachment> attachments_;
    std::vector<CleanupNote> cleanup_;
    ObLib::UniqueWindow window_;
};

} // namespace mailpage
