#include "NodesPage.h"

#include "../common/Look.h"

#include "quilltree/QuillTree.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <vector>

namespace quill::examples {

namespace {

struct TRecord {
    int Level;
    const char* Text;
    const char* Cell;
};

constexpr TRecord Records[] = {
    {0, "Garden", ""},
    {1, "Fruit", ""},
    {2, "Apples", "October"},
    {2, "Pears", "September"},
    {2, "Gooseberries", "July"},
    {1, "Vegetables", ""},
    {2, "Beans", "August"},
    {2, "Leeks", "November"},
    {0, "House", ""},
    {1, "Cellar", "dry"},
    {1, "Attic", "full"},
};

} // namespace

TNodesPage::TNodesPage() : FTree(new TQuillTree(this)) {
    SetUpTree(*FTree);
    FTree->SetBorderStyle(bsSingle);
    FTree->SetBiDiMode(layoutDirection() == Qt::RightToLeft ? bdRightToLeft : bdLeftToRight);
    FTree->SetColCount(2);
    FTree->SetCaptions(0, "What");
    FTree->SetCaptions(1, "When");
    FTree->SetColWidths(0, 300);
    Fill();
    auto* Button = new QPushButton(tr("&Edit Nodes..."));
    connect(Button, &QPushButton::clicked, this, &TNodesPage::Edit);
    auto* Buttons = new QHBoxLayout;
    Buttons->addWidget(Button);
    Buttons->addStretch();
    auto* All = new QVBoxLayout(this);
    All->setContentsMargins(0, 0, 0, 0);
    All->setSpacing(12);
    All->addWidget(FTree, 1);
    All->addLayout(Buttons);
}

void TNodesPage::Fill() {
    TFlyNodes& Items = *FTree->GetItems();
    const TUpdateBracket Bracket(&Items);
    Items.Clear();
    std::vector<TFlyNode*> Path;
    for (const TRecord& Record : Records) {
        Path.resize(static_cast<std::size_t>(Record.Level));
        Path.push_back(Items.AddChild(Path.empty() ? nullptr : Path.back(), Record.Text));
        Path.back()->SetCell(1, Record.Cell);
        Path.back()->SetExpandedField(Record.Level < 2);
    }
}

void TNodesPage::Edit() { EditNodes(FTree->GetItems(), {}, window()); }

void TNodesPage::Pose() {
    FPosing = std::make_unique<TFlyEditor>(window());
    FPosing->Edit(FTree->GetItems(), {});
    FPosing->show();
}

QWidget* TNodesPage::GetPicture() { return FPosing ? FPosing.get() : TGalleryPage::GetPicture(); }

} // namespace quill::examples
