#include "flyedit/FlyEdit.h"

#include "flyedit/EditorTree.h"
#include "host/base/Errors.h"
#include "tests/support/QtTest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <memory>

namespace quill {
namespace {

// "Fruit[Apple Pear] Nuts"; WithFields puts image, selected and state index behind each text.
std::string Dump(TFlyNodes& Nodes, bool WithFields = false) {
    std::string Out;
    int Level = 0;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        for (; Level > Node->GetLevel(); --Level) Out += ']';
        if (Level < Node->GetLevel()) {
            Out += '[';
            ++Level;
        } else if (!Out.empty()) {
            Out += ' ';
        }
        Out += Node->GetText();
        if (WithFields) {
            Out += ':' + std::to_string(Node->GetImageIndex()) + '/' +
                   std::to_string(Node->GetSelectedIndex()) + '/' + std::to_string(Node->GetStateIndex());
        }
    }
    return Out + std::string(static_cast<std::size_t>(Level), ']');
}

void Fill(TFlyNodes& Nodes) {
    Nodes.Clear();
    TFlyNode* const Fruit = Nodes.Add(nullptr, "Fruit");
    Nodes.AddChild(Fruit, "Apple");
    Nodes.AddChild(Fruit, "Pear");
    Nodes.Add(nullptr, "Nuts");
}

// Does something to the next modal dialog of class T, whenever it opens.
template <class T>
void InDialog(std::function<void(T&)> Work) {
    QTimer::singleShot(0, qApp, [Work] {
        auto* const Dialog = dynamic_cast<T*>(QApplication::activeModalWidget());
        if (Dialog && Dialog->isVisible()) {
            QTimer::singleShot(5000, Dialog, &QDialog::reject); // rather fail than wait forever
            Work(*Dialog);
        } else {
            QTimer::singleShot(1, qApp, [Work] { InDialog<T>(Work); });
        }
    });
}

class FlyEdit : public ::testing::Test {
protected:
    void SetUp() override {
        Tree.SetFixedRows(0);
        Fill(*Tree.GetItems());
    }
    void Open(const std::optional<TEditorSection>& Section = {}) {
        Editor = std::make_unique<TFlyEditor>();
        Editor->Edit(
            Tree.GetItems(), [this] { ++ModifiedCount; }, Section);
        Editor->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Editor.get()));
    }
    // Keys as "Alt+A", "Ctrl+F3" or single characters, to whatever has the focus.
    void Press(const QStringList& Keys) {
        for (const QString& Key : Keys) {
            const auto Code = QKeySequence(Key)[0];
            // A dialog that has just opened is active a moment later.
            ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::focusWidget() != nullptr; }));
            QWidget* const Focus = QApplication::focusWidget();
            const auto Modifiers = Code.keyboardModifiers();
            if (Key.size() == 1) {
                QTest::keyClick(Focus, Key[0].toLatin1());
            } else {
                QTest::keyClick(Focus, Code.key(), Modifiers);
            }
            // A button that is chosen by its letter is held down for a moment.
            EXPECT_TRUE(QTest::qWaitFor([] {
                const QWidgetList All = QApplication::allWidgets();
                return std::none_of(All.begin(), All.end(), [](QWidget* Widget) {
                    auto* const Button = qobject_cast<QAbstractButton*>(Widget);
                    return Button && Button->isDown();
                });
            }));
            QTest::qWait(0);
        }
    }
    template <class T>
    T& Control(const char* Name) {
        return *Editor->findChild<T*>(Name);
    }
    void Click(const char* Name) { QTest::mouseClick(&Control<QPushButton>(Name), Qt::LeftButton); }
    static void Drag(TFlyEditor& Dialog, QPoint From, QPoint To) {
        QWidget* const View = Dialog.GetTree()->viewport();
        QTest::mousePress(View, Qt::LeftButton, {}, From);
        for (int Step = 1; Step <= 4; ++Step) QTest::mouseMove(View, From + (To - From) * Step / 4);
        QTest::mouseRelease(View, Qt::LeftButton, {}, To);
    }
    TFlyNodes& Edited() { return *Editor->GetTree()->GetItems(); }
    std::string Text(const char* Name) { return Control<QLineEdit>(Name).text().toStdString(); }

    TQuillTree Tree;
    std::unique_ptr<TFlyEditor> Editor;
    int ModifiedCount = 0;
};

