// Painting and scrolling.
#include "bench/Workloads.h"

namespace quill::bench {
namespace {

TFigure Repaint(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    return Painted(C, [&] { C.RepaintAll(); });
}

// Every step shows texts that were not seen before.
TFigure ScrollRow(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    return Painted(C, [&] { C.ScrollRow(); });
}

TFigure ScrollPage(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    int Turn = 0;
    return Painted(
        C, [&] { ScrollAbout(C, Size, Turn++); }, [&] { C.ScrollPage(); });
}

TFigure Wheel(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    return Painted(C, [&] { C.TurnWheel(); });
}

constexpr TWorkload All[] = {
    {"repaint", "full repaint, texts seen before", "ms", 0.9, TKind::Action, Repaint},
    {"scroll-row", "scroll by a row", "ms", 0.3, TKind::Action, ScrollRow},
    {"scroll-page", "scroll by a page", "ms", 1.2, TKind::Action, ScrollPage},
    {"wheel", "scroll by a notch of the wheel", "ms", 0, TKind::Action, Wheel},
};

} // namespace

std::span<const TWorkload> PaintWorkloads() { return All; }

} // namespace quill::bench
