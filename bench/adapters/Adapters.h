// The contenders on Qt.
#pragma once

#include "bench/Contender.h"

#include <memory>

namespace quill::bench {

std::unique_ptr<TContender> MakeOurTree();
std::unique_ptr<TContender> MakeWidgetTree();   // QTreeWidget
std::unique_ptr<TContender> MakeStandardTree(); // QTreeView with QStandardItemModel
std::unique_ptr<TContender> MakeCompactTree();  // QTreeView with a model of its own

} // namespace quill::bench
