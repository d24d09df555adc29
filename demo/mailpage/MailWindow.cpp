#include "demo/mailpage/MailWindow.h"

#include <windowsx.h>

#include <algorithm>

#include "ObLib/Src/Win32/Guarded.h"
#include "demo/mailpage/Files.h"
#include "demo/mailpage/LinkText.h"
#include "demo/mailpage/Picture.h"

namespace mailpage {
namespace {

constexpr UINT kAttachNow = WM_APP + 1;
constexpr int kWidth = 860; // of the client area at 96 dpi
constexpr int kHeight = 640;
constexpr int kLeastRows = 1; // of attachments that are seen at once
constexpr int kMostRows = 4;

constexpr wchar_t kBody[] = L"Hello Anna,\r\n\r\nhere are the files that we talked about.\r\n\r\n"
                            L"Best regards\r\nTom";

// Lines of a mail end in CR LF in an edit control.
std::wstring WithEditLineEnds(const std::wstring& text) {
    std::wstring result;
    for (const wchar_t unit : text) {
        if (unit == L'\r') continue;
        if (unit == L'\n') result += L'\r';
        result += unit;
    }
    return result;
}

// In the middle of the work area, and never larger than it.
RECT StartPlace(Scale scale) {
    RECT wanted{0, 0, scale(kWidth), scale(kHeight)};
    AdjustWindowRectExForDpi(&wanted, WS_OVERLAPPEDWINDOW, FALSE, 0, scale.dpi);
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const LONG width = std::min(wanted.right - wanted.left, work.right - work.left);
    const LONG height = std::min(wanted.bottom - wanted.top, work.bottom - work.top);
    const LONG left = (work.left + work.right - width) / 2;
    const LONG top = (work.top + work.bottom - height) / 2;
    return {left, top, left + width, top + height};
}

// The answer to a WM_CTLCOLOR message, whose first value is the control's device context.
LRESULT ColourControl(WPARAM wide, COLORREF ink, COLORREF ground, const ObLib::UniqueBrush& brush) {
    const auto dc = reinterpret_cast<HDC>(wide);
    SetTextColor(dc, ink);
    SetBkColor(dc, ground);
    return reinterpret_cast<LRESULT>(brush.Get());
}

std::wstring StatusOf(const AttachAnswer& answer, const std::wstring& popup) {
    if (!popup.empty()) return popup;
    if (!answer.links.empty()) return L"Links were put into the message.";
    if (answer.paths.empty()) return L"No file was chosen.";
    std::wstring text = answer.paths.size() == 1
                            ? L"1 file is attached"
                            : std::to_wstring(answer.paths.size()) + L" files are attached";
    return text + (answer.browserDialog ? L", chosen in the browser's own dialog." : L".");
}

} // namespace

MailWindow::MailWindow(const Options& options, const HookedLibrary& library)
    : options_(options), library_(library), icon_(MakeEnvelopeIcon(32)) {}

MailWindow::~MailWindow() {
    // Destroyed here and not by window_'s destructor: its last messages still reach this object,
    // and one of them releases the handle.
    if (window_) DestroyWindow(window_.Get());
    CleanUp();
}

int MailWindow::Run() {
    if (!Create()) return 1;
    ShowWindow(window_.Get(), SW_SHOWNORMAL);
    UpdateWindow(window_.Get());
    if (options_.automatic) PostMessageW(window_.Get(), kAttachNow, 0, 0);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (window_ && IsDialogMessageW(window_.Get(), &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

bool MailWindow::Create() {
    WNDCLASSEXW description{.cbSize = sizeof(WNDCLASSEXW)};
    description.lpfnWndProc = &WindowProcedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hIcon = icon_.Get();
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = kMailWindowClass;
    if (!RegisterClassExW(&description)) return false;
    scale_.dpi = GetDpiForSystem();
    const RECT place = StartPlace(scale_);
    // WM_NCCREATE stores the handle.
    CreateWindowExW(0, kMailWindowClass, L"New message - Mail page",
                    WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, place.left, place.top,
                    place.right - place.left, place.bottom - place.top, nullptr, nullptr,
                    description.hInstance, this);
    return static_cast<bool>(window_);
}

LRESULT CALLBACK MailWindow::WindowProcedure(HWND window, UINT message, WPARAM wide,
                                             LPARAM narrow) {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<MailWindow*>(
            reinterpret_cast<const CREATESTRUCTW*>(narrow)->lpCreateParams);
        self->window_.Reset(window);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<MailWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self) return DefWindowProcW(window, message, wide, narrow);
    // Out of memory: the message is dropped, the window stays.
    return ObLib::Guarded<LRESULT>(0, [&] { return self->OnMessage(message, wide, narrow); });
}

LRESULT MailWindow::OnMessage(UINT message, WPARAM wide, LPARAM narrow) {
    const HWND window = window_.Get();
    switch (message) {
    case WM_CREATE:
        return CreateControls() ? 0 : -1;
    case WM_SIZE:
        Arrange();
        return 0;
    case WM_DPICHANGED:
        OnDpiChanged(LOWORD(wide), reinterpret_cast<const RECT*>(narrow));
        return 0;
    case WM_PAINT:
        OnPaint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
        return ColourControl(wide, colour::kText, colour::kCard, cardBrush_);
    case WM_CTLCOLORSTATIC:
        return ColourControl(wide, colour::kQuiet, colour::kPage, pageBrush_);
    case WM_DRAWITEM: {
        const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(narrow);
        item.CtlID == kAttachmentList ? PaintAttachment(item) : PaintButton(item);
        return TRUE;
    }
    case WM_COMMAND:
        if (HIWORD(wide) == BN_CLICKED) OnCommand(LOWORD(wide));
        return 0;
    case kAttachNow:
        OnCommand(kAttachButton);
        if (!options_.keepOpen) PostMessageW(window, WM_CLOSE, 0, 0);
        return 0;
    case WM_CLOSE:
        if (options_.automatic && !options_.keepOpen) Send();
        DestroyWindow(window);
        return 0;
    case WM_NCDESTROY:
        static_cast<void>(window_.Release());
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        PostQuitMessage(0);
        return DefWindowProcW(window, message, wide, narrow);
    default:
        return DefWindowProcW(window, message, wide, narrow);
    }
}

HWND MailWindow::AddControl(const wchar_t* className, const wchar_t* text, DWORD style, int id) {
    return CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                           window_.Get(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr);
}

bool MailWindow::CreateControls() {
    constexpr DWORD kField = WS_TABSTOP | ES_AUTOHSCROLL;
    constexpr DWORD kText = WS_TABSTOP | ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN;
    constexpr DWORD kList = WS_TABSTOP | WS_VSCROLL | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS |
                            LBS_NOINTEGRALHEIGHT | LBS_NOTIFY;
    const bool made =
        AddControl(L"EDIT", L"anna.berg@example.com", kField, kToField) &&
        AddControl(L"EDIT", L"Papers for Thursday", kField, kSubjectField) &&
        AddControl(L"EDIT", kBody, kText, kBodyField) &&
        AddControl(L"LISTBOX", L"", kList, kAttachmentList) &&
        AddControl(L"BUTTON", L"Send", WS_TABSTOP | BS_OWNERDRAW, kSendButton) &&
        AddControl(L"BUTTON", L"Attach files...", WS_TABSTOP | BS_OWNERDRAW, kAttachButton) &&
        AddControl(L"STATIC", L"Ready.", SS_NOPREFIX, kStatusLine);
    if (made) ApplyScale();
    return made;
}

void MailWindow::OnDpiChanged(UINT dpi, const RECT* suggested) {
    scale_.dpi = dpi;
    ApplyScale();
    SetWindowPos(window_.Get(), nullptr, suggested->left, suggested->top,
                 suggested->right - suggested->left, suggested->bottom - suggested->top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void MailWindow::ApplyScale() {
    // The old fonts live until the controls have the new ones.
    const std::optional<Fonts> old = std::move(fonts_);
    fonts_.emplace(scale_);
    for (const int id :
         {kToField, kSubjectField, kBodyField, kAttachmentList, kSendButton, kAttachButton}) {
        SetWindowFont(Control(id), fonts_->text.Get(), FALSE);
    }
    SetWindowFont(Control(kStatusLine), fonts_->small.Get(), FALSE);
    ListBox_SetItemHeight(Control(kAttachmentList), 0, scale_(kRowHeight));
    Arrange();
}

void MailWindow::Arrange() {
    if (!fonts_) return;
    RECT client{};
    GetClientRect(window_.Get(), &client);
    const int rows = std::clamp(static_cast<int>(attachments_.size()), kLeastRows, kMostRows);
    layout_ = MakeLayout(client, scale_, rows);
    const std::pair<int, RECT> places[] = {
        {kToField, layout_.toField},   {kSubjectField, layout_.subjectField},
        {kBodyField, layout_.body},    {kAttachmentList, layout_.attachments},
        {kSendButton, layout_.send},   {kAttachButton, layout_.attach},
        {kStatusLine, layout_.status},
    };
    for (const auto& [id, place] : places) {
        MoveWindow(Control(id), place.left, place.top, place.right - place.left,
                   place.bottom - place.top, TRUE);
    }
    InvalidateRect(window_.Get(), nullptr, FALSE);
}

void MailWindow::OnCommand(int id) {
    if (id == kAttachButton) Attach();
    if (id == kSendButton) Send();
}

void MailWindow::Attach() {
    // A page asks for one dialog at a time.
    EnableWindow(Control(kAttachButton), FALSE);
    SetStatus(L"Waiting for a file...");
    const AttachAnswer answer = AskForFiles(library_, options_, window_.Get());
    EnableWindow(Control(kAttachButton), TRUE);
    Take(answer);
}

void MailWindow::Take(const AttachAnswer& answer) {
    for (const auto& path : answer.paths) Add({FileName(path), path});
    const std::wstring popup = TakeLinks(answer.links);
    cleanup_.insert(cleanup_.end(), answer.cleanup.begin(), answer.cleanup.end());
    SetStatus(StatusOf(answer, popup));
    Arrange();
    if (!options_.pictureFile.empty() && !SavePicture(window_.Get(), options_.pictureFile)) {
        SetStatus(L"The picture could not be written.");
    }
    if (!options_.resultFile.empty() && !WriteAnswer(options_.resultFile, answer)) {
        SetStatus(L"The result file could not be written.");
    }
}

void MailWindow::Add(const Attachment& attachment) {
    attachments_.push_back(attachment);
    ListBox_AddString(Control(kAttachmentList), attachment.place.c_str());
}

// What the sender is to read about them; empty when there is nothing.
std::wstring MailWindow::TakeLinks(const std::vector<std::wstring>& texts) {
    std::wstring popup;
    for (const auto& given : texts) {
        const LinkText text = ReadLinkText(given);
        for (const auto& [name, link] : text.files) {
            Add({name.empty() ? L"Link in the message" : name, link, true});
        }
        InsertText(text.message);
        if (!text.popup.empty()) popup = text.popup;
    }
    return popup;
}

void MailWindow::InsertText(const std::wstring& text) {
    const HWND body = Control(kBodyField);
    const int end = GetWindowTextLengthW(body);
    Edit_SetSel(body, end, end);
    Edit_ReplaceSel(body, (L"\r\n\r\n" + WithEditLineEnds(text)).c_str());
}

void MailWindow::Send() {
    std::vector<std::wstring> files;
    for (const auto& entry : attachments_) {
        if (!entry.isLink && GetFileAttributesW(entry.place.c_str()) != INVALID_FILE_ATTRIBUTES) {
            files.push_back(entry.place);
        }
    }
    if (!options_.outbox.empty() && !CopyToOutbox(options_.outbox, files)) {
        SetStatus(L"The message could not be sent: an attachment can't be read.");
        return;
    }
    CleanUp();
    attachments_.clear();
    ListBox_ResetContent(Control(kAttachmentList));
    SetStatus(L"The message was sent.");
    Arrange();
}

void MailWindow::CleanUp() {
    for (const auto& note : cleanup_) RemoveTemporary(note);
    cleanup_.clear();
}

void MailWindow::SetStatus(const std::wstring& text) {
    SetWindowTextW(Control(kStatusLine), text.c_str());
}

} // namespace mailpage
