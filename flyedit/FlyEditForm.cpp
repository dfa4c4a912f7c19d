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
constexpr QSize ClientSize{576, 319};
constexpr QSize LeastTreeSize{300, 150};
constexpr int ColumnWidth = 485;
constexpr int RowPadding = 6;
constexpr int Margin = 8;
constexpr int Spacing = 6;
constexpr int LineSpacing = 4;    // between controls one above the other
constexpr int ButtonPadding = 16; // beside a caption, both sides together

} // namespace

TFlyEditor::TFlyEditor(QWidget* Parent) : QDialog(Parent) {
    setObjectName("FlyEditor");
    setWindowTitle("FlyNodes Editor");
    MakeTree();
    FAligns = MakeAligns();
    auto* Grid = new QGridLayout(this);
    Grid->setContentsMargins(Margin, Spacing, Margin, Spacing);
    Grid->setHorizontalSpacing(Spacing);
    Grid->setVerticalSpacing(Spacing);
    Grid->addWidget(FTree, 0, 0);
    Grid->addLayout(MakeNodeFields(), 1, 0);
    Grid->addLayout(MakeSideButtons(), 0, 1, 2, 1);
    Grid->addLayout(MakeEditButtons(), 2, 0, 1, 2);
    Grid->setColumnStretch(0, 1);
    Grid->setRowStretch(0, 1);
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
        ModifiedSoon(); // some came from an editor that lost the focus
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
    connect(FTree, &TEditorTree::menuRequested, Menu, [Menu](QPoint Place) { Menu->popup(Place); });
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
    FUniqueTag->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // no number moves the others

    // Two by two, under the tree.
    auto* Fields = new QGridLayout;
    Fields->setHorizontalSpacing(Spacing);
    Fields->setVerticalSpacing(LineSpacing);
    int Place = 0;
    const auto AddField = [this, Fields, &Place](const QString& Caption, QWidget* Field) {
        auto* Label = new QLabel(Caption, this);
        Label->setBuddy(Field);
        Fields->addWidget(Label, Place / 2, Place % 2 * 2);
        Fields->addWidget(Field, Place / 2, Place % 2 * 2 + 1);
        ++Place;
    };
    AddField("&ImageIndex:", FImageText);
    AddField("&StateIndex:", FStateText);
    AddField("S&electedIndex:", FSelectedText);
    AddField("UniqueTag:", FUniqueTag);
    Fields->setAlignment(FUniqueTag, Qt::AlignLeft); // beside its caption, from right to left, too
    Fields->setColumnStretch(1, 2);
    Fields->setColumnStretch(3, 3);

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
    Column->setContentsMargins(Spacing, 0, Spacing, LineSpacing);
    Column->setSpacing(0);
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

QLayout* TFlyEditor::MakeSideButtons() {
    auto* Side = new QVBoxLayout;
    Side->setSpacing(LineSpacing);
    const auto Add = [this, Side](const QString& Caption, void (TFlyEditor::*Handler)()) {
        QPushButton* const Button = MakeButton(Caption, Handler);
        Side->addWidget(Button);
        return Button;
    };
    FOk = Add("OK", &TFlyEditor::accept);
    FCancel = Add("Cancel", &TFlyEditor::reject);
    Side->addStretch(1);
    Add("Set as Default Values", &TFlyEditor::SetDefaults)
        ->setToolTip("Current values will be used as default values");
    FApply = Add("Apply", &TFlyEditor::Apply);
    Side->addStretch(1);
    Side->addWidget(FAligns);
    Side->addStretch(1);
    Add("Load Nodes", &TFlyEditor::AskLoad);
    Add("Save Nodes", &TFlyEditor::AskSave);
    FOk->setDefault(true);
    FApply->setEnabled(false);
    return Side;
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
    const QString Names =
        "ImageText StateText SelectedText Add AddChild Delete Clear MoveUp MoveDown AddCell "
        "ClearCells OK Cancel SetasDefaultValues Apply Left Right Center LoadNodes SaveNodes";
    for (const QString& Name : Names.split(' ')) {
        Next(Name);
    }
}

// --- size and place -----------------------------------------------------------------------------------------------

void TFlyEditor::ScaleToFont() {
    const int FontSize = std::max(QFontInfo(font()).pixelSize(), NominalFontSize);
    const auto Scaled = [FontSize](int Length) { return Length * FontSize / NominalFontSize; };
    FTree->SetDefaultRowHeight(fontMetrics().height() + RowPadding);
    if (!FReady) FTree->SetColWidths(0, Scaled(ColumnWidth));
    FTree->setMinimumSize(Scaled(LeastTreeSize.width()), Scaled(LeastTreeSize.height()));
    // Styles make short captions wide buttons, which would not fit beside each other.
    for (QPushButton* Button : findChildren<QPushButton*>()) {
        const int Text = Button->fontMetrics().size(Qt::TextShowMnemonic, Button->text()).width();
        Button->setMinimumWidth(Text + Scaled(ButtonPadding));
    }
    FLeastSize = {Scaled(ClientSize.width()), Scaled(ClientSize.height())};
    FitToContents();
}

void TFlyEditor::FitToContents() { setFixedSize(FLeastSize.expandedTo(layout()->totalMinimumSize())); }

bool TFlyEditor::event(QEvent* Event) {
    const bool Result = QDialog::event(Event);
    if (Event->type() == QEvent::LayoutRequest) FitToContents();
    return Result;
}

void TFlyEditor::changeEvent(QEvent* Event) {
    QDialog::changeEvent(Event);
    if (layout() && (Event->type() == QEvent::FontChange || Event->type() == QEvent::StyleChange))
        ScaleToFont();
}

void TFlyEditor::showEvent(QShowEvent* Event) {
    QDialog::showEvent(Event);
    if (Event->spontaneous()) return;
    FitToContents();
    const QRect Place = screen()->availableGeometry();
    move(Place.center() - rect().center());
}

} // namespace quill
