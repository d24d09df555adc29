#include "demo/gallery/Pages.h"

#include "demo/gallery/BarsPage.h"
#include "demo/gallery/ButtonsPage.h"
#include "demo/gallery/ChoicesPage.h"
#include "demo/gallery/HostedPage.h"
#include "demo/gallery/LinksPage.h"
#include "demo/gallery/ListsPage.h"
#include "demo/gallery/StockPage.h"
#include "demo/gallery/TextsPage.h"
#include "demo/gallery/TogglesPage.h"

namespace gallery {
namespace {

template <class Page>
std::unique_ptr<ObLibX::ObXDlg> Make() {
    return std::make_unique<Page>();
}

constexpr PageRow kPages[] = {
    {L"stock", &Make<StockPage>},     {L"texts", &Make<TextsPage>},
    {L"bars", &Make<BarsPage>},       {L"hosted", &Make<HostedPage>},
    {L"choices", &Make<ChoicesPage>}, {L"buttons", &Make<ButtonsPage>},
    {L"toggles", &Make<TogglesPage>}, {L"links", &Make<LinksPage>},
    {L"lists", &Make<ListsPage>},
};

} // namespace

std::vector<PageRow> PagesNamed(std::wstring_view name) {
    std::vector<PageRow> rows;
    for (const PageRow& row : kPages) {
        if (name.empty() || name == row.name) rows.push_back(row);
    }
    return rows;
}

} // namespace gallery
