#include "tests/unit/WebVellant/OBCore/chooser/ChooserFixture.h"

#include <commctrl.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"

namespace obtest {
namespace {

constexpr DWORD kGrace = 5000; // milliseconds that an ended dialog has to close

} // namespace

HWND FindChooser() {
    return FindTopWindow(
        [](HWND window) {
            return IsDialog(window) && GetDlgItem(window, OB_CHOOSER_LIST) != nullptr;
        },
        GetCurrentProcessId());
}

Chooser::Chooser(HWND window) : dialog(window), list(GetDlgItem(window, OB_CHOOSER_LIST)) {}

bool Chooser::IsDefaultChecked() const {
    return SendMessageW(Item(OB_CHOOSER_DEFAULT), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

Lines Chooser::Rows() const {
    Lines rows;
    const int count = ListView_GetItemCount(list);
    for (int row = 0; row < count; ++row) {
        wchar_t text[512] = L"";
        ListView_GetItemText(list, row, 0, text, 512);
        rows.emplace_back(text);
    }
    return rows;
}

std::vector<int> Chooser::Ticked() const {
    std::vector<int> rows;
    const int count = ListView_GetItemCount(list);
    for (int row = 0; row < count; ++row) {
        const UINT state = ListView_GetItemState(list, row, LVIS_STATEIMAGEMASK);
        if (state == INDEXTOSTATEIMAGEMASK(2)) rows.push_back(row);
    }
    return rows;
}

void Chooser::SetTick(int row, bool ticked) const {
    ListView_SetItemState(list, row, INDEXTOSTATEIMAGEMASK(ticked ? 2 : 1), LVIS_STATEIMAGEMASK);
}

void Chooser::ClickTick(int row) const {
    RECT label{};
    ListView_GetItemRect(list, row, &label, LVIR_LABEL);
    // The check box is to the left of the text.
    const LPARAM place = MAKELPARAM(label.left / 2, (label.top + label.bottom) / 2);
    SendMessageW(list, WM_LBUTTONDOWN, MK_LBUTTON, place);
    SendMessageW(list, WM_LBUTTONUP, 0, place);
}

HWND Chooser::Focus() const {
    GUITHREADINFO thread{sizeof thread};
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &thread);
    return thread.hwndFocus;
}

void Chooser::Type(WPARAM key) const {
    const HWND target = Focus();
    PostMessageW(target, WM_KEYDOWN, key, 1);
    PostMessageW(target, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void Chooser::Settle() const {
    // Posted messages keep their order. A key brings a character along, which is posted when the
    // key is taken, so the second pass comes after the character.
    for (int pass = 0; pass < 2; ++pass) {
        const bool checked = IsDefaultChecked();
        PostMessageW(Item(OB_CHOOSER_DEFAULT), BM_SETCHECK, checked ? BST_UNCHECKED : BST_CHECKED,
                     0);
        EXPECT_TRUE(WaitUntil([&] { return IsDefaultChecked() != checked; }));
    }
}

void ChooserFixture::SetUpTestSuite() {
    ASSERT_TRUE(obcore::LoadProviderManager());
    ASSERT_TRUE(obcore::BindResourceModule());
}

ChooserFixture::ChooserFixture()
    : owner_(CreateWindowExW(0, L"Static", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                             nullptr, nullptr, nullptr)),
      job_(obcore::OBOptions{}, owner_.Get()) {}

void ChooserFixture::SetUp() {
    FakeModules::Reset();
    obcore::ProviderManager().Init(job_.OwnedProviderManager, 0, L"");
    FakeModules::ForgetCalls();
}

void ChooserFixture::OneProvider(const std::wstring& accounts, bool loggedIn) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetDisplayName", L"Shelf");
    Answer(L"provider7.GetAccountProfiles", accounts);
    Answer(L"provider7.IsAccountLoggedIn", loggedIn ? L"1" : L"0");
}

bool ChooserFixture::Show(const std::function<void(const Chooser&)>& use) {
    WindowDriver driver(
        &FindChooser, [&use](HWND dialog) { use(Chooser(dialog)); }, kGrace);
    const bool chosen = obcore::ShowSelectDefaultCloudDialog(owner_.Get(), job_);
    EXPECT_TRUE(driver.SawWindow());
    return chosen;
}

Lines ChooserFixture::RowsShown() {
    Lines rows;
    EXPECT_FALSE(Show([&rows](const Chooser& chooser) {
        rows = chooser.Rows();
        chooser.Cancel();
    }));
    return rows;
}

std::wstring ChooserFixture::LoginText() {
    return obcore::LoadText(obcore::TextId::ContinueByLogin);
}
std::wstring ChooserFixture::ContinueText() {
    return obcore::LoadText(obcore::TextId::ContinueLoggedIn);
}

} // namespace obtest
