#include "bench/adapters/CompactModel.h"

#include <QCollator>

#include <algorithm>

namespace quill::bench {

TCompactModel::TCompactModel(QObject* Parent) : QAbstractItemModel(Parent) {
    BeginReset();
    EndReset();
}

void TCompactModel::BeginReset() {
    beginResetModel();
    FItems = std::vector<TItem>(1);
    FLists = std::vector<TList>(1);
    FFree = {};
    FTexts = {};
}

TCompactModel::TList& TCompactModel::MakeChildrenOf(TId Id) {
    if (FItems[Id].List == 0) {
        FItems[Id].List = static_cast<std::uint32_t>(FLists.size());
        FLists.emplace_back();
    }
    return FLists[FItems[Id].List];
}

void TCompactModel::StoreTexts(TItem& Item, std::string_view First, std::string_view Second,
                               std::string_view Third) {
    Item.TextAt = static_cast<std::uint32_t>(FTexts.size());
    int Column = 0;
    for (const std::string_view Text : {First, Second, Third}) {
        const std::string_view Stored = Text.substr(0, 255);
        Item.Lengths[Column++] = static_cast<std::uint8_t>(Stored.size());
        FTexts += Stored;
    }
}

TCompactModel::TId TCompactModel::Add(TId Parent, std::string_view First, std::string_view Second,
                                      std::string_view Third) {
    const auto Id = static_cast<TId>(FItems.size());
    TItem Item;
    Item.Parent = Parent;
    StoreTexts(Item, First, Second, Third);
    TList& List = MakeChildrenOf(Parent);
    Item.Row = static_cast<std::uint32_t>(List.size());
    FItems.push_back(Item);
    List.push_back(Id);
    return Id;
}

void TCompactModel::Renumber(const TList& List, std::size_t From) {
    for (std::size_t Row = From; Row < List.size(); ++Row) {
        FItems[List[Row]].Row = static_cast<std::uint32_t>(Row);
    }
}

void TCompactModel::Insert(TId Parent, int Row, const TTexts& Texts) {
    beginInsertRows(IndexOf(Parent), Row, Row);
    TId Id = 0;
    if (FFree.empty()) {
        Id = static_cast<TId>(FItems.size());
        FItems.emplace_back();
    } else {
        Id = FFree.back();
        FFree.pop_back();
        FItems[Id] = {};
    }
    FItems[Id].Parent = Parent;
    StoreTexts(FItems[Id], Texts[0], Texts[1], Texts[2]);
    TList& List = MakeChildrenOf(Parent);
    List.insert(List.begin() + Row, Id);
    Renumber(List, static_cast<std::size_t>(Row));
    endInsertRows();
}

void TCompactModel::Remove(TId Id) {
    const TId Parent = FItems[Id].Parent;
    const int Row = GetRow(Id);
    beginRemoveRows(IndexOf(Parent), Row, Row);
    TList& List = MakeChildrenOf(Parent);
    List.erase(List.begin() + Row);
    Renumber(List, static_cast<std::size_t>(Row));
    FFree.push_back(Id);
    endRemoveRows();
}

void TCompactModel::SortTop(bool ByLocale) {
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList Before = persistentIndexList();
    TList& List = MakeChildrenOf(0);
    // Keys once per sort, beside the numbers that are moved.
    const auto SortBy = [&](auto KeyOf) {
        std::vector<std::pair<decltype(KeyOf(TId())), TId>> Keys;
        Keys.reserve(List.size());
        for (const TId Id : List) Keys.emplace_back(KeyOf(Id), Id);
        std::stable_sort(Keys.begin(), Keys.end(),
                         [](const auto& A, const auto& B) { return A.first < B.first; });
        std::transform(Keys.begin(), Keys.end(), List.begin(), [](const auto& Key) { return Key.second; });
    };
    if (ByLocale) {
        const QCollator Collator(QLocale::system().collation());
        SortBy([&](TId Id) {
            const std::string_view Text = GetText(Id, 0);
            return Collator.sortKey(QString::fromUtf8(Text.data(), static_cast<qsizetype>(Text.size())));
        });
    } else {
        SortBy([&](TId Id) { return GetText(Id, 0); });
    }
    Renumber(List, 0);
    QModelIndexList After;
    for (const QModelIndex& Index : Before) {
        const TId Id = IdOf(Index);
        After.append(createIndex(GetRow(Id), Index.column(), Scattered(Id)));
    }
    changePersistentIndexList(Before, After);
    emit layoutChanged({}, VerticalSortHint);
}

std::string_view TCompactModel::GetText(TId Id, int Column) const {
    const TItem& Item = FItems[Id];
    std::size_t At = Item.TextAt;
    for (int Before = 0; Before < Column; ++Before) At += Item.Lengths[Before];
    return std::string_view(FTexts).substr(At, Item.Lengths[Column]);
}

QModelIndex TCompactModel::index(int Row, int Column, const QModelIndex& Parent) const {
    const TList& List = ChildrenOf(IdOf(Parent));
    if (Row < 0 || static_cast<std::size_t>(Row) >= List.size()) return {};
    return createIndex(Row, Column, Scattered(List[static_cast<std::size_t>(Row)]));
}

QModelIndex TCompactModel::parent(const QModelIndex& Index) const { return IndexOf(GetParent(IdOf(Index))); }

int TCompactModel::rowCount(const QModelIndex& Parent) const {
    return Parent.column() > 0 ? 0 : CountChildren(IdOf(Parent));
}

bool TCompactModel::hasChildren(const QModelIndex& Parent) const {
    return Parent.column() <= 0 && FItems[IdOf(Parent)].List != 0 && CountChildren(IdOf(Parent)) > 0;
}

QVariant TCompactModel::data(const QModelIndex& Index, int Role) const {
    const TId Id = IdOf(Index);
    if (Role == Qt::DisplayRole || Role == Qt::EditRole) {
        const std::string_view Text = GetText(Id, Index.column());
        return QString::fromUtf8(Text.data(), static_cast<qsizetype>(Text.size()));
    }
    if (Role == Qt::CheckStateRole && HasChecks && Index.column() == 0) {
        return FItems[Id].Checked ? Qt::Checked : Qt::Unchecked;
    }
    return {};
}

bool TCompactModel::setData(const QModelIndex& Index, const QVariant& Value, int Role) {
    const TId Id = IdOf(Index);
    if (Role == Qt::CheckStateRole) {
        FItems[Id].Checked = Value.toInt() == Qt::Checked;
    } else if (Role == Qt::EditRole) {
        std::string Texts[Columns];
        for (int Column = 0; Column < Columns; ++Column) Texts[Column] = GetText(Id, Column);
        Texts[Index.column()] = Value.toString().toStdString();
        StoreTexts(FItems[Id], Texts[0], Texts[1], Texts[2]);
    } else {
        return false;
    }
    emit dataChanged(Index, Index, {Role});
    return true;
}

Qt::ItemFlags TCompactModel::flags(const QModelIndex&) const {
    Qt::ItemFlags Flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (HasChecks) Flags |= Qt::ItemIsUserCheckable;
    if (HasEditing) Flags |= Qt::ItemIsEditable;
    return Flags;
}

} // namespace quill::bench
