// A compact item model as an expert would write it for QTreeView: one array of small records, one text buffer.
#pragma once

#include "bench/Data.h"

#include <QAbstractItemModel>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quill::bench {

// Items are numbered; item 0 is the invisible root. An index carries the number of its item. The text of an item that
// changes or goes stays in the buffer until the model is reset.
class TCompactModel : public QAbstractItemModel {
public:
    using TId = std::uint32_t;

    explicit TCompactModel(QObject* Parent);
    bool HasChecks = false;
    bool HasEditing = false;

    // --- filling, between BeginReset and EndReset -------------------------------------------------------------
    void BeginReset();
    void EndReset() { endResetModel(); }
    TId Add(TId Parent, std::string_view First, std::string_view Second, std::string_view Third);

    // --- single changes, announced to the view ----------------------------------------------------------------
    void Insert(TId Parent, int Row, const TTexts& Texts);
    void Remove(TId Id);
    // The root's children by their first column: by bytes, or by the user's language.
    void SortTop(bool ByLocale);

    TId GetChild(TId Parent, int Row) const { return ChildrenOf(Parent)[static_cast<std::size_t>(Row)]; }
    int CountChildren(TId Parent) const { return static_cast<int>(ChildrenOf(Parent).size()); }
    TId GetParent(TId Id) const { return FItems[Id].Parent; }
    int GetRow(TId Id) const { return static_cast<int>(FItems[Id].Row); }
    QModelIndex IndexOf(TId Id) const {
        return Id == 0 ? QModelIndex() : createIndex(GetRow(Id), 0, Scattered(Id));
    }
    static TId IdOf(const QModelIndex& Index) {
        return Index.isValid() ? static_cast<TId>(Index.internalId() * Gather) : 0;
    }
    std::string_view GetText(TId Id, int Column) const;

    QModelIndex index(int Row, int Column, const QModelIndex& Parent) const override;
    QModelIndex parent(const QModelIndex& Index) const override;
    int rowCount(const QModelIndex& Parent) const override;
    int columnCount(const QModelIndex&) const override { return Columns; }
    bool hasChildren(const QModelIndex& Parent) const override;
    QVariant data(const QModelIndex& Index, int Role) const override;
    bool setData(const QModelIndex& Index, const QVariant& Value, int Role) override;
    Qt::ItemFlags flags(const QModelIndex& Index) const override;

private:
    struct TItem {
        TId Parent = 0;
        std::uint32_t Row = 0;
        std::uint32_t List = 0; // place of its children in FLists, 0 for none
        std::uint32_t TextAt = 0;
        std::uint8_t Lengths[Columns] = {};
        bool Checked = false;
    };
    using TList = std::vector<TId>;

    // Qt hashes an index by the sum of its parts, so that consecutive numbers would share places in its tables, at a
    // cost of seconds. An odd factor scatters them; its inverse modulo 2^64 takes it back.
    static constexpr std::uint64_t Scatter = 0x9E3779B97F4A7C15U;
    static constexpr std::uint64_t Gather = 0xF1DE83E19937733DU;
    static_assert(Scatter * Gather == 1);
    static quintptr Scattered(TId Id) { return Id * Scatter; }

    const TList& ChildrenOf(TId Id) const { return FLists[FItems[Id].List]; }
    TList& MakeChildrenOf(TId Id);
    void StoreTexts(TItem& Item, std::string_view First, std::string_view Second, std::string_view Third);
    void Renumber(const TList& List, std::size_t From);

    std::vector<TItem> FItems;
    std::vector<TList> FLists; // the first stays empty
    std::vector<TId> FFree;
    std::string FTexts;
};

} // namespace quill::bench
