// A control that writes down what reaches it.
#pragma once

#include "host/windows/Controls.h"

#include <QApplication>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <string>
#include <vector>

namespace quill::testing {

inline std::string ShiftText(TShiftState Shift) {
    static const char* const Names[] = {"shift", "alt", "ctrl", "left", "right", "middle", "double"};
    std::string Result;
    for (int I = ssShift; I <= ssDouble; ++I)
        if (Shift.Contains(static_cast<TShiftStateValue>(I)))
            Result += (Result.empty() ? "" : "+") + std::string(Names[I]);
    return Result;
}

// Turns the wheel over a position of a window, as the window system would report it.
inline void SendWheel(QWindow* Window, QPoint Pos, QPoint Angle, Qt::KeyboardModifiers Modifiers = {}) {
    QWheelEvent Event(Pos, Window->mapToGlobal(Pos), QPoint(), Angle, Qt::NoButton, Modifiers,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&Event);
    qApp->notify(Window, &Event); // sending it would make it ours again
}

class TLogControl : public TCustomControl {
public:
    explicit TLogControl(QWidget* Parent = nullptr) : TCustomControl(nullptr, Parent) {}
    ~TLogControl() override { BeginDestruction(); }

    // The lines since the last call, with "; " between them.
    std::string Take() {
        std::string Result;
        for (const std::string& Line : FLines) Result += (Result.empty() ? "" : "; ") + Line;
        FLines.clear();
        return Result;
    }
    void Log(const std::string& Line) { FLines.push_back(Line); }

    // What Paint does, besides being logged when LogPaint is set.
    std::function<void()> OnPaint;
    bool LogPaint = false;
    // Which kinds of messages are logged.
    bool LogMouse = false;
    bool LogKeys = false;
    bool LogWindow = false;
    bool LogScroll = false;
    bool LogFocus = false;
    // Keys that the control wants for itself.
    std::vector<char32_t> Wanted;
    unsigned ExtraStyle = 0;

    void Paint() override {
        if (LogPaint) {
            const TRect R = GetCanvas()->GetClipRect();
            Log("paint " + std::to_string(R.Left) + "," + std::to_string(R.Top) + "-" +
                std::to_string(R.Right) + "," + std::to_string(R.Bottom));
        }
        if (OnPaint) OnPaint();
    }

    void CreateParams(TCreateParams& Params) override {
        TCustomControl::CreateParams(Params);
        Params.Style |= ExtraStyle;
        if (LogWindow) Log("params");
    }
    void CreateWnd() override {
        if (LogWindow) Log("create");
        TCustomControl::CreateWnd();
    }
    void CreateWindowHandle(const TCreateParams& Params) override {
        TCustomControl::CreateWindowHandle(Params);
        if (LogWindow) Log("handle");
    }
    void DestroyWnd() override {
        if (LogWindow) Log("destroy");
        TCustomControl::DestroyWnd();
    }
    void CMWantSpecialKey(TWMKey& Message) override {
        for (const char32_t Key : Wanted)
            if (Key == Message.CharCode) Message.Result = 1;
    }
    void DoEnter() override {
        if (LogFocus) Log("enter");
        TCustomControl::DoEnter();
    }
    void DoExit() override {
        if (LogFocus) Log("exit");
        TCustomControl::DoExit();
    }
    void WndProc(TMessage& Message) override {
        LogMessage(Message);
        TCustomControl::WndProc(Message);
    }

private:
    void LogMessage(const TMessage& Message) {
        const TPoint P = PointFromParam(Message.LParam);
        const std::string At = " " + std::to_string(P.X) + "," + std::to_string(P.Y);
        const std::string Key = " " + std::to_string(Message.WParam);
        const std::string Scroll = std::to_string(Message.WParam) + " " + std::to_string(Message.LParam);
        const auto Shift = [](auto State) {
            const std::string Text = ShiftText(ShiftFromParam(static_cast<std::uintptr_t>(State)));
            return (Text.empty() ? "" : " ") + Text;
        };
        const std::string Mouse = At + Shift(Message.WParam);
        const std::string Char = Key + Shift(Message.LParam);
        const std::tuple<bool, unsigned, std::string> Lines[] = {
            {LogMouse, WM_MOUSEMOVE, "move" + Mouse},
            {LogMouse, WM_LBUTTONDOWN, "ldown" + Mouse},
            {LogMouse, WM_LBUTTONUP, "lup" + Mouse},
            {LogMouse, WM_LBUTTONDBLCLK, "ldbl" + Mouse},
            {LogMouse, WM_RBUTTONDOWN, "rdown" + Mouse},
            {LogMouse, WM_RBUTTONUP, "rup" + Mouse},
            {LogMouse, WM_MBUTTONDOWN, "mdown" + Mouse},
            {LogMouse, WM_MBUTTONUP, "mup" + Mouse},
            {LogMouse, CM_MOUSEENTER, "mouseenter"},
            {LogMouse, CM_MOUSELEAVE, "mouseleave"},
            {LogMouse, WM_CANCELMODE, "cancel"},
            {LogKeys, WM_KEYDOWN, "keydown" + Char},
            {LogKeys, WM_KEYUP, "keyup" + Char},
            {LogKeys, WM_CHAR, "char" + Char},
            {LogKeys, WM_CUT, "cut"},
            {LogKeys, WM_COPY, "copy"},
            {LogKeys, WM_PASTE, "paste"},
            {LogFocus, WM_SETFOCUS, "setfocus"},
            {LogFocus, WM_KILLFOCUS, "killfocus"},
            {LogWindow, CM_FONTCHANGED, "font"},
            {LogWindow, WM_SIZE, "size" + At},
            {LogWindow, CM_SHOWINGCHANGED, Message.WParam ? "shown" : "hidden"},
            {LogScroll, WM_HSCROLL, "h" + Scroll},
            {LogScroll, WM_VSCROLL, "v" + Scroll}};
        for (const auto& [On, Msg, Line] : Lines)
            if (On && Msg == Message.Msg) Log(Line);
    }

    std::vector<std::string> FLines;
};

} // namespace quill::testing
