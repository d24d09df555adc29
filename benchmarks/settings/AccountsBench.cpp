// Measures the cloud settings with 160 accounts beside the system's own dialog from the same
// template whose list has the same rows: opening, memory, and the list filled and painted again.
//
//   accounts_bench [ROUNDS]
#include <windows.h>

#include <commctrl.h>

#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/CloudList.h"
#include "OBCore/settings/ConfigureCloudDialogIds.h"
#include "OBCore/settings/ObConfigureCloudServiceDialog.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "benchmarks/settings/ModalOpening.h"
#include "benchmarks/settings/QuickProviders.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"

namespace {

constexpr int kRounds = 11;
constexpr int kAccounts = bench::kProviders * bench::kAccountsOfEach;
constexpr int kAccountTextCapacity = 51;

struct Samples {
    std::vector<double> opening;
    std::vector<double> memory;
    std::vector<double> filling;
};

// Fills the list of a dialog again and paints it.
template <class Fill>
double TimeFilling(HWND dialog, const Fill& fill) {
    const HWND list = GetDlgItem(dialog, OB_CLOUD_ACCOUNTS);
    const bench::Stopwatch watch;
    fill(list);
    UpdateWindow(list);
    const double milliseconds = watch.Milliseconds();
    return ListView_GetItemCount(list) == kAccounts ? milliseconds : -1;
}

// ---- Ours

bool TakeOurs(Samples& samples) {
    obcore::OBOptions options;
    options.ProviderManager = reinterpret_cast<obcontract::ProviderManagerHandle>(&options);
    double filling = -1;
    const auto opening = bench::OpenOnce(
        [&](HWND owner) {
            obcore::ConfigureCloudContext context{.options = &options};
            obcore::OBConfigureCloudDialogImp(owner, context).DoModal();
        },
        [&](HWND dialog) {
            filling = TimeFilling(dialog, [&](HWND list) { FillCloudList(list, options); });
        });
    if (!opening || filling < 0) return false;
    samples.opening.push_back(opening->milliseconds);
    samples.memory.push_back(opening->heapKilobytes);
    samples.filling.push_back(filling);
    return true;
}

// ---- Theirs

void InsertRow(HWND list, int row, const std::wstring& words) {
    wchar_t label[51];
    const int provider = row / bench::kAccountsOfEach;
    bench::CopyLabel(provider, row % bench::kAccountsOfEach, label);
    std::wstring text = label + words;
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = row;
    item.pszText = text.data();
    item.iImage = provider;
    item.lParam = row;
    ListView_InsertItem(list, &item);
}

void SetPictures(HWND list) {
    const int size = GetSystemMetrics(SM_CXSMICON);
    ObLib::UniqueImageList images(ImageList_Create(size, size, ILC_COLOR32, bench::kProviders, 0));
    for (int provider = 0; provider < bench::kProviders; ++provider) {
        const ObLib::UniqueBitmap picture(bench::MakePicture(size));
        ImageList_Add(images.Get(), picture.Get(), nullptr);
    }
    const ObLib::UniqueImageList former(ListView_SetImageList(list, images.Release(), LVSIL_SMALL));
}

void FillStock(HWND list) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    const std::wstring words = obcore::LoadText(obcore::TextId::RowOfAccount, kAccountTextCapacity);
    for (int row = 0; row < kAccounts; ++row) InsertRow(list, row, words);
    SetPictures(list);
    RECT client{};
    GetClientRect(list, &client);
    ListView_SetColumnWidth(list, 0, static_cast<int>(client.right));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
}

INT_PTR CALLBACK StockProcedure(HWND window, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        const HWND list = GetDlgItem(window, OB_CLOUD_ACCOUNTS);
        LVCOLUMNW column{.mask = LVCF_FMT, .fmt = LVCFMT_LEFT};
        ListView_InsertColumn(list, 0, &column);
        FillStock(list);
        return TRUE;
    }
    if (message != WM_COMMAND || LOWORD(wParam) != IDCANCEL) return FALSE;
    EndDialog(window, IDCANCEL);
    return TRUE;
}

bool TakeTheirs(Samples& samples) {
    double filling = -1;
    const auto opening = bench::OpenOnce(
        [](HWND owner) {
            DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(OB_CONFIGURE_CLOUD), owner,
                            &StockProcedure, 0);
        },
        [&](HWND dialog) { filling = TimeFilling(dialog, &FillStock); });
    if (!opening || filling < 0) return false;
    samples.opening.push_back(opening->milliseconds);
    samples.memory.push_back(opening->heapKilobytes);
    samples.filling.push_back(filling);
    return true;
}

// ---- Both

// The product's own process has done this before the dialog opens.
bool Prepare() {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&classes);
    if (!obcore::BindResourceModule()) return false;
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    ObLibX::UseFlatControls();
    return true;
}

void Print(const char* whose, const Samples& samples) {
    bench::PrintSeries((std::string("opening ") + whose).c_str(), samples.opening);
    bench::PrintSeries((std::string("memory ") + whose).c_str(), samples.memory);
    bench::PrintSeries((std::string("filling ") + whose).c_str(), samples.filling);
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const int rounds = count > 1 ? _wtoi(arguments[1]) : kRounds;
    if (!Prepare()) return bench::Fail("there are no resources");
    Samples uncounted; // what is made once
    Samples ours;
    Samples theirs;
    for (int round = -1; round < rounds; ++round) {
        if (!TakeOurs(round < 0 ? uncounted : ours) ||
            !TakeTheirs(round < 0 ? uncounted : theirs)) {
            return bench::Fail("a list hasn't all accounts");
        }
    }
    Print("ours", ours);
    Print("theirs", theirs);
    return 0;
}
