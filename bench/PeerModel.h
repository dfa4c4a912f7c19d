// The peer: a compact item model as an expert would write it for QTreeView, over the same data as our tree.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>

#include <array>
#include <cstdint>
#include <vector>

namespace quill::bench {

// 100 groups of Groups groups of Leaves leaves; an index carries the number of its node. Texts are made when asked.
class TPeerModel : public QAbstractItemModel {
public:
    TPeerModel(int Tops, int Groups, int Leaves, QIcon Icon)
        : FTops(Tops), FGroups(Groups), FLeaves(Leaves), FIcon(std::move(Icon)) {}

    // The number of a node: 0 for the root, else its level and position packed.
    static std::uintptr_t Id(int Level, int Top, int Group) {
        return (static_cast<std::uintptr_t>(Level) << 40) | (static_cast<std::uintptr_t>(Top) << 20) |
               static_cast<std::uintptr_t>(Group);
    }
    static int Level(const QModelIndex& Index) {
        return Index.isValid() ? static_cast<int>(Index.internalId() >> 40) : 0;
    }
    static int Top(const QModelIndex& Index) {
        return static_cast<int>((Index.internalId() >> 20) & 0xFFFFF);
    }
    static int Group(const QModelIndex& Index) { return static_cast<int>(Index.internalId() & 0xFFFFF); }

    QModelIndex index(int Row, int Column, const QModelIndex& Parent) const override {
        switch (Level(Parent)) {
        case 0:
            return createIndex(Row, Column, Id(1, 0, 0));
        case 1:
            return createIndex(Row, Column, Id(2, Parent.row(), 0));
        default:
            return createIndex(Row, Column, Id(3, Top(Parent), Parent.row()));
        }
    }
    QModelIndex parent(const QModelIndex& Index) const override {
        switch (Level(Index)) {
        case 2:
            return createIndex(Top(Index), 0, Id(1, 0, 0));
        case 3:
            return createIndex(Group(Index), 0, Id(2, Top(Index), 0));
        default:
            return {};
        }
    }
    int rowCount(const QModelIndex& Parent) const override {
        switch (Level(Parent)) {
        case 0:
            return FTops;
        case 1:
            return FGroups;
        case 2:
            return FLeaves;
        default:
            return 0;
        }
    }
    int columnCount(const QModelIndex&) const override { return 3; }
    bool hasChildren(const QModelIndex& Parent) const override { return Level(Parent) < 3; }
    QVariant data(const QModelIndex& Index, int Role) const override {
        if (Role == Qt::DecorationRole && Index.column() == 0) return FIcon;
        if (Role != Qt::DisplayRole) return {};
        return QString::fromStdString(
            NodeText(Level(Index), Top(Index), Group(Index), Index.row(), Index.column()));
    }

    // The texts of both trees: about 49 bytes a node over three columns.
    static std::string NodeText(int Level, int Top, int Group, int Row, int Column) {
        switch (Column) {
        case 0:
            return "Node " + std::to_string(Level) + "." + std::to_string(Top) + "." + std::to_string(Group) +
                   "." + std::to_string(Row) + " of the tree";
        case 1:
            return "value " + std::to_string(Top * 7919 + Group * 101 + Row);
        default:
            return "unit " + std::to_string(Row % 97) + " kg";
        }
    }

private:
    int FTops;
    int FGroups;
    int FLeaves;
    QIcon FIcon;
};

} // namespace quill::bench
