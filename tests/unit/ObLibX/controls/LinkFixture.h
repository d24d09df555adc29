// What the tests of links share: a dialog with links that are bound before it opens and attached
// when its controls have been dressed.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ObLibX/src/controls/ObHyperlink.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/LinkTestIds.h"

namespace linktest {

// As a command of the dialog has arrived.
struct Command {
    int id = 0;
    int code = 0;
    HWND control = nullptr;
    bool operator==(const Command&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const Command& command) {
    return out << command.id << " code " << command.code;
}

// A dialog with a link for each of `ids`.
class LinkDialog : public ObLibX::ObXDlg {
public:
    LinkDialog(int dialogTemplate, const std::vector<int>& ids, bool isDressed)
        : ObXDlg(dialogTemplate, nullptr, 0, false) {
        isFlat = isDressed;
        for (const int id : ids) {
            links.push_back(std::make_unique<ObLibX::ObCmdLinkCtrl>(id, this));
        }
    }
    bool OnInitDialog() override {
        ObXDlg::OnInitDialog();
        for (const auto& link : links) link->Attach(window);
        return false;
    }
    bool OnCommandId(int id, int code, HWND control) override {
        commands.push_back({id, code, control});
        if (onCommand) onCommand();
        return true;
    }

    std::vector<std::unique_ptr<ObLibX::ObCmdLinkCtrl>> links;
    std::vector<Command> commands;
    std::function<void()> onCommand;
};

} // namespace linktest

class LinkFixture : public FieldsTest {
protected:
    void TearDown() override {
        links_.reset();
        FieldsTest::TearDown();
    }
    // Shown, and painted.
    void OpenLinks(int dialogTemplate, const std::vector<int>& ids, bool isFlat = true) {
        links_ = std::make_unique<linktest::LinkDialog>(dialogTemplate, ids, isFlat);
        links_->Create(nullptr);
        ShowWindow(links_->window, SW_SHOW);
        SetForegroundWindow(links_->window);
        RedrawWindow(links_->window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        links_->commands.clear();
    }
    HWND Child(int id) const { return links_->GetItem(id, true); }
    // The rectangle that a template has, in pixels.
    ObLibX::PixelRect FromTemplate(int left, int top, int width, int height) const {
        RECT rect{left, top, width, height};
        MapDialogRect(links_->window, &rect);
        return {rect.left, rect.top, rect.left + rect.right, rect.top + rect.bottom};
    }
    ObLibX::PixelRect PlaceOf(int id) const { return ObLibX::RectInParent(Child(id)); }
    ObLibX::ObHyperlinkCtrl& Link(std::size_t at = 0) const { return *links_->links.at(at); }
    static LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageW(window, message, wParam, lParam);
    }
    static HFONT FontOf(HWND window) {
        return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    }
    static LOGFONTW TraitsOf(HFONT font) {
        LOGFONTW traits{};
        GetObjectW(font, sizeof traits, &traits);
        return traits;
    }
    static WNDPROC ProcedureOf(HWND window) {
        return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
    }

    std::unique_ptr<linktest::LinkDialog> links_;
};
