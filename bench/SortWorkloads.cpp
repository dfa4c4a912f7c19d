// Sorting siblings by text, with the new order on the screen.
#include "bench/Workloads.h"

namespace quill::bench {
namespace {

TFigure Sort(TContender& C, int Count, bool ByLocale) {
    if (ByLocale) C.UseCollation();
    C.Open();
    // Sorted once only: a second time it would be in order already.
    return Painted(
        C,
        [&] {
            C.Clear();
            C.FillList(Count, ShuffledTextsOf, false);
        },
        [&] { C.Sort(); }, 5);
}

TFigure SortSmall(TContender& C, const TSize& Size) {
    const TFigure Figure = Sort(C, Size.Nodes / 10, false);
    std::string Last;
    for (int Index = 0; Index < std::min(1000, Size.Nodes / 10); ++Index) {
        const std::string Text = C.GetText(C.GetChild(0, Index));
        Require(Last < Text, "not sorted");
        Last = Text;
    }
    return Figure;
}
TFigure SortBig(TContender& C, const TSize& Size) { return Sort(C, Size.Nodes, false); }
TFigure SortSmallLocale(TContender& C, const TSize& Size) { return Sort(C, Size.Nodes / 10, true); }
TFigure SortBigLocale(TContender& C, const TSize& Size) { return Sort(C, Size.Nodes, true); }

constexpr TWorkload All[] = {
    {"sort-tenth", "sort a tenth as many siblings, C locale", "ms", 30, TKind::Bulk, SortSmall},
    {"sort", "sort siblings by text, C locale", "ms", 500, TKind::Bulk, SortBig},
    {"sort-tenth-locale", "sort a tenth as many siblings, real locale", "ms", 80, TKind::Bulk,
     SortSmallLocale, true},
    {"sort-locale", "sort siblings by text, real locale", "ms", 1200, TKind::Bulk, SortBigLocale, true},
};

} // namespace

std::span<const TWorkload> SortWorkloads() { return All; }

} // namespace quill::bench
