// The mouse on a real window: buttons expand, clicks select, hits follow what is painted.
#include "tests/tree/TreeTestSupport.h"

#include <QTest>
#include <QWindow>

namespace quill {
namespace {

QPoint WindowPoint(TCustomQuillTree& Tree, TPoint Client) {
    return Tree.viewport()->mapTo(Tree.window(), QPoint(Client.X, Client.Y));
}

void Click(TCustomQuillTree& Tree, TPoint Client, Qt::KeyboardModifiers Modifiers = Qt::NoModifier,
           Qt::MouseButton Button = Qt::LeftButton) {
    QTest::mouseClick(Tree.windowHandle(), Button, Modifiers, WindowPoint(Tree, Client));
}

TPoint Middle(const TRect& R) { return {(R.Left + R.Right) / 2, (R.Top + R.Bottom) / 2}; }

TPoint TextOf(TTestTree& Tree, const char* Name) { return Middle(Tree.DisplayRect(Tree.Find(Name), true)); }

// The centre of a node's button as it is painted.
TPoint ButtonOf(TCustomQuillTree& Tree, TFlyNode* Node) {
    const TRect Cell = Tree.CellRect(Tree.GetStructureCol(), Node->GetRow());
    const int X = Tree.GetCX(Node->GetLevel());
    return {Tree.UseRightToLeftAlignment() ? Tree.GetClientWidth() - 1 - X : X, (Cell.Top + Cell.Bottom) / 2};
}

class TreeMouse : public testing::TestWithParam<TBiDiMode> {
protected:
    void SetUp() override {
        Tree.SetBiDiMode(GetParam());
        Tree.Build("Fruit+\n Apple\n Pear\n  Red\n  Green\nNuts\n Hazel\n");
        Tree.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&Tree));
    }
    TTestTree Tree;
};

TEST_P(TreeMouse, AClickOnTheButtonExpandsAndDoesNotSelect) {
    std::string Log;
    Tree.OnExpanded = [&](TObject*, TFlyNode* Node) { Log += "expanded " + Node->GetText() + ";"; };
    Tree.OnCollapsed = [&](TObject*, TFlyNode* Node) { Log += "collapsed " + Node->GetText() + ";"; };
    Tree.OnChange = [&](TObject*, TFlyNode* Node) { Log += "current " + Node->GetText() + ";"; };
    Click(Tree, ButtonOf(Tree, Tree.Find("Pear")));
    // The release marks the current node; the node of the button is none of it.
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel)< Apple Pear(+) Red Green Nuts");
    Click(Tree, ButtonOf(Tree, Tree.Find("Nuts")));
    Click(Tree, ButtonOf(Tree, Tree.Find("Pear")));
    EXPECT_EQ(Tree.Rows(), "Fruit(+)(sel)< Apple Pear Nuts(+) Hazel");
    EXPECT_EQ(Log, "expanded Pear;expanded Nuts;current Fruit;collapsed Pear;");
}

TEST_P(TreeMouse, AClickOnATextSelectsAndOnAButtonKeepsTheMarks) {
    const std::tuple<const char*, Qt::KeyboardModifier, const char*> Clicks[] = {
        {"Pear", Qt::NoModifier, "Fruit(+) Apple Pear(sel)< Nuts"},
        {"Nuts", Qt::NoModifier, "Fruit(+) Apple Pear Nuts(sel)<"},
        {"Apple", Qt::ShiftModifier, "Fruit(+) Apple(sel)< Pear(sel) Nuts(sel)"},
        {"Pear", Qt::ControlModifier, "Fruit(+) Apple(sel) Pear< Nuts(sel)"},
        {"Apple", Qt::NoModifier, "Fruit(+) Apple(sel)< Pear Nuts"},
        {"Nuts", Qt::ControlModifier, "Fruit(+) Apple(sel) Pear Nuts(sel)<"},
    };
    for (const auto& [Name, Modifier, Expected] : Clicks) {
        Click(Tree, TextOf(Tree, Name), Modifier);
        EXPECT_EQ(Tree.Rows(), Expected);
    }
    Click(Tree, ButtonOf(Tree, Tree.Find("Nuts")));
    EXPECT_EQ(Tree.Rows(), "Fruit(+) Apple(sel) Pear Nuts(+)(sel)< Hazel");
}

TEST_P(TreeMouse, ARangeDrawnOverTheTextsOutlivesItsRelease) {
    const auto Send = [&](QEvent::Type Type, const char* Name) {
        const QPoint Pos = WindowPoint(Tree, TextOf(Tree, Name));
        if (Type == QEvent::MouseButtonPress) QTest::mousePress(Tree.windowHandle(), Qt::LeftButton, {}, Pos);
        if (Type == QEvent::MouseMove) QTest::mouseMove(Tree.windowHandle(), Pos);
        if (Type == QEvent::MouseButtonRelease)
            QTest::mouseRelease(Tree.windowHandle(), Qt::LeftButton, {}, Pos);
        QCoreApplication::processEvents();
    };
    const char* const Drawn = "Fruit(+) Apple(sel)< Pear(sel) Nuts(sel)";
    Tree.SetRightClickSelect(true);
    Send(QEvent::MouseButtonPress, "Apple");
    Send(QEvent::MouseMove, "Nuts");
    EXPECT_EQ(Tree.Rows(), Drawn);
    Click(Tree, TextOf(Tree, "Fruit"), {}, Qt::RightButton);
    EXPECT_EQ(Tree.GetGridState(), gsSelecting) << "other buttons mean nothing meanwhile";
    Send(QEvent::MouseMove, "Nuts");
    Send(QEvent::MouseButtonRelease, "Nuts");
    EXPECT_EQ(Tree.Rows(), Drawn);
    Send(QEvent::MouseButtonPress, "Apple");
    Send(QEvent::MouseMove, "Nuts");
    QTest::keyClick(&Tree, Qt::Key_Escape);
    Send(QEvent::MouseMove, "Fruit");
    EXPECT_EQ(Tree.Rows(), "Fruit(+) Apple(sel)< Pear Nuts") << "Esc takes the range back";
}

TEST_P(TreeMouse, EveryReleaseIsAClick) {
    int Clicks = 0;
    Tree.OnClick = [&](TObject*) { ++Clicks; };
    const TPoint Pear = TextOf(Tree, "Pear");
    QTest::mouseDClick(Tree.windowHandle(), Qt::LeftButton, {}, WindowPoint(Tree, Pear));
    QCoreApplication::processEvents();
    EXPECT_EQ(Clicks, 2);
}

TEST_P(TreeMouse, HotTrackingFollowsTheMouse) {
    Tree.SetHotTrack(true);
    const TPoint Pear = TextOf(Tree, "Pear");
    QTest::mouseMove(Tree.windowHandle(), WindowPoint(Tree, Pear));
    QCoreApplication::processEvents();
    EXPECT_EQ(Tree.GetTrackedRow(), Tree.Find("Pear")->GetRow());
    Tree.Perform(CM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(Tree.GetTrackedRow(), -1);
}

INSTANTIATE_TEST_SUITE_P(BothDirections, TreeMouse, testing::Values(bdLeftToRight, bdRightToLeft));

} // namespace
} // namespace quill