TEST_F(FlyEdit, KeysEditTheNodes) {
    const struct {
        QStringList Keys;
        const char* Nodes;
        const char* Selected;
        int Changes;
    } Cases[] = {{{"Alt+A"}, "Fruit[Apple Pear] Nuts New Node", "New Node", 1},
                 {{"F3"}, "Fruit[Apple Pear] Nuts New Node", "New Node", 1},
                 {{"Alt+C"}, "Fruit[Apple Pear New Node] Nuts", "New Node", 1},
                 {{"Down", "Ctrl+F3"}, "Fruit[Apple[New Node] Pear] Nuts", "New Node", 1},
                 {{"Down", "Alt+D"}, "Fruit[Pear] Nuts", "Pear", 1},
                 {{"Down", "Down", "F4"}, "Fruit[Apple] Nuts", "Apple", 1},
                 {{"Down", "Alt+U"}, "Fruit[Apple Pear] Nuts", "Apple", 0},
                 {{"Down", "Down", "Alt+U"}, "Fruit[Pear Apple] Nuts", "Pear", 1},
                 {{"Alt+O"}, "Nuts Fruit[Apple Pear]", "Fruit", 1},
                 {{"Alt+L", "Alt+D", "F4", "F3", "Ctrl+F3"}, "", "", 1},
                 {{"Alt+L", "Alt+C", "Alt+C"}, "New Node[New Node]", "New Node", 3},
                 {{"F2", "x", "Escape"}, "x[Apple Pear] Nuts", "x", 1},
                 {{"F2", "x", "Return", "Down"}, "x[Apple Pear] Nuts", "Apple", 1}};
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Keys.join(' ').toStdString());
        ModifiedCount = 0;
        Open();
        Press(Case.Keys);
        EXPECT_EQ(Dump(Edited()), Case.Nodes);
        TFlyNode* const Selected = Editor->GetTree()->GetSelection();
        EXPECT_EQ(Selected ? Selected->GetText() : "", Case.Selected);
        EXPECT_EQ(ModifiedCount, Case.Changes);
        EXPECT_EQ(Editor->GetModified(), Case.Changes > 0);
        EXPECT_TRUE(Editor->isVisible());
        Edited().CheckInvariants();
        EXPECT_EQ(Dump(*Tree.GetItems()), "Fruit[Apple Pear] Nuts");
    }
}

TEST_F(FlyEdit, FieldsGoToAllSelectedNodesAndBadNumbersAreZero) {
    Open();
    Press({"Down", "Shift+Down", "Alt+I", "4", "x", "Alt+X", "2"});
    EXPECT_EQ(Text("ImageText"), "42");
    EXPECT_TRUE(Control<QPushButton>("Apply").isEnabled());
    EXPECT_EQ(Dump(Edited(), true), "Fruit:0/0/0[Apple:42/0/0 Pear:42/0/0] Nuts:0/0/0");
    Control<QComboBox>("StateText").setFocus();
    Press({"Down", "Down"});
    EXPECT_EQ(Dump(Edited(), true), "Fruit:0/0/0[Apple:42/0/2 Pear:42/0/2] Nuts:0/0/0");
    for (const char* Bad : {"-", "12a", "99999999999", ""}) {
        QApplication::clipboard()->setText(Bad);
        Control<QLineEdit>("SelectedText").setText("7");
        Control<QLineEdit>("SelectedText").setFocus();
        Press({"Ctrl+A", *Bad ? "Ctrl+V" : "Backspace"});
        EXPECT_EQ(Text("SelectedText"), Bad);
        EXPECT_EQ(Dump(Edited(), true), "Fruit:0/0/0[Apple:42/0/2 Pear:42/0/2] Nuts:0/0/0") << Bad;
    }
    // Going to another node shows that one and changes nothing.
    QTest::qWait(0);
    const int Changes = ModifiedCount;
    Editor->GetTree()->setFocus();
    Press({"End"});
    EXPECT_EQ(Text("ImageText") + Text("SelectedText"), "00");
    EXPECT_EQ(Control<QLabel>("UniqueTag").text(), "-1");
    EXPECT_EQ(ModifiedCount, Changes);
    // A state that the list does not have stays when another field changes.
    Edited().GetLastNode()->SetStateIndex(20);
    Press({"Home", "End", "Alt+I", "Ctrl+A", "3"});
    EXPECT_EQ(Dump(Edited(), true), "Fruit:0/0/0[Apple:42/0/2 Pear:42/0/2] Nuts:3/0/20");
}

