// Nodes as the plain text that other programs understand, and the plain text of other programs as nodes.
#pragma once

#include <string>
#include <string_view>

namespace quill {
class TFlyNodes;
}

namespace quill::examples {

// A line for each node: two spaces for each level, then the text and the cells, separated by tabs, so that columns
// stay columns in a spreadsheet. A cell with a tab or a line break, or one that begins with a double quote, stands in
// double quotes with inner ones doubled, as spreadsheets write it.
std::string PlainTextOf(TFlyNodes& Nodes);

struct TTextAsNodes {
    std::string NodesText; // empty when the text holds nothing but blanks
    int CellsLeftOut = 0;  // which stood beyond MaxPastedColumns
};
inline constexpr int MaxPastedColumns = 256;

// Reads any text: lines that end with carriage return, line feed or both, cells separated by tabs or quoted as above.
// - When all lines have the same number of tabs, and not only before their texts, they are rows of a table, where an
//   empty cell may come first. Otherwise tabs before a text are indentation. Spaces there always are.
// - A line that is indented deeper than the one before it goes below it, by whatever width.
// - Lines without any text are left out, and so are NUL characters. A line break within a cell becomes a space: the
//   nodes text has no place for it. Malformed UTF-8 stays as it is.
TTextAsNodes NodesTextOfPlain(std::string_view Text);

// Whether the text says that it is nodes text. (It may be malformed all the same.)
bool LooksLikeNodesText(std::string_view Text);

// The text with a space for each line break and without NUL characters: what the text of a node can be.
std::string OneLine(std::string_view Text);

} // namespace quill::examples
