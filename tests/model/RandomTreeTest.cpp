// Random work on a tree and on a naive picture of it, side by side.
#include "ModelTestTools.h"

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace quill {
namespace {

// The naive picture: what a tree is, without any cleverness.
struct TPlain {
    std::string Name;
    bool Expanded = false;
    bool Hidden = false;
    TPlain* Parent = nullptr;
    std::vector<std::unique_ptr<TPlain>> Items;

    std::size_t Index() const {
        std::size_t i = 0;
        while (Parent->Items[i].get() != this) ++i;
        return i;
    }
    std::unique_ptr<TPlain> TakeOut() {
        const auto At = Parent->Items.begin() + static_cast<std::ptrdiff_t>(Index());
        std::unique_ptr<TPlain> Self = std::move(*At);
        TPlain* const Old = Parent;
        Old->Items.erase(At);
        Self->Parent = nullptr;
        return Self;
    }
    void PutIn(std::unique_ptr<TPlain> Item, std::size_t At) {
        Item->Parent = this;
        Items.insert(Items.begin() + static_cast<std::ptrdiff_t>(At), std::move(Item));
    }
    bool IsIn(const TPlain* Other) const { return this == Other || (Parent && Parent->IsIn(Other)); }
    void AppendRows(std::string& Out) const {
        for (const auto& Item : Items) {
            if (Item->Hidden) continue;
            Out.append(Out.empty() ? "" : " ").append(Item->Name);
            if (Item->Expanded) Item->AppendRows(Out);
        }
    }
    std::string Dump() const {
        std::string Out;
        for (const auto& Item : Items) {
            Out.append(Out.empty() ? "" : ", ").append(Item->Name);
            Out.append(Item->Expanded ? "(+)" : "").append(Item->Hidden ? "(h)" : "");
            if (!Item->Items.empty()) Out.append(" [").append(Item->Dump()).append("]");
        }
        return Out;
    }
};

class TDouble {
public:
    explicit TDouble(unsigned Seed) : FRandom(Seed) {
        Host.SetRow(-1); // so that nothing gets selected on the way
        FNodes.push_back({nullptr, &Root});
    }

    void Step() {
        const auto [Node, Plain] = Pick();
        switch (Upto(14)) {
        case 0:
        case 1:
        case 2:
            Added(Nodes.AddChild(Node, NextName()), *Plain, Plain->Items.size());
            break;
        case 3:
            Added(Nodes.AddChildFirst(Node, NextName()), *Plain, 0);
            break;
        case 4:
            if (Node) Added(Nodes.Insert(Node, NextName()), *Plain->Parent, Plain->Index());
            break;
        case 5:
            if (Node && Upto(2) == 0) {
                Forget(*Plain);
                Node->Delete();
                TPlain* const Parent = Plain->Parent;
                Plain->TakeOut();
                // Deleting the only child closes its parent.
                if (Parent->Parent && Parent->Items.empty()) Parent->Expanded = false;
            }
            break;
        case 6:
            if (Node) Node->SetHidden(Plain->Hidden = !Plain->Hidden);
            break;
        case 7:
        case 8:
            if (Node && !Plain->Items.empty()) {
                for (TPlain* Above = Plain->Parent; !Plain->Expanded && Above->Parent;
                     Above = Above->Parent) {
                    // Expanding a node without a row opens the way to it.
                    if (!HasRow(*Plain)) Above->Expanded = true;
                }
                Node->SetExpanded(!Plain->Expanded);
                Plain->Expanded = !Plain->Expanded;
            }
            break;
        case 9:
            if (Node) {
                const std::size_t To = Upto(Plain->Parent->Items.size() - 1);
                Node->SetIndex(static_cast<int>(To));
                TPlain* const Parent = Plain->Parent;
                Parent->PutIn(Plain->TakeOut(), To);
            }
            break;
        case 10:
            MoveTo(Node, *Plain);
            break;
        case 11:
            Sort(Node, *Plain);
            break;
        case 12:
            if (Node && Upto(5) == 0) {
                Forget(*Plain);
                FNodes.push_back({Node, Plain});
                Node->DeleteChildren();
                Plain->Items.clear();
                Plain->Expanded = false;
            }
            break;
        case 13:
            FBracket ? Nodes.EndUpdate() : Nodes.BeginUpdate();
            FBracket = !FBracket;
            break;
        default:
            if (Node) Node->SetSelected(false);
        }
    }

    void Check() {
        ASSERT_NO_THROW(Nodes.CheckInvariants());
        ASSERT_EQ(DumpItems(Nodes), Root.Dump());
        if (FBracket) return;
        std::string Rows;
        Root.AppendRows(Rows);
        ASSERT_EQ(DumpRows(Nodes), Rows);
        ASSERT_TRUE(Nodes.IsRowListCurrent());
        ASSERT_EQ(Host.GetRowCount(), Nodes.RowList.GetCount());
    }

    THeadlessHost Host;
    TFlyNodes& Nodes = *Host.GetItems();
    TPlain Root;

private:
    struct TPair {
        TFlyNode* Node;
        TPlain* Plain;
    };

    std::size_t Upto(std::size_t Bound) { return FRandom() % (Bound + 1); }
    TPair Pick() { return FNodes[Upto(FNodes.size() - 1)]; }
    std::string NextName() {
        ++FNext;
        return "n" + std::to_string(FNext * 7919 % 1000) + "x" + std::to_string(FNext);
    }

    static bool HasRow(const TPlain& Plain) {
        if (Plain.Hidden) return false;
        return !Plain.Parent->Parent || (Plain.Parent->Expanded && HasRow(*Plain.Parent));
    }
    void Added(TFlyNode* Node, TPlain& Parent, std::size_t At) {
        auto Plain = std::make_unique<TPlain>();
        Plain->Name = Node->GetText();
        FNodes.push_back({Node, Plain.get()});
        Parent.PutIn(std::move(Plain), At);
    }
    void Forget(const TPlain& Plain) {
        std::erase_if(FNodes, [&](const TPair& Pair) { return Pair.Plain->IsIn(&Plain); });
    }
    void MoveTo(TFlyNode* Node, TPlain& Plain) {
        const auto [Destination, To] = Pick();
        if (!Node || !Destination || To->IsIn(&Plain)) return;
        const auto Mode = static_cast<TNodeAttachMode>(Upto(4));
        TPlain* const Receiver = Mode == naAddChild || Mode == naAddChildFirst ? To : To->Parent;
        const bool Same = Receiver == Plain.Parent && Receiver != To;
        std::size_t At = 0;
        if (Mode == naInsert) {
            At = To->Index();
            if (Same && At >= Plain.Index() && At > 0) --At;
        }
        Node->MoveTo(Destination, Mode);
        if (To->Parent == &Plain) return;
        std::unique_ptr<TPlain> Moved = Plain.TakeOut();
        if (Mode == naAdd || Mode == naAddChild) At = Receiver->Items.size();
        Receiver->PutIn(std::move(Moved), At);
    }
    void Sort(TFlyNode* Node, TPlain& Plain) {
        const auto Longer = [](TTreeCollection* A, TTreeCollection* B) {
            return A->GetCaption().compare(B->GetCaption());
        };
        TTreeCollection* const Collection = Node ? static_cast<TTreeCollection*>(Node) : &Nodes;
        Collection->CustomSort(Longer, true);
        std::stable_sort(Plain.Items.begin(), Plain.Items.end(),
                         [](const auto& A, const auto& B) { return A->Name < B->Name; });
    }

    std::mt19937 FRandom;
    std::vector<TPair> FNodes;
    int FNext = 0;
    bool FBracket = false;
};

TEST(RandomTree, LooksLikeItsNaivePicture) {
    for (unsigned Seed = 1; Seed <= 8; ++Seed) {
        TDouble Double(Seed);
        for (int Step = 0; Step < 1500; ++Step) {
            SCOPED_TRACE("seed " + std::to_string(Seed) + ", step " + std::to_string(Step));
            Double.Step();
            if (Step % 10 == 0 || Step < 200) Double.Check();
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

} // namespace
} // namespace quill
