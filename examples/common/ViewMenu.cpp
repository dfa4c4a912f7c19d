#include "ViewMenu.h"

#include "Look.h"

#include "quilltree/QuillTree.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

#include <array>

namespace quill::examples {

namespace {

constexpr std::array<const char*, 3> StyleNames{"&Standard", "&Explorer", "S&olid"};

void SetOption(TCustomQuillTree& Tree, TGridOptions Part, bool Value) {
    Tree.SetOptions(Value ? Tree.GetOptions() + Part : Tree.GetOptions() - Part);
}

// One switch of the menu: how the tree is asked and told.
struct TSwitch {
    const char* Text; // null for a separator
    bool (*Get)(TCustomQuillTree& Tree);
    void (*Set)(TCustomQuillTree& Tree, bool Value);
};

using TTree = TCustomQuillTree;
const TSwitch Switches[] = {
    {"&Lines", [](TTree& Tree) { return Tree.GetShowlines(); },
     [](TTree& Tree, bool Value) { Tree.SetShowlines(Value); }},
    {"&Buttons", [](TTree& Tree) { return Tree.GetShowButtons(); },
     [](TTree& Tree, bool Value) { Tree.SetShowButtons(Value); }},
    {"Lines and Buttons at the &Root", [](TTree& Tree) { return Tree.GetShowRoot(); },
     [](TTree& Tree, bool Value) { Tree.SetShowRoot(Value); }},
    {"&Images", [](TTree& Tree) { return Tree.GetShowImages(); },
     [](TTree& Tree, bool Value) { Tree.SetShowImages(Value); }},
    {"&Check Marks", [](TTree& Tree) { return Tree.GetShowLogic(); },
     [](TTree& Tree, bool Value) { Tree.SetShowLogic(Value); }},
    {"&Drawn Marks and Buttons", [](TTree& Tree) { return Tree.GetStatesDrawed(); },
     [](TTree& Tree, bool Value) { Tree.SetStatesDrawed(Value); }},
    {nullptr, nullptr, nullptr},
    {"&Grid Lines", [](TTree& Tree) { return Tree.HasOption(goHorzLine); },
     [](TTree& Tree, bool Value) {
         SetOption(Tree, {goVertLine, goHorzLine}, Value);
     }},
    {"&Wrap Long Texts", [](TTree& Tree) { return Tree.GetWordWrap(); },
     [](TTree& Tree, bool Value) {
         Tree.SetWordWrap(Value);
         Tree.SetFitToHeight(Value);
     }},
    {"&Markup", [](TTree& Tree) { return Tree.GetHTMLDrawing(); },
     [](TTree& Tree, bool Value) { Tree.SetHTMLDrawing(Value); }},
    {"&Tooltips", [](TTree& Tree) { return Tree.GetToolTips(); },
     [](TTree& Tree, bool Value) { Tree.SetToolTips(Value); }},
    {"Select W&hole Rows", [](TTree& Tree) { return Tree.HasOption(goRowSelect); },
     [](TTree& Tree, bool Value) { SetOption(Tree, {goRowSelect}, Value); }},
    {"Trac&k the Mouse", [](TTree& Tree) { return Tree.GetHotTrack(); },
     [](TTree& Tree, bool Value) { Tree.SetHotTrack(Value); }},
    {"S&mooth Animation", [](TTree& Tree) { return Tree.GetSmoothExpandCollapse(); },
     [](TTree& Tree, bool Value) { Tree.SetSmoothExpandCollapse(Value); }},
    {nullptr, nullptr, nullptr},
    {"Right to Le&ft", [](TTree& Tree) { return Tree.UseRightToLeftAlignment(); },
     [](TTree& Tree, bool Value) { SetRightToLeft(Tree, Value); }},
};

} // namespace

TViewMenu::TViewMenu(QMenu* Menu, TCustomQuillTree* Tree) : QObject(Menu), FTree(Tree) {
    AddStyles(Menu->addMenu(tr("Outline St&yle")));
    AddSwitches(Menu);
    connect(Menu, &QMenu::aboutToShow, this, &TViewMenu::ShowState);
    ShowState();
}

void TViewMenu::AddStyles(QMenu* Menu) {
    auto* Group = new QActionGroup(this);
    for (std::size_t Index = 0; Index < StyleNames.size(); ++Index) {
        QAction* Action = Menu->addAction(tr(StyleNames[Index]));
        Action->setCheckable(true);
        Group->addAction(Action);
        const auto Style = static_cast<TOutlineStyle>(Index);
        connect(Action, &QAction::triggered, this, [this, Style] { FTree->SetOutlineStyle(Style); });
        FStyles.push_back(Action);
    }
}

void TViewMenu::AddSwitches(QMenu* Menu) {
    for (const TSwitch& Switch : Switches) {
        if (!Switch.Text) {
            Menu->addSeparator();
            FSwitches.push_back(nullptr);
            continue;
        }
        QAction* Action = Menu->addAction(tr(Switch.Text));
        Action->setCheckable(true);
        connect(Action, &QAction::triggered, this, [this, &Switch](bool Value) {
            Switch.Set(*FTree, Value);
            Q_EMIT switched();
        });
        FSwitches.push_back(Action);
    }
}

void TViewMenu::ShowState() {
    FStyles[FTree->GetOutlineStyle()]->setChecked(true);
    for (std::size_t Index = 0; Index < FSwitches.size(); ++Index) {
        if (FSwitches[Index]) FSwitches[Index]->setChecked(Switches[Index].Get(*FTree));
    }
}

} // namespace quill::examples
