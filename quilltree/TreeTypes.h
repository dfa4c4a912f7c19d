// The tree control's enumerations and event types.
#pragma once

#include "host/base/Objects.h"

#include <functional>
#include <string>

namespace quill {

class TFlyNode;

// How the connecting lines are drawn: dotted from node to node, dotted below the first level, or solid with
// branch marks.
enum TOutlineStyle { olsStandardTree, olsExplorer, olsExcel };

// What a selection colours: the whole cell, or the text's extent plus 8 pixels.
enum TNodeSelectionStyle { tnsCell, tnsTextOnly };

enum TDrawOption { doDrawlines, doDrawbuttons, doDrawStates, doDrawImages, doDrawText };
using TDrawOptions = TSet<TDrawOption>;

enum TSelectionDirection { sdNone, sdGoUp, sdGoDown };
enum TNVVertAlign { tvaTop, tvaBottom, tvaCenter };
// The order that a caption's arrow shows: it points up, or down.
enum TSortDirection { srtAscending, srtDescending };
enum TNVDragType { dtStandard, dtOLE };
// Where a drop would go: nowhere, before the node under the mouse, into it, behind it.
enum TDropPlace { dpNone, dpBefore, dpOn, dpAfter };

// The glyph kinds; the ordinal is the index in the glyph set. The capital O of the last three is part of the names.
enum TQuillBitmap {
    obExpanded,
    obCollapsed,
    obOpen,
    obClose,
    obEmpty,
    obChecked,
    obUnchecked,
    obGrayedChecked,
    obOptioned,
    obUnoptioned,
    obGrayedUnchecked,
    obGrayedOptioned,
    ObGrayedUnoptioned,
    ObDoubleChecked,
    ObGrayedDoubleChecked
};

// The sender of every event is the tree.
using TFTVChangingEvent = std::function<void(TObject* Sender, TFlyNode* Node, bool& AllowChange)>;
using TFTVChangedEvent = std::function<void(TObject* Sender, TFlyNode* Node)>;
using TFTVExpandingEvent = std::function<void(TObject* Sender, TFlyNode* Node, bool& AllowExpansion)>;
using TFTVCollapsingEvent = std::function<void(TObject* Sender, TFlyNode* Node, bool& AllowCollapse)>;
using TFTVExpandedEvent = std::function<void(TObject* Sender, TFlyNode* Node)>;
using TFTVEditingEvent = std::function<void(TObject* Sender, TFlyNode* Node, bool& AllowEdit)>;
using TFTVEditedEvent = std::function<void(TObject* Sender, TFlyNode* Node, std::string& S)>;
using TFTVCaptionEvent = std::function<void(TObject* Sender, int DataCol)>;
using TFTVCompareEvent = std::function<void(TObject* Sender, TFlyNode* Node1, TFlyNode* Node2, int& Compare)>;

} // namespace quill
