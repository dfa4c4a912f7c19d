// The edit control that a grid lays over its current cell.
#pragma once

#include "host/windows/Edit.h"

namespace quill {

class TCustomExGrid;

// Keys are split with the grid: those that move between cells are the grid's (arrows along the text only where the grid
// always shows the editor and the caret stands at that end), all others edit. Esc stores what was typed and closes, as
// Enter does; a program that wants to throw it away ends the edit with DiscardEdit of the grid.
class TInplaceEdit : public TCustomEdit {
    Q_OBJECT

public:
    explicit TInplaceEdit(TComponent* AOwner);
    ~TInplaceEdit() override;

    TCustomExGrid* GetGrid() const { return FGrid; }
    void SetGrid(TCustomExGrid* Value) { FGrid = Value; }

    // Shows the editor at Rect, in client pixels of the grid, with the focus if the grid has it. Where there is no room
    // it keeps the focus and takes up none.
    void Move(const TRect& Rect) { InternalMove(Rect, true); }
    // The same without showing.
    void UpdateLoc(const TRect& Rect) { InternalMove(Rect, false); }
    bool PosEqual(const TRect& Rect) const;
    // Called after each change of place.
    virtual void BoundsChanged() {}
    // The grid gets the focus that the editor had.
    void Hide();
    // Whether it is shown, be it scrolled out of sight.
    bool Visible() const { return !isHidden(); }
    void Deselect();
    // Takes mask, text and limit of the grid's current cell.
    virtual void UpdateContents();

    bool EditCanModify() override;
    void CreateParams(TCreateParams& Params) override;
    void KeyDown(std::uint16_t& Key, TShiftState Shift) override;
    void KeyPress(char32_t& Key) override;
    // Esc and Tab are the grid's keys and still arrive as characters.
    bool SendsConsumedChar(std::uint16_t Key) const override { return Key == VK_ESCAPE || Key == VK_TAB; }
    void DblClick() override;
    bool DoMouseWheel(TShiftState Shift, int WheelDelta, TPoint MousePos) override;
    void WMGetDlgCode(TMessage& Message) override;
    void CMWantSpecialKey(TWMKey& Message) override;
    // The grid alone shows and hides the editor.
    void CMShowingChanged(TMessage&) override {}

protected:
    void ChangeComing() override;

private:
    void InternalMove(const TRect& Rect, bool Show);
    bool MovesOn(std::uint16_t Key, TShiftState Shift) const;

    TCustomExGrid* FGrid = nullptr;
    bool FEscapeUsed = true; // by the grid, when it got the key last
};

} // namespace quill
