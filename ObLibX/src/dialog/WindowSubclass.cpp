#include "ObLibX/src/dialog/WindowSubclass.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace ObLibX {
namespace {

struct Step {
    SUBCLASSPROC procedure; // null: removed while a message was on its way
    const void* object;

    [[nodiscard]] UINT_PTR Id() const { return reinterpret_cast<UINT_PTR>(object); }
    bool operator==(const Step&) const = default;
};

// The procedures of one window.
struct Chain {
    WNDPROC own;              // the window's
    std::vector<Step> steps;  // the last one gets a message first
    std::size_t left = 0;     // of the innermost message on its way: so many steps haven't had it
    std::int32_t running = 0; // messages on their way, one inside the other
    bool isGone = false;      // the window has had its last message
};

// References to its elements stay valid while others are added and removed.
using Chains = std::unordered_map<HWND, Chain>;

Chains& AllChains() {
    static Chains chains;
    return chains;
}

Chain* FindChain(HWND window) {
    const auto found = AllChains().find(window);
    return found == AllChains().end() ? nullptr : &found->second;
}

WNDPROC ProcedureOf(HWND window) {
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

WNDPROC ProcedureOfClass(HWND window) {
    return reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC));
}

LRESULT CALLBACK FirstProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Takes the procedure out of the window, unless somebody has put theirs over it: then it stays and
// finds no chain.
void Detach(HWND window, WNDPROC own) {
    if (ProcedureOf(window) != &FirstProcedure) return;
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own));
}

// With no message on its way any more.
void Tidy(HWND window, Chain& chain) {
    std::erase_if(chain.steps, [](const Step& step) { return step.procedure == nullptr; });
    if (!chain.isGone && !chain.steps.empty()) return;
    Detach(window, chain.own);
    AllChains().erase(window);
}

// The next step that is still there, or the window itself.
LRESULT CallNext(Chain& chain, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    while (chain.left > 0) {
        const Step step = chain.steps[--chain.left];
        if (step.procedure == nullptr) continue;
        return step.procedure(window, message, wParam, lParam, step.Id(), step.Id());
    }
    return CallWindowProcW(chain.own, window, message, wParam, lParam);
}

LRESULT CALLBACK FirstProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Chain* const chain = FindChain(window);
    if (chain == nullptr) {
        return CallWindowProcW(ProcedureOfClass(window), window, message, wParam, lParam);
    }
    const std::size_t outer = chain->left;
    chain->left = chain->steps.size();
    ++chain->running;
    const LRESULT result = CallNext(*chain, window, message, wParam, lParam);
    --chain->running;
    chain->left = outer;
    if (message == WM_NCDESTROY) chain->isGone = true;
    if (chain->running == 0) Tidy(window, *chain);
    return result;
}

// Null where the window isn't for us.
Chain* ChainFor(HWND window) {
    if (Chain* const chain = FindChain(window)) return chain->isGone ? nullptr : chain;
    const WNDPROC own = ProcedureOf(window);
    if (own == nullptr || own != ProcedureOfClass(window)) return nullptr;
    Chain& chain = AllChains().try_emplace(window, Chain{own, {}}).first->second;
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&FirstProcedure));
    return &chain;
}

} // namespace

void AddSubclass(HWND window, SUBCLASSPROC procedure, const void* object) {
    const Step step{procedure, object};
    Chain* const chain = ChainFor(window);
    if (chain == nullptr) {
        SetWindowSubclass(window, procedure, step.Id(), step.Id());
    } else if (std::ranges::find(chain->steps, step) == chain->steps.end()) {
        chain->steps.push_back(step);
    }
}

void RemoveSubclass(HWND window, SUBCLASSPROC procedure, const void* object) {
    if (window == nullptr) return;
    const Step step{procedure, object};
    Chain* const chain = FindChain(window);
    if (chain == nullptr) {
        RemoveWindowSubclass(window, procedure, step.Id());
        return;
    }
    const auto found = std::ranges::find(chain->steps, step);
    if (found != chain->steps.end()) found->procedure = nullptr;
    if (chain->running == 0) Tidy(window, *chain);
}

LRESULT CallNextSubclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Chain* const chain = FindChain(window);
    if (chain == nullptr) return DefSubclassProc(window, message, wParam, lParam);
    if (chain->isGone) return 0;
    const std::size_t here = chain->left;
    const LRESULT result = CallNext(*chain, window, message, wParam, lParam);
    chain->left = here;
    return result;
}

} // namespace ObLibX
