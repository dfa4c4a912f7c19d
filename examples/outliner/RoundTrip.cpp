#include "RoundTrip.h"

#include "OutlineTree.h"

#include <algorithm>
#include <cstdio>

namespace quill::examples {

namespace {

constexpr int AllOptions = 0x7F;

// What a tree that shows Outline saves. With tags in the options the tree numbers its nodes, as a user who asks for
// tags wants it.
std::string SavedText(TOutlineTree& Tree, const TOutline& Outline, int Mask, bool NumberNodes) {
    Tree.ShowOutline(Outline, {});
    if (NumberNodes && !Outline.HasTags) Tree.SetUniqueTags(true);
    return OutlineText(*Tree.GetItems(), OptionsOf(Mask));
}

std::string Difference(int Mask, const std::string& Expected, const std::string& Found) {
    const auto Place = std::mismatch(Expected.begin(), Expected.end(), Found.begin(), Found.end());
    return "options " + std::to_string(Mask) + ": differs from byte " +
           std::to_string(Place.first - Expected.begin()) + " on";
}

// Empty when all is well.
std::string Check(TOutlineTree& Tree, const std::string& FileName, int& MaskCount) {
    const TOutline Outline = ReadOutline(FileName);
    const int Own = MaskOf(Outline.Options);
    const std::string& Original = Outline.Bytes->GetMemory();
    const std::string Same = SavedText(Tree, Outline, Own, false);
    if (Same != Original) return Difference(Own, Original, Same);

    for (int Mask = 0; Mask <= AllOptions; ++Mask) {
        if ((Mask & Own) != Own) continue;
        ++MaskCount;
        const bool AddsTags =
            !Outline.Options.Contains(tsnIncludeUniqueTags) && OptionsOf(Mask).Contains(tsnIncludeUniqueTags);
        const std::string First = SavedText(Tree, Outline, Mask, AddsTags);
        const TOutline Again = ReadOutline(std::make_unique<TMemoryStream>(First), FileName);
        const std::string Second = SavedText(Tree, Again, Mask, false);
        if (Second != First) return Difference(Mask, First, Second);
    }
    return {};
}

} // namespace

bool RoundTrip(const std::vector<std::string>& FileNames) {
    TOutlineTree Tree(nullptr);
    bool AllSame = true;
    for (const std::string& FileName : FileNames) {
        int MaskCount = 0;
        std::string Fault;
        try {
            Fault = Check(Tree, FileName, MaskCount);
        } catch (const Exception& Error) {
            Fault = Error.GetMessage();
        }
        if (Fault.empty()) {
            std::printf("%s: same bytes with %d sets of options\n", FileName.c_str(), MaskCount);
        } else {
            std::printf("%s: %s\n", FileName.c_str(), Fault.c_str());
            AllSame = false;
        }
    }
    return AllSame;
}

} // namespace quill::examples
