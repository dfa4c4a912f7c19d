// Text shaping with its cache: fonts at their device size, and blocks of positioned glyphs. Everything here is in
// device pixels. Used by the canvas alone; nothing else in the library keeps shaped text.
#pragma once

#include "host/graphics/GlyphTable.h"
#include "host/graphics/Graphics.h"

#include <QFont>
#include <QGlyphRun>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quill::text {

struct TBlock;

// A font at one device size. Underline and strike-out are drawn by the canvas and are no part of it.
struct TFace {
    std::uint32_t Id = 0;
    QFont Font;
    int Ascent = 0;
    int Descent = 0;
    int AveCharWidth = 0;
    // Tops of the lines above (negative) or below the baseline, and their thickness.
    int UnderlineTop = 0;
    int StrikeTop = 0;
    int LineThickness = 1;
    // Grows with what is shaped.
    mutable TGlyphTable Glyphs;
    // The shaped "...", made when it is first needed.
    mutable std::shared_ptr<const TBlock> Ellipsis;

    int LineHeight() const { return Ascent + Descent; }
};

// Finds the face of a font; remembers the last one, as most calls use the same font again.
class TFontUse {
public:
    // Null while there is no application object, which the font system needs.
    const TFace* Resolve(const TFont& Font, double Scale);

private:
    std::string FName;
    int FHeight = 0;
    std::uint32_t FStyle = 0;
    double FScale = 0.0;
    QFont FApplicationFont;
    unsigned FGeneration = 0;
    const TFace* FFace = nullptr; // valid in its generation
};

enum : unsigned {
    MultiLine = 1,   // line breaks break lines; otherwise they are shown as spaces
    WordWrap = 2,    // lines are broken between words at Width
    Elide = 4,       // lines wider than Width end in an ellipsis
    RightToLeft = 8, // base direction
    Prefix = 16      // "&" marks the next character, "&&" stands for one
};

struct TLine {
    int FirstRun = 0;
    int RunCount = 0;
    int Width = 0;
    // The marked character, when MarkWidth is above 0.
    int MarkLeft = 0;
    int MarkWidth = 0;
};

struct TBlock {
    std::vector<QGlyphRun> Runs; // positions from the left end of the line's baseline
    std::vector<TLine> Lines;
    int Width = 0; // of the widest line
    int Height = 0;
};

// The glyphs of Text; Width counts with WordWrap and Elide. Valid until the next call.
const TBlock& Shape(const TFace& Face, std::string_view Text, int Width, unsigned Flags);

struct TExtent {
    int Width = 0;
    int Height = 0;
};
// The extent of Shape's block. Texts above some ten thousand bytes are measured at their start and estimated from
// there, so that a text of any length takes milliseconds at most.
TExtent Measure(const TFace& Face, std::string_view Text, int Width, unsigned Flags);

// Appends where a single line that begins with Text would end after each of its characters, as widths from its start.
// Long texts are shaped in pieces. Nothing is cached.
void AppendEnds(const TFace& Face, std::string_view Text, bool RightToLeft, std::vector<double>& Ends);

// The start of Text that can be visible on Width x Height pixels.
std::string_view VisiblePart(const TFace& Face, std::string_view Text, int Width, int Height, unsigned Flags);

struct TCacheFigures {
    std::size_t Entries = 0;
    std::size_t Bytes = 0;
    std::uint64_t Hits = 0;
    std::uint64_t Misses = 0;
    // Of the misses, lines placed without shaping.
    std::uint64_t Placed = 0;
};
// For tests and benchmarks.
TCacheFigures CacheFigures();
void ClearCache();

} // namespace quill::text
