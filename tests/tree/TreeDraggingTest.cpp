// Dragging nodes inside the program, to others and from them.
#include "TreeTestSupport.h"

#include "host/windows/Application.h"
#include "host/windows/Dragging.h"
#include "tests/support/DesktopDrag.h"
#include "tests/support/Handlers.h"
#include "tests/support/QtTest.h"

#include <QtTest>

#include <memory>

namespace quill {
namespace {

using testing::TAnyHandler;
using testing::TDesktopDrag;

class TDragTree : public TTestTree {
public:
    TDragTree() {
        SetColCount(2);
        SetOptions(GetOptions() + TGridOptions{goRowMoving, goRangeSelect} - TGridOptions{goRowSelect});
        Build("A\nB+\n b\nC\nD");
        for (TFlyNode* Node = GetItems()->GetFirstNode(); Node; Node = Node->GetNext())
            SetNodeCells(Node, 1, "cell " + Node->GetText());
        SetSelection(Find("A"));
        show();
        OnStartDrag = [this](TObject*, TDragObject*&) { Log += "start "; };
        OnDragOver = [this](TObject*, TObject* Source, int, int, TDragState State, bool& Accept) {
            EXPECT_TRUE(Accept) << "unlike other controls";
            EXPECT_EQ(Source, static_cast<TObject*>(this));
            const char* const Names[] = {"enter ", "leave ", ""};
            Log += Names[State];
            Accept = Accepts;
        };
        OnDragDrop = [this](TObject*, TObject*, int, int) {
            Log += "drop on " + Name(GetDropTarget()) + " ";
        };
        OnEndDrag = [this](TObject*, TObject* Target, int, int) { Log += Target ? "end " : "end nowhere "; };
        OnRowMoved = [this](TObject*, int From, int To) {
            Log += "row " + std::to_string(From) + ">" + std::to_string(To) + " ";
        };
    }
    bool Accepts = true;
    std::string Log;
    std::string Take() { return std::exchange(Log, {}); }
    static std::string Name(const TFlyNode* Node) { return Node ? Node->GetText() : "nothing"; }
    // "normal" when nothing of a drag is left behind.
    std::string Remains() {
        if (GetActiveDrag()) return "drag";
        if (GetGridState() != gsNormal) return "state";
        if (GetDropTarget()) return "target " + Name(GetDropTarget());
        return GetDropTargetRow() == -1 && GetDropPlace() == dpNone ? "normal" : "row";
    }

