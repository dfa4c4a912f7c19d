// Column widths that suit what a tree shows.
#pragma once

#include <string>
#include <vector>

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// Gives each column the width that its caption and its texts need, as far as the client width allows: the widest
// columns give way first. Only the first few hundred nodes are measured, so that a huge tree costs no more. The last
// column is left to FitColumnToClientWidth. Samples are further texts to make room for, one for each column, where the
// nodes of now say little about those to come.
void FitColumns(TCustomQuillTree& Tree, const std::vector<std::string>& Samples = {});

} // namespace quill::examples
