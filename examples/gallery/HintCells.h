// Cells whose texts do not fit, each with a hint that shows all of its text in its place.
#pragma once

#include "htmldraw/NVHTMLHintWindow.h"

#include <string>

namespace quill::examples {

class THintCells : public TCustomControl {
    Q_OBJECT

public:
    explicit THintCells(QWidget* Parent = nullptr);
    ~THintCells() override;

    bool GetHTMLDrawing() const { return FHint->GetHTMLDrawing(); }
    void SetHTMLDrawing(bool Value);
    // Shows the hint of a cell unless its text fits.
    void ShowHintOf(int ACol, int ARow);
    void HideHint();

    void Paint() override;
    void WMMouseMove(TWMMouse& Message) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void CMMouseLeave(TMessage& Message) override;

private:
    int RowHeight();
    TRect CellRect(int ACol, int ARow);
    std::string CellText(int ACol, int ARow) const;
    void PaintCell(const TRect& Cell, const std::string& Text);

    TNVHTMLHintWindow* FHint; // owned as a component
    TPoint FCell{-1, -1};     // under the mouse
};

} // namespace quill::examples
