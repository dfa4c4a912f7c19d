// QTreeWidget. Items are built apart and handed over in one call, as its documentation advises.
#include "bench/adapters/Adapters.h"
#include "bench/adapters/ViewContender.h"
#include "bench/NodesFile.h"

#include <QCollator>
#include <QTreeWidget>

namespace quill::bench {
namespace {

// Sorts as the user's language has it.
class TCollatedItem : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem& Other) const override {
        static const QCollator Collator(QLocale::system().collation());
        return Collator.compare(text(0), Other.text(0)) < 0;
    }
};

class TWidgetTree : public TViewContender {
public:
    void Fill(const TShape& Shape) override {
        const TUpdatesOff Off(*FView);
        QList<QTreeWidgetItem*> Tops;
        int Number = 0;
        for (int T = 0; T < Shape.Tops; ++T) {
            QTreeWidgetItem* const Top = MakeItem(TextsOf(Number++));
            Tops.append(Top);
            for (int G = 0; G < Shape.Groups; ++G) {
                QTreeWidgetItem* const Group = MakeItem(TextsOf(Number++));
                for (int L = 0; L < TShape::Leaves; ++L) Group->addChild(MakeItem(TextsOf(Number++)));
                Top->addChild(Group);
            }
        }
        GetTree().addTopLevelItems(Tops);
    }
    void FillList(int Count, TTextsOf TextsOf, bool BelowOne) override {
        const TUpdatesOff Off(*FView);
        QList<QTreeWidgetItem*> Items;
        Items.reserve(Count);
        for (int Index = 0; Index < Count; ++Index) Items.append(MakeItem(TextsOf(Index)));
        if (BelowOne) {
            QTreeWidgetItem* const Parent = MakeItem(TextsOf(0));
            Parent->addChildren(Items);
            GetTree().addTopLevelItem(Parent);
        } else {
            GetTree().addTopLevelItems(Items);
        }
    }
    void Load(const std::string& FileName) override {
        const TUpdatesOff Off(*FView);
        QList<QTreeWidgetItem*> Tops;
        std::vector<QTreeWidgetItem*> Path;
        ReadNodesFile(FileName, [&](int Level, const TTextViews& Texts) {
            Path.resize(static_cast<std::size_t>(Level));
            auto* const Item = new QTreeWidgetItem;
            for (int Col = 0; Col < Columns; ++Col) {
                Item->setText(Col, ToQt(Texts[static_cast<std::size_t>(Col)]));
            }
            if (Path.empty()) {
                Tops.append(Item);
            } else {
                Path.back()->addChild(Item);
            }
            Path.push_back(Item);
        });
        GetTree().addTopLevelItems(Tops);
    }
    void Clear() override { GetTree().clear(); }
    TNode GetChild(TNode Parent, int Index) override {
        return AsNode(Parent ? AsItem(Parent)->child(Index) : GetTree().topLevelItem(Index));
    }
    void Append(const TTexts& Texts) override { GetTree().addTopLevelItem(MakeItem(Texts)); }
    void InsertBefore(TNode Sibling, const TTexts& Texts) override {
        QTreeWidgetItem* const Parent = AsItem(Sibling)->parent();
        Parent->insertChild(Parent->indexOfChild(AsItem(Sibling)), MakeItem(Texts));
    }
    void Delete(TNode Node) override { delete AsItem(Node); }
    void UseCollation() override { FCollated = true; }
    void Sort() override { GetTree().sortItems(0, Qt::AscendingOrder); }

protected:
    std::unique_ptr<QTreeView> MakeView() override {
        auto Tree = std::make_unique<QTreeWidget>();
        Tree->setColumnCount(Columns);
        return Tree;
    }
    QModelIndex IndexOf(TNode Node) override { return GetTree().indexFromItem(AsItem(Node)); }
    TNode NodeOf(const QModelIndex& Index) override { return AsNode(GetTree().itemFromIndex(Index)); }

private:
    QTreeWidget& GetTree() { return static_cast<QTreeWidget&>(*FView); }
    static QTreeWidgetItem* AsItem(TNode Node) { return reinterpret_cast<QTreeWidgetItem*>(Node); }
    static TNode AsNode(QTreeWidgetItem* Item) { return reinterpret_cast<TNode>(Item); }
    QTreeWidgetItem* MakeItem(const TTexts& Texts) {
        QTreeWidgetItem* const Item = FCollated ? new TCollatedItem : new QTreeWidgetItem;
        for (int Col = 0; Col < Columns; ++Col) {
            Item->setText(Col, QString::fromStdString(Texts[static_cast<std::size_t>(Col)]));
        }
        if (FChecks) Item->setCheckState(0, Qt::Unchecked);
        if (FEditing) Item->setFlags(Item->flags() | Qt::ItemIsEditable);
        return Item;
    }
    bool FCollated = false;
};

} // namespace

std::unique_ptr<TContender> MakeWidgetTree() { return std::make_unique<TWidgetTree>(); }

} // namespace quill::bench