TEST_F(FlyEdit, DefaultsAndEnumeratedIndexesTravelWithApply) {
    const testing::TExpectQtWarning NoGrab("This plugin does not support grabbing the keyboard");
    Open();
    QMenu& Menu = Control<QMenu>("TreeMenu");
    QContextMenuEvent Event(QContextMenuEvent::Keyboard, {9, 9}, Editor->mapToGlobal(QPoint(9, 9)));
    QApplication::sendEvent(Editor->GetTree(), &Event);
    ASSERT_EQ(QApplication::activePopupWidget(), &Menu);
    QTest::keyClick(&Menu, 'b');
    // This platform leaves no window active when a menu closes.
    Editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Editor.get()));
    EXPECT_EQ(Dump(Edited(), true), "Fruit:0/0/0[Apple:1/1/0 Pear:2/2/0] Nuts:3/3/0");
    QTest::keyClick(Editor->GetTree(), Qt::Key_F4);
    EXPECT_EQ(Dump(Edited(), true), "Nuts:3/3/0");
    Press({"Alt+I", "Ctrl+A", "5"});
    Control<QComboBox>("StateText").setCurrentIndex(3);
    Click("SetasDefaultValues");
    Click("Add");
    EXPECT_EQ(Dump(Edited(), true), "Nuts:5/3/3 New Node:5/3/3");
    Click("Apply");
    EXPECT_EQ(Dump(*Tree.GetItems(), true), "Nuts:5/3/3 New Node:5/3/3");
    EXPECT_EQ(Tree.GetItems()->GetDefaultImageIndex(), 5);
    EXPECT_EQ(Tree.GetItems()->GetDefaultStateIndex(), 3);
    EXPECT_FALSE(Editor->GetModified());
    EXPECT_FALSE(Control<QPushButton>("Cancel").isEnabled());
    EXPECT_FALSE(Control<QPushButton>("Apply").isEnabled());
}

TEST_F(FlyEdit, OkStoresCancelDoesNotAndTheResultTellsOfChanges) {
    const struct {
        QStringList Keys;
        int Changes;
        bool Result;
        const char* Nodes;
    } Cases[] = {{{"Alt+I", "Return"}, 0, false, "Fruit[Apple Pear] Nuts"},
                 {{"F3", "Escape"}, 1, false, "Fruit[Apple Pear] Nuts"},
                 {{"Alt+D"}, 1, true, "Nuts"},
                 {{"F2", "x"}, 1, true, "x[Apple Pear] Nuts"}};
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Keys.join(' ').toStdString());
        Fill(*Tree.GetItems());
        InDialog<TFlyEditor>([this, &Case](TFlyEditor& Dialog) {
            Press(Case.Keys);
            if (Dialog.isVisible()) QTest::mouseClick(Dialog.findChild<QPushButton*>("OK"), Qt::LeftButton);
        });
        int Changes = 0;
        EXPECT_EQ(EditNodes(Tree.GetItems(), [&Changes] { ++Changes; }), Case.Result);
        EXPECT_EQ(Changes, Case.Changes);
        EXPECT_EQ(Dump(*Tree.GetItems()), Case.Nodes);
    }
}

TEST_F(FlyEdit, BranchesComeBackAsOpenAsTheyWere) {
    TFlyNodes& Items = *Tree.GetItems();
    Items.AddChild(Items.GetFirstNode()->GetFirstChild(), "Green");
    Items.AddChild(Items.Add(nullptr, "Bread"), "Rye");
    Items.GetFirstNode()->Expand(false);
    Open();
    Press({"Alt+A", "Home", "Alt+O"}); // moves the open branch down
    Editor->accept();
    Editor->Store();
    std::string Rows;
    for (int Row = 0; Row < Tree.GetRowCount(); ++Row) Rows += Tree.GetNodeAtRow(Row)->GetText() + ' ';
    EXPECT_EQ(Rows, "Nuts Fruit Apple Pear Bread New Node ");
    Items.CheckInvariants();
}

