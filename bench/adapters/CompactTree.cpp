// QTreeView with the compact model.
#include "bench/adapters/Adapters.h"
#include "bench/adapters/CompactModel.h"
#include "bench/adapters/ViewContender.h"
#include "bench/NodesFile.h"

namespace quill::bench {
namespace {

class TCompactTree : public TViewContender {
public:
    using TId = TCompactModel::TId;

    void UseCollation() override { FCollated = true; }
    void Fill(const TShape& Shape) override {
        FModel->BeginReset();
        int Number = 0;
        for (int T = 0; T < Shape.Tops; ++T) {
            const TId Top = Add(0, TextsOf(Number++));
            for (int G = 0; G < Shape.Groups; ++G) {
                const TId Group = Add(Top, TextsOf(Number++));
                for (int L = 0; L < TShape::Leaves; ++L) Add(Group, TextsOf(Number++));
            }
        }
        FModel->EndReset();
    }
    void FillList(int Count, TTextsOf TextsOf, bool BelowOne) override {
        FModel->BeginReset();
        const TId Parent = BelowOne ? Add(0, TextsOf(0)) : 0;
        for (int Index = 0; Index < Count; ++Index) Add(Parent, TextsOf(Index));
        FModel->EndReset();
    }
    void Load(const std::string& FileName) override {
        FModel->BeginReset();
        std::vector<TId> Path{0};
        ReadNodesFile(FileName, [&](int Level, const TTextViews& Texts) {
            Path.resize(static_cast<std::size_t>(Level) + 1);
            Path.push_back(FModel->Add(Path.back(), Texts[0], Texts[1], Texts[2]));
        });
        FModel->EndReset();
    }
    void Clear() override {
        FModel->BeginReset();
        FModel->EndReset();
    }
    TNode GetChild(TNode Parent, int Index) override {
        return FModel->GetChild(static_cast<TId>(Parent), Index);
    }
    void Append(const TTexts& Texts) override { FModel->Insert(0, FModel->CountChildren(0), Texts); }
    void InsertBefore(TNode Sibling, const TTexts& Texts) override {
        const auto Id = static_cast<TId>(Sibling);
        FModel->Insert(FModel->GetParent(Id), FModel->GetRow(Id), Texts);
    }
    void Delete(TNode Node) override { FModel->Remove(static_cast<TId>(Node)); }
    void Sort() override { FModel->SortTop(FCollated); }

protected:
    std::unique_ptr<QTreeView> MakeView() override {
        auto View = std::make_unique<QTreeView>();
        FModel = new TCompactModel(View.get());
        FModel->HasChecks = FChecks;
        FModel->HasEditing = FEditing;
        View->setModel(FModel);
        return View;
    }
    QModelIndex IndexOf(TNode Node) override { return FModel->IndexOf(static_cast<TId>(Node)); }
    TNode NodeOf(const QModelIndex& Index) override { return TCompactModel::IdOf(Index); }

private:
    TId Add(TId Parent, const TTexts& Texts) { return FModel->Add(Parent, Texts[0], Texts[1], Texts[2]); }
    TCompactModel* FModel = nullptr;
    bool FCollated = false;
};

} // namespace

std::unique_ptr<TContender> MakeCompactTree() { return std::make_unique<TCompactTree>(); }

} // namespace quill::bench
