// Measures flat dialogs beside the system's own from the same templates: opening, memory, GDI
// objects, the paint of each class, hosted bars, a thumb that is dragged; and the reading of a
// description.
//
//   toolkit_bench [ROUNDS]
#include <windows.h>

#include <commctrl.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "ObLibX/src/controls/FlatControls.h"
#include "ObLibX/src/controls/ObHyperlink.h"
#include "ObLibX/src/dialog/ObXFlatDlg.h"
#include "benchmarks/support/Memory.h"
#include "benchmarks/support/Series.h"
#include "benchmarks/support/Stopwatch.h"
#include "benchmarks/toolkit/BarBench.h"
#include "benchmarks/toolkit/DescriptionBench.h"
#include "benchmarks/toolkit/ListBench.h"
#include "tests/support/ProcessResources.h"

namespace {

constexpr int kRounds = 21;
constexpr int kDialogs = 10; // open at a time, where memory and objects are counted
constexpr int kPaints = 20;  // of one control in one sample
constexpr int kSixty = 2501;
constexpr int kBars = 2502;
constexpr int kLink = 1105; // on the dialog of the bars
constexpr int kLists = 2503;
constexpr int kList = 1201; // in that dialog

class FlatDialog : public ObLibX::ObXFlatDlg {
public:
    explicit FlatDialog(int id) : ObXFlatDlg(id, nullptr, 0, false) {}
    bool OnInitDialog() override {
        ObXFlatDlg::OnInitDialog();
        if (templateId == kBars) link_.Attach(window);
        return false;
    }

private:
    ObLibX::ObCmdLinkCtrl link_{kLink};
};

INT_PTR CALLBACK Nothing(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// A dialog of the system, from the same template.
class StockDialog {
public:
    explicit StockDialog(int id) : id_(id) {}
    void Create(HWND) {
        window_.Reset(CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id_), nullptr,
                                         &Nothing, 0));
        window = window_.Get();
    }
    HWND window = nullptr;

private:
    int id_;
    ObLib::UniqueWindow window_;
};

// The undressed dialog and an object for each of its controls that has what all flat controls have
// and does nothing: less can't be had with an object a control.
class ObjectsDialog : public StockDialog {
public:
    using StockDialog::StockDialog;
    void Create(HWND parent) {
        StockDialog::Create(parent);
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            objects_.push_back(
                std::make_unique<ObLibX::ObCustomControl>(GetDlgCtrlID(child), nullptr, L"", 0));
        }
    }

private:
    std::vector<std::unique_ptr<ObLibX::ObCustomControl>> objects_;
};

