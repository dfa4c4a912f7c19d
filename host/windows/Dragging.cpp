#include "host/windows/Dragging.h"

#include "host/base/Events.h"
#include "host/windows/Application.h"
#include "host/windows/ControlImpl.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>

#include <cstdlib>
#include <memory>
#include <utility>

namespace quill {

// --- the drag in progress -----------------------------------------------------------------------------------------

// Has the mouse from the start of a drag to its end: it sees every event of mouse and keys before the widgets do and
// keeps them.
class TDragManager : public QObject {
public:
    static QPointer<TDragManager>& Active() {
        static QPointer<TDragManager> Manager;
        return Manager;
    }

    TDragManager(TCustomControl* Source, TDragObject* Object, bool OwnsObject, int Threshold)
        : QObject(qApp), FSource(Source), FSourceGuard(Source), FObject(Object),
          FOwned(OwnsObject ? Object : nullptr), FStart(Mouse.GetCursorPos()), FThreshold(Threshold) {
        FObject->FManager = this;
        FObject->FDragPos = FStart;
        qApp->installEventFilter(this);
    }
    ~TDragManager() override {
        if (FCursorShown) QApplication::restoreOverrideCursor();
        if (FObject) FObject->FManager = nullptr;
    }

    void StartIfImmediate() {
        if (FThreshold <= 0) Start(FStart);
    }
    TDragObject* GetObject() const { return FObject; }
    TCustomControl* GetSource() const { return FSourceGuard ? FSource : nullptr; }

    void ObjectGone() {
        TCustomControl* const Target = FMoving ? FObject->FTarget : nullptr;
        const TDragRec Record{FObject->FDragPos, GetSource(), nullptr, Target};
        FObject = nullptr;
        static_cast<void>(FOwned.release());
        if (Target && !FFinished) {
            TDragRec Told = Record;
            Target->Perform(CM_DRAG, dmDragCancel, reinterpret_cast<std::intptr_t>(&Told));
        }
        Finish(false);
    }
    // A destroyed target or source is no party any more.
    void Forget(const TCustomControl* Control) {
        if (FObject && FObject->FTarget == Control) FObject->FTarget = nullptr;
        if (FSource == Control) Finish(false);
    }

