// What the three contenders on QTreeView share; each has a model of its own.
#pragma once

#include "bench/QtContender.h"

#include <QTreeView>

#include <memory>

namespace quill::bench {

// Tuned as Qt's documentation advises for big trees: uniform row heights, fixed section sizes, no animation, a
// constant size hint.
class TViewContender : public TQtContender {
public:
    void Open() override;
    void UseChecks() override { FChecks = true; }
    void UseEditing() override { FEditing = true; }
    void UseHotTracking() override { FHover = true; }
    void RepaintAll() override { FView->viewport()->update(); }

    void ExpandAll() override { FView->expandAll(); }
    void CollapseAll() override { FView->collapseAll(); }
    void SetExpanded(TNode Node, bool Value) override { FView->setExpanded(IndexOf(Node), Value); }
    void ScrollTo(TNode Node) override;
    void ScrollToEnd() override { FView->scrollToBottom(); }
    void ScrollRow() override;
    void ScrollPage() override;
    void SelectAll() override { FView->selectAll(); }
    void ClearSelection() override { FView->clearSelection(); }
    void SetCurrent(TNode Node) override { FView->setCurrentIndex(IndexOf(Node)); }
    TNode GetNodeAt(TSpot Spot) override { return NodeOf(FView->indexAt({Spot.X, Spot.Y})); }
    // The row numbers of all visible nodes are the view's own secret; programs ask for the place.
    long GetRowOf(TNode Node) override { return FView->visualRect(IndexOf(Node)).y(); }
    TSpot GetTextSpot(TNode Node) override;
    TSpot GetCheckSpot(TNode Node) override;
    bool IsEditing() override;
    int GetCheckState(TNode Node) override;
    std::string GetText(TNode Node) override;

protected:
    // The view, with its model.
    virtual std::unique_ptr<QTreeView> MakeView() = 0;
    virtual QModelIndex IndexOf(TNode Node) = 0;
    virtual TNode NodeOf(const QModelIndex& Index) = 0;
    QAbstractScrollArea& GetArea() override { return *FView; }
    // Again after the columns were gone.
    void SizeSections();

    std::unique_ptr<QTreeView> FView;
    bool FChecks = false;
    bool FEditing = false;
    bool FHover = false;
};

// Without updates of the window while a scope lasts.
class TUpdatesOff {
public:
    explicit TUpdatesOff(QWidget& Widget) : FWidget(Widget) { FWidget.setUpdatesEnabled(false); }
    ~TUpdatesOff() { FWidget.setUpdatesEnabled(true); }
    TUpdatesOff(const TUpdatesOff&) = delete;
    TUpdatesOff& operator=(const TUpdatesOff&) = delete;

private:
    QWidget& FWidget;
};

// Text for Qt, which holds UTF-16.
inline QString ToQt(std::string_view Text) {
    return QString::fromUtf8(Text.data(), static_cast<qsizetype>(Text.size()));
}

} // namespace quill::bench
