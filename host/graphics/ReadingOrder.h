// The order in which the pieces of a line of text stand beside each other when they are drawn one by one.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace quill::text {

// A piece of a line, by bytes, that is drawn in one direction.
struct TVisualRun {
    std::size_t From = 0;
    std::size_t To = 0;
    bool RightToLeft = false;
};

// Whether Line has letters that are read from right to left.
bool HasRightToLeft(std::string_view Line);

// The runs of Line in the order in which they stand from left to right, by the rules of the Unicode bidirectional
// algorithm without its embedding controls. No run crosses one of the Borders, which are byte positions in ascending
// order, so that each can be drawn in a font of its own. RightToLeft is the direction of the whole line.
std::vector<TVisualRun> VisualRuns(std::string_view Line, std::span<const std::size_t> Borders,
                                   bool RightToLeft);

} // namespace quill::text
