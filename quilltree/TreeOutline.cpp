// The outline of the structure cell: slots, connecting lines, buttons, state glyphs and images.
#include "host/base/Events.h"
#include "host/graphics/Canvas.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <array>

namespace quill {

namespace {

constexpr int MadeOdd(int Value) { return Value % 2 == 0 ? Value + 1 : Value; }

} // namespace

TOutlineSlots TCustomQuillTree::GetOutlineSlots(TFlyNode* Node, int Left) const {
    TOutlineSlots Slots;
    Slots.Level = LevelOf(Node);
    const bool Indented = FShowRoot || Slots.Level > 0;
    int X = Left;
    if (Indented) X += Slots.Level * FIndent;
    Slots.Button = X;
    Slots.HasButtonSlot = (FShowButtons || FShowlines) && Indented;
    if (Slots.HasButtonSlot) X += FIndent;
    Slots.State = X;
    // A drawn state beyond the known ones takes no room; its bitmap form does.
    const int State = Node->GetStateIndex();
    Slots.HasStateSlot = FShowLogic && State != -1 && (StateGlyph(State) >= 0 || !FStatesDrawed);
    if (Slots.HasStateSlot) X += FIndent;
    Slots.Rest = X;
    return Slots;
}

int TCustomQuillTree::OutlineCentre(int CellLeft, int Level) const {
    return MadeOdd(CellLeft + Level * FIndent + FIndent / 2);
}

int TCustomQuillTree::GetCX(int Level) {
    const TRect Cell = CellRect(FStructureCol, GetTopRow());
    // Outlines are laid out from the cell's left edge before mirroring, which outside a paint is on the right.
    const bool Mirrored = UseRightToLeftAlignment() && GetCanvas()->GetCanvasOrientation() == coLeftToRight;
    return OutlineCentre((Mirrored ? GetClientWidth() - Cell.Right : Cell.Left) - GetHOffset(), Level);
}

// --- the phase ----------------------------------------------------------------------------------------------------
// Dots, buttons and state glyphs keep to the odd lines of the unscrolled picture. Its lines are odd or even on the
// screen according to how far it is scrolled, so that its pixels can be moved by an odd distance too. Rows of different
// heights would have to be summed up for that; the picture then keeps to the odd lines of the screen.

int TCustomQuillTree::OutlinePhase() const {
    if (!HasUniformHeights() || (GetTopRow() - GetFixedRows()) % 2 == 0) return 0;
    const bool HasLine = HasOption(goFixedHorzLine) || HasOption(goHorzLine);
    return (GetDefaultRowHeight() + (HasLine ? GetGridLineWidth() : 0)) % 2;
}

bool TCustomQuillTree::CanScrollPixels(int DX, int DY) {
    if (!FMarkPainted.IsEmpty()) return false; // the drop mark would move along
    const bool Moves = DY != 0 || FStructureCol >= GetFixedCols();
    if (!Moves || !(FShowlines || FShowButtons || FShowLogic)) return true;
    const int Phase = OutlinePhase();
    // Outline centres are on odd columns of the screen.
    if (DX % 2 != 0 || (DY % 2 != 0) != (Phase != FPhase)) return false;
    FPhase = Phase;
    // Lines reach a little way into the row above: the edges at which rows appear or go are painted as well. What is
    // invalid moves with its pixels.
    TExGridDI DI;
    CalcDI(DI);
    const auto MarkEdge = [&](int Y) { InvalidatePixels({0, Y - 1, GetClientWidth(), Y + 1}); };
    if (DY > 0) MarkEdge(DI.Vert.FixedBoundary + 1);
    if (DY != 0) MarkEdge(GetClientHeight() - std::max(DY, 0) - 1);
    return true;
}

// Whether a sibling behind Node has a row. A placeholder counts as it is: painting makes no nodes that are out of view.
bool TCustomQuillTree::HasRowBehind(TFlyNode* Node) const {
    const TTreeCollection* Collection = Node->GetCollection();
    TTreeSlot* Slot = Node->NextSlot();
    while (Slot && !FItems->RowList.Contains(Slot)) Slot = Collection->GetChildList()->Next(Slot);
    return Slot != nullptr;
}

// --- ancestors ---------------------------------------------------------------------------------------------------

// The level of a node, without walking up when the node painted last is a neighbour.
int TCustomQuillTree::LevelOf(TFlyNode* Node) const {
    return Node == FAncestorsOf ? FAncestorsLevel : Node->GetLevel();
}

// Fills FAncestors with the ancestors of Node on the levels below MaxLevels. Rows are painted from top to bottom, so
// the list is derived from that of the row before: a step costs the difference in level. Only the first row of a paint
// walks up to the top.
void TCustomQuillTree::UpdateAncestors(TFlyNode* Node, int MaxLevels) {
    if (Node == FAncestorsOf && FAncestorsMax >= MaxLevels) return;
    TFlyNode* Parent = Node->GetParent();
    if (FAncestorsOf && FAncestorsMax >= MaxLevels) {
        // Climb from the last node to Node's parent.
        TFlyNode* Step = FAncestorsOf;
        int Level = FAncestorsLevel;
        while (Step && Step != Parent) {
            Step = Step->GetParent();
            --Level;
        }
        if (Step == Parent) {
            const std::size_t Known =
                std::min(FAncestors.size(), static_cast<std::size_t>(std::max(Level, 0)));
            FAncestors.resize(Known);
            FAncestorHasNext.resize(Known);
            if (Parent && Level < FAncestorsMax) {
                FAncestors.push_back(Parent);
                FAncestorHasNext.push_back(HasRowBehind(Parent));
            }
            FAncestorsOf = Node;
            FAncestorsLevel = Level + 1;
            return;
        }
    }
    FAncestorsOf = Node;
    FAncestorsMax = MaxLevels;
    FAncestorsLevel = Node->GetLevel();
    FAncestors.clear();
    FAncestorHasNext.clear();
    int Level = FAncestorsLevel - 1;
    for (TFlyNode* Step = Parent; Step; Step = Step->GetParent(), --Level) {
        if (Level < MaxLevels) FAncestors.push_back(Step);
    }
    std::reverse(FAncestors.begin(), FAncestors.end());
    for (TFlyNode* Step : FAncestors) FAncestorHasNext.push_back(HasRowBehind(Step));
}

// --- lines -------------------------------------------------------------------------------------------------------

void TCustomQuillTree::InternalLineTo(TCanvas& Canvas, int X, bool Vertical, int Y) {
    // Every point with an odd coordinate along the line; the end point itself is not drawn.
    const TPoint From = Canvas.GetPenPos();
    const int Start = Vertical ? From.Y : From.X;
    const int End = Vertical ? Y : X;
    const int Step = End < Start ? -1 : 1;
    // Points far outside the clip are not walked.
    const TRect Clip = Canvas.GetClipRect();
    const int Low =
        std::max(std::min(Start, End + (Step < 0 ? 1 : 0)), Vertical ? Clip.Top - 1 : Clip.Left - 1);
    const int High = std::min(std::max(Start, End - (Step > 0 ? 1 : 0)), Vertical ? Clip.Bottom : Clip.Right);
    // Single points of a mirrored canvas lie one pixel beside the mirrored picture.
    const int Shift = Canvas.GetCanvasOrientation() == coRightToLeft ? 1 : 0;
    FDots.clear();
    for (int At = Vertical ? MadeOddRow(Low) : MadeOdd(Low); At <= High; At += 2) {
        FDots.push_back(Vertical ? TPoint{From.X + Shift, At} : TPoint{At + Shift, From.Y});
    }
    Canvas.SetPixels(FDots, FOutlineColor);
    Canvas.MoveTo(X, Y);
}

void TCustomQuillTree::OutlineLine(TCanvas& Canvas, TPoint From, TPoint To) {
    if (FOutlineStyle == olsExcel) {
        // The end point is left out, which on a mirrored canvas falls to the other end of a horizontal line.
        const bool Mirrored = Canvas.GetCanvasOrientation() == coRightToLeft;
        const int Shift = Mirrored && From.Y == To.Y ? 1 : 0;
        Canvas.MoveTo(From.X + Shift, From.Y);
        Canvas.LineTo(To.X + Shift, To.Y);
    } else {
        Canvas.MoveTo(From.X, From.Y);
        InternalLineTo(Canvas, To.X, From.X == To.X, To.Y);
    }
}

void TCustomQuillTree::DrawLinesOfSlot(TCanvas& Canvas, TFlyNode* Node, const TRect& Cell, int Level,
                                       bool IsTopRow) {
    TRect R = Cell;
    if (MadeOddRow(R.Top) == R.Top) --R.Top;
    R.Bottom = MadeOddRow(R.Bottom);
    // The first row keeps out of the captions above it, which stay when it is scrolled.
    const int Above = IsTopRow ? Cell.Top : R.Top - 1;
    const int Below = R.Bottom + 1;
    const int Centre = OutlineCentre(FOutlineLeft, Level);
    const int Middle = MadeOddRow(R.Top + (R.Bottom - R.Top) / 2);
    const bool HasPrev = FItems->RowList.First() != Node;
    const bool HasNext = HasRowBehind(Node);
    const bool IsStandard = FOutlineStyle == olsStandardTree;

    if (IsStandard) {
        if (HasPrev && HasNext) {
            OutlineLine(Canvas, {Centre, Above}, {Centre, Below});
        } else if (HasPrev) {
            OutlineLine(Canvas, {Centre, Above}, {Centre, Middle});
        } else if (HasNext) {
            OutlineLine(Canvas, {Centre, Middle}, {Centre, Below});
        }
        OutlineLine(Canvas, {Centre, Middle}, {Centre + FIndent / 2, Middle});
    } else if (Level >= 1) {
        const int Parent = Centre - FIndent;
        if (HasPrev) OutlineLine(Canvas, {Parent, Above}, {Parent, Middle});
        if (HasNext) OutlineLine(Canvas, {Parent, Middle}, {Parent, Below});
        if (!HasNext) OutlineLine(Canvas, {Parent, Middle}, {Centre - FIndent / 2, Middle});
        if (FOutlineStyle == olsExcel && HasNext) {
            const int Side = std::max(1, FIndent >> 3);
            Canvas.PatBlt(Centre - FIndent / 2 - Side, Middle, Side, Side, BLACKNESS);
        }
    }

    // The verticals of ancestors that go on below. A top-level ancestor has one in the standard style only.
    const int Shift = IsStandard ? 0 : FIndent;
    for (int K = static_cast<int>(FAncestors.size()) - 1; K >= (IsStandard ? 0 : 1); --K) {
        if (!FAncestorHasNext[static_cast<std::size_t>(K)]) continue;
        const int X = OutlineCentre(FOutlineLeft, K) - Shift;
        OutlineLine(Canvas, {X, Above}, {X, Below});
    }
}

// --- the whole outline -------------------------------------------------------------------------------------------

void TCustomQuillTree::DrawStructureButtonsLines(TCanvas& Canvas, TFlyNode* Node, int ARow, int, TRect& Rect,
                                                 TExGridDrawState State, TDrawOptions Options) {
    const TControlGuard Guard(this);
    FOutlineLeft = Rect.Left;
    UpdateAncestors(Node, std::max(0, Rect.Width() / std::max(1, FIndent)) + 2);
    const TOutlineSlots Slots = GetOutlineSlots(Node, Rect.Left);

    if (Slots.HasButtonSlot) {
        const TRect Slot{Slots.Button, Rect.Top, Slots.Button + FIndent, Rect.Bottom};
        TPen& Pen = *Canvas.GetPen();
        const TColor OldColor = Pen.GetColor();
        const int OldWidth = Pen.GetWidth();
        if (FOutlineStyle == olsExcel) {
            Pen.SetWidth(2);
            Pen.SetColor(FOutlineColor);
        }
        if (FShowlines && Options.Contains(doDrawlines))
            DrawLinesOfSlot(Canvas, Node, Rect, Slots.Level, ARow == GetTopRow());
        // Without buttons the pen of the solid style stays as it is; it is put back only for the button.
        if (FShowButtons && Options.Contains(doDrawbuttons)) {
            if (FOutlineStyle == olsExcel) {
                Pen.SetColor(OldColor);
                Pen.SetWidth(OldWidth);
            }
            if (Node->GetChildren() && !Node->GetAllChildrenHidden()) {
                const TQuillBitmap Kind = Node->GetExpanded() ? obExpanded : obCollapsed;
                if (FStatesDrawed) {
                    DrawButton(Canvas, Node, Kind, Slot);
                } else {
                    DrawImagelistPic(Canvas, Node, Kind,
                                     {Slot.Left, Slot.Top, Slot.Left + Slot.Height(), Slot.Bottom});
                }
            }
        }
    }

    if (Slots.HasStateSlot && Options.Contains(doDrawStates)) {
        const int Glyph = StateGlyph(Node->GetStateIndex());
        // The canvas maps a rectangle to its mirrored place, so that the glyph needs no move under right-to-left.
        const TRect Slot{Slots.State, Rect.Top, Rect.Right, Rect.Bottom};
        if (Glyph >= 0 && FStatesDrawed) {
            DrawButton(Canvas, Node, static_cast<TQuillBitmap>(Glyph), Slot);
        } else if (Glyph >= 0) {
            DrawImagelistPic(Canvas, Node, static_cast<TQuillBitmap>(Glyph), Slot);
        }
    }
    int X = Options.Contains(doDrawStates) ? Slots.Rest : Slots.State;
    if (FShowImages && Options.Contains(doDrawImages)) DrawNodePicture(Canvas, Node, ARow, Rect, State, X);
    if (Guard) Rect.Left = X;
}

// Runs an image event; false when the control or the node's row is gone afterwards.
bool TCustomQuillTree::FireImageEvent(const TFTVExpandedEvent& Event, TFlyNode* Node) {
    if (!Event) return true;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    FireEvent(Event, this, Node);
    return Guard && Watch;
}

void TCustomQuillTree::DrawNodePicture(TCanvas& Canvas, TFlyNode* Node, int ARow, const TRect& Cell,
                                       TExGridDrawState State, int& X) {
    int Index = -1;
    if (State.Contains(gdSelected) || ARow == GetRow()) {
        if (!FireImageEvent(OnGetSelectedIndex, Node)) return;
        Index = Node->GetSelectedIndex();
    } else {
        if (!FireImageEvent(OnGetImageIndex, Node)) return;
        Index = Node->GetImageIndex();
    }
    if (Index < 0) return;
    TBitmap Picture;
    GetBitmap(Node, Index, Picture);
    if (Picture.GetEmpty()) return;
    if (FTransparentMode) {
        Picture.SetTransparent(true);
        Picture.SetTransparentMode(tmAuto);
    }
    Canvas.Draw(X + (FIndent - Picture.GetWidth()) / 2, Cell.Top + (Cell.Height() - Picture.GetHeight()) / 2,
                &Picture);
    X += FIndent;
}

} // namespace quill
