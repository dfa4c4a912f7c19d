// Captions of columns: their texts in the first fixed row, the arrow of the sorted column, clicks on them, and the width
// that a column needs.
#include "host/base/Events.h"
#include "host/graphics/Canvas.h"
#include "htmldraw/HTMLDraw.h"
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

namespace {

// The sort arrow, pixels.
constexpr int ArrowWidth = 9;
constexpr int ArrowHeight = 5;
constexpr int ArrowMargin = 4; // on both sides

} // namespace

std::string TCustomQuillTree::GetCaptions(int DataCol) const {
    if (DataCol < 0 || DataCol >= static_cast<int>(FCaptions.size())) return {};
    return FCaptions[static_cast<std::size_t>(DataCol)];
}

void TCustomQuillTree::SetCaptions(int DataCol, const std::string& Value) {
    if (DataCol < 0 || DataCol >= MaxExtentCount || GetCaptions(DataCol) == Value) return;
    if (DataCol >= static_cast<int>(FCaptions.size()))
        FCaptions.resize(static_cast<std::size_t>(DataCol) + 1);
    FCaptions[static_cast<std::size_t>(DataCol)] = Value;
    if (GetFixedRows() > 0) InvalidateCell(GetDisplayColumn(DataCol), CaptionRow);
}

void TCustomQuillTree::SetSortColumn(int DataCol) {
    DataCol = std::max(DataCol, -1);
    if (DataCol == FSortColumn) return;
    const int Old = std::exchange(FSortColumn, DataCol);
    InvalidateCell(GetDisplayColumn(Old), CaptionRow);
    InvalidateCell(GetDisplayColumn(FSortColumn), CaptionRow);
}

void TCustomQuillTree::SetSortDirection(TSortDirection Value) {
    if (Value == FSortDirection) return;
    FSortDirection = Value;
    InvalidateCell(GetDisplayColumn(FSortColumn), CaptionRow);
}

bool TCustomQuillTree::IsCaption(int ACol, int ARow) const {
    return ARow == CaptionRow && ARow < GetFixedRows() && ACol >= 0 && ACol < GetColCount();
}

// A tree without captions looks as it always did.
bool TCustomQuillTree::IsCaptionPressed(int ACol, int ARow) const {
    return IsCaption(ACol, ARow) && !FCaptions.empty() && GetPressedFixed() == TGridCoord{ACol, ARow};
}

// Takes the arrow's room from Rect, at the end of the cell's own direction.
void TCustomQuillTree::DrawSortArrow(TCanvas& Canvas, TRect& Rect, int ACol, int ARow) {
    if (!IsCaption(ACol, ARow) || FSortColumn < 0 || GetColumnOrder(ACol) != FSortColumn) return;
    if (Rect.Width() < ArrowWidth) return;
    const int Left = Rect.Right - ArrowWidth;
    const int Top = Rect.Top + (Rect.Height() - ArrowHeight) / 2;
    TBrush* Brush = Canvas.GetBrush();
    const TColor OldColor = Brush->GetColor();
    Brush->SetColor(clBtnText);
    // Line by line: whole pixels at every scale, and the same in both directions.
    for (int Line = 0; Line < ArrowHeight; ++Line) {
        const int Inset = FSortDirection == srtAscending ? ArrowHeight - 1 - Line : Line;
        Canvas.FillRect({Left + Inset, Top + Line, Left + ArrowWidth - Inset, Top + Line + 1});
    }
    Brush->SetColor(OldColor);
    Rect.Right = Left - ArrowMargin;
}

void TCustomQuillTree::CaptionClick(int DataCol) {
    const TControlGuard Guard(this);
    FireEvent(OnCaptionClick, this, DataCol);
    if (Guard) Q_EMIT captionClicked(DataCol);
}

void TCustomQuillTree::FixedCellClick(int ACol, int ARow) {
    const TControlGuard Guard(this);
    TCustomExGrid::FixedCellClick(ACol, ARow);
    if (Guard && IsCaption(ACol, ARow)) CaptionClick(GetColumnOrder(ACol));
}

// --- widths ------------------------------------------------------------------------------------------------------

int TCustomQuillTree::GetCellFitWidth(int ACol, int ARow) {
    const TControlGuard Guard(this);
    const TNodeWatch Node(GetNodeAtRow(ARow));
    if (!Guard) return -1;
    // What the text leaves free at its cell's edges, as it is drawn.
    int Width = 0;
    std::string Text;
    if (!Node) {
        Text = GetEditText(ACol, ARow);
        if (!Guard || Text.empty()) return -1;
        Width = 2 * TreeMetrics::FixedTextMargin;
        if (IsCaption(ACol, ARow) && GetColumnOrder(ACol) == FSortColumn) Width += ArrowWidth + ArrowMargin;
    } else {
        Text = GetEditText(ACol, ARow);
        if (!Guard || !Node) return -1;
        if (ACol == FStructureCol) {
            Width = GetOutlineSlots(Node, 0).Rest + 2 * TreeMetrics::TextMargin + GetGridLineWidth();
            if (FShowImages && (Node->GetImageIndex() >= 0 || Node->GetSelectedIndex() >= 0))
                Width += FIndent;
            if (FNodeSelectionStyle == tnsTextOnly) Width += TreeMetrics::TextOnlyExtra;
        } else if (Text.empty()) {
            return -1;
        } else {
            Width = 2 * TreeMetrics::TextMargin;
        }
    }
    return Width + TextWidthOf(Text) + 1;
}

int TCustomQuillTree::TextWidthOf(const std::string& Text, int WrapWidth) {
    TCanvas& Canvas = *GetCanvas();
    Canvas.SetFont(GetFont());
    const bool Wraps = WrapWidth >= 0;
    TRect R{0, 0, Wraps ? WrapWidth : 0, 0};
    if (FHTMLDrawing) {
        DrawHTML(R, Canvas, Text, Wraps, true, HTMLLeft, HTMLTop);
    } else if (Wraps) {
        DrawRTLText(Canvas, Text, R, DT_NOPREFIX | DT_WORDBREAK | DT_CALCRECT, 0);
    } else {
        return Canvas.TextWidth(Text);
    }
    return R.Width();
}

} // namespace quill
