// Dragging nodes: inside the program (dtStandard) and with all others (dtOLE), the node under the mouse as the drop
// target, the picture and text of the selected rows, and row moves that move nodes.
#include "host/base/Events.h"
#include "host/graphics/Canvas.h"
#include "host/windows/Application.h"
#include "host/windows/Dragging.h"
#include "host/windows/FlagScope.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <cstdlib>

namespace quill {

namespace {

// What is transparent in a drag picture; no theme has it.
constexpr TColor DragKeyColor = 0xFE01FE;
// Where the picture hangs beside the mouse when marks have to stay in sight, in pixels.
constexpr TPoint BesideMouse{14, 10};

bool IsBeyondThreshold(TPoint From, int X, int Y) {
    const int Threshold = Mouse.GetDragThreshold();
    return std::abs(X - From.X) > Threshold || std::abs(Y - From.Y) > Threshold;
}

} // namespace

TCustomQuillTree* TCustomQuillTree::FDraggingTree = nullptr;

// --- type and target ----------------------------------------------------------------------------------------------

void TCustomQuillTree::SetDragType(TNVDragType Value) {
    if (Value == FDragType) return;
    FDragType = Value;
    UpdateDropTarget();
}

void TCustomQuillTree::CreateWindowHandle(const TCreateParams& Params) {
    const TControlGuard Guard(this);
    TCustomExGrid::CreateWindowHandle(Params);
    if (Guard) UpdateDropTarget();
}

void TCustomQuillTree::UpdateDropTarget() {
    if (FDragType != dtOLE) {
        if (!FOleDropTarget) return;
        EndDropTarget();
        FOleDropTarget->Unregister();
        FOleDropTarget.reset();
        return;
    }
    if (!FOleDropTarget) {
        FOleDropTarget = CreateDropTarget();
        FOleDropTarget->OnOleDragOver = [this](TObject* Sender, NV_IDataObject* Data, TShiftState Shift,
                                               TPoint Pt,
                                               int& Effect) { OLEDragOver(Sender, Data, Shift, Pt, Effect); };
        FOleDropTarget->OnOleDragDrop = [this](TObject* Sender, NV_IDataObject* Data, TShiftState Shift,
                                               TPoint Pt,
                                               int& Effect) { OLEDragDrop(Sender, Data, Shift, Pt, Effect); };
        FOleDropTarget->OnOleDragEnded = [this](TObject*) { EndDropTarget(); };
    }
    if (HandleAllocated() && !HasState(csDesigning)) FOleDropTarget->Register(this);
}

std::unique_ptr<TOLEDropTarget> TCustomQuillTree::CreateDropTarget() {
    return std::make_unique<TOLEDropTarget>(this);
}

std::unique_ptr<TOLEDropSource> TCustomQuillTree::CreateDropSource() {
    return std::make_unique<TOLEDropSource>(this);
}

void TCustomQuillTree::InvalidateDropRow(int Row) {
    if (Row < 0) return;
    if (IsRowSelect()) {
        InvalidateVisibleRow(Row);
    } else {
        InvalidateCell(FStructureCol, Row);
    }
}

TFlyNode* TCustomQuillTree::GetDropTarget() {
    if (!HandleAllocated()) return nullptr;
    const int Row = TCustomExGrid::GetDropTargetRow();
    TFlyNode* const Node = Row == -1 ? nullptr : GetNodeAtRow(Row);
    return Node ? Node : FDropTargetNode;
}

void TCustomQuillTree::SetDropTarget(TFlyNode* Node) {
    if (!HandleAllocated()) return;
    const int OldRow = TCustomExGrid::GetDropTargetRow();
    if (!Node) {
        SetDropTargetRow(-1);
        InvalidateDropRow(OldRow);
        if (FDropTargetNode) InvalidateDropRow(FDropTargetNode->GetRow());
        return;
    }
    const int Row = Node->GetRow();
    if (Row >= 0 && Row == OldRow) return;
    // A node without a row (one that is just being filled) is no reason for the mouse to drag.
    if (Row >= 0 && GetGridState() != gsRowMoving) SetGridState(gsRowMoving);
    FDropTargetNode = OldRow >= 0 ? GetNodeAtRow(OldRow) : nullptr;
    InvalidateDropRow(OldRow);
    SetDropTargetRow(Row);
    InvalidateDropRow(Row);
}

// Nothing is dragged over the tree any more.
void TCustomQuillTree::EndDropTarget() {
    SetGridState(gsNormal);
    StopDrag();
    SetDropTarget(nullptr);
    FDropTargetNode = nullptr;
    EndAim();
}

// Whether AutoDrop does something with the nodes of a drag from that tree. Asked with every move of the mouse.
bool TCustomQuillTree::TakesDrag(TCustomQuillTree* From, TFlyNode* Target, bool Copy) {
    return FAutoDrop && From && CanDropNodes(From->FDraggedNodes, Target, FDropPlace, Copy);
}

// --- the picture of a drag inside the program ---------------------------------------------------------------------

class TCustomQuillTree::TNodeDrag : public TDragControlObject {
public:
    explicit TNodeDrag(TCustomQuillTree* ATree) : TDragControlObject(ATree), FTree(ATree), FGuard(ATree) {}
    ~TNodeDrag() override { EndImage(); }
    void Moved() override {
        TCustomImageList* const Images = FGuard ? FTree->GetDragImages() : nullptr;
        if (!Images) return;
        TPoint Pos = FTree->ScreenToClient(GetDragPos());
        TOLEDropTarget::ClientPtToWindowPt(FTree, Pos);
        if (FShown) {
            ImageList_DragMove(Pos.X, Pos.Y);
        } else if (ImageList_BeginDrag(*Images, 0, FTree->FDragHotSpot.X, FTree->FDragHotSpot.Y)) {
            FShown = ImageList_DragEnter(FTree, Pos.X, Pos.Y);
        }
    }
    void HideDragImage() override {
        if (FShown) ImageList_DragShowNolock(false);
    }
    void ShowDragImage() override {
        if (FShown) ImageList_DragShowNolock(true);
    }
    void Finished(TCustomControl*, int, int, bool) override { EndImage(); }

private:
    void EndImage() {
        if (std::exchange(FShown, false)) ImageList_EndDrag();
    }
    TCustomQuillTree* FTree;
    TControlGuard FGuard;
    bool FShown = false;
};

// --- the start of a drag ------------------------------------------------------------------------------------------

bool TCustomQuillTree::BeginRowDrag(int&, int&, const TPoint&) {
    if (FItems && FItems->GetUpdateCount() == 0) FDragPending = true;
    return true;
}

bool TCustomQuillTree::EndRowDrag(int&, int&, const TPoint&) {
    FDragPending = false;
    return true;
}

void TCustomQuillTree::WMLButtonDown(TWMMouse& Message) {
    FDragPending = false;
    FDragPoint.reset();
    const TControlGuard Guard(this);
    TCustomExGrid::WMLButtonDown(Message);
    if (!Guard || GetDragKind() != dkDrag || !(FDragPending || FDragType == dtOLE)) return;
    const TPoint Pos{Message.XPos, Message.YPos};
    TFlyNode* Node = GetNodeAt(Pos.X, Pos.Y);
    const THitTests Hit = GetHitTestInfoAt(Pos.X, Pos.Y);
    if (!Node || !Hit.Contains(htOnItem) || !(Hit * THitTests{htOnButton, htOnIcon, htOnIndent}).IsEmpty())
        return;
    // The press has done so already, unless it was refused or took a mark away.
    if (GetNodeAtRow(GetRow()) != Node) Node->SetFocused(true);
    if (!Guard || IsEditorShowing()) return;
    const TGridCoord Cell = MouseCoord(Pos.X, Pos.Y);
    if (Cell.X < GetFixedCols() || Cell.Y < GetFixedRows()) return;
    if (DragsFromColumn(Node, GetColumnOrder(Cell.X)) && Guard) FDragPoint = Pos;
}

bool TCustomQuillTree::DragsFromColumn(TFlyNode*, int) { return true; }

// With the left button held: the mouse may have gone far enough.
void TCustomQuillTree::DetectDrag(int X, int Y) {
    if (!FDragPoint || !IsBeyondThreshold(*FDragPoint, X, Y)) return;
    const TGridState State = GetGridState();
    if (FDragType == dtStandard) {
        if (!FDragPending || IsDragSource()) return;
        // The grid would move the row by itself; the drag takes over.
        FDraggedNode = IsDragging() ? GetNodeAtRow(GetDragIndex()) : nullptr;
        LeaveMode();
        FDragPending = false;
        const TControlGuard Guard(this);
        PrepareDragImages(GetNodeAt(FDragPoint->X, FDragPoint->Y), FDragPoint->X, FDragPoint->Y,
                          FDragImages.get());
        if (Guard) BeginDrag(false, Mouse.GetDragThreshold());
        return;
    }
    if (FDropSource || (State != gsNormal && State != gsSelecting && State != gsRowMoving)) return;
    const TPoint From = *FDragPoint;
    FDragPoint.reset();
    LeaveMode();
    DoOleDrag(From.X, From.Y);
}

void TCustomQuillTree::DoStartDrag(TDragObject*& DragObject) {
    const TControlGuard Guard(this);
    TCustomExGrid::DoStartDrag(DragObject);
    if (!Guard) return;
    FDraggedNodes = GetDraggedNodes();
    FDropTargetNode = nullptr;
    if (DragObject) return; // the program's own
    FNodeDrag = std::make_unique<TNodeDrag>(this);
    DragObject = FNodeDrag.get();
}

TCustomImageList* TCustomQuillTree::GetDragImages() {
    return FDragImages->GetCount() > 0 ? FDragImages.get() : nullptr;
}

// --- over the tree ------------------------------------------------------------------------------------------------

namespace {

bool IsCtrlHeld() { return (GetKeysHeld() & MK_CONTROL) != 0; }

} // namespace

// The tree accepts unless AutoDrop cannot do it or a handler says otherwise.
void TCustomQuillTree::DragOver(TObject* Source, int X, int Y, TDragState State, bool& Accept) {
    Accept = true;
    const TControlGuard Guard(this);
    auto* const From = dynamic_cast<TCustomQuillTree*>(Source);
    if (State == dsDragMove) {
        TFlyNode* const Node = GetNodeAt(X, Y);
        if (!Guard) return;
        AimDrop(Node, {X, Y});
        // A drop beside the nodes goes to the end, not to the node that was shown last.
        if (FAutoDrop && !Node) SetDropTarget(nullptr);
        if (FAutoDrop && From && !From->FDraggedNodes.empty()) Accept = TakesDrag(From, Node, IsCtrlHeld());
    }
    if (Guard) FireEvent(OnDragOver, this, Source, X, Y, State, Accept);
}

void TCustomQuillTree::DragDrop(TObject* Source, int X, int Y) {
    const TControlGuard Guard(this);
    auto* const From = dynamic_cast<TCustomQuillTree*>(Source);
    const TControlGuard FromGuard(From ? From : this);
    const TNodeWatch Target(GetNodeAt(X, Y));
    if (!Guard || !FromGuard) return;
    const bool HadTarget = Target;
    const TDropPlace Place = FDropPlace;
    const bool Copy = IsCtrlHeld();
    TCustomExGrid::DragDrop(Source, X, Y);
    if (!Guard || !FromGuard || !From || !FAutoDrop || (HadTarget && !Target)) return;
    // The row that was pressed means nothing any more.
    From->FDraggedNode = nullptr;
    DropNodes(From->GetDraggedNodes(), Target, Place, Copy);
}

void TCustomQuillTree::CMDrag(TCMDrag& Message) {
    const TControlGuard Guard(this);
    TDragObject* const Object = Message.DragRec->Object;
    const TPoint Pos = ScreenToClient(Message.DragRec->Pos);
    const bool FromTree = dynamic_cast<TCustomQuillTree*>(Message.DragRec->Source) != nullptr;
    const bool WasActive = GetActiveDrag() == Object;
    const TNodeWatch Target(Message.DragMessage == dmDragDrop ? GetDropTarget() : nullptr);
    TCustomExGrid::CMDrag(Message);
    if (!Guard) return;
    switch (Message.DragMessage) {
    case dmDragEnter:
        break;
    case dmDragMove:
        // A handler may have ended the drag.
        if (!WasActive || GetActiveDrag() == Object) DoDragOver(Object, Pos.X, Pos.Y, Message.Result != 0);
        break;
    case dmDragLeave:
    case dmDragCancel:
        EndDropTarget();
        break;
    case dmDragDrop:
        EndDropTarget();
        if (FromTree) FDropTargetNode = Target; // until the source's drag has ended
        break;
    }
}

void TCustomQuillTree::DoDragOver(TDragObject* Source, int X, int Y, bool) {
    const TControlGuard Guard(this);
    TFlyNode* Node = GetNodeAt(X, Y);
    if (!Guard || !Node || (Node == GetDropTarget() && Node != FDropTargetNode)) return;
    const bool WasActive = GetActiveDrag() == Source;
    FDropTargetNode = nullptr;
    if (Source) Source->HideDragImage();
    Node->SetDropTarget(true);
    if (!Guard) return;
    if (Node->GetRow() >= 0 && GetGridState() != gsRowMoving) SetGridState(gsRowMoving);
    // In that state the timer of the grid scrolls at the edges.
    if (!HasTimer(ScrollTimerID)) SetTimer(ScrollTimerID, ScrollTimerInterval);
    Update();
    if (Guard && Source && (!WasActive || GetActiveDrag() == Source)) Source->ShowDragImage();
}

// --- the end ------------------------------------------------------------------------------------------------------

void TCustomQuillTree::DoEndDrag(TObject* Target, int X, int Y) {
    const TControlGuard Guard(this);
    auto* const Tree = dynamic_cast<TCustomQuillTree*>(Target);
    const TControlGuard TreeGuard(Tree ? Tree : this);
    const TNodeWatch Node(Tree == this ? FDropTargetNode : nullptr);
    const TNodeWatch Dragged(FDraggedNode);
    // A handler may begin the next drag.
    const std::unique_ptr<TDragObject> Ended = std::move(FNodeDrag);
    FDraggedNode = nullptr;
    FDraggedNodes.clear();
    TCustomExGrid::DoEndDrag(Target, X, Y);
    if (Tree && TreeGuard) {
        Tree->SetGridState(gsNormal);
        Tree->FDropTargetNode = nullptr;
    }
    if (!Guard || IsDragSource()) return;
    FDragImages->Clear();
    const TPoint Pos = ScreenToClient(Mouse.GetCursorPos());
    {
        // The press that began it ends here, for the grid, too.
        const TFlagScope Ending(this, FEndingDrag);
        const TShiftState Shift = KeysToShiftState(GetKeysHeld() & (MK_SHIFT | MK_CONTROL));
        Perform(WM_LBUTTONUP, Shift.Bits(), MakePointParam(Pos.X, Pos.Y));
    }
    if (!Guard) return;
    FDropTargetNode = nullptr;
    if (!Dragged) return;
    int From = Dragged->GetRow();
    int To = Node ? Node->GetRow() : From;
    if (!EndRowDrag(From, To, Pos) || !Guard) return;
    if (From != To && From >= GetFixedRows() && From < GetRowCount() && To >= GetFixedRows())
        RowMoved(From, To);
}

// A release that ends a drag is no click.
void TCustomQuillTree::WMLButtonUp(TWMMouse& Message) {
    FDragPending = false;
    FDragPoint.reset();
    if (FEndingDrag) {
        LeaveMode();
        return;
    }
    // A click is reported after a small move, and after a double click, too.
    IncludeControlState(csClicked);
    TCustomExGrid::WMLButtonUp(Message);
}

// --- moving rows --------------------------------------------------------------------------------------------------

void TCustomQuillTree::RowMoved(int FromIndex, int ToIndex) {
    if (HasState(csDestroying)) return;
    const TControlGuard Guard(this);
    if (TFlyNode* Target = FAutoMove ? GetNodeAtRow(ToIndex) : nullptr) {
        MoveSelectedTo(Target);
        if (!Guard) return;
    }
    SetDropTargetRow(-1);
    TCustomExGrid::RowMoved(FromIndex, ToIndex);
}

// Rows above Target go behind it, rows below it before it. Where that is was decided before the first one moves: several nodes keep their order.
void TCustomQuillTree::MoveSelectedTo(TFlyNode* Target) {
    std::vector<TFlyNode*> Nodes;
    FillSelectedList(Nodes);
    const TControlGuard Guard(this);
    const TNodeWatch TargetWatch(Target);
    const TNodeWatch Current(GetNodeAtRow(GetRow()));
    const TNodeWatch Next(GetNextVisible(Target));
    const bool IsLast = !Next;
    const int TargetRow = Target->GetRow();
    std::vector<bool> Down;
    int Top = TargetRow;
    for (const TFlyNode* Node : Nodes) {
        Down.push_back(TargetRow > Node->GetRow());
        Top = std::min(Top, Node->GetRow());
    }
    const TGoneWatch Gone;
    for (std::size_t i = 0; i < Nodes.size(); ++i) {
        TFlyNode* const Node = Nodes[i];
        if (Gone.IsGone(Node) || !TargetWatch) continue;
        TFlyNode* const Before = Down[i] ? Next.Get() : TargetWatch.Get();
        if (Down[i] && !IsLast && !Before) continue;
        // Nothing goes below itself.
        if (Before && (Before == Node || Before->HasAsParent(Node))) continue;
        {
            const TFlagScope Loading(this, FLoading);
            Node->MoveTo(Before, Before ? naInsert : naAdd);
        }
        if (!Guard) return;
    }
    { const TUpdateBracket Rows(FItems.get()); } // their list is told of all moves at once
    if (Guard && Current && Current->GetRow() >= 0) SetRow(Current->GetRow());
    if (!Guard || Top < 0) return;
    InvalidatePixels({0, CellRect(0, Top).Top, GetClientWidth(), GetClientHeight()});
}

// --- drags with other programs ------------------------------------------------------------------------------------

std::string TCustomQuillTree::GetDragText() {
    std::string Text;
    if (!FItems) return Text;
    const TGridRect Columns = GetGridSelection();
    const TControlGuard Guard(this);
    std::vector<TFlyNode*> Nodes;
    FillSelectedList(Nodes);
    const TGoneWatch Gone;
    for (TFlyNode* Node : Nodes) {
        if (Gone.IsGone(Node)) continue;
        Text.append(static_cast<std::size_t>(Node->GetLevel()), ' ');
        for (int Col = Columns.Left; Col >= 0 && Col <= Columns.Right && !Gone.IsGone(Node); ++Col) {
            if (Col != 0) Text += '\t';
            Text += GetEditText(Col, Node->GetRow());
            if (!Guard) return Text;
        }
        Text += "\r\n";
    }
    return Text;
}

// The end of a drag to other programs, also when a handler throws.
class TCustomQuillTree::TOleDragScope {
public:
    explicit TOleDragScope(TCustomQuillTree* ATree) : FTree(ATree), FGuard(ATree) {}
    ~TOleDragScope() {
        if (FDraggingTree == FTree) FDraggingTree = nullptr;
        if (!FGuard) return;
        FTree->FDropSource.reset();
        FTree->FDraggedNodes.clear();
        FTree->EndDropTarget();
    }
    TOleDragScope(const TOleDragScope&) = delete;
    TOleDragScope& operator=(const TOleDragScope&) = delete;

private:
    TCustomQuillTree* FTree;
    TControlGuard FGuard;
};

void TCustomQuillTree::DoOleDrag(int X, int Y) {
    TFlyNode* Node = GetNodeAt(X, Y);
    if (!Node || FDraggingTree || FDropSource) return;
    const TControlGuard Guard(this);
    const TNodeWatch Watch(Node);
    TDragResult Result = drUnknown;
    {
        const TOleDragScope Scope(this);
        FDropSource = CreateDropSource();
        FDropSource->OnFeedback = OnOLEGiveFeedback;
        FDropSource->OnCompleteDrag = OnOLECompleteDrag;
        FDropSource->OnStartDrag = OnOLEStartDrag;
        FDropSource->OnSetData = OnOLESetData;
        const std::string Text = GetDragText();
        if (!Guard || !Watch || !FDropSource) return;
        FDropSource->GetDataWrapper()->SetString(Text);
        PrepareDragImages(Node, X, Y, FDragImages.get());
        if (!Guard || !FDropSource) return;
        FDropSource->SetImages(FDragImages.get());
        FDropSource->SetShowImage(true);
        if (FAutoDrop) FDropSource->SetDragTypes({dtCopy, dtMove});
        FDroppedInside = false;
        FDraggedNodes = GetDraggedNodes();
        FDraggingTree = this;
        Result = FDropSource->Execute(this);
        if (!Guard) return;
    }
    if (Guard) NodesDragged(Result, FDroppedInside);
}

void TCustomQuillTree::NodesDragged(TDragResult, bool) {}

// The node under the mouse is shown as the target; what a drop there would do is the program's to say.
void TCustomQuillTree::OLEDragOver(TObject*, NV_IDataObject* Data, TShiftState Shift, TPoint Pt,
                                   int& Effect) {
    const TControlGuard Guard(this);
    if (!AimAt(Pt)) return;
    if (FAutoDrop && FDraggingTree) {
        const bool Copy = CopiesDrag(Shift);
        const bool Takes = TakesDrag(FDraggingTree, FAimedNode, Copy);
        Effect = static_cast<int>(!Takes ? DROPEFFECT_NONE : Copy ? DROPEFFECT_COPY : DROPEFFECT_MOVE);
    }
    if (Guard) FireEvent(OnOLEDragOver, this, Data, Shift, Pt, Effect);
}

// A tree that does not move its nodes offers copies only.
bool TCustomQuillTree::CopiesDrag(TShiftState Shift) const {
    return Shift.Contains(ssCtrl) || !FDraggingTree->GetAutoDrop();
}

// Shows the node under that point as the target of a drag from any program, and where a drop would go. False when the
// tree is gone.
bool TCustomQuillTree::AimAt(TPoint Pt) {
    const TControlGuard Guard(this);
    TFlyNode* Node = GetNodeAt(Pt.X, Pt.Y);
    if (!Guard) return false;
    if (Node != GetDropTarget() || Node == FDropTargetNode) {
        FDropTargetNode = nullptr;
        if (FDropSource) FDragImages->HideDragImage();
        if (Node) {
            Node->SetDropTarget(true);
        } else {
            SetDropTarget(nullptr);
        }
        if (!Guard) return false;
        Update();
        if (!Guard) return false;
        if (FDropSource) FDragImages->ShowDragImage();
        Node = GetNodeAt(Pt.X, Pt.Y);
        if (!Guard) return false;
    }
    AimDrop(Node, Pt);
    return true;
}

void TCustomQuillTree::OLEDragDrop(TObject*, NV_IDataObject* Data, TShiftState Shift, TPoint Pt,
                                   int& Effect) {
    const TControlGuard Guard(this);
    // The view may have scrolled since the last move.
    if (!AimAt(Pt)) return;
    const TNodeWatch Target(FAimedNode);
    const bool HadTarget = Target;
    TCustomQuillTree* const From = FAutoDrop ? FDraggingTree : nullptr;
    const bool Copy = From && CopiesDrag(Shift);
    if (From) Effect = static_cast<int>(Copy ? DROPEFFECT_COPY : DROPEFFECT_MOVE);
    const TDropPlace Place = FDropPlace;
    FireEvent(OnOLEDragDrop, this, Data, Shift, Pt, Effect);
    if (!Guard) return;
    // The source may have gone in the handler.
    if (From && FDraggingTree == From && Effect != 0 && (!HadTarget || Target)) {
        From->FDroppedInside = true;
        DropNodes(From->GetDraggedNodes(), Target, Place, Copy);
        if (!Guard) return;
    }
    EndDropTarget();
}

// The selected rows that are in view, as they look, framed; what is between them is transparent.
void TCustomQuillTree::PrepareDragImages(TFlyNode* Node, int X, int Y, TCustomImageList* ImageList) {
    if (!Node || !ImageList || !HandleAllocated()) return;
    const TControlGuard Guard(this);
    Update();
    if (!Guard) return;
    const TGridRect Columns = GetGridSelection();
    const int Left = IsRowSelect() ? 0 : std::max(Columns.Left, 0);
    const int Right = Columns.Right < 0 ? GetColCount() - 1 : Columns.Right;
    const int Bottom = std::min(GetRowCount() - 1, GetTopRow() + GetVisibleRowCount());
    std::vector<TRect> Rows;
    TRect Bounds{};
    for (int Row = GetTopRow(); Row <= Bottom; ++Row) {
        const TFlyNode* const Shown = FItems->RowList.NodeAt(Row - GetFixedRows());
        TRect R = BoxRect(Left, Row, Right, Row);
        if (!Shown || !Shown->GetSelected() || R.IsEmpty() || !IntersectRect(R, R, GetClientRect())) continue;
        Rows.push_back(R);
        Bounds = Rows.size() == 1 ? R
                                  : TRect{std::min(Bounds.Left, R.Left), std::min(Bounds.Top, R.Top),
                                          std::max(Bounds.Right, R.Right), std::max(Bounds.Bottom, R.Bottom)};
    }
    ImageList->Clear();
    if (Rows.empty()) return;
    const int Width = Bounds.Width();
    const int Height = Bounds.Height();
    const std::unique_ptr<TBitmap> Picture = TBitmap::CreateCompatible(*GetCanvas(), Width, Height);
    TCanvas& Canvas = *Picture->GetCanvas();
    Canvas.GetBrush()->SetColor(DragKeyColor);
    Canvas.FillRect({0, 0, Width, Height});
    Canvas.GetBrush()->SetColor(clBtnShadow);
    for (const TRect& R : Rows) {
        const TRect Place{R.Left - Bounds.Left, R.Top - Bounds.Top, R.Right - Bounds.Left,
                          R.Bottom - Bounds.Top};
        Canvas.BitBlt(Place.Left, Place.Top, R.Width(), R.Height(), *GetCanvas(), R.Left, R.Top, SRCCOPY);
        Canvas.FrameRect(Place);
    }
    ImageList->SetSize(Width, Height);
    ImageList->AddMasked(*Picture, DragKeyColor);
    FDragHotSpot = {X - Bounds.Left, Y - Bounds.Top};
    if (FDropMarks)
        FDragHotSpot = {UseRightToLeftAlignment() ? Width + BesideMouse.X : -BesideMouse.X, -BesideMouse.Y};
    if (!FDropSource) return;
    FDropSource->SetPoint(1, FDragHotSpot.X);
    FDropSource->SetPoint(2, FDragHotSpot.Y);
}

} // namespace quill
