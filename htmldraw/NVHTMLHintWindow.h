// A hint window that can show markup.
#pragma once

#include "host/windows/HintWindow.h"

#include <string>

namespace quill {

class TNVHTMLHintWindow : public THintWindow {
    Q_OBJECT

public:
    explicit TNVHTMLHintWindow(TComponent* AOwner = nullptr);
    ~TNVHTMLHintWindow() override;

    // Whether hints are markup (htmldraw/HTMLDraw.h).
    bool GetHTMLDrawing() const { return FHTMLDrawing; }
    void SetHTMLDrawing(bool Value) { FHTMLDrawing = Value; }
    // Whether markup is broken into lines at the measured width; plain hints always are.
    bool GetWordwrap() const { return FWordwrap; }
    void SetWordWrap(bool Value) { FWordwrap = Value; }

    // Markup needs its extent in the hint's font and 8 by 2 pixels more.
    TRect CalcHintRect(int MaxWidth, const std::string& AHint, void* AData) override;
    void Paint() override;
    const TClassInfo* GetClassInfo() const override;

private:
    // The direction in which the canvas reads texts.
    void ApplyReading();

    bool FHTMLDrawing = false;
    bool FWordwrap = false;
};

} // namespace quill