TEST_F(FlyEdit, SurvivesTheEndOfTheNodesAndOfItsParent) {
    auto Doomed = std::make_unique<TQuillTree>();
    Fill(*Doomed->GetItems());
    InDialog<TFlyEditor>([&](TFlyEditor& Dialog) {
        Doomed.reset();
        for (const char* Name : {"Add", "Apply", "OK"})
            QTest::mouseClick(Dialog.findChild<QPushButton*>(Name), Qt::LeftButton);
    });
    EXPECT_TRUE(EditNodes(Doomed->GetItems()));

    const testing::TExpectQtWarning NoGrab("This plugin does not support grabbing the keyboard");
    // The last key of each case makes the change that ends the dialog.
    std::unique_ptr<QWidget> Parent;
    const QStringList Cases[] = {{"Alt+D"},
                                 {"F4"},
                                 {"Ctrl+F3"},
                                 {"Alt+O"},
                                 {"F2", "x", "Alt+A"},
                                 {"F2", "x", "Alt+E"},
                                 {"F2", "x", "Down"},
                                 {"F2", "x", "Tab"},
                                 {"Alt+I", "5"},
                                 {"Alt+S", "Down"}};
    for (const QStringList& Keys : Cases) {
        SCOPED_TRACE(Keys.join(' ').toStdString());
        Parent = std::make_unique<QWidget>();
        InDialog<TFlyEditor>([&](TFlyEditor&) { Press(Keys); });
        const auto Destroy = [&Parent] { Parent.reset(); };
        EXPECT_FALSE(EditNodes(Tree.GetItems(), Destroy, Parent.get()));
        EXPECT_EQ(Parent, nullptr);
    }
    Parent = std::make_unique<QWidget>();
    InDialog<TFlyEditor>([&](TFlyEditor& Dialog) {
        auto* const Menu = Dialog.findChild<QMenu*>("TreeMenu");
        Menu->popup({});
        QTest::keyClick(Menu, 'b');
    });
    EXPECT_FALSE(EditNodes(
        Tree.GetItems(), [&Parent] { Parent.reset(); }, Parent.get()));
    TStringList Widths;
    for (const QPoint By : {QPoint(40, 0), QPoint(-120, 0)}) { // a border is dragged, or a column
        Parent = std::make_unique<QWidget>();
        Widths.SetCommaText("100,100");
        InDialog<TFlyEditor>([&](TFlyEditor& Dialog) {
            const QPoint From(By.x() > 0 ? 100 : 150, 10);
            Drag(Dialog, From, From + By);
        });
        EXPECT_FALSE(EditSectionNodes(
            Tree.GetItems(), 2, 0, &Widths, [&Parent] { Parent.reset(); }, nullptr, Parent.get()));
        EXPECT_EQ(Parent, nullptr);
    }
    EXPECT_EQ(Dump(*Tree.GetItems()), "Fruit[Apple Pear] Nuts");
}

TEST_F(FlyEdit, GoesOnWhenItsCallerClearsTheNodesAndClosesWhenAsked) {
    InDialog<TFlyEditor>([&](TFlyEditor& Dialog) {
        Press({"F4"});
        EXPECT_EQ(Dump(*Tree.GetItems()), "");
        QTest::mouseClick(Dialog.findChild<QPushButton*>("OK"), Qt::LeftButton);
    });
    EXPECT_TRUE(EditNodes(Tree.GetItems(), [this] { Tree.GetItems()->Clear(); }));
    EXPECT_EQ(Dump(*Tree.GetItems()), "Nuts");
    // Also out of what "OK" itself stores.
    const auto Close = [] { QApplication::activeModalWidget()->close(); };
    for (const QStringList& Keys : {QStringList{"F4"}, QStringList{"F2", "x"}}) {
        InDialog<TFlyEditor>([&](TFlyEditor& Dialog) {
            Press(Keys);
            if (Dialog.isVisible()) Dialog.accept();
        });
        EXPECT_FALSE(EditNodes(Tree.GetItems(), Close));
        EXPECT_EQ(Dump(*Tree.GetItems()), "Nuts");
    }
}

