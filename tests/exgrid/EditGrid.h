// What the tests of the editor share: a grid whose cells are edited, driven as the user drives it.
#pragma once

#include "GridTestSupport.h"

#include "exgrid/InplaceEdit.h"
#include "tests/support/Keys.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QtTest>

#include <functional>
#include <map>
#include <string>
#include <utility>

namespace quill::testing {

// A shown grid that keeps its texts and logs what it is asked and told.
class TEditGrid : public TTestGrid {
public:
    explicit TEditGrid(TGridOptions More = {}) : TTestGrid(400, 200, 4, 6) {
        SetOptions(GetOptions() + TGridOptions{goEditing} + More);
        Cells[{1, 1}] = "text";
        show();
        activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(this));
        SetFocus();
        Focus(1, 1);
        Log.clear();
    }

    bool Focused() const override { return TCustomExGrid::hasFocus(); }
    bool IsActiveControl() const override { return ContainsFocus(); }

    std::map<std::pair<int, int>, std::string> Cells;
    std::string Log;
    bool Modify = true;
    char32_t Refused = 0;
    int Limit = 0;
    std::string GetEditText(int Col, int Row) override {
        const TControlGuard Guard(this);
        const std::string FromEvent = TTestGrid::GetEditText(Col, Row);
        return FromEvent.empty() && Guard ? Cells[{Col, Row}] : FromEvent;
    }
    void SetEditText(int Col, int Row, const std::string& Value) override {
        Cells[{Col, Row}] = Value;
        Log += Show(TGridCoord{Col, Row}) + "=" + Value + " ";
        TTestGrid::SetEditText(Col, Row, Value);
    }
    bool CanEditModify() override { return Modify; }
    bool CanEditAcceptKey(char32_t Key) override { return Key != Refused; }
    int GetEditLimit() override { return Limit; }
    std::function<bool()> MayShow; // asked like the application's own refusal
    bool CanEditShow() override { return TTestGrid::CanEditShow() && (!MayShow || MayShow()); }

    // "1,1 text 0-4": cell, text and selection; the cell alone while no editor is shown.
    std::string State() {
        std::string Result = Show(TGridCoord{GetCol(), GetRow()});
        if (!IsEditorShown()) return Result;
        const TInplaceEdit& Edit = *GetInplaceEditor();
        return Result + " " + Edit.GetText() + " " + std::to_string(Edit.GetSelStart()) + "-" +
               std::to_string(Edit.GetSelStart() + Edit.GetSelLength());
    }
    void Keys(const QString& Script) { PressKeys(*this, Script); }
    void Key(Qt::Key Key, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::keyClick(windowHandle(), Key, Modifiers);
    }
    void Type(const QString& Text) { Keys("'" + Text + "'"); }
    // Backspace opens the editor; the other key comes before it has got the character.
    void TypeAhead(Qt::Key Next, const char* Text) {
        QKeyEvent Back(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier, "\b");
        QKeyEvent Second(QEvent::KeyPress, Next, Qt::NoModifier, Text);
        for (QKeyEvent* Event : {&Back, &Second})
            QCoreApplication::sendEvent(QApplication::focusWidget(), Event);
        QCoreApplication::processEvents();
    }
    void Compose(const QString& Preedit, const QString& Commit) {
        QInputMethodEvent Event(Preedit, {});
        Event.setCommitString(Commit);
        if (QWidget* Focus = QApplication::focusWidget()) QCoreApplication::sendEvent(Focus, &Event);
        QCoreApplication::processEvents();
    }
    std::string Paste(const QString& Text) {
        QApplication::clipboard()->setText(Text);
        Key(Qt::Key_V, Qt::ControlModifier);
        return GetInplaceEditor()->GetText();
    }
    std::string Take() { return std::exchange(Log, {}); }
};

inline const Qt::KeyboardModifiers None = Qt::NoModifier;
inline const Qt::KeyboardModifiers Ctrl = Qt::ControlModifier;
inline const Qt::KeyboardModifiers Shift = Qt::ShiftModifier;

} // namespace quill::testing
