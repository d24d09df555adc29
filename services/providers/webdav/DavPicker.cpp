#include "services/providers/webdav/DavPicker.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/LinkPasswordDialog.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/storage/UploadTimes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/webdav/DavPickerIds.h"
#include "services/providers/webdav/DavSentence.h"
#include "services/providers/webdav/DialogTask.h"
#include "services/providers/webdav/PickedLinks.h"
#include "services/providers/webdav/PickerIcons.h"
#include "services/providers/webdav/PickerLayout.h"
#include "services/providers/webdav/PickerRows.h"
#include "services/providers/worker/DetachedThread.h"

namespace providers {
namespace {

// From the threads of the tasks: the task's number, and for a link that begins its place.
constexpr UINT kListed = WM_APP + 1;
constexpr UINT kLinkBegins = WM_APP + 2;
constexpr UINT kLinked = WM_APP + 3;

constexpr UINT_PTR kReadingTimer = 1;
constexpr UINT kReadingDelay = 300; // milliseconds: what is read sooner shows no message

enum Column { NameColumn, SizeColumn };

constexpr AnchorRow kAnchors[] = {
    {OB_DAVPICK_ACCOUNT, FollowsNothing, RightEdge},
    {OB_DAVPICK_PATH, FollowsNothing, RightEdge},
    {OB_DAVPICK_UP, RightEdge, RightEdge},
    {OB_DAVPICK_REFRESH, RightEdge, RightEdge},
    {OB_DAVPICK_MESSAGE, FollowsNothing, RightEdge},
    {OB_DAVPICK_LIST, FollowsNothing, RightEdge | BottomEdge},
    {OB_DAVPICK_STATUS, BottomEdge, RightEdge | BottomEdge},
    {IDOK, RightEdge | BottomEdge, RightEdge | BottomEdge},
    {IDCANCEL, RightEdge | BottomEdge, RightEdge | BottomEdge},
};

constexpr int kControls[] = {OB_DAVPICK_ACCOUNT,
                             OB_DAVPICK_PATH,
                             OB_DAVPICK_UP,
                             OB_DAVPICK_REFRESH,
                             OB_DAVPICK_LIST,
                             IDOK,
                             IDCANCEL};

// What a folder's listing has become.
struct Listing {
    std::vector<PickerRow> rows;
    std::optional<DavError> error;
};

using ListTask = DialogTask<Listing>;
using LinkTask = DialogTask<LinkedFiles>;

Listing Read(const DavPickAccount& account, const std::vector<std::wstring>& folder,
             HANDLE cancelled) {
    auto listed = account.list(folder, cancelled);
    if (const auto* error = std::get_if<DavError>(&listed)) return {{}, *error};
    return {RowsOf(std::move(std::get<0>(listed))), std::nullopt};
}

// The picker while its dialog lives.
class Picker {
public:
    Picker(std::span<const DavPickAccount> accounts, std::size_t first,
           const std::wstring& displayName)
        : accounts_(accounts), account_(first < accounts.size() ? first : 0),
          links_(std::make_shared<PickedLinks>(displayName)) {}

    void Begin(HWND dialog);
    INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    std::vector<PickedFile>& Files() { return files_; }
    void EndOtherLinks() const;

private:
    // Keys that do the same wherever the focus is.
    static LRESULT CALLBACK OnKey(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                  UINT_PTR, DWORD_PTR self) noexcept;

    HWND Control(int id) const { return GetDlgItem(dialog_, id); }
    HWND List() const { return Control(OB_DAVPICK_LIST); }
    void Focus(int id) const {
        SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(id)), TRUE);
    }

    void FillAccounts();
    void LeaveOutAccounts();
    void MakeColumns();
    void FitColumns();

    INT_PTR OnCommand(int control, int event);
    INT_PTR OnNotify(const NMHDR& header, LPARAM lParam);
    INT_PTR Reply(LRESULT result) const;

    void OpenAccount();
    void OpenFolder(const std::wstring& name);
    void GoUp();
    void Refresh();
    void BeginReading();
    void ShowPath();
    void OnListed();
    bool HasLoggedIn(bool isNeeded);
    void ShowRows(std::vector<PickerRow> rows);
    std::wstring SentenceOf(const std::optional<Listing>& listing) const;
    void ShowMessage(const std::wstring& text);
    void FocusRow(std::size_t index, bool isSelected);
    void SelectFiles();
    void FillItem(LVITEMW& item);

