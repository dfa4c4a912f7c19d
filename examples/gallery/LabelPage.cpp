#include "LabelPage.h"

#include "htmldraw/HTMLText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFontDatabase>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace quill::examples {

namespace {

constexpr int OptionsWidth = 230;
constexpr int EditorHeight = 150;
constexpr int StageMargin = 16;

struct TSample {
    const char* Title;
    const char* Text;
};

const TSample Samples[] = {
    {"All tags",
     "<FONT SIZE=28><B>Small markup</B></FONT>\n"
     "<B>bold</B>, <I>italic</I>, <U>underlined</U>, <S>struck out</S>, <B><I><U>all of them</B></I></U>\n"
     "<COLOR=#C00000>red</COLOR>, <COLOR=#008040>green</COLOR>, <COLOR=#2060D0>blue</COLOR>, "
     "<COLOR=clGrayText>the palette's grey</COLOR>\n"
     "<BGCOLOR=#FFE680><COLOR=#000000> marked </COLOR></BGCOLOR> "
     "<BGCOLOR=clHighlight><COLOR=clHighlightText> selected </COLOR></BGCOLOR>\n"
     "<FONT FACE=Monospace>monospace</FONT>, <FONT SIZE=10>small</FONT>, <FONT SIZE=36>large</FONT> "
     "on one baseline"},
    {"Nested looks", "<FONT COLOR=#C00000>red <FONT SIZE=30>larger <COLOR=#2060D0>and blue</COLOR> red "
                     "again</FONT> as before</FONT>\n"
                     "<B>bold <I>and italic</B> only italic</I>\n"
                     "<FONT SIZE=24><B>Styles are not part of a font:</FONT> this is still bold</B>"},
    {"A long text", "With <B>word wrap</B> lines are broken at spaces where they would be wider than the "
                    "label. A word that is "
                    "wider by itself is <U>not</U> broken. Measuring follows the <I>label's own font</I>, so "
                    "that lines break at "
                    "the same places whatever the markup does to the looks of the text.\n"
                    "A line feed ends a line as well."},
    {"Other scripts",
     "Gr\u00fc\u00dfe, \u00e7a va, \u010de\u0161tina, \u0395\u03bb\u03bb\u03b7\u03bd\u03b9\u03ba\u03ac, "
     "\u0420\u0443\u0441\u0441\u043a\u0438\u0439\n"
     "<B>\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd</B> "
     "<COLOR=#2060D0>\u0645\u0631\u062d\u0628\u0627</COLOR>\n"
     "<I>A\u0301 n\u0303 e\u0308</I> (combined characters)"},
    {"No markup", "What is no tag is text: a < b, 1 <2> 3, <FOO>, 2 > 1.\n"
                  "There are no entities: &lt; &amp; &nbsp;\n"
                  "An end without a beginning</B></FONT></COLOR> does nothing."},
};

QComboBox* MakeComboBox(const QStringList& Items) {
    auto* Box = new QComboBox;
    Box->addItems(Items);
    return Box;
}

} // namespace

TLabelPage::TLabelPage()
    : FStage(new QWidget), FLabel(new TNVHTMLText(nullptr, FStage)), FEditor(new QPlainTextEdit) {
    FLabel->SetColor(clWindow);
    QFont Large = font();
    Large.setPixelSize(fontInfo().pixelSize() + 3);
    FStage->setFont(Large);
    FStage->setMinimumSize(200, 120);
    FStage->setAccessibleName(tr("Label"));
    FStage->installEventFilter(this);
    FEditor->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    FEditor->setFixedHeight(EditorHeight);
    FEditor->setLayoutDirection(Qt::LeftToRight); // markup is written from left to right
    FEditor->setAccessibleName(tr("Markup"));

    auto* Frame = new QFrame;
    Frame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    auto* FrameLayout = new QVBoxLayout(Frame);
    FrameLayout->setContentsMargins(0, 0, 0, 0);
    FrameLayout->addWidget(FStage);

    auto* Top = new QHBoxLayout;
    Top->setSpacing(StageMargin);
    Top->addWidget(Frame, 1);
    Top->addLayout(MakeOptions());
    auto* All = new QVBoxLayout(this);
    All->setContentsMargins(0, 0, 0, 0);
    All->addLayout(Top, 1);
    All->addWidget(FEditor);

    FEditor->setPlainText(QString::fromUtf8(Samples[0].Text));
    connect(FEditor, &QPlainTextEdit::textChanged, this, &TLabelPage::Apply);
    Apply();
}

