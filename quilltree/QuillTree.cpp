// The tree's life, its properties, and what the node model asks of it.
#include "quilltree/QuillTree.h"
#include "host/base/Events.h"
#include "host/windows/Application.h"
#include "host/windows/FlagScope.h"
#include "htmldraw/NVHTMLHintWindow.h"
#include "oledragdrop/OLEDragDrop.h"

#include <algorithm>
#include <typeinfo>

namespace quill {

namespace {

// A new tree has this size until a layout or a form gives it another one.
constexpr int InitialWidth = 121;
constexpr int InitialHeight = 97;
// Of the drag image list, until there is a picture.
constexpr int DragImageSize = 32;

} // namespace

TCustomQuillTree::TCustomQuillTree(TComponent* AOwner, QWidget* AParent)
    : TCustomExGrid(AOwner, AParent), FButtonSize(GetCheckSize() - 2) {
    SetDoubleBuffered(true);
    SetWidth(InitialWidth);
    SetHeight(InitialHeight);
    SetParentColor(false);
    FItems = std::make_unique<TFlyNodes>(this);
    FItems->OnMaterialise = nullptr;
    FItems->Add(nullptr, "TFlyNode");
    FImageChangeLink.OnChange = [this](TObject* Sender) { ImageListChange(Sender); };
    InitGlyphs();
    FDragImages = std::make_unique<TNVDragImageList>(nullptr, DragImageSize, DragImageSize);
    InitColumnsMap();
}

TCustomQuillTree::~TCustomQuillTree() {
    BeginDestruction();
    StopToolTipTimer();
    FHintWindow.reset();
    if (FDraggingTree == this) FDraggingTree = nullptr;
    FDropSource.reset();
    FOleDropTarget.reset();
    if (FImages) FImages->UnRegisterChanges(&FImageChangeLink);
    // The container still asks this object things while it goes.
    FItems->RowList.Clear();
    FItems.reset();
}

void TCustomQuillTree::SetNodes(TFlyNodes* Value) {
    if (Value) FItems->Assign(Value);
}

TFlyNode* TCustomQuillTree::CreateNode(TTreeCollection* Owner) { return new TFlyNode(Owner); }

void TCustomQuillTree::Loaded() {
    const TControlGuard Guard(this);
    {
        const TFlagScope Loading(this, FLoading);
        TCustomExGrid::Loaded();
    }
    if (!Guard) return;
    if (FButtonSize > FIndent) SetButtonSize(FIndent);
    RefreshNodeList(nullptr);
    FixupRows();
    if (!Guard) return;
    InitColumnsMap();
    TakeLoadedColumns();
    FAnchorNode = FItems->GetFirstNode();
    if (TFlyNode* Node = GetNodeAtRow(GetRow())) SetSelection(Node);
    if (Guard && HasState(csDesigning)) FullExpand();
}

void TCustomQuillTree::Notification(TComponent* AComponent, TOperation Operation) {
    TCustomExGrid::Notification(AComponent, Operation);
    if (Operation == opRemove && FImages && AComponent == FImages) FImages = nullptr;
}

void TCustomQuillTree::CMFontChanged(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomExGrid::CMFontChanged(Message);
    if (Guard && FFitToHeight) RefreshRowHeights();
}

// --- properties --------------------------------------------------------------------------------------------------

// Stores a property that painting reads.
template <class T>
void TCustomQuillTree::SetPainted(T& Field, T Value) {
    if (Field == Value) return;
    Field = Value;
    Invalidate();
}

void TCustomQuillTree::SetButtonSize(int Value) {
    // A form names the size before the indentation; Loaded checks.
    if (Value == FButtonSize || Value < 1 || (Value > FIndent && !HasState(csReading))) return;
    SetPainted(FButtonSize, Value % 2 == 0 ? Value - 1 : Value);
}

void TCustomQuillTree::SetIndent(int Value) {
    if (Value > FButtonSize || (HasState(csReading) && Value > 1)) SetPainted(FIndent, Value);
}

void TCustomQuillTree::SetFitColumnToClientWidth(bool Value) {
    if (Value == FFitColumnToClientWidth) return;
    FFitColumnToClientWidth = Value;
    const TControlGuard Guard(this);
    UpdateScrollRange();
    if (Guard) InvalidateGrid();
}

void TCustomQuillTree::SetFitToHeight(bool Value) {
    if (Value == FFitToHeight) return;
    FFitToHeight = Value;
    RefreshRowHeights();
    const TControlGuard Guard(this);
    RowHeightsChanged();
    if (Guard) InvalidateGrid();
}

void TCustomQuillTree::SetNodeSelectionStyle(TNodeSelectionStyle Value) {
    SetPainted(FNodeSelectionStyle, Value);
}
void TCustomQuillTree::SetOutlineStyle(TOutlineStyle Value) { SetPainted(FOutlineStyle, Value); }
void TCustomQuillTree::SetOutlineColor(TColor Value) { SetPainted(FOutlineColor, Value); }
void TCustomQuillTree::SetHotTrackColor(TColor Value) { SetPainted(FHotTrackColor, Value); }
void TCustomQuillTree::SetHideSelection(bool Value) { SetPainted(FHideSelection, Value); }
void TCustomQuillTree::SetTransparentMode(bool Value) { SetPainted(FTransparentMode, Value); }
void TCustomQuillTree::SetStatesDrawed(bool Value) { SetPainted(FStatesDrawed, Value); }
void TCustomQuillTree::SetShowlines(bool Value) { SetPainted(FShowlines, Value); }
void TCustomQuillTree::SetShowRoot(bool Value) { SetPainted(FShowRoot, Value); }
void TCustomQuillTree::SetShowButtons(bool Value) { SetPainted(FShowButtons, Value); }
void TCustomQuillTree::SetShowImages(bool Value) { SetPainted(FShowImages, Value); }
void TCustomQuillTree::SetShowLogic(bool Value) { SetPainted(FShowLogic, Value); }
void TCustomQuillTree::SetWordWrap(bool Value) { SetPainted(FWordWrap, Value); }
void TCustomQuillTree::SetHTMLDrawing(bool Value) { SetPainted(FHTMLDrawing, Value); }
void TCustomQuillTree::SetFirstLevelDrawMode(unsigned char Value) { SetPainted(FFirstLevelDrawMode, Value); }

void TCustomQuillTree::SetHotTrack(bool Value) {
    FHotTrack = Value && FStructureCol >= GetFixedCols();
    if (!FHotTrack) SetTrackedNode(-1);
}

void TCustomQuillTree::SetEnumerateNodes(bool Value) {
    FUniqueTags = Value;
    FItems->SetLastUniqueTag(-1);
    if (Value) EnumerateNodes();
}

void TCustomQuillTree::EnumerateNodes() {
    const TControlGuard Guard(this);
    FItems->SetEnumerating(true);
    FItems->SetLastUniqueTag(-1);
    // Walking makes placeholders real, which runs application code.
    TNodeWatch Node(FItems->GetFirstNode());
    while (Guard && Node) {
        Node->SetUniqueTag(-1);
        Node.Reset(Node->GetNext());
    }
    if (Guard) FItems->SetEnumerating(false);
}

void TCustomQuillTree::SetSortType(TSortType Value) {
    if (Value == FSortType) return;
    FSortType = Value;
    switch (Value) {
    case stNone:
        break;
    case stData:
        if (OnCompare) FItems->AlphaSort();
        break;
    case stText:
    case stBoth:
        FItems->AlphaSort();
        break;
    }
}

void TCustomQuillTree::SetImages(TCustomImageList* Value) {
    if (FImages) FImages->UnRegisterChanges(&FImageChangeLink);
    FImages = Value;
    if (FImages) {
        FImages->RegisterChanges(&FImageChangeLink);
        FImages->FreeNotification(this);
        const TControlGuard Guard(this);
        if (FImages->GetHeight() > GetDefaultRowHeight()) SetDefaultRowHeight(FImages->GetHeight());
        if (!Guard || !FImages) return;
        // Room for a picture and a little air; refused when the expand button would not fit.
        if (FImages->GetWidth() + 4 > FButtonSize) SetIndent(FImages->GetWidth() + 4);
    }
    Invalidate();
}

void TCustomQuillTree::ImageListChange(TObject* Sender) {
    if (IsLoading() || !HandleAllocated() || !GetVisible()) return;
    if (Sender && Sender == FImages && FImages->HandleAllocated()) Invalidate();
}

// --- what the node model asks ------------------------------------------------------------------------------------

void TCustomQuillTree::SetRedraw(bool Enable) {
    if (HandleAllocated()) Perform(WM_SETREDRAW, Enable ? 1 : 0, 0);
}

// Nothing while redraw is off: the tree may be half changed. Nor while the user's own action runs, which is shown in
// one piece, and after which messages are processed anyway.
void TCustomQuillTree::ProcessMessages() {
    if (!GetRedraw() || FInAction || IsDestroying()) return;
    const TControlGuard Guard(this);
    Update();
    if (!Guard) return;
    Application.ProcessMessages();
}

void TCustomQuillTree::ForgetNode(TFlyNode* Node) {
    if (FDropTargetNode == Node) FDropTargetNode = nullptr;
    if (FToolTipNode == Node) ForgetToolTip();
    if (FAimedNode == Node) FAimedNode = nullptr;
    if (FDraggedNode == Node) FDraggedNode = nullptr;
    if (!FDraggedNodes.empty()) std::erase(FDraggedNodes, Node);
    if (FEditNode == Node) {
        FEditNode = nullptr;
        FollowEdit();
    }
    if (FAnchorNode == Node) FAnchorNode = nullptr;
    if (FRangeStartNode == Node) FRangeStartNode = nullptr;
    FAncestorsOf = nullptr;
}

void TCustomQuillTree::ForgetSelectionNodes() {
    FAnchorNode = nullptr;
    FRangeStartNode = nullptr;
}

void TCustomQuillTree::NodeMaterialised(TFlyNode* Node) { FireEvent(OnMaterialise, this, Node); }

bool TCustomQuillTree::StoresPlainTexts() const {
    const std::type_info& Class = typeid(*this);
    return Class == typeid(TQuillTree) || Class == typeid(TCustomQuillTree);
}

int TCustomQuillTree::Compare(TFlyNode* Node1, TFlyNode* Node2) {
    int Result = 0;
    FireEvent(OnCompare, this, Node1, Node2, Result);
    return Result;
}

int TCustomQuillTree::CalcMaxTopRow(int ACol, int ARow) {
    TExGridDI DI;
    CalcDI(DI);
    return CalcMaxTopLeft({ACol, ARow}, DI).Y;
}

void TCustomQuillTree::SetGridSelection(int Left, int Top, int Right, int Bottom) {
    TCustomExGrid::SetSelection(GridRect(Left, Top, Right, Bottom));
}

void TCustomQuillTree::InvalidateBox(int ALeft, int ATop, int ARight, int ABottom, bool Erase) {
    if (HandleAllocated()) InvalidatePixels(BoxRect(ALeft, ATop, ARight, ABottom), Erase);
}

void TCustomQuillTree::InvalidateRectBelow(TFlyNode* Node) {
    if (!Node || !HandleAllocated()) return;
    const int Row = Node->GetRow();
    if (Row < 0) return;
    const TRect Cell = CellRect(0, Row);
    InvalidatePixels({0, Cell.Top, GetClientWidth(), GetClientHeight()});
}

} // namespace quill
