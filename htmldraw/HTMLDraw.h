// Draws or measures short texts in a small markup:
//
//   <B> <I> <U> <S> and their ends       bold, italic, underlined, struck out
//   <FONT FACE=name SIZE=height COLOR=c> until </FONT>; height in pixels, as TFont::Height
//   <COLOR=c>, <BGCOLOR=c>               until </COLOR>, </BGCOLOR>
//
// c is #RRGGBB, $BBGGRR or the name of a colour (clRed). Tags may be written in any case. There are no entities; what is
// no tag is text, and a line ends at a line feed. Malformed markup never fails.
#pragma once

#include "host/base/Types.h"

#include <string_view>

namespace quill {

class TCanvas;

// Codes of DrawHTML; the vertical ones are those of TCanvas::DrawText.
inline constexpr int HTMLLeft = 0;
inline constexpr int HTMLRight = 1;
inline constexpr int HTMLCenter = 2;
inline constexpr int HTMLTop = 0;
inline constexpr int HTMLMiddle = 4;
inline constexpr int HTMLBottom = 8;

// Drawing: the lines of Text, placed in Rect as the codes say, over the canvas brush's colour; they are clipped to Rect.
// The canvas font and brush are where the text begins. Other vertical codes draw nothing.
//
// Measuring: Right and Bottom of Rect become the extent, Left and Top stay. Everything is measured in the canvas font,
// whatever tags say, so that the size of a text does not depend on its markup.
//
// Where texts of both directions meet in a line, its pieces stand in the order in which they are read; the canvas's text
// flags say which direction the line has.
//
// WordWrap breaks lines at spaces where they would be wider than Rect; one word that is wider is not broken. An empty
// text changes nothing. The canvas is given back as it was. Time is linear in the text. Calls may nest.
void DrawHTML(TRect& Rect, TCanvas& Canvas, std::string_view Text, bool WordWrap, bool MeasureOnly,
              int HorzAlign, int VertAlign);

} // namespace quill
