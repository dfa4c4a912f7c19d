// Forms as text: a whole tree and what it refers to, references, faults and their places.
#include "host/base/Streams.h"
#include "host/graphics/Canvas.h"
#include "host/windows/Menus.h"
#include "htmldraw/HTMLText.h"
#include "tests/forms/FormTestTools.h"
#include "tests/support/Handlers.h"

namespace quill {
namespace {

// A window with a tree in all its glory.
struct TWindow {
    TComponent Root{nullptr};
    TQuillTree* Tree = nullptr;
    TImageList* Pictures = nullptr;

    void Build() {
        Root.SetName("Window");
        Tree = new TQuillTree(&Root);
        Tree->SetName("Tree");
        auto* const Menu = new TPopupMenu(&Root);
        Menu->SetName("Menu");
        auto* const Copy = new TMenuItem(&Root);
        Copy->SetName("Copy");
        Copy->SetCaption("&Copy");
        Copy->SetShortCut("Ctrl+C");
        Copy->SetParentComponent(Menu);
        auto* const CopyAll = new TMenuItem(&Root);
        CopyAll->SetName("CopyAll");
        CopyAll->SetParentComponent(Copy);
        Pictures = new TImageList(&Root, 20, 18);
        Pictures->SetName("Pictures");
        for (const TColor Color : {clRed, clLime}) {
            const auto Picture = TBitmap::CreateTransparent(20, 18, 2.0);
            Picture->GetCanvas()->GetBrush()->SetColor(Color);
            Picture->GetCanvas()->FillRect({2, 2, 10, 10});
            Pictures->Add(*Picture);
        }
        Tree->SetColCount(3);
        Tree->SetFixedRows(1);
        Tree->SetImages(Pictures);
        Tree->SetPopupMenu(Menu);
        for (int Col = 0; Col < 3; ++Col) {
            Tree->SetColWidths(Col, 60 + 10 * Col);
            Tree->SetCaptions(Col, "Column \"" + std::to_string(Col) + "\"");
        }
        Tree->MoveColumn(2, 0);
        Tree->SetRowHeights(0, 40);
        TFlyNodes* const Items = Tree->GetItems();
        Items->Clear();
        TFlyNode* Parent = nullptr;
        for (int I = 0; I < 40; ++I) {
            TFlyNode* const Node = Items->AddChild(I % 5 == 0   ? nullptr
                                                   : I % 5 == 1 ? Parent
                                                                : Items->GetFirstNode(),
                                                   "Node " + std::to_string(I));
            Node->SetImageIndex(I % 3 - 1);
            Node->SetSelectedIndex(I % 2);
            Node->SetStateIndex(I % 4 - 1);
            Node->SetCell(1, "line\r\nbreak, \"quotes\" \xC3\xA9\xFF");
            if (I % 7 == 0) Node->SetCell(2, std::string("nul \0 here", 10));
            if (I % 4 == 0) Node->SetHidden(true);
            if (I % 6 == 0) Node->SetHeight(30 + I);
            if (I % 9 == 0) Parent = Node;
        }
    }
    void Find() {
        Tree = dynamic_cast<TQuillTree*>(Root.FindComponent("Tree"));
        Pictures = dynamic_cast<TImageList*>(Root.FindComponent("Pictures"));
    }
};

TEST(FormStream, BringsBackAWholeWindow) {
    TWindow Saved;
    Saved.Build();
    const std::string Text = SaveFormToText(&Saved.Root);
    TWindow Loaded;
    LoadFormFromText(Text, &Loaded.Root);
    Loaded.Find();
    ASSERT_TRUE(Loaded.Tree && Loaded.Pictures);
    EXPECT_EQ(Loaded.Root.GetName(), "Window");
    EXPECT_EQ(Differences(*Loaded.Tree, *Saved.Tree), "");
    EXPECT_EQ(DumpNodes(*Loaded.Tree->GetItems()), DumpNodes(*Saved.Tree->GetItems()));
    EXPECT_EQ(SaveFormToText(&Loaded.Root), Text);
    for (int Col = 0; Col < 3; ++Col) {
        EXPECT_EQ(Loaded.Tree->GetColWidths(Col), Saved.Tree->GetColWidths(Col));
        EXPECT_EQ(Loaded.Tree->GetColumnOrder(Col), Saved.Tree->GetColumnOrder(Col));
        EXPECT_EQ(Loaded.Tree->GetCaptions(Col), Saved.Tree->GetCaptions(Col));
    }
    ASSERT_EQ(Loaded.Tree->GetRowCount(), Saved.Tree->GetRowCount());
    for (int Row = 0; Row < Loaded.Tree->GetRowCount(); ++Row)
        EXPECT_EQ(Loaded.Tree->GetRowHeights(Row), Saved.Tree->GetRowHeights(Row)) << Row;
    Loaded.Tree->GetItems()->CheckInvariants();
    ASSERT_EQ(Loaded.Pictures->GetCount(), 2);
    TBitmap Mine, Theirs;
    Saved.Pictures->GetBitmap(1, Mine);
    Loaded.Pictures->GetBitmap(1, Theirs);
    EXPECT_EQ(Mine.GetImage(2.0), Theirs.GetImage(2.0));
    EXPECT_EQ(Loaded.Tree->GetPopupMenu()->GetPopupComponent(), nullptr);
    auto* const Copy = dynamic_cast<TMenuItem*>(Loaded.Root.FindComponent("Copy"));
    ASSERT_TRUE(Copy && Copy->GetParentComponent() == Loaded.Tree->GetPopupMenu());
    EXPECT_EQ(Copy->GetShortCut(), "Ctrl+C");
    EXPECT_EQ(Loaded.Root.FindComponent("CopyAll")->GetParentComponent(), Copy);

    delete Loaded.Pictures;
    EXPECT_EQ(Loaded.Tree->GetImages(), nullptr);
}

class TEmptyTree : public TQuillTree {
public:
    using TQuillTree::TQuillTree;
    bool SaveNodes() override { return false; }
};

TEST(FormStream, NodesStayBehindWhereTheTreeSaysSo) {
    TEmptyTree Saved;
    Saved.GetItems()->Add(nullptr, "second");
    const std::string Text = SaveFormToText(&Saved);
    EXPECT_EQ(Text.find("Data"), std::string::npos);
    TEmptyTree Loaded;
    LoadFormFromText(Text, &Loaded);
    EXPECT_EQ(Loaded.GetItems()->GetCount(), 1);
}

TEST(FormStream, ImagesGiveTheIndentationOnlyAboveTheButton) {
    for (const auto& [Width, Indent] : {std::pair{40, 44}, std::pair{6, 20}}) {
        TComponent Root;
        auto* const List = new TImageList(&Root, Width, 10);
        List->SetName("Pictures");
        auto* const Tree = new TQuillTree(&Root);
        Tree->SetName("Tree");
        Tree->SetImages(List);
        TComponent Loaded;
        LoadFormFromText(SaveFormToText(&Root), &Loaded);
        EXPECT_EQ(dynamic_cast<TQuillTree*>(Loaded.FindComponent("Tree"))->GetIndent(), Indent);
    }
}

TEST(FormStream, WritesOnlyDifferencesFromAnAncestor) {
    TQuillTree Ancestor, Tree;
    Ancestor.SetIndent(50);
    Ancestor.SetColWidths(0, 33);
    Tree.SetIndent(50);
    Tree.SetColWidths(0, 33);
    Tree.SetWordWrap(true);
    TFormOptions Options;
    Options.Ancestor = &Ancestor;
    std::string Text = SaveFormToText(&Tree, Options);
    EXPECT_EQ(Text.substr(0, Text.find("  Data")), "quill form 1\ninherited TQuillTree\n  WordWrap = True\n");
    LoadFormFromText(Text, &Ancestor);
    EXPECT_TRUE(Ancestor.GetWordWrap());
    EXPECT_EQ(Ancestor.GetIndent(), 50);
}

TEST(FormStream, ReadsIntoComponentsThatAreThere) {
    TComponent Root;
    TQuillTree Tree(&Root);
    Tree.SetName("Tree");
    Tree.SetIndent(30);
    bool Clicked = false;
    Tree.OnClick = [&Clicked](TObject*) { Clicked = true; };
    LoadFormFromText("quill form 1 object Main: TComponent object Tree: TQuillTree WordWrap = True end end",
                     &Root);
    EXPECT_EQ(Root.GetComponentCount(), 1);
    EXPECT_TRUE(Tree.GetWordWrap());
    EXPECT_EQ(Tree.GetIndent(), 20) << "the default of what the form does not name";
    Tree.OnClick(&Tree);
    EXPECT_TRUE(Clicked) << "handlers of the program stay";
}

// The root is a tree named Tree with a second column.
struct TFault {
    const char* Body; // of the root
    const char* Message;
};

const TFault Faults[] = {
    {"Indent = 30\nNoSuchThing = 3", "line 4, Tree.NoSuchThing: a TQuillTree has no such property"},
    {"Indent = \"30\"", "line 3, Tree.Indent: a number is expected, but a text was found"},
    {"Indent = 99999999999999999999",
     "line 3, Tree.Indent: a number is expected, but \"99999999999999999999\" was found"},
    {"Indent = 40000", "line 3, Tree.Indent: 40000 is outside 1 .. 32767"},
    {"ColCount = 2000000000", "line 3, Tree.ColCount: 2000000000 is outside 1 .. 1000000"},
    {"FixedRows = -1", "line 3, Tree.FixedRows: -1 is outside 0 .. 1000000"},
    {"WordWrap = 1", "line 3, Tree.WordWrap: True or False is expected, but \"1\" was found"},
    {"Align = alMiddle", "line 3, Tree.Align: \"alMiddle\" is no value of this property"},
    {"Options = [goTabs, goHome]", "line 3, Tree.Options: \"goHome\" is no value of this property"},
    {"Options = goTabs", "line 3, Tree.Options: a set is expected, but \"goTabs\" was found"},
    {"Color = clPurplish", "line 3, Tree.Color: 'clPurplish' is not a valid integer value"},
    {"Canvas = Tree", "line 3, Tree.Canvas: the property cannot be set"},
    {"Items.Caption = \"x\"", "line 3, Tree.Items.Caption: a TQuillTree has no such property"},
    {"Font.Size.X = 1", "line 3, Tree.Font.Size.X: a TQuillTree has no such property"},
    {"Hint = \"a\\q\"", "line 3, Tree.Hint: \"\\q\" is no escape sequence"},
    {"Indent = 30\nIndent = 31", "line 4, Tree.Indent: the property was set before, on line 3"},
    {"Images = Nobody", "line 3, Tree.Images: there is no component \"Nobody\""},
    {"Images = Tree", "line 3, Tree.Images: \"Tree\" is a TQuillTree, which does not fit here"},
    {"OnClick = Nobody", "line 3, Tree.OnClick: there is no handler \"Nobody\" for this event"},
    {"ColCount = 2\nColWidths = (\n40)",
     "line 5, Tree.ColWidths: a number is expected, but the end of the list was found"},
    {"RowCount = 134000000\nRowHeights = (1 2 3)",
     "line 4, Tree.RowHeights: a number is expected, but the end of the list was found"},
    {"ColWidths = (40\n50)", "line 3, Tree.ColWidths: the list has more values than are wanted"},
    {"ColWidths = (forty)", "line 3, Tree.ColWidths: a number is expected, but \"forty\" was found"},
    {"ColWidths = 40", "line 3, Tree.ColWidths: a list is expected, but \"40\" was found"},
    {"ColCount = 2\nColumnOrder = (1 1)", "line 4, Tree.ColumnOrder: Grid index out of range (1)"},
    {"Data = {AAAA", "line 3: the binary data do not end"},
    {"Data = {A%AA}", "line 3, Tree.Data: the binary data are damaged"},
    {"Data = {AAAA}", "line 3, Tree.Data: Stream read error: this is no saved tree"},
    {"Data = {UVRSRUUC}",
     "line 3, Tree.Data: Stream read error: the tree was saved in version 2 of the format; only "
     "version 1 is known"},
    {"Data = {UVRSRUUB}",
     "line 3, Tree.Data: Stream read error: damaged tree data at byte 6, item 1: the stream ends "
     "too early"},
    {"Data = (1 2)", "line 3, Tree.Data: binary data is expected, but a list was found"},
    {"object Other: TNoClass end", "line 3, Other: the class \"TNoClass\" is not registered"},
    {"object Tree: TImageList end", "line 3, Tree: there is another component \"Tree\" already"},
    {"object A: TImageList end Indent = 3",
     "line 3, Tree: \"object\" or \"end\" is expected, but \"Indent\" was found"},
    {"Indent 30", "line 3, Tree.Indent: \"=\" is expected, but \"30\" was found"},
    {"Indent = ]", "line 3, Tree.Indent: a value is expected, but \"]\" was found"},
    {"Hint = \"open", "line 3: the text does not end on its line"},
    {"end end", "line 3: there is more behind the end of the form"},
};

TEST(FormStream, NamesTheLineAndThePropertyOfAFault) {
    for (const TFault& Fault : Faults) {
        TQuillTree Tree;
        const std::string Text =
            "quill form 1\nobject Tree: TQuillTree\n" + std::string(Fault.Body) + "\nend\n";
        try {
            LoadFormFromText(Text, &Tree);
            ADD_FAILURE() << "no fault in " << Fault.Body;
        } catch (const EFormError& Error) {
            EXPECT_EQ(Error.GetMessage(), "Form, " + std::string(Fault.Message));
        }
        // The tree can be used all the same.
        EXPECT_FALSE(Tree.HasState(csLoading) || Tree.HasState(csReading)) << Fault.Body;
        Tree.GetItems()->Add(nullptr, "new");
        Tree.HandleNeeded();
        Tree.GetSurfaceImage();
        Tree.GetItems()->CheckInvariants();
        EXPECT_EQ(Tree.GetRowCount(), Tree.GetFixedRows() + Tree.GetItems()->RowList.GetCount())
            << Fault.Body;
        LoadFormFromText(SaveFormToText(&Tree), &Tree);
    }
}

TEST(FormStream, RefusesWhatIsNoForm) {
    const std::pair<std::string, const char*> Texts[] = {
        {"", "Form, line 1: this is no form"},
        {"QTREE\1", "Form, line 1: this is no form"},
        {"quill form 2\nobject T end",
         "Form, line 1: the form was saved in version 2 of the format; only version 1 is known"},
        {"quill form 1\n", "Form, line 2: \"object\" is expected, but the end of the form was found"},
        {"quill form 1\nobject Tree: TImageList end",
         "Form, line 2, Tree: a TImageList cannot be read into a TQuillTree"},
    };
    TQuillTree Tree;
    Tree.SetIndent(33);
    for (const auto& [Text, Message] : Texts) {
        try {
            LoadFormFromText(Text, &Tree);
            ADD_FAILURE() << Text;
        } catch (const EFormError& Error) {
            EXPECT_EQ(Error.GetMessage(), Message);
        }
        EXPECT_EQ(Tree.GetIndent(), 33) << "changed by " << Text;
    }
    // Neither changes anything what ends too early, wherever that is.
    TWindow Whole;
    Whole.Build();
    const std::string Text = SaveFormToText(&Whole.Root);
    TComponent Root;
    for (std::size_t Size = 0; Size + 1 < Text.size(); ++Size) {
        EXPECT_THROW(LoadFormFromText(Text.substr(0, Size), &Root), EFormError) << Size;
        ASSERT_EQ(Root.GetComponentCount(), 0) << Size;
    }
    LoadFormFromText("\xEF\xBB\xBF" + Text, &Root);
}

TEST(FormStream, HoldsNothingThatItCouldNotRead) {
    TComponent Root;
    auto* const Tree = new TQuillTree(&Root);
    Tree->SetName("Tree");
    Tree->SetIndent(1'000'000);
    Tree->SetToolTipPause(-5);
    Tree->SetDefaultColWidth(70'000);
    Tree->SetLeft(-20'000'000);
    Tree->SetColCount(2);
    Tree->SetColWidths(1, 50);
    Tree->DeleteColumn(0);
    Tree->GetConstraints()->SetMinHeight(-1);
    TComponent Loaded;
    LoadFormFromText(SaveFormToText(&Root), &Loaded);
    const auto* const Copy = dynamic_cast<TQuillTree*>(Loaded.FindComponent("Tree"));
    EXPECT_EQ(Copy->GetIndent(), 32767);
    EXPECT_EQ(Copy->GetToolTipPause(), 0);
    EXPECT_EQ(Copy->GetColCount(), 1);
    auto* const Other = new TImageList(&Root);
    for (const char* const Name : {"Tree", "two words", "nil", "3D"}) {
        Other->SetName(Name);
        EXPECT_THROW(SaveFormToText(&Root), EInvalidOperation) << Name;
    }
}

TEST(FormStream, EndsAtMillionsOfNestedComponents) {
    std::string Text = "quill form 1\nobject Root: TComponent\n";
    for (int I = 0; I < 2'000'000; ++I) Text += "object TImageList\n";
    TComponent Root;
    try {
        LoadFormFromText(Text, &Root);
        FAIL();
    } catch (const EFormError& Error) {
        EXPECT_EQ(Error.GetMessage(), "Form, line 102: components are nested more than 100 levels deep");
    }
    EXPECT_EQ(Root.GetComponentCount(), 0);
}

TEST(FormStream, GoesOnWhereTheProgramSaysSo) {
    std::string Told;
    TFormOptions Options;
    Options.OnError = [&Told](const EFormError& Error) {
        Told +=
            std::to_string(Error.GetLine()) + " " + Error.GetComponent() + "." + Error.GetProperty() + "; ";
        return true;
    };
    TQuillTree Tree;
    LoadFormFromText(
        "quill form 1\nobject Tree: TQuillTree\nFuture = [one]\nIndent = 30\nColCount = x\nWordWrap = True\n"
        "OnClick = Nobody\nobject New: TFuture\nend\nobject P: TImageList\nend\nend",
        &Tree, Options);
    EXPECT_EQ(Told, "5 Tree.ColCount; 3 Tree.Future; 8 New.; 7 Tree.OnClick; ");
    EXPECT_EQ(Tree.GetIndent(), 30);
    EXPECT_TRUE(Tree.GetWordWrap());
    EXPECT_TRUE(Tree.FindComponent("P"));
}

TEST(FormStream, SavesFilesSafelyAndNamesThemInErrors) {
    const testing::TTempFolder Folder;
    const std::string Name = Folder.File("view.form");
    TQuillTree Tree, Loaded;
    Tree.SetIndent(35);
    SaveFormToFile(Name, &Tree);
    LoadFormFromFile(Name, &Loaded);
    EXPECT_EQ(Loaded.GetIndent(), 35);
    EXPECT_THROW(LoadFormFromFile(Name + ".none", &Loaded), EFOpenError);
}

TEST(FormStream, SurvivesHandlersThatDestroyWhatIsRead) {
    const struct {
        const char* What;
        void (*Arm)(TQuillTree& Tree, testing::TAnyHandler Strike);
        bool Faulty; // whether there was more to be read
    } Scenes[] = {
        {"OnCanResize", [](TQuillTree& Tree, testing::TAnyHandler Strike) { Tree.OnCanResize = Strike; },
         true},
        {"OnDeletion", [](TQuillTree& Tree, testing::TAnyHandler Strike) { Tree.OnDeletion = Strike; }, true},
        {"OnCompare", [](TQuillTree& Tree, testing::TAnyHandler Strike) { Tree.OnCompare = Strike; }, false},
        {"OnChange", [](TQuillTree& Tree, testing::TAnyHandler Strike) { Tree.OnChange = Strike; }, false},
        {"OnSelectCell", [](TQuillTree& Tree, testing::TAnyHandler Strike) { Tree.OnSelectCell = Strike; },
         false},
        {"OnExpanding",
         [](TQuillTree& Tree, testing::TAnyHandler Strike) {
             Tree.SetDesigning(true);
             Tree.OnExpanding = Strike;
         },
         false},
    };
    TWindow Saved;
    Saved.Build();
    Saved.Tree->SetWidth(333);
    Saved.Tree->SetSortType(stData);
    const std::string Text = SaveFormToText(&Saved.Root);
    for (const auto& Scene : Scenes) {
        for (const bool Destroy : {false, true}) {
            SCOPED_TRACE(std::string(Scene.What) + (Destroy ? " destroys" : " clears"));
            TComponent Root;
            auto* const Tree = new TQuillTree(&Root);
            Tree->SetName("Tree");
            Tree->SetSortType(stText);
            TFlyNode* const Parent = Tree->GetItems()->GetFirstNode();
            for (const char* const Name : {"b", "a"}) Tree->GetItems()->AddChild(Parent, Name);
            const TControlGuard Guard(Tree);
            int Struck = 0;
            Scene.Arm(*Tree, {[&] {
                if (++Struck > 1 || !Guard) return;
                if (Destroy) {
                    delete Tree;
                } else {
                    Tree->GetItems()->Clear();
                }
            }});
            if (Destroy && Scene.Faulty) {
                EXPECT_THROW(LoadFormFromText(Text, &Root), EFormError);
            } else {
                LoadFormFromText(Text, &Root);
            }
            EXPECT_GT(Struck, 0);
            ASSERT_EQ(static_cast<bool>(Guard), !Destroy);
            if (Destroy) continue;
            EXPECT_FALSE(Tree->HasState(csLoading));
            Tree->GetItems()->CheckInvariants();
            EXPECT_EQ(Tree->GetRowCount(), Tree->GetFixedRows() + Tree->GetItems()->RowList.GetCount());
        }
    }
}

} // namespace
} // namespace quill
