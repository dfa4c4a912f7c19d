// Properties of the host that act: place, limits, what comes from the parent, hints, menus, the order of Tab.
#include "host/graphics/Colors.h"
#include "host/windows/Menus.h"
#include "htmldraw/HTMLText.h"
#include "tests/forms/FormTestTools.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>

namespace quill {
namespace {

class TPanel : public TCustomControl {
public:
    TPanel() : TCustomControl(nullptr) {
        SetBorderStyle(bsNone);
        SetBounds(0, 0, 200, 100);
        HandleNeeded();
    }
    TNVHTMLText* Add(const char* Name, int Left, int Top, int Width, int Height) {
        auto* const Label = new TNVHTMLText(this);
        Label->SetName(Name);
        Label->SetParent(this);
        Label->SetBounds(Left, Top, Width, Height);
        return Label;
    }
    std::string Places() const {
        std::string Text;
        for (int I = 0; I < GetComponentCount(); ++I) {
            const auto* C = dynamic_cast<TCustomControl*>(GetComponents(I));
            Text += C->GetName() + " " + std::to_string(C->GetLeft()) + "," + std::to_string(C->GetTop()) +
                    " " + std::to_string(C->GetWidth()) + "x" + std::to_string(C->GetHeight()) + "; ";
        }
        return Text;
    }
};

TEST(HostProperties, AlignedControlsFillTheirParent) {
    for (const bool Shown : {false, true}) {
        TPanel Panel;
        if (Shown) Panel.show();
        Panel.Add("client", 0, 0, 5, 5)->SetAlign(alClient);
        Panel.Add("top", 0, 0, 9, 20)->SetAlign(alTop);
        Panel.Add("left", 0, 0, 30, 9)->SetAlign(alLeft);
        Panel.Add("bottom", 0, 90, 9, 10)->SetAlign(alBottom);
        auto* const Second = Panel.Add("top2", 0, 50, 9, 15);
        Second->SetAlign(alTop);
        EXPECT_EQ(Panel.Places(), "client 30,35 170x55; top 0,0 200x20; left 0,35 30x55; bottom 0,90 200x10; "
                                  "top2 0,20 200x15; ");
        Second->SetVisible(false);
        Second->SetVisible(false);
        Panel.SetBounds(0, 0, 300, 80);
        EXPECT_EQ(Panel.Places(), "client 30,20 270x50; top 0,0 300x20; left 0,20 30x50; bottom 0,70 300x10; "
                                  "top2 0,20 200x15; ");
    }
}

TEST(HostProperties, AnchoredEdgesKeepTheirDistance) {
    TPanel Panel;
    Panel.Add("right", 150, 10, 40, 20)->SetAnchors({akTop, akRight});
    Panel.Add("wide", 10, 40, 180, 20)->SetAnchors({akLeft, akRight, akBottom});
    Panel.Add("middle", 90, 70, 20, 20)->SetAnchors({akTop});
    Panel.Add("plain", 0, 0, 5, 5);
    Panel.SetBounds(0, 0, 10, 10); // and back, without drifting
    Panel.SetBounds(0, 0, 400, 150);
    EXPECT_EQ(Panel.Places(), "right 350,10 40x20; wide 10,90 380x20; middle 190,70 20x20; plain 0,0 5x5; ");
}

TEST(HostProperties, SizesStayWithinTheirLimits) {
    TPanel Panel;
    auto* const Label = Panel.Add("label", 0, 0, 50, 50);
    Label->GetConstraints()->SetMinWidth(60);
    Label->GetConstraints()->SetMaxHeight(40);
    EXPECT_EQ(Panel.Places(), "label 0,0 60x40; ");
    Label->SetBounds(0, 0, 10, 100);
    EXPECT_EQ(Panel.Places(), "label 0,0 60x40; ");
    Label->OnCanResize = [](TObject*, int& Width, int&, bool& Resize) {
        Resize = Width < 90;
        Width = 80;
    };
    Label->SetWidth(85);
    Label->SetWidth(95);
    EXPECT_EQ(Label->GetWidth(), 80);
    Label->OnCanResize = nullptr;
    Label->OnConstrainedResize = [](TObject*, int&, int&, int& MaxWidth, int&) { MaxWidth = 70; };
    int Told = 0;
    Label->OnResize = [&Told](TObject*) { ++Told; };
    Panel.show();
    Label->SetWidth(500);
    QApplication::processEvents();
    EXPECT_EQ(Label->GetWidth(), 70);
    EXPECT_EQ(Told, 1);
}

TEST(HostProperties, ChildrenFollowTheirParentUntilTheyHaveTheirOwn) {
    TPanel Panel;
    auto* const Label = Panel.Add("label", 0, 0, 50, 50);
    const auto State = [Label] {
        return ColorToString(Label->GetColor()) + (Label->GetCtl3D() ? " 3D" : " flat") +
               (Label->GetShowHint() ? " hints" : " none") + (Label->toolTip().isEmpty() ? "" : " shown") +
               (Label->GetBiDiMode() == bdRightToLeft ? " rtl" : " ltr") +
               std::to_string(Label->GetFont()->GetHeight());
    };
    Label->SetHint("<b>plain");
    Panel.SetColor(0x112233);
    Panel.SetCtl3D(false);
    Panel.SetShowHint(true);
    Panel.SetBiDiMode(bdRightToLeft);
    Panel.GetFont()->SetHeight(-31);
    EXPECT_EQ(State(), "$00112233 flat hints shown rtl-31");
    EXPECT_NE(Label->toolTip(), "<b>plain") << "a hint is no markup";
    Label->SetColor(clRed);
    Label->SetCtl3D(true);
    Label->SetShowHint(false);
    Label->SetBiDiMode(bdLeftToRight);
    Label->GetFont()->SetHeight(-11);
    Panel.SetColor(clBlue);
    Panel.SetCtl3D(true);
    Panel.SetCtl3D(false);
    EXPECT_EQ(State(), "clRed 3D none ltr-11");
    Label->SetParentColor(true);
    Label->SetParentCtl3D(true);
    Label->SetParentShowHint(true);
    Label->SetParentBiDiMode(true);
    Label->SetParentFont(true);
    EXPECT_EQ(State(), "clBlue flat hints shown rtl-31");
}

TEST(HostProperties, APopupMenuOpensForItsControl) {
    TPanel Panel;
    auto* const Label = Panel.Add("label", 0, 0, 50, 50);
    TPopupMenu Menu;
    std::string Log;
    Menu.OnPopup = [&](TObject*) { Log += Menu.GetPopupComponent() == &Panel ? "panel;" : "other;"; };
    TMenuItem* const Item = Menu.Add("&Do", [&](TObject*) { Log += "done;"; });
    Panel.SetPopupMenu(&Menu);
    Panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Panel));
    const auto Ask = [&] {
        QContextMenuEvent Event(QContextMenuEvent::Mouse, QPoint(5, 5),
                                Label->viewport()->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(Label->viewport(), &Event);
    };
    const testing::TExpectQtWarning NoGrab("grabbing");
    Ask(); // the label has none and leaves it to the panel
    EXPECT_TRUE(Menu.GetMenu()->isVisible());
    QTest::keyClick(Menu.GetMenu(), Qt::Key_Down);
    QTest::keyClick(Menu.GetMenu(), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(Log, "panel;done;");
    delete Item;
    Panel.SetDesigning(true);
    Ask();
    EXPECT_EQ(Log, "panel;done;") << "while it is being designed";
}

TEST(HostProperties, ItemsOfMenusMayHoldItems) {
    TPanel Panel;
    Panel.SetTabStop(true);
    TPopupMenu Menu;
    int Done = 0;
    TMenuItem* const Outer = Menu.Add("&Sort");
    TMenuItem* const Inner = Outer->Add("&Up", [&](TObject*) { ++Done; });
    Inner->SetShortCut("Ctrl+U");
    Outer->SetParentComponent(Inner); // ignored
    EXPECT_EQ(Outer->GetParentComponent(), &Menu);
    Panel.SetPopupMenu(&Menu);
    Panel.show();
    Panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Panel));
    Panel.SetFocus();
    const auto Press = [&] {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_U, Qt::ControlModifier);
        QApplication::processEvents();
    };
    Press();
    EXPECT_EQ(Done, 1) << "a short cut inside a menu works";
    Inner->SetParentComponent(nullptr);
    EXPECT_EQ(Outer->GetAction()->menu(), nullptr) << "a command again";
    Press();
    Inner->SetParentComponent(&Menu);
    Press();
    EXPECT_EQ(Done, 2);
    Inner->SetParentComponent(Outer);
    delete Inner;
    EXPECT_EQ(Outer->GetAction()->menu(), nullptr);
    TMenuItem Stays;
    Stays.SetParentComponent(Outer);
    Panel.SetPopupMenu(nullptr);
    EXPECT_TRUE(Panel.actions().isEmpty());
    delete Outer;
    EXPECT_EQ(Stays.GetParentComponent(), nullptr);
}

