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
    static std::string At(const TMessage& Message) {
        const TPoint P = PointFromParam(Message.LParam);
        return " " + std::to_string(P.X) + "," + std::to_string(P.Y);
    }
    void LogMessage(const TMessage& Message) {
        const auto Mouse = [&](const char* Name) {
            if (!LogMouse) return;
            const std::string Shift = ShiftText(ShiftFromParam(Message.WParam));
            Log(Name + At(Message) + (Shift.empty() ? "" : " " + Shift));
        };
        const auto Key = [&](const char* Name) {
            if (!LogKeys) return;
            const std::string Shift = ShiftText(ShiftFromParam(static_cast<std::uintptr_t>(Message.LParam)));
            Log(Name + std::string(" ") + std::to_string(Message.WParam) +
                (Shift.empty() ? "" : " " + Shift));
        };
        const auto LogIf = [&](bool On, const std::string& Line) {
            if (On) Log(Line);
        };
        switch (Message.Msg) {
        case WM_MOUSEMOVE:
            Mouse("move");
            break;
        case WM_LBUTTONDOWN:
            Mouse("ldown");
            break;
        case WM_LBUTTONUP:
            Mouse("lup");
            break;
        case WM_LBUTTONDBLCLK:
            Mouse("ldbl");
            break;
        case WM_RBUTTONDOWN:
            Mouse("rdown");
            break;
        case WM_RBUTTONUP:
            Mouse("rup");
            break;
        case WM_RBUTTONDBLCLK:
            Mouse("rdbl");
            break;
        case WM_MBUTTONDOWN:
            Mouse("mdown");
            break;
        case WM_MBUTTONUP:
            Mouse("mup");
            break;
        case CM_MOUSEENTER:
            LogIf(LogMouse, "mouseenter");
            break;
        case CM_MOUSELEAVE:
            LogIf(LogMouse, "mouseleave");
            break;
        case WM_CANCELMODE:
            LogIf(LogMouse, "cancel");
            break;
        case WM_KEYDOWN:
            Key("keydown");
            break;
        case WM_KEYUP:
            Key("keyup");
            break;
        case WM_CHAR:
            Key("char");
            break;
        case WM_CUT:
            LogIf(LogKeys, "cut");
            break;
        case WM_COPY:
            LogIf(LogKeys, "copy");
            break;
        case WM_PASTE:
            LogIf(LogKeys, "paste");
            break;
        case WM_SETFOCUS:
            LogIf(LogFocus, "setfocus");
            break;
        case WM_KILLFOCUS:
            LogIf(LogFocus, "killfocus");
            break;
        case WM_SIZE:
            LogIf(LogWindow, "size" + At(Message));
            break;
        case CM_SHOWINGCHANGED:
            LogIf(LogWindow, Message.WParam ? "shown" : "hidden");
            break;
        case CM_FONTCHANGED:
            LogIf(LogWindow, "font");
            break;
        case CM_BIDIMODECHANGED:
            LogIf(LogWindow, "bidi");
            break;
        case WM_HSCROLL:
        case WM_VSCROLL:
            LogIf(LogScroll, (Message.Msg == WM_HSCROLL ? "h" : "v") + std::to_string(Message.WParam) + " " +
                                 std::to_string(Message.LParam));
            break;
        case WM_TIMER:
            LogIf(LogWindow, "timer " + std::to_string(Message.WParam));
            break;
        default:
            break;
        }
    }

    std::vector<std::string> FLines;
};

} // namespace quill::testing