void PaintAll(HWND window) {
    RedrawWindow(window, nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

void Pump() {
    MSG message;
    for (int left = 500; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); --left) {
        DispatchMessageW(&message);
    }
}

// From the call to the last paint.
template <class Dialog>
std::unique_ptr<Dialog> Opened(int id) {
    auto dialog = std::make_unique<Dialog>(id);
    dialog->Create(nullptr);
    ShowWindow(dialog->window, SW_SHOWNA);
    PaintAll(dialog->window);
    Pump();
    return dialog;
}

template <class Dialog>
double TimeOpening() {
    const bench::Stopwatch watch;
    const auto dialog = Opened<Dialog>(kSixty);
    return watch.Milliseconds();
}

struct Use {
    double memory;  // KB a dialog
    double objects; // a dialog
};

template <class Dialog>
Use UseOfOne() {
    const double memory = bench::HeapKilobytes();
    const DWORD objects = obtest::CountGdiObjects();
    std::vector<std::unique_ptr<Dialog>> dialogs;
    for (int at = 0; at < kDialogs; ++at) dialogs.push_back(Opened<Dialog>(kSixty));
    return {(bench::HeapKilobytes() - memory) / kDialogs,
            static_cast<double>(obtest::CountGdiObjects() - objects) / kDialogs};
}

double TimePaint(HWND control) {
    const bench::Stopwatch watch;
    for (int left = kPaints; left > 0; --left) {
        RedrawWindow(control, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    }
    return watch.Nanoseconds() / 1000 / kPaints;
}

struct PaintRow {
    const char* name;
    int dialog;
    int flat; // the ids of the two windows
    int stock;
};

constexpr PaintRow kPaintRows[] = {
    {"text", kSixty, 1001, 1001},  {"edit", kSixty, 1016, 1016},   {"password", kSixty, 1024, 1024},
    {"push", kSixty, 1028, 1028},  {"accent", kSixty, 1038, 1038}, {"check", kSixty, 1040, 1040},
    {"radio", kSixty, 1048, 1048}, {"split", kSixty, 1054, 1054},  {"progress", kSixty, 1057, 1057},
    {"scroll", kBars, 1101, 1103}, {"slider", kBars, 1102, 1104},  {"link", kBars, kLink, kLink},
};

void PrintPair(const std::string& name, const bench::Pair& pair) {
    bench::PrintSeries((name + " ours").c_str(), pair.ours);
    bench::PrintSeries((name + " theirs").c_str(), pair.theirs);
}

// Classes that aren't dressed yet have no row.
void MeasurePaints(int rounds) {
    for (const PaintRow& row : kPaintRows) {
        const auto flat = Opened<FlatDialog>(row.dialog);
        const auto stock = Opened<StockDialog>(row.dialog);
        if (flat->GetControl(row.flat) == nullptr) continue;
        bench::Pair pair;
        for (int round = 0; round < rounds; ++round) {
            pair.ours.push_back(TimePaint(GetDlgItem(flat->window, row.flat)));
            pair.theirs.push_back(TimePaint(GetDlgItem(stock->window, row.stock)));
        }
        PrintPair(std::string("paint ") + row.name, pair);
    }
}

void MeasureOpening(int rounds) {
    bench::Pair times;
    for (int round = 0; round < rounds + 2; ++round) {
        const double ours = TimeOpening<FlatDialog>();
        const double theirs = TimeOpening<StockDialog>();
        if (round < 2) continue; // what is made once
        times.ours.push_back(ours);
        times.theirs.push_back(theirs);
    }
    PrintPair("open", times);
}

void MeasureUse() {
    bench::Pair memory;
    std::vector<double> bare;
    bench::Pair objects;
    for (int round = 0; round < 3; ++round) {
        const Use ours = UseOfOne<FlatDialog>();
        const Use theirs = UseOfOne<StockDialog>();
        bare.push_back(UseOfOne<ObjectsDialog>().memory);
        memory.ours.push_back(ours.memory);
        memory.theirs.push_back(theirs.memory);
        objects.ours.push_back(ours.objects);
        objects.theirs.push_back(theirs.objects);
    }
    PrintPair("memory", memory);
    bench::PrintSeries("memory bare", bare);
    PrintPair("objects", objects);
}

template <class Dialog>
std::unique_ptr<Dialog> OpenedList() {
    auto dialog = Opened<Dialog>(kLists);
    bench::FillList(GetDlgItem(dialog->window, kList));
    return dialog;
}

template <class Dialog>
double MemoryOfList() {
    const double memory = bench::HeapKilobytes();
    std::vector<std::unique_ptr<Dialog>> dialogs;
    for (int at = 0; at < kDialogs; ++at) dialogs.push_back(OpenedList<Dialog>());
    return (bench::HeapKilobytes() - memory) / kDialogs;
}

void MeasureListMemory() {
    bench::Pair memory;
    for (int round = 0; round < 3; ++round) {
        memory.ours.push_back(MemoryOfList<FlatDialog>());
        memory.theirs.push_back(MemoryOfList<StockDialog>());
    }
    PrintPair("list memory", memory);
}

void MeasurePaging(const char* name, HWND ours, HWND theirs, int rounds) {
    bench::Pair times;
    for (int round = 0; round < rounds; ++round) {
        times.ours.push_back(bench::TimePaging(ours));
        times.theirs.push_back(bench::TimePaging(theirs));
    }
    PrintPair(name, times);
}

void MeasureLists(int rounds) {
    const auto flat = OpenedList<FlatDialog>();
    const auto stock = OpenedList<StockDialog>();
    const HWND ours = GetDlgItem(flat->window, kList);
    const HWND theirs = GetDlgItem(stock->window, kList);
    bench::Pair paint;
    for (int round = 0; round < rounds; ++round) {
        paint.ours.push_back(TimePaint(ours));
        paint.theirs.push_back(TimePaint(theirs));
    }
    PrintPair("paint list", paint);
    MeasurePaging("list pages", ours, theirs, rounds);
    bench::CheckList(ours);
    bench::CheckList(theirs);
    MeasurePaging("list checks", ours, theirs, rounds);
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    const int rounds = count > 1 ? _wtoi(arguments[1]) : kRounds;
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&classes);
    ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
    ObLibX::UseFlatControls();
    if (!Opened<StockDialog>(kSixty)->window) return bench::Fail("no dialog");
    MeasureUse();
    MeasureOpening(rounds);
    MeasurePaints(rounds);
    PrintPair("paint hosted", bench::MeasureHostPaint(rounds));
    const bench::Pair drag = bench::MeasureDrag(rounds);
    if (drag.ours.empty()) return bench::Fail("a bar reports not all positions of a drag");
    PrintPair("drag", drag);
    MeasureListMemory();
    MeasureLists(rounds);
    const bench::Pair description = bench::MeasureDescription(rounds * 10);
    if (description.ours.empty()) return bench::Fail("the two readers differ");
    PrintPair("description", description);
    return 0;
}
