#include "TreeStatus.h"

#include "quilltree/QuillTree.h"

#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTimer>

namespace quill::examples {

TTreeStatus::TTreeStatus(QStatusBar* Bar, TCustomQuillTree* Tree)
    : QObject(Tree), FTree(Tree), FTimer(new QTimer(this)), FText(new QLabel), FNodes(new QLabel),
      FRows(new QLabel), FSelected(new QLabel) {
    FText->setTextFormat(Qt::PlainText);
    // A long text must not make the window wider.
    FText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    Bar->addWidget(FText, 1);
    for (QLabel* Label : {FNodes, FRows, FSelected}) Bar->addPermanentWidget(Label);

    FTimer->setSingleShot(true);
    FTimer->setInterval(0);
    connect(FTimer, &QTimer::timeout, this, &TTreeStatus::Show);
    connect(Tree, &TCustomQuillTree::expanded, this, &TTreeStatus::Touch);
    connect(Tree, &TCustomQuillTree::collapsed, this, &TTreeStatus::Touch);
    connect(Tree, &TCustomQuillTree::changed, this, &TTreeStatus::Touch);
    // Releases and keys mark nodes without a change of the current one.
    Tree->viewport()->installEventFilter(this);
    Tree->installEventFilter(this);
    Touch();
}

void TTreeStatus::Touch() {
    if (!FTimer->isActive()) FTimer->start();
}

bool TTreeStatus::eventFilter(QObject* Watched, QEvent* Event) {
    switch (Event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::KeyPress:
        Touch();
        break;
    default:
        break;
    }
    return QObject::eventFilter(Watched, Event);
}

void TTreeStatus::Show() {
    const TRowList& Rows = FTree->GetItems()->RowList;
    const QLocale Locale;
    FText->setText(Text ? Text() : QString());
    FNodes->setText(tr("%1 nodes").arg(Locale.toString(NodeCount ? NodeCount() : 0)));
    FRows->setText(tr("%1 rows").arg(Locale.toString(Rows.GetCount())));
    FSelected->setText(tr("%1 selected").arg(Locale.toString(Rows.GetSelectedCount())));
}

} // namespace quill::examples
