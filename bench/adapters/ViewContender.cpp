#include "bench/adapters/ViewContender.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QStyleFactory>

namespace quill::bench {
namespace {

class TFixedSizeDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {TContender::ColumnWidths[0], TContender::RowHeight};
    }
};

} // namespace

void TViewContender::Open() {
    FView = MakeView();
    QTreeView& View = *FView;
    View.setItemDelegate(new TFixedSizeDelegate(&View));
    View.setUniformRowHeights(true);
    View.setAnimated(false);
    View.setHeaderHidden(true);
    View.setSelectionMode(QAbstractItemView::ExtendedSelection);
    View.setEditTriggers(FEditing ? QAbstractItemView::EditKeyPressed : QAbstractItemView::NoEditTriggers);
    View.setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    View.header()->setStretchLastSection(false);
    SizeSections();
    View.viewport()->setAttribute(Qt::WA_Hover, FHover);
    OpenWindow();
}

void TViewContender::SizeSections() {
    QHeaderView& Header = *FView->header();
    Header.setSectionResizeMode(QHeaderView::Fixed);
    for (int Col = 0; Col < Columns; ++Col) Header.resizeSection(Col, ColumnWidths[Col]);
}

void TViewContender::ScrollTo(TNode Node) {
    FView->scrollTo(IndexOf(Node), QAbstractItemView::PositionAtTop);
}

void TViewContender::ScrollRow() {
    FView->verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
}

void TViewContender::ScrollPage() {
    FView->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
}

TSpot TViewContender::GetTextSpot(TNode Node) {
    const QRect Rect = FView->visualRect(IndexOf(Node));
    return {Rect.left() + 30, Rect.center().y()};
}

TSpot TViewContender::GetCheckSpot(TNode Node) {
    QStyleOptionViewItem Option;
    Option.initFrom(FView.get());
    Option.widget = FView.get();
    Option.rect = FView->visualRect(IndexOf(Node));
    Option.features |= QStyleOptionViewItem::HasCheckIndicator;
    const QPoint Centre =
        FView->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &Option, FView.get()).center();
    return {Centre.x(), Centre.y()};
}

bool TViewContender::IsEditing() {
    const auto* Editor = FView->viewport()->findChild<QLineEdit*>();
    return Editor && Editor->isVisible();
}

int TViewContender::GetCheckState(TNode Node) { return IndexOf(Node).data(Qt::CheckStateRole).toInt(); }

std::string TViewContender::GetText(TNode Node) { return IndexOf(Node).data().toString().toStdString(); }

} // namespace quill::bench