TEST(HostProperties, TabGoesInItsOrder) {
    TPanel Panel;
    const char* const Names[] = {"c", "a", "b"};
    const int Orders[] = {2, 0, 1};
    TNVHTMLText* Labels[3];
    for (int I = 0; I < 3; ++I) {
        Labels[I] = Panel.Add(Names[I], 0, 30 * I, 50, 25);
        Labels[I]->SetTabStop(true);
        Labels[I]->SetTabOrder(Orders[I]);
        Labels[I]->HandleNeeded();
    }
    Panel.show();
    Panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Panel));
    Labels[1]->SetFocus();
    std::string Order;
    for (int I = 0; I < 3; ++I) {
        for (const TNVHTMLText* Label : Labels)
            if (Label->Focused()) Order += Label->GetName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(Order, "abc");
}

TEST(HostProperties, ATreeThatIsDesignedShowsAllItsNodes) {
    TQuillTree Saved;
    Saved.GetItems()->AddChild(Saved.GetItems()->GetFirstNode(), "child");
    const std::string Text = SaveFormToText(&Saved);
    for (const bool Designing : {false, true}) {
        TQuillTree Tree;
        Tree.SetDesigning(Designing);
        LoadFormFromText(Text, &Tree);
        EXPECT_EQ(Tree.GetItems()->RowList.GetCount(), Designing ? 2 : 1);
    }
}

} // namespace
} // namespace quill