    std::vector<std::size_t> Selected() const;
    void OnSelection();
    void Accept();
    void BeginLinking(const std::vector<std::size_t>& selected);
    void ShowProgress(std::size_t index);
    void SetLinking(bool isLinking);
    void StopLinking();
    void OnLinked();
    bool ShowPasswords(const LinkedFiles& linked);

    std::span<const DavPickAccount> accounts_;
    std::size_t account_;
    std::shared_ptr<PickedLinks> links_; // the threads' as well
    std::vector<PickedFile> files_;      // at the end

    HWND dialog_ = nullptr;
    PickerLayout layout_;
    PickerIcons icons_;
    std::vector<std::wstring> folder_; // names from the account's root down
    std::wstring cameFrom_;            // the name that is to have the focus in the next listing
    std::vector<PickerRow> rows_;
    std::unique_ptr<ListTask> listing_; // while a folder is being read
    std::unique_ptr<LinkTask> linking_; // while links are being made
    // Whether the user has been asked to log in to this account since something of it was read or
    // linked: after a login that doesn't count either the user decides when to try again.
    bool isLoginAsked_ = false;
    std::vector<std::size_t> chosen_; // rows of the links that are being made
};

void Picker::Begin(HWND dialog) {
    dialog_ = dialog;
    FillAccounts();
    if (accounts_.size() == 1) LeaveOutAccounts();
    MakeColumns();
    layout_.Begin(dialog, kAnchors);
    for (const int id : kControls) {
        SetWindowSubclass(Control(id), &OnKey, 0, reinterpret_cast<DWORD_PTR>(this));
    }
    FitColumns();
    OpenAccount();
    SetFocus(List());
}

void Picker::FillAccounts() {
    for (const DavPickAccount& account : accounts_) {
        SendDlgItemMessageW(dialog_, OB_DAVPICK_ACCOUNT, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(ShownName(account.account.label).c_str()));
    }
    SendDlgItemMessageW(dialog_, OB_DAVPICK_ACCOUNT, CB_SETCURSEL, account_, 0);
}

// A single account needs no choice: what is below moves up, and the list gets the room.
void Picker::LeaveOutAccounts() {
    const int distance =
        PlaceIn(dialog_, OB_DAVPICK_ACCOUNT).top - PlaceIn(dialog_, OB_DAVPICK_PATH).top;
    for (const int id : {OB_DAVPICK_ACCOUNT_LABEL, OB_DAVPICK_ACCOUNT}) {
        ShowWindow(Control(id), SW_HIDE);
    }
    for (const int id : {OB_DAVPICK_PATH_LABEL, OB_DAVPICK_PATH, OB_DAVPICK_UP, OB_DAVPICK_REFRESH,
                         OB_DAVPICK_MESSAGE, OB_DAVPICK_LIST_LABEL}) {
        MoveBy(dialog_, id, distance, false);
    }
    MoveBy(dialog_, OB_DAVPICK_LIST, distance, true);
}

