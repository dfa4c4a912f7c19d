// Work on all nodes at once: memory, build, load, expand, select.
#include "bench/NodesFile.h"
#include "bench/Workloads.h"

#include <filesystem>

namespace quill::bench {
namespace {

constexpr int Several = 7;

// --- memory -----------------------------------------------------------------------------------------------------------

TFigure BytesPerNode(TContender& C, const TSize& Size, bool Expanded) {
    C.Open();
    // Fonts and what else a first picture needs are no part of the nodes.
    C.Fill({2, 1});
    C.ExpandAll();
    C.Show();
    C.Clear();
    C.Show();
    const TShape Shape = TShape::Of(Size.Nodes);
    const double Before = ResidentBytes();
    C.Fill(Shape);
    C.Show();
    if (Expanded) C.ExpandAll();
    C.Show();
    return TFigure::Of((ResidentBytes() - Before) / Shape.Nodes());
}
TFigure MemoryCollapsed(TContender& C, const TSize& Size) { return BytesPerNode(C, Size, false); }
TFigure MemoryExpanded(TContender& C, const TSize& Size) { return BytesPerNode(C, Size, true); }

// --- contents ---------------------------------------------------------------------------------------------------------

TFigure Build(TContender& C, const TSize& Size) {
    const TShape Shape = TShape::Of(Size.Nodes);
    C.Open();
    return Painted(
        C, [&] { C.Clear(); }, [&] { C.Fill(Shape); }, Several);
}

TFigure ClearAll(TContender& C, const TSize& Size) {
    const TShape Shape = TShape::Of(Size.Nodes);
    C.Open();
    return Painted(
        C, [&] { C.Fill(Shape); }, [&] { C.Clear(); }, Several);
}

// A file that goes with its scope.
class TNodesFile {
public:
    explicit TNodesFile(const TShape& Shape)
        : FName((std::filesystem::temp_directory_path() / ("quill-bench-" + std::to_string(getpid())))
                    .string()) {
        WriteNodesFile(FName, Shape);
    }
    ~TNodesFile() { std::filesystem::remove(FName); }
    TNodesFile(const TNodesFile&) = delete;
    TNodesFile& operator=(const TNodesFile&) = delete;
    const std::string& GetName() const { return FName; }

private:
    std::string FName;
};

// How many times as long as reading the same lines with std::getline.
TFigure Load(TContender& C, const TSize& Size) {
    const TNodesFile File(TShape::Of(Size.Nodes));
    std::size_t Sum = 0;
    const TFigure Lines = Median([] {},
                                 [&] {
                                     std::ifstream Stream(File.GetName());
                                     std::string Line;
                                     while (std::getline(Stream, Line)) Sum += Line.size();
                                 });
    Require(Sum > 0, "the file is empty");
    C.Open();
    TFigure Figure = Painted(
        C, [&] { C.Clear(); }, [&] { C.Load(File.GetName()); }, Several);
    Require(C.GetText(C.GetChild(C.GetChild(0, 0), 0)) == TextsOf(1)[0], "not loaded");
    Figure.Cpu /= Lines.Cpu;
    Figure.Wall /= Lines.Wall;
    return Figure;
}

// --- expand -----------------------------------------------------------------------------------------------------------

TFigure ExpandAll(TContender& C, const TSize& Size) {
    C.Open();
    C.Fill(TShape::Of(Size.Nodes));
    return Painted(
        C, [&] { C.CollapseAll(); }, [&] { C.ExpandAll(); }, Several);
}

TFigure CollapseAll(TContender& C, const TSize& Size) {
    C.Open();
    C.Fill(TShape::Of(Size.Nodes));
    return Painted(
        C, [&] { C.ExpandAll(); }, [&] { C.CollapseAll(); }, Several);
}

TFigure BigNode(TContender& C, const TSize& Size, bool Expand) {
    C.Open();
    C.FillList(Size.Nodes, TextsOf, true);
    const TNode Big = C.GetChild(0, 0);
    return Painted(
        C, [&] { C.SetExpanded(Big, !Expand); }, [&] { C.SetExpanded(Big, Expand); }, Several);
}
TFigure ExpandBig(TContender& C, const TSize& Size) { return BigNode(C, Size, true); }
TFigure CollapseBig(TContender& C, const TSize& Size) { return BigNode(C, Size, false); }

// --- select -----------------------------------------------------------------------------------------------------------

TFigure SelectAll(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    return Painted(
        C, [&] { C.ClearSelection(); }, [&] { C.SelectAll(); }, Several);
}

TFigure ClearSelection(TContender& C, const TSize& Size) {
    OpenExpanded(C, Size);
    return Painted(
        C, [&] { C.SelectAll(); }, [&] { C.ClearSelection(); }, Several);
}

constexpr TWorkload All[] = {
    {"memory", "resident bytes per node, collapsed", "B", 180, TKind::Fixed, MemoryCollapsed},
    {"memory-expanded", "resident bytes per node, expanded", "B", 200, TKind::Fixed, MemoryExpanded},
    {"build", "bulk build", "ms", 250, TKind::Bulk, Build},
    {"clear", "clear the tree", "ms", 250, TKind::Bulk, ClearAll},
    {"load", "load a nodes file, against std::getline", "x", 6.5, TKind::Fixed, Load},
    {"expand-all", "expand all", "ms", 80, TKind::Bulk, ExpandAll},
    {"collapse-all", "collapse all", "ms", 20, TKind::Bulk, CollapseAll},
    {"expand-big", "expand one node with all nodes below", "ms", 20, TKind::Bulk, ExpandBig},
    {"collapse-big", "collapse one node with all nodes below", "ms", 0.5, TKind::Fixed, CollapseBig},
    {"select-all", "select all", "ms", 30, TKind::Bulk, SelectAll},
    {"clear-selection", "clear the selection of all", "ms", 15, TKind::Bulk, ClearSelection},
};

} // namespace

std::span<const TWorkload> BulkWorkloads() { return All; }

} // namespace quill::bench
