// The controls of the nodes editor and their places.
#include "flyedit/EditorTree.h"
#include "flyedit/FlyEdit.h"
#include "flyedit/NumberEdit.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QEvent>
#include <QFontInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QShowEvent>
#include <QVBoxLayout>

#include <algorithm>

namespace quill {

namespace {

// By the index of their states.
const char* const StateNames[] = {"EMPTY",           "UNCHECKED",          "CHECKED",
                                  "GRAYEDCHECKED",   "OPTIONED",           "UNOPTIONED",
                                  "GRAYEDUNCHECKED", "GRAYEDOPTIONED",     "GRAYEDUNOPTIONED",
                                  "DOUBLECHECKED",   "GRAYEDDOUBLECHECKED"};

const char* const AlignNames[] = {"Left", "Right", "Center"};

// Sizes are meant for a font of so many pixels and grow with it.
constexpr int NominalFontSize = 12;
constexpr int ColumnWidth = 485;
constexpr int MinTreeHeight = 319;
constexpr int RowPadding = 6;

} // namespace

TFlyEditor::TFlyEditor(QWidget* Parent) : QDialog(Parent) {
    setObjectName("FlyEditor");
    setWindowTitle("FlyNodes Editor");
    MakeTree();
    auto* Side = new QVBoxLayout;
    Side->addLayout(MakeDialogButtons());
    Side->addStretch();
    Side->addLayout(MakeNodeFields());
    FAligns = MakeAligns();
    Side->addWidget(FAligns);
    Side->addStretch();
    auto* SetDefaultsButton = MakeButton("Set as Default Values", &TFlyEditor::SetDefaults);
    SetDefaultsButton->setToolTip("Current values will be used as default values");
    Side->addWidget(SetDefaultsButton);
    Side->addSpacing(Side->spacing() + 4);
    Side->addWidget(MakeButton("Load Nodes", &TFlyEditor::AskLoad));
    Side->addWidget(MakeButton("Save Nodes", &TFlyEditor::AskSave));

    auto* Middle = new QHBoxLayout;
    Middle->addWidget(FTree, 1);
    Middle->addLayout(Side);
    auto* Form = new QVBoxLayout(this);
    Form->addLayout(Middle, 1);
    Form->addLayout(MakeEditButtons());
    // Fixed, at the size that its contents need.
    Form->setSizeConstraint(QLayout::SetFixedSize);
    SetTabOrder();
    ScaleToFont();
}

QPushButton* TFlyEditor::MakeButton(const QString& Caption, void (TFlyEditor::*Handler)()) {
    auto* Button = new QPushButton(Caption, this);
    Button->setObjectName(QString(Caption).remove('&').remove(' '));
    Button->setAutoDefault(false);
    connect(Button, &QPushButton::clicked, this, Handler);
    return Button;
}

void TFlyEditor::MakeTree() {
    FTree = new TEditorTree(this);
    FTree->setObjectName("DeptsTree");
    FTree->setAccessibleName(tr("Nodes"));
    FTree->GetItems()->Clear();
    connect(FTree, &TEditorTree::cellSelected, this, &TFlyEditor::FillControls);
    connect(FTree, &TEditorTree::nodesModified, this, [this] {
        if (FFilling || !FReady) return;
        FillControls();
        Modified();
    });
    connect(FTree, &TEditorTree::columnMoved, this, &TFlyEditor::ColumnMoved);
    connect(FTree, &TEditorTree::columnSized, this, &TFlyEditor::ColumnSized);
    connect(FTree, &TEditorTree::addPressed, this, &TFlyEditor::AddNode);
    connect(FTree, &TEditorTree::addChildPressed, this, &TFlyEditor::AddChildNode);
    connect(FTree, &TEditorTree::deletePressed, this, &TFlyEditor::DeleteNode);
    MakeTreeMenu();
}

void TFlyEditor::MakeTreeMenu() {
    auto* Menu = new QMenu(this);
    Menu->setObjectName("TreeMenu");
    const auto Add = [this, Menu](const QString& Caption, bool ImageIndexes, bool SelectedIndexes) {
        Menu->addAction(Caption, this,
                        [this, ImageIndexes, SelectedIndexes] { Enumerate(ImageIndexes, SelectedIndexes); });
    };
    Add("Enumerate ImageIndexes", true, false);
    Add("Enumerate &SelectedIndexes", false, true);
    Add("Enumerate &Both", true, true);
    FTree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(FTree, &QWidget::customContextMenuRequested, Menu,
            [this, Menu](QPoint Pos) { Menu->popup(FTree->viewport()->mapToGlobal(Pos)); });
}

QLayout* TFlyEditor::MakeNodeFields() {
    auto* ImageText = new TNumberEdit(this);
    auto* SelectedText = new TNumberEdit(this);
    FImageText = ImageText;
    FSelectedText = SelectedText;
    FImageText->setObjectName("ImageText");
    FSelectedText->setObjectName("SelectedText");
    FStateText = new QComboBox(this);
    FStateText->setObjectName("StateText");
    for (const char* Name : StateNames) FStateText->addItem(Name);
    FStateText->setCurrentIndex(-1);
    // The list is as wide as its items, the field needs not be.
    FStateText->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    FStateText->setMinimumContentsLength(10);
    FUniqueTag = new QLabel(this);
    FUniqueTag->setObjectName("UniqueTag");
    FUniqueTag->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* Fields = new QGridLayout;
    int Row = 0;
    const auto AddField = [this, Fields, &Row](const QString& Caption, QWidget* Field) {
        auto* Label = new QLabel(Caption, this);
        Label->setBuddy(Field);
        Fields->addWidget(Label, Row, 0);
        Fields->addWidget(Field, Row++, 1);
    };
    AddField("&ImageIndex:", FImageText);
    AddField("&StateIndex:", FStateText);
    AddField("S&electedIndex:", FSelectedText);
    Fields->addWidget(new QLabel("UniqueTag:", this), Row, 0);
    Fields->addWidget(FUniqueTag, Row, 1);

    for (TNumberEdit* Edit : {ImageText, SelectedText}) {
        connect(Edit, &TNumberEdit::keyTyped, this, [this] { FApply->setEnabled(true); });
        connect(Edit, &QLineEdit::textChanged, this, &TFlyEditor::ApplyFields);
    }
    connect(FStateText, &QComboBox::currentIndexChanged, this, &TFlyEditor::ApplyFields);
    return Fields;
}

QGroupBox* TFlyEditor::MakeAligns() {
    auto* Box = new QGroupBox("Alignment", this);
    Box->setObjectName("Aligns");
    auto* Column = new QVBoxLayout(Box);
    FAlignButtons = new QButtonGroup(Box);
    for (int Code = 0; Code < static_cast<int>(std::size(AlignNames)); ++Code) {
        auto* Button = new QRadioButton(AlignNames[Code], Box);
        Button->setObjectName(AlignNames[Code]);
        FAlignButtons->addButton(Button, Code);
        Column->addWidget(Button);
    }
    connect(FAlignButtons, &QButtonGroup::idToggled, this, [this](int Code, bool Checked) {
        if (Checked) ApplyAlign(Code);
    });
    Box->hide();
    return Box;
}

QLayout* TFlyEditor::MakeDialogButtons() {
    auto* Buttons = new QVBoxLayout;
    FOk = MakeButton("OK", &TFlyEditor::accept);
    FCancel = MakeButton("Cancel", &TFlyEditor::reject);
    FApply = MakeButton("Apply", &TFlyEditor::Apply);
    FOk->setDefault(true);
    FApply->setEnabled(false);
    for (QPushButton* Button : {FOk, FCancel, FApply}) Buttons->addWidget(Button);
    return Buttons;
}

QLayout* TFlyEditor::MakeEditButtons() {
    auto* Buttons = new QHBoxLayout;
    const auto Add = [this, Buttons](const QString& Caption, void (TFlyEditor::*Handler)()) {
        Buttons->addWidget(MakeButton(Caption, Handler));
    };
    Add("&Add", &TFlyEditor::AddNode);
    Add("Add &Child", &TFlyEditor::AddChildNode);
    Add("&Delete", &TFlyEditor::DeleteNode);
    Add("C&lear", &TFlyEditor::ClearNodes);
    Add("Move &Up", &TFlyEditor::MoveUp);
    Add("Move D&own", &TFlyEditor::MoveDown);
    Add("Add C&ell", &TFlyEditor::AddCell);
    Add("Clea&r Cells", &TFlyEditor::ClearCells);
    return Buttons;
}

void TFlyEditor::SetTabOrder() {
    QWidget* Last = FTree;
    const auto Next = [this, &Last](const QString& Name) {
        auto* const Widget = findChild<QWidget*>(Name);
        setTabOrder(Last, Widget);
        Last = Widget;
    };
    for (const char* Name :
         {"ImageText",  "StateText", "SelectedText", "Left",  "Right",  "Center",   "SetasDefaultValues",
          "Add",        "AddChild",  "Delete",       "Clear", "MoveUp", "MoveDown", "AddCell",
          "ClearCells", "LoadNodes", "SaveNodes",    "OK",    "Cancel", "Apply"}) {
        Next(Name);
    }
}

// --- size and place -----------------------------------------------------------------------------------------------

void TFlyEditor::ScaleToFont() {
    const int FontSize = std::max(QFontInfo(font()).pixelSize(), NominalFontSize);
    const auto Scaled = [FontSize](int Length) { return Length * FontSize / NominalFontSize; };
    FTree->SetDefaultRowHeight(fontMetrics().height() + RowPadding);
    if (!FReady) FTree->SetColWidths(0, Scaled(ColumnWidth));
    FTree->setMinimumSize(Scaled(ColumnWidth) + 2 * FTree->frameWidth(), Scaled(MinTreeHeight));
}

void TFlyEditor::changeEvent(QEvent* Event) {
    QDialog::changeEvent(Event);
    if (FTree && (Event->type() == QEvent::FontChange || Event->type() == QEvent::StyleChange)) ScaleToFont();
}

void TFlyEditor::showEvent(QShowEvent* Event) {
    QDialog::showEvent(Event);
    if (Event->spontaneous()) return;
    const QRect Place = screen()->availableGeometry();
    move(Place.center() - rect().center());
}

} // namespace quill
