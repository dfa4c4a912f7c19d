// Drag and drop between the controls of one program, without data: a source, a control under the mouse that accepts it
// or not, and events on both sides. What other programs take part in is in host/transfer.
#pragma once

#include "host/windows/Controls.h"

#include <functional>

namespace quill {

class TCustomImageList;
class TDragManager;

// What is dragged. Without a handler of OnStartDrag each drag has a TDragControlObject for its source.
class TDragObject : public TObject {
public:
    TDragObject() = default;
    // Ends the drag, if it still goes on.
    ~TDragObject() override;
    TDragObject(const TDragObject&) = delete;
    TDragObject& operator=(const TDragObject&) = delete;

    TPoint GetDragPos() const { return FDragPos; }             // of the mouse, in screen coordinates
    TCustomControl* GetDragTarget() const { return FTarget; }  // under the mouse, null for none
    TPoint GetDragTargetPos() const { return FDragTargetPos; } // in the target's client coordinates

    // The pictures of the drag, null for none. An object shows them itself, as that of a tree does.
    virtual TCustomImageList* GetDragImages() { return nullptr; }
    virtual TCursor GetDragCursor(bool Accepted, int X, int Y);
    // The picture is taken away from the screen, to paint below it, and put back.
    virtual void HideDragImage();
    virtual void ShowDragImage();
    // What the events name as the source.
    virtual TObject* GetSource() { return this; }
    // The mouse is at GetDragPos: a picture that follows it goes there. First called when the drag begins to move.
    virtual void Moved() {}
    // The drag has ended, on Target or nowhere (null).
    virtual void Finished(TCustomControl* /*Target*/, int /*X*/, int /*Y*/, bool /*Accepted*/) {}

private:
    friend class TDragManager;
    TPoint FDragPos;
    TPoint FDragTargetPos;
    TCustomControl* FTarget = nullptr;
    TDragManager* FManager = nullptr;
};

// A drag of a control's contents. The events name the control as the source.
class TDragControlObject : public TDragObject {
public:
    explicit TDragControlObject(TCustomControl* AControl) : FControl(AControl) {}
    TCustomControl* GetControl() const { return FControl; }
    TCustomImageList* GetDragImages() override;
    TCursor GetDragCursor(bool Accepted, int X, int Y) override;
    TObject* GetSource() override { return FControl; }

private:
    TCustomControl* FControl;
};

// The drag that is going on, null for none.
TDragObject* GetActiveDrag();
// Ends the drag that is going on, with a drop or without; nothing when there is none.
void EndActiveDrag(bool Drop);

} // namespace quill
