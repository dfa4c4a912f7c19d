// The grid's shared values: cell coordinates, the layout record, enumerations, events and errors.
#pragma once

#include "host/base/Errors.h"
#include "host/base/Objects.h"
#include "host/base/Types.h"

#include <functional>
#include <string>

namespace quill {

class TCanvas;
class TCustomExGrid;

// Raised for bad grid indices and counts.
class EInvalidGridOperation : public Exception {
    using Exception::Exception;
};

// A cell: column and row, both from 0, fixed ones included. (-1, -1) means that there is no cell.
struct TGridCoord {
    int X = 0;
    int Y = 0;
    friend constexpr bool operator==(const TGridCoord&, const TGridCoord&) = default;
};

// A range of cells, inclusive on both ends. (-1, -1, -1, -1) is the empty selection.
struct TGridRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
    friend constexpr bool operator==(const TGridRect&, const TGridRect&) = default;
};

inline constexpr TGridCoord NoGridCoord{-1, -1};
inline constexpr TGridRect EmptyGridRect{-1, -1, -1, -1};

// The four values as they stand, without normalisation.
constexpr TGridRect GridRect(int Left, int Top, int Right, int Bottom) { return {Left, Top, Right, Bottom}; }
// Whether the cell lies in Rect, ends included; a rectangle with Left > Right contains nothing.
constexpr bool PointInGridRect(int Col, int Row, const TGridRect& Rect) {
    return Col >= Rect.Left && Col <= Rect.Right && Row >= Rect.Top && Row <= Rect.Bottom;
}

// The extent in pixels of column or row Index, asked from the grid's virtual accessor.
class TGetExtentsFunc {
public:
    using TMethod = int (TCustomExGrid::*)(int);
    TGetExtentsFunc() = default;
    TGetExtentsFunc(TCustomExGrid* AGrid, TMethod AMethod) : FGrid(AGrid), FMethod(AMethod) {}
    int operator()(int Index) const { return (FGrid->*FMethod)(Index); }

private:
    TCustomExGrid* FGrid = nullptr;
    TMethod FMethod = nullptr;
};

// One axis of a layout: columns along the client width, or rows along the client height. Positions in pixels.
struct TExGridAxisDI {
    int EffectiveLineWidth = 0;  // GridLineWidth when a line option of the axis is on, else 0
    int FixedBoundary = 0;       // where the scrollable cells begin
    int GridBoundary = 0;        // end of the last cell drawn, or GridExtent when that cell is cut
    int GridExtent = 0;          // the client width or height
    int LastFullVisibleCell = 0; // last scrollable cell that fits wholly; FirstGridCell when none does
    int FullVisBoundary = 0;     // end of LastFullVisibleCell, its line included
    int FixedCellCount = 0;
    int FirstGridCell = 0; // LeftCol or TopRow
    int GridCellCount = 0;
    TGetExtentsFunc GetExtent;
};

// A layout of the visible cells; computed when needed, never kept.
struct TExGridDI {
    TExGridAxisDI Horz;
    TExGridAxisDI Vert;
};

enum TGridState { gsNormal, gsSelecting, gsRowSizing, gsColSizing, gsRowMoving, gsColMoving };
// One of gsRowMoving and gsColMoving.
using TGridMovement = TGridState;

// Tells hooks what caused a move of the current cell.
enum TSelectionWay { swNone, swByMouse, swByKeyBoard };

enum TGridOption {
    goFixedVertLine,
    goFixedHorzLine,
    goVertLine,
    goHorzLine,
    goRangeSelect,
    goDrawFocusSelected,
    goRowSizing,
    goColSizing,
    goRowMoving,
    goColMoving,
    goEditing,
    goTabs,
    goRowSelect,
    goAlwaysShowEditor,
    goThumbTracking
};
using TGridOptions = TSet<TGridOption>;

// The last four are never set by the grid; they are for a descendant's own calls of DrawCell.
enum TExGridDrawStateValue {
    gdSelected,
    gdFocused,
    gdFixed,
    gdPrepaint,
    gdPrepaintIndentZone,
    gdClicked,
    gdNoUseSelColor
};
using TExGridDrawState = TSet<TExGridDrawStateValue>;

enum TGridScrollDirection { sdLeft, sdRight, sdUp, sdDown };
using TGridScrollDirections = TSet<TGridScrollDirection>;

enum TScrollBarStyle { sbsRegular, sbsEncarta, sbsFlat };

using TSelectCellEvent = std::function<void(TObject* Sender, int ACol, int ARow, bool& CanSelect)>;
using TDrawCellEvent = std::function<void(TObject* Sender, TCanvas& ACanvas, int ACol, int ARow, TRect Rect,
                                          TExGridDrawState State)>;
using TSizedEvent = std::function<void(int Index, int Value)>;
using TSizingEvent = std::function<void(int Index, int& Value)>;
using TGetEditEvent = std::function<void(TObject* Sender, int ACol, int ARow, std::string& Value)>;
using TSetEditEvent = std::function<void(TObject* Sender, int ACol, int ARow, const std::string& Value)>;
using TMovedEvent = std::function<void(TObject* Sender, int FromIndex, int ToIndex)>;

// How drag pictures are laid over what is below them.
struct TBlendFunction {
    unsigned char BlendOp = 0; // source over
    unsigned char BlendFlags = 0;
    unsigned char SourceConstantAlpha = 160; // 0 .. 255
    unsigned char AlphaFormat = 0;
};

// Draws Width x Height pixels of Source over Target at (X, Y) with Blend. The process has one, set at start; null
// makes drag pictures opaque.
using TAlphaBlendFunc = void (*)(TCanvas& Target, int X, int Y, int Width, int Height, TCanvas& Source,
                                 const TBlendFunction& Blend);
extern TAlphaBlendFunc AlphaBlend;
inline constexpr TBlendFunction DragBlend{};

} // namespace quill
