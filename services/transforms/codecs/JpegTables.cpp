#include "services/transforms/codecs/JpegTables.h"

#include <algorithm>
#include <numeric>

namespace transforms {
namespace {

// The places of a table from the lowest frequency to the highest.
std::array<int, DCTSIZE2> ByFrequency() {
    std::array<int, DCTSIZE2> places;
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [](int a, int b) {
        return a / DCTSIZE + a % DCTSIZE < b / DCTSIZE + b % DCTSIZE;
    });
    return places;
}

} // namespace

std::array<JQUANT_TBL, 2> StandardTables(JpegWriter& writer, const ShrinkStep& step) {
    jpeg_set_linear_quality(&writer, step.coarseness + 1, TRUE);
    std::array<JQUANT_TBL, 2> tables{*writer.quant_tbl_ptrs[0], *writer.quant_tbl_ptrs[1]};
    jpeg_set_linear_quality(&writer, step.coarseness, TRUE);
    const auto places = ByFrequency();
    const int coarser = DCTSIZE2 * step.sixteenths / 16;
    for (int place = 0; place < DCTSIZE2 - coarser; ++place)
        for (int i = 0; i < 2; ++i)
            tables[i].quantval[places[place]] = writer.quant_tbl_ptrs[i]->quantval[places[place]];
    return tables;
}

JQUANT_TBL CoarserTable(const JQUANT_TBL& one, const JQUANT_TBL& other) noexcept {
    JQUANT_TBL table = one;
    for (int i = 0; i < DCTSIZE2; ++i)
        table.quantval[i] = std::min<UINT16>(std::max(one.quantval[i], other.quantval[i]), 255);
    table.sent_table = FALSE;
    return table;
}

void CoarsenTables(JpegWriter& writer, const ShrinkStep& step) {
    const std::array<JQUANT_TBL, 2> own{*writer.quant_tbl_ptrs[0], *writer.quant_tbl_ptrs[1]};
    const auto standard = StandardTables(writer, step);
    for (std::size_t i = 0; i < own.size(); ++i)
        *writer.quant_tbl_ptrs[i] = CoarserTable(own[i], standard[i]);
}

} // namespace transforms