TEST_F(FlyEdit, SectionsFollowTheMouse) {
    TStringList Widths;
    TStringList Aligns;
    Widths.SetCommaText("120,80");
    Aligns.SetCommaText("0,1");
    TFlyNode* const Fruit = Tree.GetItems()->GetFirstNode();
    Fruit->SetCell(1, "one");
    Fruit->SetCell(2, "two");
    Open(TEditorSection{3, 0, &Widths, &Aligns});
    TEditorTree& View = *Editor->GetTree();
    EXPECT_TRUE(Control<QGroupBox>("Aligns").isVisible());
    EXPECT_EQ(Widths.GetCommaText() + " " + Aligns.GetCommaText(), "120,80,75 0,1,0");
    const auto Caption = [&View](int Col) {
        const TRect R = View.CellRect(Col, 0);
        return QPoint((R.Left + R.Right) / 2, (R.Top + R.Bottom) / 2);
    };
    Drag(*Editor, {View.CellRect(1, 0).Right, Caption(1).y()},
         {View.CellRect(1, 0).Right + 20, Caption(1).y()});
    EXPECT_EQ(Widths.GetCommaText(), "120,100,75");
    Drag(*Editor, Caption(0), Caption(1) + QPoint(40, 0));
    EXPECT_EQ(Widths.GetCommaText() + " " + Aligns.GetCommaText(), "100,120,75 1,0,0");
    EXPECT_EQ(View.GetStructureCol(), 1);
    TFlyNode* const Copy = Edited().GetFirstNode();
    EXPECT_EQ(View.GetNodeCells(Copy, 0) + View.GetNodeCells(Copy, 1) + View.GetNodeCells(Copy, 2),
              "oneFruittwo");
    View.SetCol(2);
    Control<QAbstractButton>("Center").click();
    Click("AddCell");
    EXPECT_EQ(Widths.GetCommaText() + " " + Aligns.GetCommaText(), "100,120,75,75 1,0,2,0");
    Click("Apply");
    EXPECT_EQ(Tree.GetStructureCol(), 1);
    EXPECT_EQ(Tree.GetNodeCells(Fruit ? Tree.GetItems()->GetFirstNode() : nullptr, 1), "Fruit");

    // More fixed columns than the section has, and nodes without a tree.
    Tree.SetFixedCols(2);
    Widths.SetCommaText("-5,0,90");
    Open(TEditorSection{1, 0, &Widths, &Aligns});
    Click("AddCell");
    TFlyNodes Empty;
    Editor = std::make_unique<TFlyEditor>();
    Editor->Edit(&Empty, {}, TEditorSection{2, 1, &Widths, &Aligns});
    Editor->show();
    Click("AddChild");
    EXPECT_EQ(Editor->GetTree()->GetNodeCells(Edited().GetFirstNode(), 1), "New Node");
    Widths.SetCommaText("75,wide");
    EXPECT_THROW(EditSectionNodes(Tree.GetItems(), 2, 0, &Widths), EConvertError);
}

