// The keyboard on a real window: every key of the tree, alone and with the grid's, in every layout and direction.
#include "host/windows/Application.h"
#include "tests/support/Keys.h"
#include "tests/tree/TreeTestSupport.h"

#include <QInputMethodEvent>

#include <utility>

namespace quill {
namespace {

struct TLayout {
    const char* Name;
    int Cols;
    int Col; // the current one
    bool RowSelect;
    bool Ranges;
};

constexpr TLayout Single{"one column", 1, 0, false, true};
constexpr TLayout Rows{"one column of whole rows", 1, 0, true, true};
constexpr TLayout Several{"three columns", 3, 0, false, true};
constexpr TLayout Beside{"three columns, beside the outline", 3, 1, false, true};
constexpr TLayout WideRows{"three columns of whole rows", 3, 0, true, true};
constexpr TLayout NoRanges{"one column without ranges", 1, 0, false, false};

class TKeyTree : public TTestTree {
public:
    explicit TKeyTree(const TLayout& Layout, TBiDiMode Mode = bdLeftToRight) {
        TGridOptions Wanted = GetOptions();
        if (Layout.RowSelect) Wanted.Include(goRowSelect);
        if (!Layout.Ranges) Wanted.Exclude(goRangeSelect);
        SetOptions(Wanted);
        SetBiDiMode(Mode);
        SetColCount(Layout.Cols);
        Build("Fruit+\n Apple\n Pear\n  Red\n  Green\n Plum\nNuts\n Hazel\n");
        SetCol(Layout.Col);
        show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
        setFocus();
    }
    void Press(const char* Keys) { testing::PressKeys(*this, Keys); }
    // The rows, and the current column when there are several.
    std::string State() {
        return Rows() + (GetColCount() > 1 ? " col " + std::to_string(GetCol()) : std::string());
    }
};

struct TCase {
    const TLayout& Layout;
    const char* Start;
    const char* Keys;
    const char* Expected;
    const char* Mirrored = nullptr; // where right-to-left differs
};

const TCase Cases[] = {
    {Single, "Pear", "Num++ Num+-", "Fruit(+) Apple Pear(sel)< Plum Nuts"},
    {Single, "Fruit", "Num+-", "Fruit(sel)< Nuts"},
    {Beside, "Pear", "Num++", "Fruit(+) Apple Pear(sel)< Plum Nuts col 1"},
    {WideRows, "Pear", "Num++", "Fruit(+) Apple Pear(+)(sel)< Red Green Plum Nuts col 0"},
    {Single, "Pear", "Right Right", "Fruit(+) Apple Pear(+) Red(sel)< Green Plum Nuts"},
    {Single, "Apple", "Right", "Fruit(+) Apple(sel)< Pear Plum Nuts"},
    {Single, "Apple", "Left Left", "Fruit(sel)< Nuts"},
    {Single, "Nuts", "Left", "Fruit(+) Apple Pear Plum Nuts(sel)<"},
    {Single, "Plum", "Shift+Left", "Fruit(+)(sel)< Apple(sel) Pear(sel) Plum(sel) Nuts"},
    {Rows, "Pear", "Right", "Fruit(+) Apple Pear(+) Red(sel)< Green Plum Nuts",
     "Fruit(+) Apple(sel)< Pear(+) Red Green Plum Nuts"},
    {Rows, "Apple", "Left", "Fruit(+)(sel)< Apple Pear Plum Nuts", "Fruit(+) Apple(sel)< Pear Plum Nuts"},
    {Several, "Pear", "Right", "Fruit(+) Apple Pear(sel)< Plum Nuts col 1",
     "Fruit(+) Apple Pear(sel)< Plum Nuts col 0"},
    {Several, "Pear", "Right Right Right Left", "Fruit(+) Apple Pear(sel)< Plum Nuts col 1"},
    {WideRows, "Pear", "Right", "Fruit(+) Apple Pear Plum(sel)< Nuts col 0",
     "Fruit(+) Apple(sel)< Pear Plum Nuts col 0"},
    {WideRows, "Pear", "Left", "Fruit(+) Apple(sel)< Pear Plum Nuts col 0",
     "Fruit(+) Apple Pear Plum(sel)< Nuts col 0"},
    {Single, "Pear", "Return Return", "Fruit(+) Apple Pear(sel)< Plum Nuts"},
    {Beside, "Pear", "Return", "Fruit(+) Apple Pear(sel)< Plum Nuts col 1"},
    {WideRows, "Pear", "Return", "Fruit(+) Apple Pear(+)(sel)< Red Green Plum Nuts col 0"},
    {Single, "Apple", "Down", "Fruit(+) Apple Pear(sel)< Plum Nuts"},
    {Single, "Apple", "Shift+Down Shift+Down Shift+Up", "Fruit(+) Apple(sel) Pear(sel)< Plum Nuts"},
    {Single, "Pear", "Shift+Down Shift+Up Shift+Up", "Fruit(+) Apple(sel)< Pear(sel) Plum Nuts"},
    {Single, "Apple", "Shift+End", "Fruit(+) Apple(sel) Pear(sel) Plum(sel) Nuts(sel)<"},
    {Single, "Apple", "Ctrl+Down", "Fruit(+) Apple(sel) Pear< Plum Nuts"},
    {Single, "Apple", "Ctrl+Down Shift+Down", "Fruit(+) Apple Pear(sel) Plum(sel)< Nuts"},
    {Single, "Apple", "Shift+Down Down", "Fruit(+) Apple Pear Plum(sel)< Nuts"},
    {NoRanges, "Apple", "Down", "Fruit(+) Apple Pear(sel)< Plum Nuts"},
    {NoRanges, "Apple", "Shift+Down", "Fruit(+) Apple Pear(sel)< Plum Nuts"},
    {NoRanges, "Apple", "Ctrl+Down", "Fruit(+) Apple(sel)< Pear Plum Nuts"},
    {Single, "Apple", "Home", "Fruit(+)(sel)< Apple Pear Plum Nuts"},
    {Single, "Apple", "End", "Fruit(+) Apple Pear Plum Nuts(sel)<"},
    {Several, "Apple", "End", "Fruit(+) Apple(sel)< Pear Plum Nuts col 2"},
    {Several, "Apple", "End End", "Fruit(+) Apple Pear Plum Nuts(sel)< col 2"},
    {WideRows, "Apple", "End", "Fruit(+) Apple Pear Plum Nuts(sel)< col 0"},
    {Single, "Apple", "PgDown", "Fruit(+) Apple Pear Plum Nuts(sel)<"},
    {Single, "Plum", "PgUp", "Fruit(+)(sel)< Apple Pear Plum Nuts"},
    {Single, "Apple", "'pl'", "Fruit(+) Apple Pear Plum(sel)< Nuts"},
    {Single, "Pear", "'ppp'", "Fruit(+) Apple Pear Plum(sel)< Nuts"},
    {Single, "Apple", "'NU'", "Fruit(+) Apple Pear Plum Nuts(sel)<"},
    {Single, "Apple", "'x'", "Fruit(+) Apple(sel)< Pear Plum Nuts"},
    {Beside, "Apple", "'n'", "Fruit(+) Apple(sel)< Pear Plum Nuts col 1"},
    {WideRows, "Apple", "'n'", "Fruit(+) Apple Pear Plum Nuts(sel)< col 0"},
};

TEST(TreeKeys, DoWhatTheKeyTableSays) {
    for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        for (const TCase& Case : Cases) {
            TKeyTree Tree(Case.Layout, Mode);
            Tree.SetSelection(Tree.Find(Case.Start));
            Tree.Press(Case.Keys);
            const char* Expected = Mode == bdRightToLeft && Case.Mirrored ? Case.Mirrored : Case.Expected;
            EXPECT_EQ(Tree.State(), Expected) << Case.Layout.Name << ", " << Case.Start << ": " << Case.Keys
                                              << (Mode == bdRightToLeft ? ", mirrored" : "");
            Tree.Check();
        }
    }
}

TEST(TreeKeys, SpaceTogglesCheckBoxesAndRadioButtonsOnly) {
    TKeyTree Tree(Single);
    TFlyNode* Node = Tree.Find("Apple");
    Tree.SetSelection(Node);
    for (const bool Logic : {false, true}) {
        Tree.SetShowLogic(Logic);
        std::string Toggled;
        for (int State = -1; State <= 10; ++State) {
            Node->SetStateIndex(State);
            Tree.Press("Space");
            Toggled += std::to_string(Node->GetStateIndex()) + " ";
        }
        EXPECT_EQ(Toggled, Logic ? "-1 0 2 1 3 5 4 6 7 8 9 10 " : "-1 0 1 2 3 4 5 6 7 8 9 10 ");
    }
}

TEST(TreeKeys, SearchIgnoresCaseInAllScriptsAndTakesComposedText) {
    TKeyTree Tree(Single);
    Tree.Build("\u00c4pfel\n\u0413\u0440\u0443\u0448\u0430\n\u03a3\u03cd\u03ba\u03bf\n");
    const auto Compose = [&](const QString& Text) {
        QInputMethodEvent Event;
        Event.setCommitString(Text);
        QCoreApplication::sendEvent(&Tree, &Event);
        return Tree.GetSelection()->GetText();
    };
    EXPECT_EQ(Compose(QStringLiteral(u"\u00e4")), "\u00c4pfel");
    EXPECT_EQ(Compose(QStringLiteral(u"\u0433")), "\u0413\u0440\u0443\u0448\u0430")
        << "nothing begins with both";
    EXPECT_EQ(Compose(QStringLiteral(u"\u03c3")), "\u03a3\u03cd\u03ba\u03bf");
    // The text grows within a second and a half of the last character, and begins anew after that.
    Tree.Press("'p'");
    QTest::qWait(1600);
    Tree.Press("'l'");
    EXPECT_EQ(Tree.GetSelection()->GetText(), "Pear") << "no text begins with l";
    Tree.OnGetEditText = [](TObject*, int, int Row, std::string& Text) {
        Text = "row " + std::to_string(Row);
    };
    Tree.Press("'r'");
    EXPECT_EQ(Tree.GetSelection()->GetText(), "Plum") << "what the program shows is searched";
}

TEST(TreeKeys, SearchDoesNotCreateAMillionNodes) {
    TKeyTree Tree(Single);
    int Made = 0;
    Tree.OnMaterialise = [&](TObject*, TFlyNode* Node) { Node->SetText("Z" + std::to_string(++Made)); };
    Tree.GetItems()->AddPlaceholders(1000000);
    Tree.GetItems()->Add(nullptr, "Last");
    Tree.SetSelection(Tree.GetItems()->GetFirstNode());
    Tree.Press("'L'");
    EXPECT_EQ(Tree.GetSelection()->GetText(), "Last");
    EXPECT_LT(Made, 11000);
}

// Every way to another node, refused: marks, anchor and current node stay.
TEST(TreeKeys, ARefusedMoveChangesNothing) {
    using TWay = void (*)(TKeyTree&);
    const TWay Ways[] = {[](TKeyTree& Tree) { Tree.Press("Down"); },
                         [](TKeyTree& Tree) { Tree.Press("Shift+Down Shift+End"); },
                         [](TKeyTree& Tree) { Tree.Press("Home"); },
                         [](TKeyTree& Tree) { Tree.Press("'n'"); },
                         [](TKeyTree& Tree) { Tree.SetSelection(Tree.Find("Nuts")); },
                         [](TKeyTree& Tree) {
                             const TRect R = Tree.DisplayRect(Tree.Find("Nuts"), true);
                             Tree.Send(WM_LBUTTONDOWN, R.Left + 5, (R.Top + R.Bottom) / 2);
                         }};
    for (const TLayout& Layout : {Single, NoRanges, WideRows}) {
        for (const TWay& Way : Ways) {
            TKeyTree Tree(Layout);
            Tree.SetSelection(Tree.Find("Apple"));
            if (Layout.Ranges) Tree.Press("Shift+Down");
            const std::string Before = Tree.State();
            int Asked = 0;
            int Told = 0;
            Tree.OnChanging = [&](TObject*, TFlyNode*, bool& Allow) {
                ++Asked;
                Allow = false;
            };
            Tree.OnChange = [&](TObject*, TFlyNode*) { ++Told; };
            Way(Tree);
            EXPECT_EQ(Tree.State(), Before) << Layout.Name << ", way " << &Way - Ways;
            EXPECT_GT(Asked, 0);
            EXPECT_EQ(Told, 0);
            if (!Layout.Ranges) continue;
            Tree.OnChanging = nullptr;
            Tree.Press("Shift+Down"); // the range still begins where it began
            EXPECT_NE(Tree.State().find(" Apple(sel) Pear(sel) Plum(sel)< "), std::string::npos)
                << Tree.State();
        }
    }
}

// The branches that close move the current cell about, which is nobody's choice: one question, one answer.
TEST(TreeKeys, AutoExpandTogglesTheChosenNodeOnce) {
    TKeyTree Tree(Single);
    Tree.SetAutoExpand(true);
    std::string Log;
    Tree.OnChanging = [&](TObject*, TFlyNode* Node, bool&) { Log += "?" + Node->GetText() + " "; };
    Tree.OnChange = [&](TObject*, TFlyNode* Node) { Log += "!" + Node->GetText() + " "; };
    Tree.OnExpanded = [&](TObject*, TFlyNode* Node) { Log += "+" + Node->GetText() + " "; };
    Tree.OnCollapsed = [&](TObject*, TFlyNode* Node) { Log += "-" + Node->GetText() + " "; };
    const auto Said = [&] { return std::exchange(Log, {}) + "| " + Tree.Rows(); };
    Tree.Press("End");
    EXPECT_EQ(Said(), "?Nuts !Nuts +Nuts -Fruit -Pear | Fruit Nuts(+)(sel)< Hazel");
    Tree.Press("Up");
    EXPECT_EQ(Said(), "?Fruit !Fruit +Fruit -Nuts | Fruit(+)(sel)< Apple Pear Plum Nuts");
    Tree.Press("Down Down");
    EXPECT_EQ(Said(), "?Apple !Apple ?Pear !Pear +Pear | Fruit(+) Apple Pear(+)(sel)< Red Green Plum Nuts");
    Tree.SetSelection(Tree.Find("Pear"));
    EXPECT_EQ(Said(), "?Pear !Pear -Pear | Fruit(+) Apple Pear(sel)< Plum Nuts") << "chosen again";
    Tree.Check();
}

} // namespace
} // namespace quill
