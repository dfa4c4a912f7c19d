// The single-line edit control: the platform's editing (caret, selection by mouse, undo, input methods, context menu)
// behind the toolkit's keys and messages.
#pragma once

#include "host/windows/Controls.h"

#include <functional>
#include <memory>
#include <string>

class QString;

namespace quill {

inline constexpr unsigned WM_UNDO = 0x0304;
// WParam and LParam: pointers to unsigned that take the selection's start and end, or 0. Result: the start in the low 32
// bits, the end in the high ones.
inline constexpr unsigned EM_GETSEL = 0x00B0;
// WParam start, LParam end, where -1 stands for the text's end; with a start of -1 nothing is selected any more.
inline constexpr unsigned EM_SETSEL = 0x00B1;

// Positions and lengths count characters (code points), with a mask those that it leaves blank as well.
//
// What the user does passes the hooks of the control: KeyDown, then KeyPress for every character that is typed or
// committed by an input method, EditCanModify before anything changes the text, and WM_CUT, WM_COPY, WM_PASTE, WM_CLEAR
// and WM_UNDO for the commands, whether they come from keys or the menu. Line breaks and tabs that are pasted or dropped
// become spaces, other control characters are left out.
class TCustomEdit : public TCustomControl {
    Q_OBJECT

public:
    explicit TCustomEdit(TComponent* AOwner, QWidget* AParent = nullptr);
    ~TCustomEdit() override;

    // A text that the user left as it was comes back byte for byte, also when it is no valid UTF-8. Setting it forgets
    // what could be undone, puts the caret at the end and is not limited.
    std::string GetText() const;
    void SetText(const std::string& Value);
    int GetTextLength() const;
    // The selection; an empty one is the caret.
    int GetSelStart() const;
    int GetSelLength() const;
    // Selects from Start to End, where the caret goes. Positions outside the text are brought inside.
    void SetSel(int Start, int End);
    void SelectAll();
    // How many characters the user can enter, 0 for no limit. What is pasted beyond is cut, with a beep.
    int GetMaxLength() const { return FMaxLength; }
    void SetMaxLength(int Value);
    // Where the user can enter what, in the platform's syntax for input masks; empty for no mask. A text of which the
    // mask would leave something out is edited without it.
    void SetEditMask(const std::string& Value);
    // Sides as they are named, whatever the direction of control and text.
    TAlignment GetAlignment() const { return FAlignment; }
    void SetAlignment(TAlignment Value);

    // Whether a line in the colour of selections runs around the text, for an edit that lies among other texts.
    bool GetOutlined() const { return FOutlined; }
    void SetOutlined(bool Value);

    // Whether the user may change the text now; asked before each change.
    virtual bool EditCanModify() { return true; }
    // Makes text of what the user is still composing with an input method.
    virtual void CommitComposition();
    bool CanUndo() const;
    void Undo();
    void CutToClipboard();
    void CopyToClipboard();
    void PasteFromClipboard();
    // Deletes what is selected.
    void ClearSelection();

    void Invalidate() override;
    void WMKeyDown(TWMKey& Message) override;
    void WMChar(TWMKey& Message) override;
    void WMSize(TWMSize& Message) override;
    void WMCut(TMessage& Message) override;
    void WMCopy(TMessage& Message) override;
    void WMPaste(TMessage& Message) override;
    virtual void WMClear(TMessage& Message);
    virtual void WMUndo(TMessage& Message);
    virtual void WMGetDlgCode(TMessage& Message);
    void WndProc(TMessage& Message) override;
    void CMFontChanged(TMessage& Message) override;

    // The text was changed, by the user or the program.
    TNotifyEvent OnChange;

Q_SIGNALS:
    void changed();

protected:
    void keyPressEvent(QKeyEvent* Event) override;
    void inputMethodEvent(QInputMethodEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    // The user changes the text now, and may.
    virtual void ChangeComing() {}
    // Whether the widget for the text can be reached with Tab.
    void SetLineTabStop(bool Value);

private:
    class TLine;
    class TGate;

    int ToUnits(int Position) const;
    void Change(const std::function<void(TLine&)>& Apply);
    void Insert(const QString& Text);
    void InsertPasted(const QString& Text);
    QString CutToLimit(const QString& Text);
    void TypeControl(char32_t Char);
    void ForwardKey(QKeyEvent& Event);
    void ShowMenu(const QPoint& ScreenPos);
    void ApplyColors();

    TLine* FLine;
    QKeyEvent* FKeyEvent = nullptr; // being handled
    std::string FOriginal;          // as SetText got it, and as the line shows it
    std::unique_ptr<QString> FShown;
    int FMaxLength = 0;
    int FUsingLine = 0; // calls of the line that are running
    TAlignment FAlignment = taLeftJustify;
    bool FOutlined = false;
    bool FModifying = false; // the text may change now
    bool FComposing = false;
};

} // namespace quill
