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
        struct TName {
            unsigned Msg;
            const char* Name;
        };
        static constexpr TName Mouse[] = {{WM_MOUSEMOVE, "move"},    {WM_LBUTTONDOWN, "ldown"},
                                          {WM_LBUTTONUP, "lup"},     {WM_LBUTTONDBLCLK, "ldbl"},
                                          {WM_RBUTTONDOWN, "rdown"}, {WM_RBUTTONUP, "rup"},
                                          {WM_MBUTTONDOWN, "mdown"}, {WM_MBUTTONUP, "mup"}};
        static constexpr TName Keys[] = {{WM_KEYDOWN, "keydown"}, {WM_KEYUP, "keyup"}, {WM_CHAR, "char"}};
        const struct {
            bool On;
            TName Entry;
        } Others[] = {{LogMouse, {CM_MOUSEENTER, "mouseenter"}},
                      {LogMouse, {CM_MOUSELEAVE, "mouseleave"}},
                      {LogMouse, {WM_CANCELMODE, "cancel"}},
                      {LogKeys, {WM_CUT, "cut"}},
                      {LogKeys, {WM_COPY, "copy"}},
                      {LogKeys, {WM_PASTE, "paste"}},
                      {LogFocus, {WM_SETFOCUS, "setfocus"}},
                      {LogFocus, {WM_KILLFOCUS, "killfocus"}},
                      {LogWindow, {CM_FONTCHANGED, "font"}},
                      {LogWindow, {CM_BIDIMODECHANGED, "bidi"}}};
        const auto Key = static_cast<std::uintptr_t>(Message.LParam);
        const TPoint P = PointFromParam(Message.LParam);
        const std::string At = std::to_string(P.X) + "," + std::to_string(P.Y);
        const std::string WParam = std::to_string(Message.WParam);
        const auto LogWithShift = [&](const std::string& Line, std::uintptr_t State) {
            const std::string Shift = ShiftText(ShiftFromParam(State));
            Log(Line + (Shift.empty() ? "" : " ") + Shift);
        };
        for (const TName& Entry : Mouse)
            if (LogMouse && Entry.Msg == Message.Msg)
                LogWithShift(std::string(Entry.Name) + " " + At, Message.WParam);
        for (const TName& Entry : Keys)
            if (LogKeys && Entry.Msg == Message.Msg)
                LogWithShift(std::string(Entry.Name) + " " + WParam, Key);
        for (const auto& [On, Entry] : Others)
            if (On && Entry.Msg == Message.Msg) Log(Entry.Name);
        if (LogWindow && Message.Msg == WM_SIZE) Log("size " + At);
        if (LogWindow && Message.Msg == WM_TIMER) Log("timer " + WParam);
        if (LogWindow && Message.Msg == CM_SHOWINGCHANGED) Log(Message.WParam ? "shown" : "hidden");
        if (LogScroll && (Message.Msg == WM_HSCROLL || Message.Msg == WM_VSCROLL))
            Log((Message.Msg == WM_HSCROLL ? "h" : "v") + WParam + " " + std::to_string(Message.LParam));
    }

    std::vector<std::string> FLines;
};

} // namespace quill::testing
