// Painting of cells: dispatch, backgrounds and colours, texts, fixed cells. The outline is in TreeOutline.cpp.
#include "host/graphics/Canvas.h"
#include "htmldraw/HTMLDraw.h"
#include "quilltree/QuillTree.h"

#include <algorithm>

namespace quill {

namespace {

constexpr TExGridDrawState SelectionLook{gdSelected, gdFocused};

unsigned VerticalFlag(TNVVertAlign Align) {
    switch (Align) {
    case tvaTop:
        return DT_TOP;
    case tvaBottom:
        return DT_BOTTOM;
    case tvaCenter:
        break;
    }
    return DT_VCENTER;
}

unsigned AlignmentFlag(TAlignment Align) {
    switch (Align) {
    case taLeftJustify:
        return DT_LEFT;
    case taRightJustify:
        return DT_RIGHT;
    case taCenter:
        break;
    }
    return DT_CENTER;
}

// A data cell's room for its text. The margin stands where the text begins, in line with the caption in a fixed cell
// above; what is left is as wide as row heights are measured for.
TRect DataTextRect(TRect Cell, TAlignment Align) {
    constexpr int Margin = TreeMetrics::TextMargin;
    if (Align != taRightJustify) Cell.Left += Align == taCenter ? Margin / 2 : Margin;
    if (Align != taLeftJustify) Cell.Right -= Align == taCenter ? Margin / 2 : Margin;
    return Cell;
}

} // namespace

void TCustomQuillTree::Paint() {
    const TControlGuard Guard(this);
    FAncestorsOf = nullptr;
    if (const int Phase = OutlinePhase(); Phase != FPhase) {
        FPhase = Phase;
        // The rest of the picture is still in the other phase.
        TRect Painted;
        IntersectRect(Painted, GetCanvas()->GetClipRect(), GetClientRect());
        if (Painted != GetClientRect()) Invalidate();
    }
    TCustomExGrid::Paint();
    if (Guard && FAimedNode) DrawDropMark();
    // Outside a paint nodes move and the rows before are no neighbours.
    if (Guard) FAncestorsOf = nullptr;
}

TAlignment TCustomQuillTree::GetAlignment(int ACol) { return GetColAlignMent(ACol); }

// Flags of a text that wraps or is cut with an ellipsis.
unsigned TCustomQuillTree::TextFlags() const {
    return FWordWrap ? DT_NOPREFIX | DT_WORDBREAK
                     : DT_END_ELLIPSIS | DT_NOPREFIX | DT_SINGLELINE | DT_VCENTER;
}

bool TCustomQuillTree::SelectionSpans(int ACol) const {
    const TGridRect Selection = GetGridSelection();
    return Selection.Left <= ACol && ACol <= Selection.Right;
}

void TCustomQuillTree::DrawCell(TCanvas& Canvas, int ACol, int ARow, const TRect& Rect,
                                TExGridDrawState State, bool& ContinueRow) {
    const TControlGuard Guard(this);
    // A cell outside the clip costs nothing but the user's event.
    if (Canvas.RectVisible({Rect.Left, Rect.Top - GetPaintReach(ACol), Rect.Right, Rect.Bottom})) {
        TFlyNode* Node = GetNodeAtRow(ARow);
        if (!Guard) return;
        Canvas.GetBrush()->SetColor(TCustomExGrid::GetColor());
        Canvas.GetFont()->SetColor(GetFont()->GetColor());
        if (Node && Node->GetSelected()) {
            if (SelectionSpans(ACol)) State.Include(gdSelected);
        } else {
            State.Exclude(gdSelected);
            if (IsRowSelect()) State.Exclude(gdFocused);
        }
        TExGridDrawState Base = State;
        if (State.Contains(gdNoUseSelColor)) Base -= SelectionLook;

        DrawBackground(Canvas, Rect, ARow, ACol, Base + TExGridDrawState(gdPrepaint));
        if (!Guard) return;
        State = Base - TExGridDrawState(gdPrepaint);
        if (State.Contains(gdFixed)) DrawFixed(Canvas, Rect, ARow, ACol, State);
        if (!Guard) return;
        // The steps above are application code too.
        if (Node) Node = GetNodeAtRow(ARow);
        if (!Guard) return;
        if (Node && ACol == FStructureCol) {
            DrawStructureNode(Canvas, Node, Rect, ARow, ACol, State);
        } else if (Node && ACol < GetColCount()) {
            DrawDataNode(Canvas, Node, Rect, ARow, ACol, State);
        }
        if (!Guard) return;
    }
    TCustomExGrid::DrawCell(Canvas, ACol, ARow, Rect, State, ContinueRow);
}

void TCustomQuillTree::DrawBackground(TCanvas& Canvas, const TRect& Rect, int, int, TExGridDrawState) {
    Canvas.FillRect(Rect);
}

void TCustomQuillTree::GetColor(TFlyNode* Node, int ACol, int, TExGridDrawState State, TColor& BrushColor,
                                TColor& FontColor, bool& Changed) {
    if (State.Contains(gdNoUseSelColor)) return;
    const bool Aimed = Node && Node->GetDropTarget() && (ACol == FStructureCol || IsRowSelect()) &&
                       (!FDropMarks || FDropPlace == dpOn);
    const bool Marked = Node && (Node->GetSelected() || Aimed);
    if (!Marked && !State.Contains(gdClicked)) return;
    if (!SelectionSpans(ACol)) return;
    if (Focused()) {
        BrushColor = clHighlight;
    } else if (FHideSelection) {
        return;
    } else {
        BrushColor = clInactiveCaption;
    }
    FontColor = clHighlightText;
    Changed = true;
}

// --- structure and data cells ------------------------------------------------------------------------------------

void TCustomQuillTree::DrawStructureNode(TCanvas& Canvas, TFlyNode* Node, const TRect& Rect, int ARow,
                                         int ACol, TExGridDrawState State) {
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    const TColor OldBrush = Canvas.GetBrush()->GetColor();
    const TColor OldFont = Canvas.GetFont()->GetColor();
    const TFontStyles OldStyle = Canvas.GetFont()->GetStyle();
    TColor BrushColor = OldBrush;
    TColor FontColor = OldFont;
    bool Changed = false;
    GetColor(Node, ACol, ARow, State, BrushColor, FontColor, Changed);
    if (!Guard || !Watch) return;
    if (Changed) {
        Canvas.GetBrush()->SetColor(BrushColor);
        Canvas.GetFont()->SetColor(FontColor);
        // A selected row is coloured in one piece: the text step leaves the background alone under goRowSelect.
        if (IsRowSelect()) {
            DrawBackground(Canvas, Rect, ARow, ACol, State + TExGridDrawState(gdPrepaintIndentZone));
        }
    }

    TRect TextRect = Rect;
    DrawStructureButtonsLines(Canvas, Node, ARow, ACol, TextRect, State,
                              {doDrawlines, doDrawbuttons, doDrawStates, doDrawImages});
    if (!Guard || !Watch) return;
    if (State.Contains(gdFixed)) TextRect.Inflate(-1, -1);
    const std::string Text = GetEditText(ACol, ARow);
    if (!Guard || !Watch) return;

    bool HotFont = false;
    const int OldMode = Canvas.SetBkMode(TRANSPARENT);
    DrawStructureCellContents(Canvas, TextRect, HotFont, State, Text, Node, tvaCenter, ARow, ACol);
    if (!Guard) return;
    Canvas.SetBkMode(OldMode);
    if (Focused() && GetOptions().Contains(goDrawFocusSelected) && State.Contains(gdFocused) &&
        !IsRowSelect()) {
        Canvas.DrawFocusRect(TextRect);
    }
    if (HotFont) Canvas.GetFont()->SetStyle(OldStyle);
    Canvas.GetFont()->SetColor(OldFont);
    Canvas.GetBrush()->SetColor(OldBrush);
}

void TCustomQuillTree::DrawStructureCellContents(TCanvas& Canvas, TRect& Rect, bool& HotFont,
                                                 TExGridDrawState State, const std::string& Text,
                                                 TFlyNode* Node, TNVVertAlign VertAlign, int ARow, int ACol) {
    const unsigned Flags =
        FWordWrap ? DT_NOPREFIX | DT_WORDBREAK : DT_END_ELLIPSIS | DT_NOPREFIX | DT_SINGLELINE;
    if (FHotTrack && ARow == FTrackedRow && FStructureCol >= GetFixedCols()) {
        TFont& Font = *Canvas.GetFont();
        HotFont = !Font.GetStyle().Contains(fsUnderline) && Font.GetColor() != FHotTrackColor;
        if (HotFont) {
            Font.SetStyle(Font.GetStyle() + TFontStyles(fsUnderline));
            if (!Node || !Node->GetSelected()) Font.SetColor(FHotTrackColor);
        }
    }
    TRect Measured = Rect;
    if (FHTMLDrawing) {
        Measured.Right -= TreeMetrics::TextOnlyExtra;
        DrawHTML(Measured, Canvas, Text, FWordWrap, true, HTMLLeft, HTMLTop);
    }
    if (FNodeSelectionStyle == tnsTextOnly) {
        // Measured in the cell's own direction, so that the extent begins at the outline in both directions.
        if (!FHTMLDrawing) Canvas.DrawText(Text, Measured, Flags | DT_CALCRECT);
        Rect.Left = Measured.Left;
        Rect.Right = std::min(Rect.Right, Measured.Right + TreeMetrics::TextOnlyExtra);
    }
    if (!IsRowSelect() && !State.Contains(gdFixed)) DrawBackground(Canvas, Rect, ARow, ACol, State);
    TRect TextRect = Rect;
    TextRect.Left += TreeMetrics::TextMargin;
    if (FHTMLDrawing) {
        if (!FWordWrap && Measured.Height() < Rect.Height()) {
            const int Half = (Rect.Height() - Measured.Height()) / 2;
            TextRect.Top += Half;
            TextRect.Bottom -= Half;
        }
        DrawMarkup(Canvas, Text, TextRect, taLeftJustify, HTMLTop);
        return;
    }
    TextRect.Right -= GetGridLineWidth();
    DrawRTLText(Canvas, Text, TextRect, Flags, static_cast<int>(VerticalFlag(VertAlign)));
}

void TCustomQuillTree::DrawDataNode(TCanvas& Canvas, TFlyNode* Node, const TRect& Rect, int ARow, int ACol,
                                    TExGridDrawState State) {
    const TControlGuard Guard(this);
    const TColor OldBrush = Canvas.GetBrush()->GetColor();
    const TColor OldFont = Canvas.GetFont()->GetColor();
    TColor BrushColor = OldBrush;
    TColor FontColor = OldFont;
    bool Changed = false;
    GetColor(Node, ACol, ARow, State, BrushColor, FontColor, Changed);
    if (!Guard) return;
    if (Changed) {
        Canvas.GetBrush()->SetColor(BrushColor);
        Canvas.GetFont()->SetColor(FontColor);
    }
    const std::string Text = GetEditText(ACol, ARow);
    if (!Guard) return;
    DrawBackground(Canvas, Rect, ARow, ACol, State);
    if (!Guard) return;
    if (FHTMLDrawing) {
        const TAlignment Align = GetAlignment(ACol);
        DrawMarkup(Canvas, Text, DataTextRect(Rect, Align), Align, HTMLMiddle);
    } else if (!Text.empty()) {
        // Centred by the text routine alone: with the flag as well, a tall row's text would sink below the middle.
        const unsigned Flags = AlignmentFlag(GetAlignment(ACol)) | DT_NOPREFIX |
                               (FWordWrap ? DT_WORDBREAK : DT_END_ELLIPSIS | DT_SINGLELINE);
        const int OldMode = Canvas.SetBkMode(TRANSPARENT);
        TRect TextRect = DataTextRect(Rect, GetAlignment(ACol));
        DrawRTLText(Canvas, Text, TextRect, Flags, static_cast<int>(DT_VCENTER));
        Canvas.SetBkMode(OldMode);
    }
    if (ACol == GetCol() && ARow == GetRow() && !IsRowSelect() &&
        GetOptions().Contains(goDrawFocusSelected)) {
        TRect Focus = Rect;
        Focus.Inflate(1, 1);
        Canvas.DrawFocusRect(Focus);
    }
    Canvas.GetFont()->SetColor(OldFont);
    Canvas.GetBrush()->SetColor(OldBrush);
}

// The renderer keeps left and right where they are; here they are meant in the control's direction.
void TCustomQuillTree::DrawMarkup(TCanvas& Canvas, const std::string& Text, const TRect& Rect,
                                  TAlignment Align, int VertAlign) {
    int Code = Align;
    if (UseRightToLeftAlignment() && Align != taCenter) Code = Align == taLeftJustify ? HTMLRight : HTMLLeft;
    const int OldFlags = Canvas.GetTextFlags();
    Canvas.SetTextFlags(UseRightToLeftReading() ? ETO_RTLREADING : 0);
    TRect R = Rect;
    DrawHTML(R, Canvas, Text, FWordWrap, false, Code, VertAlign);
    Canvas.SetTextFlags(OldFlags);
}

// --- fixed cells -------------------------------------------------------------------------------------------------

void TCustomQuillTree::DrawFixed(TCanvas& Canvas, const TRect& Rect, int ARow, int ACol, TExGridDrawState) {
    const TControlGuard Guard(this);
    Canvas.GetBrush()->SetColor(GetFixedColor());
    Canvas.FillRect(Rect);
    const bool Pressed = IsCaptionPressed(ACol, ARow);
    DrawFixedFrame(Canvas, Rect, ACol, ARow, Pressed);
    if (!Guard || (ACol == FStructureCol && ARow >= GetFixedRows())) return;
    const std::string Text =
        ARow < GetFixedRows() ? GetEditText(ACol, ARow) : TCustomExGrid::GetEditText(ACol, ARow);
    if (!Guard) return;

    TRect TextRect = Rect;
    TextRect.Inflate(-TreeMetrics::FixedTextMargin, 0);
    if (Pressed) TextRect.Offset(1, 1);
    DrawSortArrow(Canvas, TextRect, ACol, ARow);
    if (Text.empty()) return;
    if (FHTMLDrawing) {
        DrawMarkup(Canvas, Text, TextRect, GetAlignment(ACol), HTMLMiddle);
        return;
    }
    const unsigned Flags = FWordWrap ? DT_NOPREFIX | DT_WORDBREAK
                                     : AlignmentFlag(GetAlignment(ACol)) | DT_END_ELLIPSIS | DT_NOPREFIX |
                                           DT_SINGLELINE | DT_VCENTER;
    const int OldMode = Canvas.SetBkMode(TRANSPARENT);
    DrawRTLText(Canvas, Text, TextRect, Flags, 0);
    Canvas.SetBkMode(OldMode);
}

void TCustomQuillTree::DrawFixedFrame(TCanvas& Canvas, const TRect& Rect, int ACol, int ARow, bool Clicked) {
    const bool IsButton =
        (ACol < GetFixedCols() && GetFixedColAsButton()) || (ARow < GetFixedRows() && GetFixedRowAsButton());
    if (!IsButton) return;
    if (!GetCtl3D()) {
        Canvas.FrameRect(Rect);
        return;
    }
    const bool Right = GetOptions().Contains(goFixedVertLine);
    const bool Bottom = GetOptions().Contains(goFixedHorzLine);
    if (!Right && !Bottom) return;
    TRect Frame = Rect;
    if (!Right) {
        Frame.Right += GetGridLineWidth();
    } else if (!Bottom) {
        Frame.Bottom += GetGridLineWidth();
    }
    Canvas.DrawEdge(Frame, Clicked ? BDR_SUNKENINNER : BDR_RAISEDINNER, BF_RECT);
}

} // namespace quill