TEST_F(FlyEdit, FilesAreSavedAsNodesTextAndLoadedInBothFormats) {
    const testing::TTempFolder Folder;
    const auto Choose = [&](const char* Button, const char* Title, const QString& Name) {
        InDialog<QFileDialog>([=](QFileDialog& Dialog) {
            EXPECT_EQ(Dialog.windowTitle(), Title);
            Dialog.findChild<QLineEdit*>()->setText(Name);
            QTest::keyClick(Dialog.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        Click(Button);
    };
    const QString Name = QString::fromStdString(Folder.File("saved"));
    Open();
    Choose("SaveNodes", "Choose file for save nodes", Name);
    EXPECT_FALSE(Editor->GetModified());
    QFile Saved(Name + ".nodes");
    ASSERT_TRUE(Saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(Saved.readAll(),
              "SaveOptions:63\r\n0,0,0,1,0,Fruit\r\n\t0,0,0,0,0,Apple\r\n\t0,0,0,0,0,Pear\r\n"
              "0,0,0,0,0,Nuts\r\n");
    Click("Clear");
    Choose("LoadNodes", "Choose file for load nodes", Name + ".nodes");
    EXPECT_EQ(Dump(Edited()), "Fruit[Apple Pear] Nuts");
    TFlyNodes Own;
    Own.Add(nullptr, "binary");
    Own.SaveToFile(Folder.File("own"));
    Editor->LoadFrom(QString::fromStdString(Folder.File("own")));
    EXPECT_EQ(Dump(Edited()), "binary");

    // What cannot be loaded is told and changes nothing.
    const int Changes = ModifiedCount;
    const QByteArray Broken[] = {"SaveOptions:1\r\nx,Text\r\n",  "a\r\n\t\t\tb\r\n",
                                 "SaveOptions:1\r\n5,a\r\n\r\n", "QTREE\x01\xFF",
                                 "TreeCollection:9\r\n",         QByteArray("a\0b", 3)};
    for (const QByteArray& Bytes : Broken) {
        QFile File(Name);
        ASSERT_TRUE(File.open(QIODevice::WriteOnly));
        File.write(Bytes);
        File.close();
        QString Message;
        InDialog<QMessageBox>([&Message](QMessageBox& Box) {
            Message = Box.text();
            Box.accept();
        });
        Editor->LoadFrom(Name);
        EXPECT_FALSE(Message.isEmpty()) << Bytes.toStdString();
        EXPECT_EQ(Dump(Edited()), "binary") << Bytes.toStdString();
    }
    EXPECT_EQ(ModifiedCount, Changes);
}

TEST_F(FlyEdit, TakesTheColumnsOfTheTree) {
    Tree.SetColCount(3);
    Tree.SetUniqueTags(true);
    for (int Col = 0; Col < 3; ++Col) {
        Tree.SetColWidths(Col, 100 + Col);
        Tree.SetCaptions(Col, std::string(1, static_cast<char>('a' + Col)));
    }
    Tree.SetFixedRows(1);
    Tree.GetItems()->GetFirstNode()->SetCell(2, "two");
    Tree.GetItems()->Insert(nullptr, "hidden")->Hide();
    Tree.MoveColumn(0, 2); // shown as b, c, a
    Open();
    TEditorTree& View = *Editor->GetTree();
    std::string Columns;
    for (int Col = 0; Col < View.GetColCount(); ++Col)
        Columns += View.GetCaptions(Col) + std::to_string(View.GetColWidths(Col)) + " ";
    EXPECT_EQ(Columns, "a100 b101 c102 ");
    EXPECT_EQ(View.GetFixedRows(), 1);
    EXPECT_EQ(View.GetStructureCol(), 0);
    ASSERT_EQ(View.GetSelection(), View.GetNodeAtRow(1));
    EXPECT_EQ(View.GetNodeCells(View.GetSelection(), 2), "two");
    EXPECT_EQ(Control<QLabel>("UniqueTag").text(), "0");
    for (TGridOption Option : {goFixedVertLine, goVertLine, goColSizing, goColMoving})
        EXPECT_TRUE(View.HasOption(Option));
}

TEST_F(FlyEdit, GrowsWithTheFont) {
    Open();
    const QSize Small = Editor->size();
    if (QFontInfo(Editor->font()).pixelSize() <= 12) {
        EXPECT_EQ(Small, QSize(576, 319));
    }
    QFont Big = Editor->font();
    Big.setPixelSize(24);
    Editor->setFont(Big);
    QTest::qWait(0);
    EXPECT_GE(Editor->width(), Small.width() * 3 / 2);
    EXPECT_EQ(Editor->minimumSize(), Editor->maximumSize());
    for (QPushButton* Button : Editor->findChildren<QPushButton*>()) {
        EXPECT_LE(Button->fontMetrics().size(Qt::TextShowMnemonic, Button->text()).width(), Button->width())
            << Button->text().toStdString();
    }
}

} // namespace
} // namespace quill
