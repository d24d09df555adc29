// Which page of a property sheet comes next.
#pragma once

#include <cstdint>

namespace ObLibX {

// What a dialog's page, or the sheet that has pages, can be asked. Implemented by a dialog, which
// owns it; on the thread of the dialogs.
class ObPropSheet {
public:
    virtual ~ObPropSheet() = default;
    virtual std::int32_t PageCount() const = 0;
    virtual std::int32_t CurrentPage() const = 0;
    virtual void SelectPage(std::int32_t page) = 0;

    // After the last page comes the first, and before the first the last. Nothing without pages.
    void SelectNextPage() { Step(1); }
    void SelectPreviousPage() { Step(-1); }

private:
    void Step(std::int32_t by) {
        const std::int32_t count = PageCount();
        if (count > 0) SelectPage((CurrentPage() + by + count) % count);
    }
};

// A page, which belongs to a sheet. A base of the dialog that is the page, which finds it there.
class ObPropPage {
public:
    explicit ObPropPage(ObPropSheet& sheet) : sheet_(&sheet) {}
    virtual ~ObPropPage() = default;
    [[nodiscard]] ObPropSheet& Sheet() const { return *sheet_; }

private:
    ObPropSheet* sheet_;
};

} // namespace ObLibX