    QPoint On(const std::string& Text) {
        const TRect R = DisplayRect(Find(Text), true);
        return {R.Left + 6, (R.Top + R.Bottom) / 2};
    }
    // Marks A and b, with those columns selected.
    void MarkWithColumns(int Left, int Right) {
        FocusCell(Right, 2, true, {}, swNone);
        TCustomExGrid::SetSelection(GridRect(Left, 0, Right, 2));
        FlushSelection();
        Find("A")->SetSelected(true);
        Find("b")->SetSelected(true);
    }
    void Press(const std::string& Text) {
        At(On(Text));
        QTest::mousePress(windowHandle(), Qt::LeftButton, {}, FMouse);
    }
    void MoveTo(const std::string& Text) {
        const QPoint To = On(Text) + QPoint(9, 0);
        for (const QPoint Pos : {FMouse + QPoint(2, 2), FMouse + QPoint(12, 0), FMouse + QPoint(24, 1), To}) {
            At(Pos);
            QTest::mouseMove(windowHandle(), FMouse);
        }
    }
    void Release() { QTest::mouseRelease(windowHandle(), Qt::LeftButton, {}, FMouse); }
    void Drag(const std::string& From, const std::string& To) {
        Press(From);
        MoveTo(To);
        Release();
    }

private:
    void At(QPoint Pos) {
        FMouse = Pos;
        QCursor::setPos(mapToGlobal(Pos));
    }
    QPoint FMouse;
};

TEST(TreeDragging, GoesFromPressToDropAndReportsTheRow) {
    TDragTree Tree;
    Tree.Press("A");
    Tree.MoveTo("C");
    EXPECT_EQ(Tree.Take(), "start enter ");
    EXPECT_TRUE(GetActiveDrag());
    EXPECT_EQ(Tree.Name(Tree.GetDropTarget()), "C");
    EXPECT_TRUE(Tree.Find("C")->GetDropTarget());
    EXPECT_EQ(Tree.GetGridState(), gsRowMoving);
    Tree.Release();
    EXPECT_EQ(Tree.Take(), "drop on C end row 0>3 ");
    EXPECT_EQ(Tree.Remains(), "normal");
    EXPECT_EQ(Tree.Rows(), "A(sel)< B(+) b C D") << "nodes stay, and it was no click";
    Tree.SetAutoMove(true);
    Tree.Drag("A", "C");
    EXPECT_EQ(Tree.Rows(), "B(+) b C A(sel)< D");

    Tree.Take();
    Tree.Accepts = false;
    Tree.Drag("A", "B");
    EXPECT_EQ(Tree.Take(), "start enter leave end nowhere ");
    Tree.Accepts = true;
    Tree.Press("A");
    Tree.MoveTo("B");
    QTest::keyClick(&Tree, Qt::Key_Escape);
    EXPECT_EQ(Tree.Take() + Tree.Remains(), "start enter leave end nowhere normal");
    Tree.Release();
    EXPECT_EQ(Tree.Rows(), "B(+) b C A(sel)< D");
    Tree.Drag("A", "A");
    EXPECT_EQ(Tree.Take().find("row"), std::string::npos) << "to where it is";
    Tree.GetItems()->BeginUpdate();
    Tree.Drag("A", "B");
    Tree.GetItems()->EndUpdate();
    EXPECT_EQ(Tree.Take().find("start"), std::string::npos) << "not while the tree is being changed";
    Tree.SetOptions(Tree.GetOptions() - goRowMoving);
    Tree.Drag("A", "B");
    EXPECT_EQ(Tree.Take(), "");
}

TEST(TreeDragging, PressOnASelectedNodeKeepsTheOthersToDrag) {
    TDragTree Tree;
    Tree.SetAutoMove(true);
    Tree.Find("B")->Collapse(false);
    Tree.SelectOne(1);
    Tree.Drag("B", "D");
    EXPECT_EQ(Tree.Rows(), "C D A(sel) B(sel)<");
    Tree.Press("A");
    Tree.Release();
    EXPECT_EQ(Tree.Rows(), "C D A(sel)< B");
    Tree.Press("B");
    Tree.Release();
    EXPECT_EQ(Tree.Rows(), "C D A B(sel)<") << "a click leaves one";
}

TEST(TreeDragging, RowMovedMovesTheSelectedNodes) {
    const std::tuple<std::vector<std::string>, int, const char*> Cases[] = {
        {{"A"}, 3, "B(+) b C A D"}, {{"A"}, 4, "B(+) b C D A"},      {{"A", "C"}, 4, "B(+) b D A C"},
        {{"D"}, 0, "D A B(+) b C"}, {{"C", "D"}, 0, "C D A B(+) b"}, {{"D"}, 2, "A B(+) D b C"},
        {{"B"}, 2, "A B(+) b C D"}, // not below itself
        {{"b"}, 0, "b A B(+) C D"},
    };
    for (const auto& [Selected, To, Rows] : Cases) {
        TDragTree Tree;
        Tree.FlushSelection();
        for (const std::string& Name : Selected) Tree.Find(Name)->SetSelected(true);
        Tree.RowMoved(0, To);
        EXPECT_EQ(Tree.Take(), "row 0>" + std::to_string(To) + " ") << "only told";
        Tree.SetAutoMove(true);
        Tree.RowMoved(0, To);
        EXPECT_EQ(Tree.Rows(false), Rows) << Selected[0] << " to " << To;
        for (const std::string& Name : Selected) EXPECT_TRUE(Tree.Find(Name)->GetSelected());
        Tree.Check();
    }
}

TEST(TreeDragging, TextHasLevelsAndSelectedColumns) {
    TDragTree Tree;
    Tree.MarkWithColumns(0, 1);
    EXPECT_EQ(Tree.GetDragText(), "A\tcell A\r\n b\tcell b\r\n");
    Tree.MarkWithColumns(1, 1);
    EXPECT_EQ(Tree.GetDragText(), "\tcell A\r\n \tcell b\r\n");
    Tree.FlushSelection();
    EXPECT_EQ(Tree.GetDragText(), "");
}

TEST(TreeDragging, TakesDropsOfOtherPrograms) {
    TDragTree Tree;
    TDesktopDrag Desk(Tree.viewport());
    Desk.Data.setText("dragged");
    EXPECT_EQ(Desk.Enter(Tree.On("A")), 0) << "not before it is asked to";
    Tree.SetDragType(dtOLE);
    Tree.OnOLEDragOver = [&](TObject* Sender, NV_IDataObject*, TShiftState, TPoint, int& Effect) {
        EXPECT_EQ(Sender, static_cast<TObject*>(&Tree));
        if (Tree.Name(Tree.GetDropTarget()) == "b") Effect = 0;
    };
    Tree.OnOLEDragDrop = [&](TObject*, NV_IDataObject* Object, TShiftState, TPoint, int& Effect) {
        TOleObjectWrapper Wrapper(Object);
        Tree.Log +=
            Wrapper.GetString() + " on " + Tree.Name(Tree.GetDropTarget()) + " " + std::to_string(Effect);
    };
    EXPECT_EQ(Desk.Over(Tree.On("A")), Qt::CopyAction);
    EXPECT_EQ(Tree.Name(Tree.GetDropTarget()), "A");
    EXPECT_EQ(Desk.Move(Tree.On("b")), 0) << "the handler refuses";
    Desk.Leave();
    EXPECT_EQ(Tree.Remains(), "normal");
    Desk.Over(Tree.On("C"));
    Desk.Release(Tree.On("C"));
    EXPECT_EQ(Tree.Take() + Tree.Remains(), "dragged on C 1normal");
    Tree.RecreateWnd();
    EXPECT_EQ(Desk.Enter(Tree.On("C")), Qt::CopyAction);
    Tree.SetDragType(dtStandard);
    EXPECT_EQ(Desk.Enter(Tree.On("C")), 0);
}

TEST(TreeDragging, OffersTextAndPictureToOtherPrograms) {
    TDragTree Tree;
    Tree.SetDragType(dtOLE);
    Tree.SetOptions(Tree.GetOptions() + goRowSelect);
    Tree.MarkWithColumns(0, 1);
    std::string Offered;
    TImageList Picture;
    Tree.OnOLEStartDrag = [&](NV_IDataObject* Object, int& Effects) {
        Offered = TOleObjectWrapper(Object).GetString() + std::to_string(Effects);
    };
    Tree.OnOLECompleteDrag = [&](int) { Offered += " done"; };
    Tree.Press("b");
    Tree.MoveTo("C");
    EXPECT_EQ(Offered, "A\tcell A\r\n b\tcell b\r\n1 done");
    const TCustomImageList* const Images = Tree.GetDragImages();
    ASSERT_TRUE(Images);
    EXPECT_EQ(Images->GetWidth(), Tree.CellRect(1, 0).Right - Tree.CellRect(0, 0).Left);
    EXPECT_EQ(Images->GetHeight(), Tree.CellRect(0, 2).Bottom - Tree.CellRect(0, 0).Top)
        << "from the first to the last";
    EXPECT_EQ(Tree.GetGridState(), gsNormal);
    Tree.Release();
    Offered.clear();
    Tree.Press("A");
    Tree.Release();
    EXPECT_EQ(Offered, "");
}

TEST(TreeDragging, DropsMoveAndCopyNodesWhenAsked) {
    enum TPart { Top, Middle, Bottom };
    const std::tuple<const char*, const char*, TPart, bool, const char*> Cases[] = {
        {"D", "A", Top, false, "D A B(+) b C"},
        {"A", "C", Bottom, false, "B(+) b C A D"},
        {"A", "D", Bottom, false, "B(+) b C D A"},
        {"A", "C", Middle, false, "B(+) b C(+) A D"},
        {"A", "B", Bottom, false, "B(+) b A C D"}, // an open branch: into it
        {"A", "b", Bottom, false, "B(+) b A C D"},
        {"b", "D", Top, false, "A B(+) C b D"},
        {"B", "b", Top, false, "A B(+) b C D"}, // not below itself
        {"A", "C", Top, true, "A B(+) b A C D"},
        {"B", "b", Middle, true, "A B(+) b(+) B C D"}, // the copy is closed
    };
    for (const bool Ole : {false, true}) {
        for (const auto& [From, To, Part, Copy, Rows] : Cases) {
            TDragTree Tree;
            Tree.OnDragOver = nullptr;
            Tree.SetAutoDrop(true);
            Tree.SetDropMarks(true);
            Tree.SetSelection(Tree.Find(From));
            const TRect Row = Tree.DisplayRect(Tree.Find(To), false);
            const int Heights[] = {Row.Top + 1, (Row.Top + Row.Bottom) / 2, Row.Bottom - 2};
            const QPoint Pos(Row.Left + 60, Heights[Part]);
            const auto Modifiers = Copy ? Qt::ControlModifier : Qt::NoModifier;
            // The desktop's side comes from within a drag of the tree.
            if (Ole) Tree.SetDragType(dtOLE);
            Tree.OnOLEStartDrag = [&](NV_IDataObject*, int&) {
                TDesktopDrag Desk(Tree.viewport());
                Desk.Modifiers = Modifiers;
                Desk.Data.setText("dragged");
                Desk.Drop(Pos);
            };
            Tree.Press(From);
            Tree.MoveTo("C");
            if (!Ole) {
                QTest::mouseMove(Tree.windowHandle(), Pos);
                QTest::mouseRelease(Tree.windowHandle(), Qt::LeftButton, Modifiers, Pos);
            }
            EXPECT_EQ(Tree.Rows(false), Rows)
                << (Ole ? "other programs, " : "") << From << " to " << To << " at " << Part;
            Tree.Check();
        }
    }
}

TEST(TreeDragging, MarksReachAcrossTheRowAndThePictureKeepsClearOfThem) {
    for (const bool RightToLeft : {false, true}) {
        TDragTree Tree;
        Tree.SetBiDiMode(RightToLeft ? bdRightToLeft : bdLeftToRight);
        Tree.SetDragType(dtOLE);
        Tree.SetDropMarks(true);
        TDesktopDrag Desk(Tree.viewport());
        const TRect Row = Tree.DisplayRect(Tree.Find("C"), true);
        Desk.Data.setText("dragged");
        Desk.Over(QPoint(Row.Left + 6, Row.Top + 1));
        EXPECT_EQ(Tree.GetDropPlace(), dpBefore);
        const double Scale = Tree.GetScale();
        const int Far = RightToLeft ? 3 : Tree.GetClientWidth() - 4;
        const QPoint Mark(static_cast<int>(Far * Scale), static_cast<int>(Row.Top * Scale));
        EXPECT_EQ(Tree.GetSurfaceImage().pixelColor(Mark), Tree.palette().color(QPalette::Highlight));
        Desk.Leave();

        int HotSpot = 0;
        Tree.OnOLEStartDrag = [&](NV_IDataObject* Object, int&) {
            HotSpot = dynamic_cast<TOLEDropSource&>(*Object).GetPoint(1);
        };
        Tree.Drag("A", "C");
        EXPECT_TRUE(RightToLeft ? HotSpot > Tree.GetDragImages()->GetWidth() : HotSpot < 0) << HotSpot;
    }
}

TEST(TreeDragging, HoldingOverABranchOpensItAndAnEdgeScrolls) {
    TDragTree Tree;
    Tree.Find("B")->Collapse(false);
    for (int i = 0; i < 60; ++i) Tree.GetItems()->Add(nullptr, "more");
    Tree.SetDragType(dtOLE);
    Tree.SetHoverExpandTime(20);
    Tree.SetDropScroll(true);
    TDesktopDrag Desk(Tree.viewport());
    Desk.Data.setText("dragged");
    Desk.Over(Tree.On("B"));
    QTest::qWait(60);
    EXPECT_TRUE(Tree.Find("B")->GetExpanded());
    Desk.Move(QPoint(20, Tree.GetClientHeight() - 2));
    QTest::qWait(3 * TCustomExGrid::ScrollTimerInterval);
    const int Top = Tree.GetTopRow();
    EXPECT_GT(Top, 0);
    Desk.Leave();
    QTest::qWait(3 * TCustomExGrid::ScrollTimerInterval);
    EXPECT_EQ(Tree.GetTopRow(), Top);
}

TEST(TreeDragging, EndedFromAMoveItLeavesNothingBehind) {
    TDragTree Tree;
    Tree.OnDragOver = [&](TObject*, TObject*, int, int, TDragState State, bool&) {
        if (State == dsDragMove) Tree.EndDrag(false);
    };
    Tree.Drag("A", "C");
    EXPECT_EQ(Tree.Remains(), "normal");
    EXPECT_EQ(Tree.GetDragImages(), nullptr);
}

TEST(TreeDragging, AHandlerThatThrowsLeavesTheTreeUsable) {
    TDragTree Tree;
    const auto Handler = [](auto&&...) { throw Exception("no"); };
    for (const bool Ole : {false, true}) {
        Tree.SetDragType(Ole ? dtOLE : dtStandard);
        Tree.OnStartDrag = Handler;
        Tree.OnOLEStartDrag = Handler;
        EXPECT_THROW(Tree.BeginDrag(true), Exception);
        Tree.Press("A");
        if (Ole) {
            EXPECT_THROW(Tree.DoOleDrag(Tree.On("A").x(), Tree.On("A").y()), Exception);
        }
        Tree.Release();
        EXPECT_EQ(Tree.Remains(), "normal");
        int Clicks = 0;
        Tree.OnClick = [&](TObject*) { ++Clicks; };
        Tree.Press("C");
        Tree.Release();
        EXPECT_EQ(Clicks, 1);
    }
    std::string Offered;
    Tree.OnOLEStartDrag = [&](NV_IDataObject*, int&) { Offered += "again"; };
    Tree.Drag("A", "C");
    EXPECT_EQ(Offered, "again");
}

TEST(TreeDragging, ARefusedDropLeavesNothingBehind) {
    TDragTree Tree;
    Tree.SetDragType(dtOLE);
    TDesktopDrag Desk(Tree.viewport());
    Desk.Data.setText(""); // promised, and not there
    Desk.Over(Tree.On("C"));
    Desk.Release(Tree.On("C"));
    EXPECT_EQ(Tree.Remains(), "normal");
    Tree.OnOLEDragOver = [&](auto&&...) { Tree.SetDragType(dtStandard); };
    Desk.Over(Tree.On("C"));
    EXPECT_EQ(Tree.Remains(), "normal");
}

TEST(TreeDragging, AutoDropMovesOnceAlsoToAnotherTree) {
    TDragTree Tree;
    Tree.SetAutoDrop(true);
    Tree.SetAutoMove(true);
    Tree.OnDragOver = nullptr;
    Tree.Drag("D", "A");
    EXPECT_EQ(Tree.Find("D")->GetParent(), Tree.Find("A")) << "into it, and no row is moved besides";
    TDragTree Other;
    Other.SetAutoDrop(true);
    int Value = 0;
    Tree.Find("C")->SetData(&Value);
    for (const bool Copy : {true, false}) {
        Other.DropNodes({Tree.Find("C")}, Other.Find("B"), dpAfter, Copy);
        EXPECT_EQ(Other.Remains(), "normal");
    }
    EXPECT_EQ(Tree.Find("C"), nullptr);
    int Owners = 0;
    for (TFlyNode* N = Other.GetItems()->GetFirstNode(); N; N = N->GetNext())
        Owners += N->Getdata() == &Value;
    EXPECT_EQ(Owners, 2);
    Tree.Check();
    Other.Check();
}

TEST(TreeDragging, WhatIsUnderARestingMouseIsTheTarget) {
    TDragTree Tree;
    for (int i = 0; i < 60; ++i) Tree.GetItems()->Add(nullptr, "n" + std::to_string(i));
    Tree.SetDragType(dtOLE);
    Tree.SetDropMarks(true);
    TDesktopDrag Desk(Tree.viewport());
    Desk.Data.setText("dragged");
    const QPoint Pos = Tree.On("C");
    Desk.Over(Pos);
    Tree.SetTopRow(10);
    EXPECT_EQ(Tree.GetDropTarget(), Tree.GetNodeAt(Pos.x(), Pos.y()));
    Tree.Find("n3")->Delete();
    EXPECT_EQ(Tree.GetDropTarget(), Tree.GetNodeAt(Pos.x(), Pos.y()));
    Desk.Leave();
    EXPECT_EQ(Tree.Remains(), "normal");
    const QImage Left = Tree.GetSurfaceImage();
    Tree.Invalidate();
    EXPECT_EQ(Left, Tree.GetSurfaceImage()) << "no mark stays on the surface";
}

TEST(TreeDragging, HandlersMayDoAnything) {
    using TTree = std::unique_ptr<TDragTree>;
    void (*const Deeds[])(TTree&) = {
        [](TTree& T) { T.reset(); },
        [](TTree& T) { T->GetItems()->Clear(); },
        [](TTree& T) { T->EndDrag(false); },
        [](TTree& T) { T->SetDragType(T->GetDragType() == dtOLE ? dtStandard : dtOLE); },
        [](TTree& T) { T->hide(); },
        [](TTree& T) { T->RecreateWnd(); },
    };
    for (const auto& Deed : Deeds) {
        for (int Place = 0; Place < 9; ++Place) {
            auto Tree = std::make_unique<TDragTree>();
            Tree->SetAutoMove(true);
            if (Place >= 5) Tree->SetDragType(dtOLE);
            int Left = 1;
            const TAnyHandler Handler{[&] {
                if (Left-- > 0 && Tree) Deed(Tree);
            }};
            if (Place == 0) Tree->OnStartDrag = Handler;
            if (Place == 1) Tree->OnDragOver = Handler;
            if (Place == 2) Tree->OnDragDrop = Handler;
            if (Place == 3) Tree->OnEndDrag = Handler;
            if (Place == 4) Tree->OnRowMoved = Handler;
            if (Place == 5) Tree->OnOLEDragOver = Handler;
            if (Place == 6) Tree->OnOLEDragDrop = Handler;
            if (Place == 7) Tree->OnOLEStartDrag = Handler;
            if (Place == 8) Tree->OnOLECompleteDrag = Handler;
            const QPoint Pos = Tree->On("D");
            if (Place == 5 || Place == 6) {
                TDesktopDrag Desk(Tree->viewport());
                Desk.Data.setText("dragged");
                Desk.Over(Pos);
                Desk.Release(Pos);
            } else {
                Tree->Press("A");
                for (const int Step : {14, 30, 0}) {
                    if (Tree && Tree->windowHandle())
                        QTest::mouseMove(Tree->windowHandle(), Pos + QPoint(Step, 0));
                }
                if (Tree && Tree->windowHandle())
                    QTest::mouseRelease(Tree->windowHandle(), Qt::LeftButton, {}, Pos);
                EndActiveDrag(false);
            }
            QCoreApplication::processEvents();
            if (Tree) Tree->Check();
            EXPECT_FALSE(GetActiveDrag()) << &Deed - Deeds << " at " << Place;
        }
    }
}

} // namespace
} // namespace quill
