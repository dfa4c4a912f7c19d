// What the mouse is sizing or moving. For the sources of the grid only.
#pragma once

#include "exgrid/ExGrid.h"

namespace quill {

// Positions run along the axis that is sized or moved, in the grid's own direction: mirrored under right-to-left
// alignment.
struct TCustomExGrid::TDrag {
    TGridState Kind = gsNormal; // gsRowSizing .. gsColMoving
    int Index = -1;             // the column or row that is sized, or that moves
    int Start = 0;              // where the mouse was pressed

    // Sizing.
    int StoredExtent = 0; // as it was before, to be put back by Esc
    int OldExtent = 0;    // as it was seen before
    int BaseExtent = 0;   // to which the way of the mouse is added

    // Moving.
    bool Shown = false; // the mouse went beyond the drag threshold
    int Destination = -1;
    int Gap = -1;  // the mark stands before this cell; -1 for none
    int Grab = 0;  // from the start of the picture to the mouse
    int Ticks = 0; // of the timer with the mouse at an edge
    TPoint Pos;    // the mouse, in client pixels
    std::unique_ptr<TBitmap> Picture;

    bool IsColumn() const { return Kind == gsColSizing || Kind == gsColMoving; }
    bool IsSizing() const { return Kind == gsColSizing || Kind == gsRowSizing; }
};

} // namespace quill
