// Construction, simple properties, the window and its messages, and what travels in component streams.
#include "exgrid/GridDrag.h"
#include "exgrid/InplaceEdit.h"

#include "host/base/Filers.h"

#include <algorithm>
#include <utility>

namespace quill {

TCustomExGrid::TCustomExGrid(TComponent* AOwner, QWidget* AParent) : TCustomControl(AOwner, AParent) {
    SetControlStyle({csCaptureMouse, csClickEvents, csOpaque, csDoubleClicks});
    SetColor(clWindow);
    SetParentColor(false);
    SetTabStop(true);
    SetBounds(GetLeft(), GetTop(), FColCount * FDefaultColWidth, FRowCount * FDefaultRowHeight);
    Initialize();
}

TCustomExGrid::~TCustomExGrid() {
    BeginDestruction();
    delete std::exchange(FInplaceEdit, nullptr);
}

// --- properties -----------------------------------------------------------------------------------------------

void TCustomExGrid::SetOptions(TGridOptions Value) {
    if (Value == FOptions) return;
    const bool WasRowSelect = HasOption(goRowSelect);
    const TControlGuard Guard(this);
    if (FEditorMode && (!Value.Contains(goEditing) || Value.Contains(goRowSelect))) {
        HideEditor();
        if (!Guard) return;
    }
    FOptions = Value;
    if (HasOption(goRowSelect) && !WasRowSelect) {
        // Whole rows from now on.
        FCurrent.X = FFixedCols;
        FAnchor.X = FColCount - 1;
        FOpposite.X = FFixedCols;
    }
    if (HasOption(goAlwaysShowEditor) && HasOption(goEditing)) {
        ShowEditor();
        if (!Guard) return;
    }
    UpdateScrollRange();
    if (Guard) InvalidateGrid();
}

void TCustomExGrid::SetGridLineWidth(int Value) {
    if (Value == FGridLineWidth || Value < 0 || Value > MaxLineWidth) return;
    FGridLineWidth = Value;
    InvalidateGrid();
    UpdateScrollRange();
}

void TCustomExGrid::SetFixedColor(TColor Value) {
    if (Value == FFixedColor) return;
    FFixedColor = Value;
    InvalidateGrid();
}

void TCustomExGrid::SetLineColor(TColor Value) {
    if (Value == FLineColor) return;
    FLineColor = Value;
    InvalidateGrid();
}

void TCustomExGrid::SetFixedLineColor(TColor Value) {
    if (Value == FFixedLineColor) return;
    FFixedLineColor = Value;
    InvalidateGrid();
}

void TCustomExGrid::SetFixedRowAsButton(bool Value) {
    if (Value == FFixedRowAsButton) return;
    FFixedRowAsButton = Value;
    InvalidateGrid();
}

void TCustomExGrid::SetFixedColAsButton(bool Value) {
    if (Value == FFixedColAsButton) return;
    FFixedColAsButton = Value;
    InvalidateGrid();
}

bool TCustomExGrid::IsActiveControl() const { return ContainsFocus(); }

// --- the window -----------------------------------------------------------------------------------------------

void TCustomExGrid::CreateParams(TCreateParams& Params) {
    TCustomControl::CreateParams(Params);
    Params.Style |= WS_TABSTOP;
    if (HasBar(SB_VERT)) Params.Style |= WS_VSCROLL;
    if (HasBar(SB_HORZ)) Params.Style |= WS_HSCROLL;
    // Without redraw on size: what a new size uncovers is painted, not more.
    Params.WindowClassStyle = CS_DBLCLKS;
    if (GetBorderStyle() == bsSingle) {
        if (GetCtl3D()) {
            Params.Style &= ~WS_BORDER;
            Params.ExStyle |= WS_EX_CLIENTEDGE;
        } else {
            Params.Style |= WS_BORDER;
        }
    }
}

void TCustomExGrid::CreateWnd() {
    TCustomControl::CreateWnd();
    FFlatScrollBars = false;
    if (FScrollBars != ssNone) {
        if (!UseRightToLeftAlignment()) FFlatScrollBars = InitializeFlatScrollBars();
        if (FFlatScrollBars) SetFlatScrollBarProps(FScrollBarsStyle, FScrollBarsColor, false);
    }
    if (!FFlatScrollBars) SetScrollBarLook(sblRegular, FScrollBarsColor, false);
    for (const int Bar : {SB_HORZ, SB_VERT}) {
        if (HasBar(Bar)) continue;
        SetScrollRange(Bar, 0, 0, false);
        ShowScrollBar(Bar, false);
    }
    UpdateScrollRange();
}

void TCustomExGrid::DestroyWnd() {
    LeaveMode();
    FFlatScrollBars = false;
    TCustomControl::DestroyWnd();
}

void TCustomExGrid::WMSize(TWMSize& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMSize(Message);
    if (!Guard) return;
    // Fillers, stretched columns and everything mirrored depend on the size.
    InvalidateGrid();
    KeepHOffset();
    UpdateScrollRange();
    if (Guard) RefreshEdit(false);
}

void TCustomExGrid::CMShowingChanged(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::CMShowingChanged(Message);
    if (Guard && GetVisible()) UpdateScrollRange();
    if (!Guard || !FEditorMode) return;
    // Closing the window ends the edit as leaving the grid does; iconifying it only stores.
    if (isVisible() || HasOption(goAlwaysShowEditor)) {
        UpdateText();
    } else {
        HideEditor();
    }
}

void TCustomExGrid::WMSetFocus(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMSetFocus(Message);
    if (!Guard) return;
    InvalidateFocused();
    if (!FHidingEdit) RefreshEdit(true);
}

void TCustomExGrid::WMKillFocus(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::WMKillFocus(Message);
    if (Guard) InvalidateFocused();
}

void TCustomExGrid::WndProc(TMessage& Message) {
    switch (Message.Msg) {
    case WM_GETDLGCODE:
        WMGetDlgCode(Message);
        return;
    case WM_NCHITTEST:
        FHitTest = ScreenToClient(PointFromParam(Message.LParam));
        TCustomControl::WndProc(Message);
        return;
    case CM_CANCELMODE:
        CMCancelMode(Message);
        return;
    case CM_DESIGNHITTEST:
        CMDesignHitTest(Message);
        return;
    default:
        TCustomControl::WndProc(Message);
    }
}

// --- streams --------------------------------------------------------------------------------------------------

// The counts come first: they are ordinary published properties.
void TCustomExGrid::DefineProperties(TFiler& Filer) {
    TCustomControl::DefineProperties(Filer);
    if (!FSaveExtents) return;
    auto* Ancestor = dynamic_cast<TCustomExGrid*>(Filer.GetAncestor());
    // Entries that follow the default count with its value.
    const auto Differs = [](int Count, int OtherCount, auto Mine, auto Theirs) {
        if (Count != OtherCount) return true;
        for (int I = 0; I < Count; ++I) {
            if (Mine(I) != Theirs(I)) return true;
        }
        return false;
    };
    bool Cols = HasColWidths();
    bool Rows = HasRowHeights();
    if (Ancestor != nullptr) {
        if (Cols || Ancestor->HasColWidths())
            Cols = Differs(
                FColCount, Ancestor->FColCount, [this](int I) { return GetColWidths(I); },
                [Ancestor](int I) { return Ancestor->GetColWidths(I); });
        if (Rows || Ancestor->HasRowHeights())
            Rows = Differs(
                FRowCount, Ancestor->FRowCount, [this](int I) { return GetRowHeights(I); },
                [Ancestor](int I) { return Ancestor->GetRowHeights(I); });
    }
    Filer.DefineProperty(
        "ColWidths", [this](TReader& Reader) { ReadColWidths(Reader); },
        [this](TWriter& Writer) { WriteColWidths(Writer); }, Cols);
    Filer.DefineProperty(
        "RowHeights", [this](TReader& Reader) { ReadRowHeights(Reader); },
        [this](TWriter& Writer) { WriteRowHeights(Writer); }, Rows);
}

namespace {

// Exactly Count numbers, read before any is stored: memory grows with what is really there, whatever the count says.
std::vector<int> ReadExtents(TReader& Reader, int Count) {
    std::vector<int> Extents;
    Reader.ReadListBegin();
    for (int I = 0; I < Count; ++I) Extents.push_back(Reader.ReadInteger());
    Reader.ReadListEnd();
    return Extents;
}

} // namespace

void TCustomExGrid::ReadColWidths(TReader& Reader) {
    int Index = 0;
    for (const int Width : ReadExtents(Reader, FColCount)) SetColWidths(Index++, Width);
}

void TCustomExGrid::WriteColWidths(TWriter& Writer) {
    Writer.WriteListBegin();
    for (int I = 0; I < FColCount; ++I) Writer.WriteInteger(GetColWidths(I));
    Writer.WriteListEnd();
}

void TCustomExGrid::ReadRowHeights(TReader& Reader) {
    int Index = 0;
    for (const int Height : ReadExtents(Reader, FRowCount)) SetRowHeights(Index++, Height);
}

void TCustomExGrid::WriteRowHeights(TWriter& Writer) {
    Writer.WriteListBegin();
    for (int I = 0; I < FRowCount; ++I) Writer.WriteInteger(GetRowHeights(I));
    Writer.WriteListEnd();
}

void TCustomExGrid::Loaded() {
    const TControlGuard Guard(this);
    TCustomControl::Loaded();
    if (!Guard) return;
    // Counts come in any order while a form is read.
    FFixedCols = std::min(FFixedCols, FColCount - 1);
    Initialize();
    UpdateScrollRange();
    if (Guard) InvalidateGrid();
}

} // namespace quill