    void Finish(bool Drop) {
        if (std::exchange(FFinished, true)) return;
        if (Active() == this) Active() = nullptr;
        qApp->removeEventFilter(this);
        deleteLater();
        if (std::exchange(FCursorShown, false)) QApplication::restoreOverrideCursor();
        TCustomControl* Target = FMoving && FObject ? FObject->FTarget : nullptr;
        TPoint Pos = Target ? FObject->FDragTargetPos : TPoint{};
        if (Target) {
            const TControlGuard TargetGuard(Target);
            Drop = Drop && FAccepted;
            Send(Target, Drop ? dmDragDrop : dmDragCancel);
            if (!TargetGuard) Target = nullptr;
        }
        if (!Drop) Target = nullptr;
        if (!Target && FSourceGuard && FObject) Pos = FSource->ScreenToClient(FObject->FDragPos);
        if (FObject) FObject->Finished(Target, Pos.X, Pos.Y, Drop);
        if (!FSourceGuard) return;
        if (!Drop) FSource->DragCanceled();
        if (FSourceGuard) FSource->DoEndDrag(Target, Pos.X, Pos.Y);
    }

protected:
    bool eventFilter(QObject* Receiver, QEvent* Event) override {
        if (FFinished || !Receiver->isWidgetType()) return false;
        switch (Event->type()) {
        case QEvent::MouseMove: {
            const QPoint Pos = static_cast<QMouseEvent*>(Event)->globalPosition().toPoint();
            // The release went to somebody else.
            if (static_cast<QMouseEvent*>(Event)->buttons() == Qt::NoButton && FMoving) {
                Finish(false);
            } else {
                MoveTo({Pos.x(), Pos.y()});
            }
            return true;
        }
        case QEvent::MouseButtonRelease: {
            const auto& Release = static_cast<const QMouseEvent&>(*Event);
            if (Release.buttons() != Qt::NoButton) return true;
            // Nothing was dragged: it was a click, and the widget sees its end.
            if (!FMoving) {
                Finish(false);
                return false;
            }
            const QPoint Pos = Release.globalPosition().toPoint();
            const QPointer<TDragManager> Self(this);
            MoveTo({Pos.x(), Pos.y()});
            if (Self) Finish(true);
            return true;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return true;
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent*>(Event)->key() == Qt::Key_Escape) {
                Finish(false);
            } else if (FMoving) {
                Follow(FObject->FDragPos); // modifiers may change what is accepted
            }
            return true;
        case QEvent::KeyRelease:
            if (FMoving) Follow(FObject->FDragPos);
            return true;
        case QEvent::ShortcutOverride:
            Event->accept();
            return true;
        case QEvent::WindowBlocked: // a dialog has opened
            Finish(false);
            return false;
        default:
            return false;
        }
    }

private:
    // The picture that follows the mouse is a window of its own and in the way on some platforms.
    static QWidget* WidgetAt(QPoint Screen) {
        QWidget* Below = QApplication::topLevelAt(Screen);
        if (Below && Below->testAttribute(Qt::WA_TransparentForMouseEvents)) {
            Below = nullptr;
            for (QWidget* Window : QApplication::topLevelWidgets()) {
                if (!Window->isVisible() || Window->testAttribute(Qt::WA_TransparentForMouseEvents)) continue;
                if (Window->geometry().contains(Screen) && (!Below || Window->isActiveWindow()))
                    Below = Window;
            }
        }
        QWidget* const Child = Below ? Below->childAt(Below->mapFromGlobal(Screen)) : nullptr;
        return Child ? Child : Below;
    }
    static TCustomControl* ControlAt(TPoint Screen) {
        for (QWidget* W = WidgetAt({Screen.X, Screen.Y}); W; W = W->parentWidget()) {
            auto* const Control = dynamic_cast<TCustomControl*>(W);
            if (Control && Control->isEnabled()) return Control;
        }
        return nullptr;
    }

    // The source is no longer pressed.
    void Start(TPoint Screen) {
        const QPointer<TDragManager> Self(this);
        FMoving = true;
        if (FSourceGuard) FSource->Perform(WM_CANCELMODE, 0, 0);
        if (Self && !FFinished) Follow(Screen);
    }

    void MoveTo(TPoint Screen) {
        if (!FMoving) {
            if (std::abs(Screen.X - FStart.X) < FThreshold && std::abs(Screen.Y - FStart.Y) < FThreshold)
                return;
            Start(Screen);
            return;
        }
        Follow(Screen);
    }

    void Follow(TPoint Screen) {
        const QPointer<TDragManager> Self(this);
        TDragObject& Object = *FObject;
        Object.FDragPos = Screen;
        Object.Moved();
        TCustomControl* const Now = ControlAt(Screen);
        if (Now != Object.FTarget) {
            if (Object.FTarget) Send(Object.FTarget, dmDragLeave);
            if (!Self || FFinished) return;
            Object.FTarget = Now;
            if (Now) Object.FDragTargetPos = Now->ScreenToClient(Screen);
            if (Now) Send(Now, dmDragEnter);
            if (!Self || FFinished) return;
        }
        FAccepted = false;
        if (Object.FTarget) {
            Object.FDragTargetPos = Object.FTarget->ScreenToClient(Screen);
            const bool Accepted = Send(Object.FTarget, dmDragMove);
            if (!Self || FFinished) return;
            FAccepted = Accepted && Object.FTarget;
        }
        ShowCursor(Object.GetDragCursor(FAccepted, Object.FDragTargetPos.X, Object.FDragTargetPos.Y));
    }

    bool Send(TCustomControl* Target, TDragMessage Message) {
        TDragRec Record{FObject->FDragPos, FObject->GetSource(), FObject, Target};
        return Target->Perform(CM_DRAG, Message, reinterpret_cast<std::intptr_t>(&Record)) != 0;
    }

    void ShowCursor(TCursor Cursor) {
        const QCursor Shape(CursorShape(Cursor));
        if (FCursorShown)
            QApplication::changeOverrideCursor(Shape);
        else
            QApplication::setOverrideCursor(Shape);
        FCursorShown = true;
    }

