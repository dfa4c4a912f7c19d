#include "CellsPage.h"

#include "../common/Look.h"

#include "quilltree/QuillTree.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace quill::examples {

namespace {

struct TRecord {
    int Level;
    const char* Name;
    const char* State;
    const char* Note;
};

constexpr TRecord Records[] = {
    {0, "<B>Builds</B> <COLOR=#808080>today</COLOR>", "<I>4 runs</I>", "times are <U>wall clock</U>"},
    {1, "core <COLOR=#808080>#1204</COLOR>", "<BGCOLOR=#2E7D32><COLOR=#FFFFFF> passed </COLOR></BGCOLOR>",
     "<B>3 min 12 s</B>, 40 s less than before"},
    {1, "widgets <COLOR=#808080>#1205</COLOR>", "<BGCOLOR=#C62828><COLOR=#FFFFFF> failed </COLOR></BGCOLOR>",
     "two tests: <FONT COLOR=#C62828>Scrolling</FONT> and <FONT COLOR=#C62828>Painting</FONT>; the log is "
     "kept for a "
     "week"},
    {1, "docs <COLOR=#808080>#1206</COLOR>", "<BGCOLOR=#F9A825><COLOR=#000000> waiting </COLOR></BGCOLOR>",
     "behind <S>widgets</S> <B>core</B>"},
    {0, "<B>Tags</B> that cells know", "", ""},
    {1, "<B>bold</B>, <I>italic</I>, <U>underlined</U>, <S>struck out</S>", "styles",
     "they add up: <B><I><U>all</U></I></B>"},
    {1, "<FONT SIZE=18>size</FONT>, <FONT FACE=Courier>face</FONT>, <COLOR=#1565C0>colour</COLOR>", "fonts",
     "until the end tag"},
    {1, "<BGCOLOR=#FFF59D><COLOR=#000000> marked </COLOR></BGCOLOR>", "background", "behind the text alone"},
    {1, "a < b, <unknown> and > are text", "no entities", "what is no tag is drawn as it is"},
};

} // namespace

TCellsPage::TCellsPage() : FTree(new TQuillTree(this)) {
    SetUpTree(*FTree);
    FTree->SetHTMLDrawing(true);
    FTree->SetToolTips(true);
    FTree->SetToolTipPause(4000);
    FTree->SetBorderStyle(bsSingle);
    FTree->SetBiDiMode(layoutDirection() == Qt::RightToLeft ? bdRightToLeft : bdLeftToRight);
    FTree->SetColCount(3);
    Fill();
    auto* All = new QVBoxLayout(this);
    All->setContentsMargins(0, 0, 0, 0);
    All->setSpacing(12);
    All->addWidget(FTree, 1);
    All->addWidget(MakeSwitches());
}

void TCellsPage::Fill() {
    TFlyNodes& Items = *FTree->GetItems();
    const TUpdateBracket Bracket(&Items);
    Items.Clear();
    TFlyNode* Top = nullptr;
    for (const TRecord& Record : Records) {
        TFlyNode* Node = Items.AddChild(Record.Level == 0 ? nullptr : Top, Record.Name);
        if (Record.Level == 0) Top = Node;
        Node->SetCell(1, Record.State);
        Node->SetCell(2, Record.Note);
        Node->SetExpandedField(Record.Level == 0);
    }
    const char* const Captions[] = {"<B>Name</B>", "<B>State</B>", "<B>Note</B>"};
    const int Widths[] = {260, 110, 100};
    for (int Col = 0; Col < 3; ++Col) {
        FTree->SetCaptions(Col, Captions[Col]);
        FTree->SetColWidths(Col, Widths[Col]);
    }
}

QWidget* TCellsPage::MakeSwitches() {
    auto* Row = new QWidget;
    auto* Switches = new QHBoxLayout(Row);
    Switches->setContentsMargins(0, 0, 0, 0);
    Switches->setSpacing(16);
    const auto Add = [&](const QString& Text, bool On, auto Set) {
        auto* Box = new QCheckBox(Text);
        Box->setChecked(On);
        connect(Box, &QCheckBox::toggled, this, Set);
        Switches->addWidget(Box);
    };
    Add(tr("&Markup"), true, [this](bool On) { FTree->SetHTMLDrawing(On); });
    Add(tr("&Tooltips"), true, [this](bool On) { FTree->SetToolTips(On); });
    Add(tr("&Wrap, and rows as high as needed"), false, [this](bool On) {
        FTree->SetWordWrap(On);
        FTree->SetFitToHeight(On);
    });
    Add(tr("&Fit the last column"), true, [this](bool On) { FTree->SetFitColumnToClientWidth(On); });
    Switches->addStretch();
    return Row;
}

void TCellsPage::Pose() {
    TFlyNode* Node = FTree->GetNodeAtRow(3);
    FTree->SetColWidths(0, std::max(260, FTree->GetClientWidth() - 300));
    if (!Node) return;
    const TRect Cell = FTree->CellRect(2, Node->GetRow());
    FTree->ActivateToolTips(Cell.Left + Cell.Width() / 2, Cell.Top + Cell.Height() / 2);
}

} // namespace quill::examples
