// Where a control stands in its parent, and how large it may be.
#pragma once

#include "host/base/Objects.h"

#include <functional>

namespace quill {

class TCustomControl;

// The edge of the parent that a control fills, or what the others leave. Top and bottom come first, then left and
// right, then alClient; of several on one side the outermost stays outermost. alCustom is the program's own rule.
// In a parent with a layout of the platform that layout decides, and neither this nor anchors have an effect.
enum TAlign { alNone, alTop, alBottom, alLeft, alRight, alClient, alCustom };

// The edges of the parent to which a control keeps its distance. Both of an axis: it grows; none: it stays in
// proportion. Only while it is not aligned.
enum TAnchorKind { akLeft, akTop, akRight, akBottom };
using TAnchors = TSet<TAnchorKind>;

// The least and greatest sizes of a control in pixels; 0 for no limit. A minimum above the maximum raises it, and a
// maximum below the minimum lowers that.
class TSizeConstraints : public TPersistent {
public:
    int GetMinWidth() const { return FMinWidth; }
    void SetMinWidth(int Value) { Store(FMinWidth, Value, FMaxWidth, true); }
    int GetMinHeight() const { return FMinHeight; }
    void SetMinHeight(int Value) { Store(FMinHeight, Value, FMaxHeight, true); }
    int GetMaxWidth() const { return FMaxWidth; }
    void SetMaxWidth(int Value) { Store(FMaxWidth, Value, FMinWidth, false); }
    int GetMaxHeight() const { return FMaxHeight; }
    void SetMaxHeight(int Value) { Store(FMaxHeight, Value, FMinHeight, false); }
    void Assign(TPersistent* Source) override;
    const TClassInfo* GetClassInfo() const override;

    TNotifyEvent OnChange;

private:
    void Store(int& Field, int Value, int& Other, bool IsLeast);

    int FMinWidth = 0;
    int FMinHeight = 0;
    int FMaxWidth = 0;
    int FMaxHeight = 0;
};

// Before SetBounds gives another size: which one, and whether at all.
using TCanResizeEvent = std::function<void(TObject* Sender, int& NewWidth, int& NewHeight, bool& Resize)>;
// The limits for this time; 0 for none.
using TConstrainedResizeEvent =
    std::function<void(TObject* Sender, int& MinWidth, int& MinHeight, int& MaxWidth, int& MaxHeight)>;

// Docking, which this platform's windows do not have: handlers travel with forms and are never called.
using TStartDockEvent = std::function<void(TObject* Sender, TObject*& DragObject)>;
using TEndDockEvent = std::function<void(TObject* Sender, TObject* Target, int X, int Y)>;
using TDockDropEvent = std::function<void(TObject* Sender, TObject* Source, int X, int Y)>;
using TDockOverEvent = std::function<void(TObject* Sender, TObject* Source, int X, int Y, bool& Accept)>;
using TGetSiteInfoEvent = std::function<void(TObject* Sender, TCustomControl* DockClient,
                                             TRect& InfluenceRect, TPoint MousePos, bool& CanDock)>;
using TUnDockEvent =
    std::function<void(TObject* Sender, TCustomControl* Client, TCustomControl* NewTarget, bool& Allow)>;

} // namespace quill