    TCustomControl* FSource;
    TControlGuard FSourceGuard;
    TDragObject* FObject;
    std::unique_ptr<TDragObject> FOwned;
    TPoint FStart;
    int FThreshold;
    bool FMoving = false;
    bool FAccepted = false;
    bool FCursorShown = false;
    bool FFinished = false;
};

TDragObject* GetActiveDrag() {
    TDragManager* const Manager = TDragManager::Active();
    return Manager ? Manager->GetObject() : nullptr;
}

void EndActiveDrag(bool Drop) {
    if (TDragManager* const Manager = TDragManager::Active()) Manager->Finish(Drop);
}

void ForgetDragOf(const TCustomControl* Control) {
    if (TDragManager* const Manager = TDragManager::Active()) Manager->Forget(Control);
}

// --- what is dragged ----------------------------------------------------------------------------------------------

TDragObject::~TDragObject() {
    if (FManager) FManager->ObjectGone();
}

TCursor TDragObject::GetDragCursor(bool Accepted, int, int) { return Accepted ? crDrag : crNoDrop; }

void TDragObject::HideDragImage() {}
void TDragObject::ShowDragImage() {}

TCustomImageList* TDragControlObject::GetDragImages() { return FControl->GetDragImages(); }

TCursor TDragControlObject::GetDragCursor(bool Accepted, int, int) {
    return Accepted ? FControl->GetDragCursor() : crNoDrop;
}

// --- the control's side -------------------------------------------------------------------------------------------

void TCustomControl::BeginDrag(bool Immediate, int Threshold) {
    if (TDragManager::Active() || !qApp || HasState(csDestroying)) return;
    const TControlGuard Guard(this);
    TDragObject* Object = nullptr;
    DoStartDrag(Object);
    if (!Guard || TDragManager::Active()) return;
    const bool Own = !Object;
    if (Own) Object = new TDragControlObject(this);
    if (Threshold < 0) Threshold = Mouse.GetDragThreshold();
    // The press is over for us; its release will end the drag.
    FMouseCapture = false;
    TDragManager::Active() = new TDragManager(this, Object, Own, Immediate ? 0 : Threshold);
    TDragManager::Active()->StartIfImmediate();
}

void TCustomControl::EndDrag(bool Drop) {
    if (IsDragSource()) EndActiveDrag(Drop);
}

bool TCustomControl::IsDragSource() const {
    TDragManager* const Manager = TDragManager::Active();
    return Manager && Manager->GetSource() == this;
}

void TCustomControl::DoStartDrag(TDragObject*& DragObject) { FireEvent(OnStartDrag, this, DragObject); }

void TCustomControl::DoEndDrag(TObject* Target, int X, int Y) { FireEvent(OnEndDrag, this, Target, X, Y); }

void TCustomControl::DragCanceled() {}

void TCustomControl::DragOver(TObject* Source, int X, int Y, TDragState State, bool& Accept) {
    Accept = static_cast<bool>(OnDragOver);
    FireEvent(OnDragOver, this, Source, X, Y, State, Accept);
}

void TCustomControl::DragDrop(TObject* Source, int X, int Y) { FireEvent(OnDragDrop, this, Source, X, Y); }

void TCustomControl::CMDrag(TCMDrag& Message) {
    const TPoint Pos = ScreenToClient(Message.DragRec->Pos);
    TObject* const Source = Message.DragRec->Source;
    const auto Over = [&](TDragState State) {
        bool Accept = false;
        DragOver(Source, Pos.X, Pos.Y, State, Accept);
        Message.Result = Accept ? 1 : 0;
    };
    switch (Message.DragMessage) {
    case dmDragEnter:
        Over(dsDragEnter);
        break;
    case dmDragMove:
        Over(dsDragMove);
        break;
    case dmDragLeave:
    case dmDragCancel:
        Over(dsDragLeave);
        break;
    case dmDragDrop:
        DragDrop(Source, Pos.X, Pos.Y);
        break;
    }
}

} // namespace quill