void Picker::MakeColumns() {
    ListView_SetExtendedListViewStyle(List(),
                                      LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    ListView_SetImageList(List(), icons_.List(), LVSIL_SMALL);
    std::wstring name = OwnText(OB_TEXT_DAVPICK_NAME);
    std::wstring size = OwnText(OB_TEXT_DAVPICK_SIZE);
    LVCOLUMNW column{LVCF_TEXT | LVCF_FMT, LVCFMT_LEFT, 0, name.data()};
    ListView_InsertColumn(List(), NameColumn, &column);
    column.fmt = LVCFMT_RIGHT;
    column.pszText = size.data();
    ListView_InsertColumn(List(), SizeColumn, &column);
}

// The names get what sizes and the scroll bar leave.
void Picker::FitColumns() {
    constexpr wchar_t kWidest[] = L"  1,023 bytes  ";
    RECT list{};
    GetWindowRect(List(), &list);
    const int size = ListView_GetStringWidth(List(), kWidest);
    const int frame = 2 * GetSystemMetrics(SM_CXEDGE) + GetSystemMetrics(SM_CXVSCROLL);
    ListView_SetColumnWidth(List(), SizeColumn, size);
    ListView_SetColumnWidth(List(), NameColumn, list.right - list.left - frame - size);
}

void Picker::OpenAccount() {
    isLoginAsked_ = false;
    folder_.clear();
    cameFrom_.clear();
    BeginReading();
}

void Picker::OpenFolder(const std::wstring& name) {
    folder_.push_back(name);
    cameFrom_.clear();
    BeginReading();
}

void Picker::GoUp() {
    if (folder_.empty()) return;
    cameFrom_ = std::move(folder_.back());
    folder_.pop_back();
    BeginReading();
}

void Picker::Refresh() {
    const int focused = ListView_GetNextItem(List(), -1, LVNI_FOCUSED);
    const bool isThere = focused >= 0 && static_cast<std::size_t>(focused) < rows_.size();
    cameFrom_ = isThere ? rows_[static_cast<std::size_t>(focused)].item.name : std::wstring();
    BeginReading();
}

// A listing that is still being read belongs to a folder that the user has left: its task goes, and
// with it whatever it would have reported.
void Picker::BeginReading() {
    ShowRows({});
    ShowMessage({});
    ShowPath();
    SetTimer(dialog_, kReadingTimer, kReadingDelay, nullptr);
    listing_.reset();
    listing_ = std::make_unique<ListTask>(
        dialog_, kListed, [account = accounts_[account_], folder = folder_](HANDLE cancelled) {
            return Read(account, folder, cancelled);
        });
}

// The end of a long path is shown: the folder itself.
void Picker::ShowPath() {
    std::wstring path = ShownName(accounts_[account_].account.label);
    for (const std::wstring& name : folder_) path += L" / " + ShownName(name);
    SetDlgItemTextW(dialog_, OB_DAVPICK_PATH, path.c_str());
    const auto end = static_cast<WPARAM>(path.size());
    SendDlgItemMessageW(dialog_, OB_DAVPICK_PATH, EM_SETSEL, end, static_cast<LPARAM>(end));
    SendDlgItemMessageW(dialog_, OB_DAVPICK_PATH, EM_SCROLLCARET, 0, 0);
    // A disabled control keeps no focus.
    if (folder_.empty() && GetFocus() == Control(OB_DAVPICK_UP)) Focus(OB_DAVPICK_LIST);
    EnableWindow(Control(OB_DAVPICK_UP), !folder_.empty());
}

void Picker::OnListed() {
    KillTimer(dialog_, kReadingTimer);
    auto listing = listing_->TakeResult();
    listing_.reset();
    const bool needsLogin =
        listing && listing->error && listing->error->fault == DavFault::WrongLogin;
    ShowMessage(SentenceOf(listing));
    if (HasLoggedIn(needsLogin)) return BeginReading();
    isLoginAsked_ = false;
    if (listing) ShowRows(std::move(listing->rows));
}

// Whether there is a new login for what has failed for want of one.
bool Picker::HasLoggedIn(bool isNeeded) {
    if (!isNeeded || isLoginAsked_ || !accounts_[account_].logIn) return false;
    isLoginAsked_ = true;
    return accounts_[account_].logIn(dialog_);
}

// What is shown in place of rows; empty when there are some.
std::wstring Picker::SentenceOf(const std::optional<Listing>& listing) const {
    if (!listing) return OwnText(OB_TEXT_DAVPICK_FAILED);
    if (!listing->error) {
        return listing->rows.empty() ? OwnText(OB_TEXT_DAVPICK_EMPTY) : std::wstring();
    }
    if (listing->error->fault == DavFault::NotFound && !folder_.empty()) {
        return FormatOwnText(OB_TEXT_DAVPICK_GONE, {ShownName(folder_.back())});
    }
    const HttpOrigin& server = accounts_[account_].server;
    if (IsHttp(*listing->error, HttpFault::ReplyTooLong)) {
        return FormatOwnText(OB_TEXT_DAV_TOO_MANY_FILES, {TextFromUtf8(server.host)});
    }
    std::wstring sentence = DavSentence(*listing->error, server);
    // Nobody has cancelled a listing whose task is still there.
    return sentence.empty() ? OwnText(OB_TEXT_DAVPICK_FAILED) : sentence;
}

void Picker::ShowMessage(const std::wstring& text) {
    SetDlgItemTextW(dialog_, OB_DAVPICK_MESSAGE, text.c_str());
    ShowWindow(Control(OB_DAVPICK_MESSAGE), text.empty() ? SW_HIDE : SW_SHOW);
}

// The row that the user came from gets the focus, so that the keyboard goes on there.
void Picker::ShowRows(std::vector<PickerRow> rows) {
    ListView_SetItemState(List(), -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    rows_ = std::move(rows);
    ListView_SetItemCountEx(List(), static_cast<int>(rows_.size()), 0);
    OnSelection();
    if (rows_.empty()) return;
    const auto same = std::find_if(rows_.begin(), rows_.end(), [this](const PickerRow& row) {
        return row.item.name == cameFrom_;
    });
    if (same == rows_.end()) return FocusRow(0, false);
    FocusRow(static_cast<std::size_t>(same - rows_.begin()), true);
}

void Picker::FocusRow(std::size_t index, bool isSelected) {
    const int item = static_cast<int>(index);
    const UINT state = isSelected ? LVIS_FOCUSED | LVIS_SELECTED : LVIS_FOCUSED;
    ListView_SetItemState(List(), item, state, LVIS_FOCUSED | LVIS_SELECTED);
    ListView_SetSelectionMark(List(), item);
    ListView_EnsureVisible(List(), item, FALSE);
}

// Folders can't be linked. They are the first rows.
void Picker::SelectFiles() {
    ListView_SetItemState(List(), -1, LVIS_SELECTED, LVIS_SELECTED);
    for (std::size_t row = 0; row < rows_.size() && rows_[row].item.isFolder; ++row) {
        ListView_SetItemState(List(), static_cast<int>(row), 0, LVIS_SELECTED);
    }
}

void Picker::FillItem(LVITEMW& item) {
    if (item.iItem < 0 || static_cast<std::size_t>(item.iItem) >= rows_.size()) return;
    const PickerRow& row = rows_[static_cast<std::size_t>(item.iItem)];
    if ((item.mask & LVIF_IMAGE) != 0) {
        item.iImage = icons_.IndexOf(row.item.name, row.item.isFolder);
    }
    if ((item.mask & LVIF_TEXT) == 0 || !item.pszText || item.cchTextMax <= 0) return;
    std::wstring text;
    if (item.iSubItem == NameColumn) text = row.name;
    if (item.iSubItem == SizeColumn && !row.item.isFolder && row.item.size) {
        text = ByteText(*row.item.size);
    }
    CopyCut(text, item.pszText, static_cast<std::uint64_t>(item.cchTextMax));
}

std::vector<std::size_t> Picker::Selected() const {
    std::vector<std::size_t> selected;
    for (int item = ListView_GetNextItem(List(), -1, LVNI_SELECTED);
         item >= 0 && static_cast<std::size_t>(item) < rows_.size();
         item = ListView_GetNextItem(List(), item, LVNI_SELECTED)) {
        selected.push_back(static_cast<std::size_t>(item));
    }
    return selected;
}

void Picker::OnSelection() {
    if (linking_) return;
    const UINT count = ListView_GetSelectedCount(List());
    // A disabled control keeps no focus.
    if (count == 0 && GetFocus() == Control(IDOK)) Focus(OB_DAVPICK_LIST);
    EnableWindow(Control(IDOK), count != 0);
    std::wstring text;
    if (count == 1) text = OwnText(OB_TEXT_DAVPICK_ONE_SELECTED);
    if (count > 1) text = FormatOwnText(OB_TEXT_DAVPICK_SELECTED, {std::to_wstring(count)});
    SetDlgItemTextW(dialog_, OB_DAVPICK_STATUS, text.c_str());
}

// The Enter key reports OK also while the button is disabled.
void Picker::Accept() {
    if (linking_ || listing_) return;
    const std::vector<std::size_t> selected = Selected();
    const auto folder = std::find_if(selected.begin(), selected.end(), [this](std::size_t index) {
        return rows_[index].item.isFolder;
    });
    if (folder == selected.end()) {
        if (!selected.empty()) BeginLinking(selected);
    } else if (selected.size() == 1) {
        const std::wstring name = rows_[*folder].item.name; // the row goes
        OpenFolder(name);
    } else {
        ShowSentence(dialog_, FormatOwnText(OB_TEXT_DAVPICK_FOLDER, {rows_[*folder].name}));
    }
}

void Picker::BeginLinking(const std::vector<std::size_t>& selected) {
    std::vector<PickerRow> chosen;
    for (const std::size_t index : selected) chosen.push_back(rows_[index]);
    chosen_ = selected;
    linking_ = std::make_unique<LinkTask>(
        dialog_, kLinked,
        [dialog = dialog_, links = links_, account = accounts_[account_],
         chosen = std::move(chosen)](HANDLE cancelled) {
            return links->Make(account, chosen, cancelled, [=](std::size_t index) {
                PostMessageW(dialog, kLinkBegins, 0, static_cast<LPARAM>(index));
            });
        });
    ShowProgress(0);
    SetLinking(true);
}

// One of a task that was stopped may come late, and is corrected by the next.
void Picker::ShowProgress(std::size_t index) {
    if (!linking_) return;
    const std::wstring text =
        chosen_.size() == 1
            ? OwnText(OB_TEXT_SHARE_TITLE)
            : FormatOwnText(OB_TEXT_DAVPICK_LINKING,
                            {std::to_wstring(index + 1), std::to_wstring(chosen_.size())});
    SetDlgItemTextW(dialog_, OB_DAVPICK_STATUS, text.c_str());
}

void Picker::SetLinking(bool isLinking) {
    if (isLinking) Focus(IDCANCEL); // a disabled control keeps no focus
    for (const int id : {OB_DAVPICK_ACCOUNT, OB_DAVPICK_PATH, OB_DAVPICK_REFRESH, OB_DAVPICK_LIST,
                         static_cast<int>(IDOK)}) {
        EnableWindow(Control(id), !isLinking);
    }
    EnableWindow(Control(OB_DAVPICK_UP), !isLinking && !folder_.empty());
    if (isLinking) return;
    OnSelection();
    Focus(OB_DAVPICK_LIST);
}

void Picker::StopLinking() {
    linking_.reset();
    SetLinking(false);
}

void Picker::OnLinked() {
    auto linked = linking_->TakeResult();
    StopLinking();
    if (HasLoggedIn(linked && linked->needsLogin)) return BeginLinking(std::vector(chosen_));
    isLoginAsked_ = false;
    if (!linked || linked->files.empty()) {
        const std::wstring why = linked ? linked->sentence : OwnText(OB_TEXT_SHARE_NO_LINK);
        if (!why.empty()) ShowSentence(dialog_, why);
        return;
    }
    if (!ShowPasswords(*linked)) return ShowSentence(dialog_, OwnText(OB_TEXT_SHARE_NO_LINK));
    files_ = std::move(linked->files);
    EndDialog(dialog_, IDOK);
}

// Links that were made for a selection that wasn't taken. The servers aren't waited for.
void Picker::EndOtherLinks() const {
    ObLib::RanGuarded(
        [this] { RunDetached([links = links_, files = files_] { links->EndAllBut(files); }); });
}

// False when one can't be shown: its link would be of no use.
bool Picker::ShowPasswords(const LinkedFiles& linked) {
    for (std::size_t index = 0; index < linked.files.size(); ++index) {
        const std::wstring& password = linked.passwords[index];
        if (password.empty()) continue;
        if (!ShowLinkPassword(dialog_, linked.files[index].name, password)) return false;
    }
    return true;
}

INT_PTR Picker::OnCommand(int control, int event) {
    switch (control) {
    case OB_DAVPICK_ACCOUNT:
        if (event == CBN_SELCHANGE) {
            account_ = static_cast<std::size_t>(
                SendDlgItemMessageW(dialog_, OB_DAVPICK_ACCOUNT, CB_GETCURSEL, 0, 0));
            OpenAccount();
        }
        return TRUE;
    case OB_DAVPICK_UP:
        GoUp();
        return TRUE;
    case OB_DAVPICK_REFRESH:
        Refresh();
        return TRUE;
    case IDOK:
        Accept();
        return TRUE;
    case IDCANCEL:
        if (linking_) return StopLinking(), TRUE;
        EndDialog(dialog_, IDCANCEL);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR Picker::Reply(LRESULT result) const {
    SetWindowLongPtrW(dialog_, DWLP_MSGRESULT, result);
    return TRUE;
}

INT_PTR Picker::OnNotify(const NMHDR& header, LPARAM lParam) {
    if (header.idFrom != OB_DAVPICK_LIST) return FALSE;
    switch (header.code) {
    case LVN_GETDISPINFOW:
        FillItem(reinterpret_cast<NMLVDISPINFOW*>(lParam)->item);
        return TRUE;
    case LVN_ODFINDITEMW: {
        const auto& find = *reinterpret_cast<const NMLVFINDITEMW*>(lParam);
        const bool isByText = (find.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) != 0;
        const auto start = static_cast<std::size_t>(std::max(find.iStart, 0));
        const auto row =
            isByText && find.lvfi.psz ? FindRow(rows_, find.lvfi.psz, start) : std::nullopt;
        return Reply(row ? static_cast<LRESULT>(*row) : -1);
    }
    case LVN_ITEMCHANGED:
    case LVN_ODSTATECHANGED:
        OnSelection();
        return TRUE;
    case NM_DBLCLK:
        if (reinterpret_cast<const NMITEMACTIVATE*>(lParam)->iItem >= 0) Accept();
        return TRUE;
    default:
        return FALSE;
    }
}

// Disabled controls get no keys, so nothing moves while links are being made; but the Cancel button
// has the focus then.
LRESULT CALLBACK Picker::OnKey(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                               DWORD_PTR self) noexcept {
    auto& picker = *reinterpret_cast<Picker*>(self);
    const bool isPlainKey = message == WM_KEYDOWN && !picker.linking_;
    const bool isUp = (isPlainKey && wParam == VK_BACK) ||
                      (message == WM_SYSKEYDOWN && wParam == VK_UP && control == picker.List());
    if (isUp || (isPlainKey && wParam == VK_F5)) {
        ObLib::RanGuarded([&] { isUp ? picker.GoUp() : picker.Refresh(); });
        return 0;
    }
    const bool isInList = control == picker.List();
    if (isPlainKey && isInList && wParam == 'A' && GetKeyState(VK_CONTROL) < 0) {
        ObLib::RanGuarded([&] { picker.SelectFiles(); });
        return 0;
    }
    // No letters to look for: of Backspace and Ctrl+A.
    if (message == WM_CHAR && (wParam == VK_BACK || (isInList && wParam == 1))) return 0;
    if (message == WM_NCDESTROY) RemoveWindowSubclass(control, &OnKey, 0);
    return DefSubclassProc(control, message, wParam, lParam);
}

INT_PTR Picker::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        return OnCommand(LOWORD(wParam), HIWORD(wParam));
    case WM_NOTIFY:
        return OnNotify(*reinterpret_cast<const NMHDR*>(lParam), lParam);
    case WM_SIZE:
        layout_.Apply();
        FitColumns();
        return TRUE;
    case WM_GETMINMAXINFO:
        layout_.Limit(*reinterpret_cast<MINMAXINFO*>(lParam));
        return TRUE;
    case WM_CTLCOLORSTATIC:
        // In front of the list, it looks like a part of the list.
        if (reinterpret_cast<HWND>(lParam) != Control(OB_DAVPICK_MESSAGE)) return FALSE;
        SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOWTEXT));
        SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_WINDOW));
    case WM_TIMER:
        KillTimer(dialog_, wParam);
        if (listing_) ShowMessage(OwnText(OB_TEXT_DAVPICK_READING));
        return TRUE;
    case kListed:
        if (listing_ && listing_->IsDone(wParam)) OnListed();
        return TRUE;
    case kLinkBegins:
        ShowProgress(static_cast<std::size_t>(lParam));
        return TRUE;
    case kLinked:
        if (linking_ && linking_->IsDone(wParam)) OnLinked();
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        // One that can't be filled isn't shown.
        const bool isBegun =
            ObLib::RanGuarded([&] { reinterpret_cast<Picker*>(lParam)->Begin(dialog); });
        if (!isBegun) EndDialog(dialog, IDABORT);
        return FALSE; // the list has the focus
    }
    auto* const picker = reinterpret_cast<Picker*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!picker) return FALSE;
    return ObLib::Guarded(INT_PTR{FALSE},
                          [&] { return picker->OnMessage(message, wParam, lParam); });
}

} // namespace

PickResult PickFromServers(std::span<const DavPickAccount> accounts, std::size_t first,
                           const std::wstring& displayName, HWND owner) {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    if (accounts.empty()) return {{}, OwnText(OB_TEXT_PICK_FAILED)};
    Picker picker(accounts, first, displayName);
    const INT_PTR end = DialogBoxParamW(ObLib::ThisModule(), MAKEINTRESOURCEW(OB_DAVPICK_DIALOG),
                                        IsWindow(owner) ? owner : nullptr, &Proc,
                                        reinterpret_cast<LPARAM>(&picker));
    picker.EndOtherLinks();
    if (end == IDOK) return {std::move(picker.Files()), {}};
    // 0: the owner has gone, and the dialog with it.
    if (end == IDCANCEL || end == 0) return {};
    return {{}, OwnText(OB_TEXT_PICK_FAILED)};
}

} // namespace providers
