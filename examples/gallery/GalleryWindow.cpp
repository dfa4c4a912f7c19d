#include "GalleryWindow.h"

#include "GalleryPages.h"

#include <QCoreApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <utility>

namespace quill::examples {

namespace {

constexpr int ListWidth = 180;
constexpr int ItemHeight = 32;
constexpr int PageMargin = 16;

constexpr int TextInset = 12;

// Names of pages, with some room before them.
class TPageDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* Painter, const QStyleOptionViewItem& Option,
               const QModelIndex& Index) const override {
        QStyleOptionViewItem Item(Option);
        initStyleOption(&Item, Index);
        const QString Text = std::exchange(Item.text, QString());
        Item.widget->style()->drawControl(QStyle::CE_ItemViewItem, &Item, Painter, Item.widget);
        const bool Selected = Item.state.testFlag(QStyle::State_Selected);
        Item.widget->style()->drawItemText(
            Painter, Item.rect.adjusted(TextInset, 0, -TextInset, 0),
            static_cast<int>(QStyle::visualAlignment(Item.direction, Qt::AlignLeft) | Qt::AlignVCenter),
            Item.palette, true, Text, Selected ? QPalette::HighlightedText : QPalette::Text);
    }
};

QString Translated(const char* Text) { return QCoreApplication::translate("Gallery", Text); }

} // namespace

TGalleryWindow::TGalleryWindow()
    : FList(new QListWidget), FTitle(new QLabel), FDescription(new QLabel), FStack(new QStackedWidget) {
    MakeList();
    auto* Right = new QVBoxLayout;
    Right->setContentsMargins(PageMargin, PageMargin, PageMargin, PageMargin);
    Right->setSpacing(12);
    Right->addWidget(MakeHead());
    Right->addWidget(FStack, 1);

    auto* Center = new QWidget;
    auto* Row = new QHBoxLayout(Center);
    Row->setContentsMargins(0, 0, 0, 0);
    Row->setSpacing(0);
    Row->addWidget(FList);
    Row->addLayout(Right, 1);
    setCentralWidget(Center);

    connect(FList, &QListWidget::currentRowChanged, this, &TGalleryWindow::ShowPage);
    FList->setCurrentRow(0);
}

void TGalleryWindow::MakeList() {
    FList->setFixedWidth(ListWidth);
    FList->setFrameShape(QFrame::NoFrame);
    FList->setItemDelegate(new TPageDelegate(FList));
    FList->setAccessibleName(tr("Pages"));
    for (const TPageInfo& Info : GalleryPages()) {
        auto* Item = new QListWidgetItem(Translated(Info.Title), FList);
        Item->setSizeHint(QSize(ListWidth, ItemHeight));
        FPages.append(nullptr);
    }
}

QWidget* TGalleryWindow::MakeHead() {
    QFont Big = font();
    Big.setPixelSize(qRound(fontInfo().pixelSize() * 1.5));
    Big.setBold(true);
    FTitle->setFont(Big);
    FDescription->setWordWrap(true);
    auto* Head = new QWidget;
    auto* Column = new QVBoxLayout(Head);
    Column->setContentsMargins(0, 0, 0, 0);
    Column->setSpacing(4);
    Column->addWidget(FTitle);
    Column->addWidget(FDescription);
    return Head;
}

void TGalleryWindow::ShowPage(int Index) {
    if (Index < 0 || Index >= FPages.size()) return;
    FList->setCurrentRow(Index);
    const TPageInfo& Info = GalleryPages()[static_cast<std::size_t>(Index)];
    if (!FPages[Index]) {
        FPages[Index] = Info.Create();
        FStack->addWidget(FPages[Index]);
    }
    FPage = FPages[Index];
    FStack->setCurrentWidget(FPage);
    FTitle->setText(Translated(Info.Title));
    FDescription->setText(Translated(Info.Description));
    setWindowTitle(Translated(Info.Title));
}

} // namespace quill::examples
