#include "HintPage.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace quill::examples {

namespace {

constexpr int ShownFor = 4000; // milliseconds

const char* const HintText =
    "<B>A hint</B> that is asked to be <COLOR=#C06000>outside</COLOR> of the screen.\n"
    "It is moved so far that all of it can be read, whatever edge it is shown at, and long lines are broken "
    "where "
    "they would become too wide.";

} // namespace

THintPage::THintPage()
    : FCells(new THintCells), FHint(new TNVHTMLHintWindow(FCells)), FText(new QPlainTextEdit),
      FMarkup(new QCheckBox(tr("&Markup"))), FWordWrap(new QCheckBox(tr("&Word wrap"))),
      FMaxWidth(new QSpinBox), FTimer(new QTimer(this)) {
    FText->setPlainText(QString::fromUtf8(HintText));
    FText->setAccessibleName(tr("Text of the hint"));
    FMarkup->setChecked(true);
    FWordWrap->setChecked(true);
    FTimer->setSingleShot(true);
    FTimer->setInterval(ShownFor);
    connect(FTimer, &QTimer::timeout, this, [this] { FHint->HideHint(); });
    connect(FMarkup, &QCheckBox::toggled, this, [this](bool On) { FCells->SetHTMLDrawing(On); });

    auto* Bottom = new QHBoxLayout;
    Bottom->setSpacing(16);
    Bottom->addWidget(MakeOptions(), 1);
    Bottom->addWidget(MakeEdges());
    auto* All = new QVBoxLayout(this);
    All->setContentsMargins(0, 0, 0, 0);
    All->setSpacing(12);
    All->addWidget(FCells, 1);
    All->addLayout(Bottom, 1);
}

QWidget* THintPage::MakeOptions() {
    FMaxWidth->setRange(40, 4000);
    FMaxWidth->setSuffix(tr(" px"));
    FMaxWidth->setValue(360);
    auto* Switches = new QHBoxLayout;
    Switches->setSpacing(16);
    Switches->addWidget(FMarkup);
    Switches->addWidget(FWordWrap);
    Switches->addStretch();
    auto* Width = new QFormLayout;
    Width->addRow(tr("Ma&ximum width"), FMaxWidth);
    auto* Options = new QGroupBox(tr("Text of the hint"));
    auto* Column = new QVBoxLayout(Options);
    Column->addWidget(FText, 1);
    Column->addLayout(Switches);
    Column->addLayout(Width);
    return Options;
}

QGroupBox* THintPage::MakeEdges() {
    static const char* const Names[3][3] = {{"Top left", "Top", "Top right"},
                                            {"Left", "Centre", "Right"},
                                            {"Bottom left", "Bottom", "Bottom right"}};
    auto* Edges = new QGroupBox(tr("Show it on the screen"));
    Edges->setLayoutDirection(Qt::LeftToRight); // the screen's sides stay where they are
    auto* Grid = new QGridLayout(Edges);
    for (int Row = 0; Row < 3; ++Row) {
        for (int Column = 0; Column < 3; ++Column) {
            auto* Button = new QPushButton(tr(Names[Row][Column]));
            Button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
            connect(Button, &QPushButton::clicked, this, [=, this] { ShowAtEdge(Column, Row); });
            Grid->addWidget(Button, Row, Column);
        }
    }
    return Edges;
}

void THintPage::ShowAtEdge(int Column, int Row) {
    const std::string Text = FText->toPlainText().toStdString();
    FHint->SetHTMLDrawing(FMarkup->isChecked());
    FHint->SetWordWrap(FWordWrap->isChecked());
    TRect Rect = FHint->CalcHintRect(FMaxWidth->value(), Text, nullptr);
    const QRect Screen = screen()->geometry();
    // Half of it would be outside.
    Rect.Offset(Screen.left() + Screen.width() * Column / 2 - Rect.Width() / 2,
                Screen.top() + Screen.height() * Row / 2 - Rect.Height() / 2);
    FHint->ActivateHint(Rect, Text);
    FTimer->start();
}

void THintPage::Pose() { FCells->ShowHintOf(0, 1); }

} // namespace quill::examples
