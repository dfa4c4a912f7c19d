// QTreeView with QStandardItemModel. Branches are built apart and appended whole; a row has one item per column.
#include "bench/adapters/Adapters.h"
#include "bench/adapters/ViewContender.h"
#include "bench/NodesFile.h"

#include <QCollator>
#include <QStandardItemModel>

namespace quill::bench {
namespace {

// Sorts as the user's language has it.
class TCollatedItem : public QStandardItem {
public:
    using QStandardItem::QStandardItem;
    bool operator<(const QStandardItem& Other) const override {
        static const QCollator Collator(QLocale::system().collation());
        return Collator.compare(text(), Other.text()) < 0;
    }
};

class TStandardTree : public TViewContender {
public:
    void UseCollation() override { FCollated = true; }
    void Fill(const TShape& Shape) override {
        const TUpdatesOff Off(*FView);
        int Number = 0;
        for (int T = 0; T < Shape.Tops; ++T) {
            const auto Top = MakeRow(TextsOf(Number++));
            for (int G = 0; G < Shape.Groups; ++G) {
                const auto Group = MakeRow(TextsOf(Number++));
                for (int L = 0; L < TShape::Leaves; ++L) Group[0]->appendRow(MakeRow(TextsOf(Number++)));
                Top[0]->appendRow(Group);
            }
            FModel->appendRow(Top);
        }
    }
    void FillList(int Count, TTextsOf TextsOf, bool BelowOne) override {
        const TUpdatesOff Off(*FView);
        QStandardItem* Parent = FModel->invisibleRootItem();
        QList<QStandardItem*> Row;
        if (BelowOne) {
            Row = MakeRow(TextsOf(0));
            Parent = Row[0];
        } else {
            FView->setModel(nullptr); // nothing to tell while the rows come one by one
        }
        for (int Index = 0; Index < Count; ++Index) Parent->appendRow(MakeRow(TextsOf(Index)));
        if (BelowOne) {
            FModel->appendRow(Row);
        } else {
            FView->setModel(FModel.get());
        }
    }
    void Load(const std::string& FileName) override {
        const TUpdatesOff Off(*FView);
        std::vector<QList<QStandardItem*>> Path;
        // A row joins its parent when its branch is complete.
        const auto ShrinkTo = [&](std::size_t Level) {
            while (Path.size() > Level) {
                const QList<QStandardItem*> Row = Path.back();
                Path.pop_back();
                if (Path.empty()) {
                    FModel->appendRow(Row);
                } else {
                    Path.back()[0]->appendRow(Row);
                }
            }
        };
        ReadNodesFile(FileName, [&](int Level, const TTextViews& Texts) {
            ShrinkTo(static_cast<std::size_t>(Level));
            QList<QStandardItem*> Row;
            for (const std::string_view Text : Texts) Row.append(new QStandardItem(ToQt(Text)));
            Path.push_back(Row);
        });
        ShrinkTo(0);
    }
    void Clear() override {
        // Taking sorted rows apart takes this model minutes, which is no part of any figure: it is left behind.
        if (FSorted) {
            static_cast<void>(FModel.release());
            FModel = std::make_unique<QStandardItemModel>();
            FView->setModel(FModel.get());
            FSorted = false;
        }
        FModel->clear();
        FModel->setColumnCount(Columns);
        SizeSections();
    }
    TNode GetChild(TNode Parent, int Index) override {
        return AsNode(Parent ? AsItem(Parent)->child(Index) : FModel->item(Index));
    }
    void Append(const TTexts& Texts) override { FModel->appendRow(MakeRow(Texts)); }
    void InsertBefore(TNode Sibling, const TTexts& Texts) override {
        AsItem(Sibling)->parent()->insertRow(AsItem(Sibling)->row(), MakeRow(Texts));
    }
    void Delete(TNode Node) override { AsItem(Node)->parent()->removeRow(AsItem(Node)->row()); }
    void Sort() override {
        FModel->sort(0);
        FSorted = true;
    }

protected:
    std::unique_ptr<QTreeView> MakeView() override {
        auto View = std::make_unique<QTreeView>();
        FModel->setColumnCount(Columns);
        View->setModel(FModel.get());
        return View;
    }
    QModelIndex IndexOf(TNode Node) override { return FModel->indexFromItem(AsItem(Node)); }
    TNode NodeOf(const QModelIndex& Index) override {
        return AsNode(FModel->itemFromIndex(Index.siblingAtColumn(0)));
    }

private:
    static QStandardItem* AsItem(TNode Node) { return reinterpret_cast<QStandardItem*>(Node); }
    static TNode AsNode(QStandardItem* Item) { return reinterpret_cast<TNode>(Item); }
    QList<QStandardItem*> MakeRow(const TTexts& Texts) const {
        QList<QStandardItem*> Row;
        Row.reserve(Columns);
        for (const std::string& Text : Texts) {
            const QString Shown = QString::fromStdString(Text);
            Row.append(FCollated && Row.empty() ? new TCollatedItem(Shown) : new QStandardItem(Shown));
        }
        if (FChecks) {
            Row[0]->setCheckable(true);
            Row[0]->setCheckState(Qt::Unchecked);
        }
        return Row;
    }
    std::unique_ptr<QStandardItemModel> FModel = std::make_unique<QStandardItemModel>();
    bool FSorted = false;
    bool FCollated = false;
};

} // namespace

std::unique_ptr<TContender> MakeStandardTree() { return std::make_unique<TStandardTree>(); }

} // namespace quill::bench