QSpinBox* TLabelPage::MakeSpinBox(int Value, int Maximum) {
    auto* Box = new QSpinBox;
    Box->setRange(0, Maximum);
    Box->setValue(Value);
    Box->setSuffix(tr(" px"));
    connect(Box, &QSpinBox::valueChanged, this, &TLabelPage::Apply);
    return Box;
}

QFormLayout* TLabelPage::MakeOptions() {
    QStringList Titles;
    for (const TSample& Sample : Samples) Titles << tr(Sample.Title);
    FSample = MakeComboBox(Titles);
    connect(FSample, &QComboBox::activated, this, [this](int Index) {
        FEditor->setPlainText(QString::fromUtf8(Samples[static_cast<std::size_t>(Index)].Text));
    });
    // In the order of the enumerations.
    FAlignment = MakeComboBox({tr("Left"), tr("Right"), tr("Centre")});
    FAlignment->setCurrentIndex(isRightToLeft() ? taRightJustify : taLeftJustify);
    FVertical = MakeComboBox({tr("Top"), tr("Bottom"), tr("Centre")});
    FVertical->setCurrentIndex(vaCenter);
    FBorder = MakeComboBox({tr("None"), tr("Flat"), tr("Sunken")});
    FMargin = MakeSpinBox(StageMargin, 200);
    FBorderWidth = MakeSpinBox(0, 50);
    FWordWrap = new QCheckBox(tr("&Word wrap"));
    FAutoSize = new QCheckBox(tr("Auto-&size"));
    for (QComboBox* Box : {FAlignment, FVertical, FBorder})
        connect(Box, &QComboBox::currentIndexChanged, this, &TLabelPage::Apply);
    for (QCheckBox* Box : {FWordWrap, FAutoSize}) connect(Box, &QCheckBox::toggled, this, &TLabelPage::Apply);

    auto* Options = new QFormLayout;
    Options->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    Options->addRow(tr("Sa&mple"), FSample);
    Options->addRow(tr("&Alignment"), FAlignment);
    Options->addRow(tr("&Vertical"), FVertical);
    Options->addRow(tr("&Border"), FBorder);
    Options->addRow(tr("Border wi&dth"), FBorderWidth);
    Options->addRow(tr("Mar&gin"), FMargin);
    Options->addRow(FWordWrap);
    Options->addRow(FAutoSize);
    FSample->setFixedWidth(OptionsWidth - 100);
    return Options;
}

void TLabelPage::Apply() {
    FLabel->SetAutosize(false); // one step at a time would size it for each
    FLabel->SetAlignment(static_cast<TAlignment>(FAlignment->currentIndex()));
    FLabel->SetVertAlign(static_cast<TNVVerticalAlign>(FVertical->currentIndex()));
    FLabel->SetCtl3D(FBorder->currentIndex() != 1);
    FLabel->SetBorderStyle(FBorder->currentIndex() == 0 ? bsNone : bsSingle);
    FLabel->SetBorderWidth(FBorderWidth->value());
    FLabel->SetMargin(FMargin->value());
    FLabel->SetWordWrap(FWordWrap->isChecked());
    TStringList Lines;
    Lines.SetText(FEditor->toPlainText().toStdString());
    FLabel->SetStrings(&Lines);
    PlaceLabel();
    FLabel->SetAutosize(FAutoSize->isChecked());
}

void TLabelPage::PlaceLabel() {
    FLabel->SetBounds(0, 0, FStage->width(), FStage->height());
    if (FLabel->isRightToLeft()) FLabel->SetLeft(FStage->width() - FLabel->GetWidth());
}

bool TLabelPage::eventFilter(QObject* Watched, QEvent* Event) {
    if (Watched == FStage && Event->type() == QEvent::Resize) PlaceLabel();
    return TGalleryPage::eventFilter(Watched, Event);
}

} // namespace quill::examples
