#include "host/transfer/DataObjects.h"
#include "host/transfer/DragDrop.h"
#include "host/windows/Keys.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QPointer>

#include <cmath>
#include <map>

namespace quill {

namespace {

// Bits of key states and what they are in a shift state.
constexpr std::pair<std::uint32_t, TShiftStateValue> KeyBits[] = {
    {MK_LBUTTON, ssLeft}, {MK_RBUTTON, ssRight},  {MK_SHIFT, ssShift},
    {MK_CONTROL, ssCtrl}, {MK_MBUTTON, ssMiddle}, {MK_ALT, ssAlt},
};
constexpr std::uint32_t AllEffects = DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK;

int Users = 0;

// Stands on the stack while Qt calls us from the middle of its work on a control's client area, with which it goes on
// whatever handlers do: if the control is destroyed, the client area lives on, on its own, until the event loop runs
// again. Apart from the site, which a handler may revoke before it destroys the control.
class TClientKeeper : public TComponent {
public:
    explicit TClientKeeper(TCustomControl* Control) : FControl(Control) { FreeNotification(Control); }
    ~TClientKeeper() override { Destroying(); }

protected:
    void Notification(TComponent* AComponent, TOperation Operation) override {
        if (Operation != opRemove || AComponent != static_cast<TComponent*>(FControl)) return;
        QWidget* const Client = FControl->viewport();
        FControl = nullptr;
        if (!Client->parentWidget()) return; // an outer keeper of ours has done it
        Client->setParent(nullptr);
        Client->deleteLater();
    }

private:
    TCustomControl* FControl;
};

// A control with a target: listens to the drag events of its client area. A component, so that it hears of the end of
// the control.
class TDropSite : public QObject, public TComponent {
public:
    TDropSite(TCustomControl* Control, IDropTarget* Target) : FControl(Control), FTarget(Target) {
        FreeNotification(Control);
        QWidget* Client = Control->viewport();
        Client->setAcceptDrops(true);
        Client->installEventFilter(this);
    }
    ~TDropSite() override {
        Destroying();
        EndData();
        if (!FControl) return;
        FControl->viewport()->removeEventFilter(this);
        FControl->viewport()->setAcceptDrops(false);
    }

    bool eventFilter(QObject* Watched, QEvent* Event) override {
        if (!FControl || Watched != FControl->viewport()) return false;
        const QEvent::Type Type = Event->type();
        if (Type != QEvent::DragEnter && Type != QEvent::DragMove && Type != QEvent::DragLeave &&
            Type != QEvent::Drop)
            return false;
        const TClientKeeper Keeper(FControl);
        switch (Type) {
        case QEvent::DragEnter:
            Enter(*static_cast<QDropEvent*>(Event));
            return true;
        case QEvent::DragMove:
            Call(*static_cast<QDropEvent*>(Event),
                 [](IDropTarget& Target, const TStep& Step, std::uint32_t& Effect) {
                     Target.DragOver(Step.Keys, Step.Pt, Effect);
                 });
            return true;
        case QEvent::DragLeave: {
            const TComponentGuard Self(this);
            const TInterfaceRef<IDropTarget> Target = FTarget;
            if (Target) Protected([&] { Target->DragLeave(); });
            if (!Self.IsGone()) EndData();
            return true;
        }
        default: { // the drop
            const TComponentGuard Self(this);
            auto& Drop = *static_cast<QDropEvent*>(Event);
            const TInterfaceRef<IDataObject> Data = FData ? FData : DataObjectOf(Drop.mimeData());
            Call(Drop, [&](IDropTarget& Target, const TStep& Step, std::uint32_t& Effect) {
                Target.Drop(Data.Get(), Step.Keys, Step.Pt, Effect);
            });
            if (!Self.IsGone()) EndData();
            return true;
        }
        }
    }

protected:
    void Notification(TComponent* AComponent, TOperation Operation) override;

private:
    struct TStep {
        std::uint32_t Keys;
        TPoint Pt;
    };

    template <class TWork>
    static bool Protected(TWork Work) {
        try {
            Work();
            return true;
        } catch (const std::exception& Error) {
            qWarning("A drop target failed: %s", Error.what());
        } catch (...) {
            qWarning("A drop target failed");
        }
        return false;
    }

    void Enter(QDropEvent& Event) {
        const TComponentGuard Self(this);
        EndData();
        FData = DataObjectOf(Event.mimeData());
        const TInterfaceRef<IDataObject> Data = FData;
        Call(Event, [&](IDropTarget& Target, const TStep& Step, std::uint32_t& Effect) {
            Target.DragEnter(Data.Get(), Step.Keys, Step.Pt, Effect);
        });
        // Whoever refuses to be entered gets no moves: the moves decide.
        if (!Self.IsGone() && FControl) Event.accept();
    }

    // Does one step and gives Qt its outcome.
    template <class TWork>
    void Call(QDropEvent& Event, TWork Work) {
        const TComponentGuard Self(this);
        const auto Floor = [](double Value) { return static_cast<int>(std::floor(Value)); };
        const TPoint Client{Floor(Event.position().x()), Floor(Event.position().y())};
        // Another program's drop does not tell its modifiers, and by the time that it gets here those that are held
        // may be others: it is done as the last move has shown it.
        if (Event.type() != QEvent::Drop || Event.source()) FModifiers = Event.modifiers();
        const TStep Step{ShiftStateToKeys(ShiftFromQt(FModifiers, Event.buttons())),
                         FControl->ClientToScreen(Client)};
        const auto Possible = static_cast<std::uint32_t>(Event.possibleActions().toInt()) & AllEffects;
        std::uint32_t Effect = Possible;
        const TInterfaceRef<IDropTarget> Target = FTarget;
        if (!Target || !Protected([&] { Work(*Target.Get(), Step, Effect); })) Effect = DROPEFFECT_NONE;
        Effect &= Possible;
        Effect &= ~Effect + 1; // one of several: the lowest
        // An action of "none" would count as accepted for some programs.
        if (Effect == DROPEFFECT_NONE || Self.IsGone() || !FControl) {
            Event.ignore();
            return;
        }
        Event.setDropAction(static_cast<Qt::DropAction>(Effect));
        Event.accept();
    }

    void EndData() {
        if (FData) EndAccess(FData.Get());
        FData.Reset();
    }

    TCustomControl* FControl;
    TInterfaceRef<IDropTarget> FTarget;
    TInterfaceRef<IDataObject> FData; // from enter to leave or drop
    Qt::KeyboardModifiers FModifiers;
};

using TSites = std::map<const TCustomControl*, std::unique_ptr<TDropSite>>;
TSites& Sites() {
    static TSites* const Result = new TSites; // controls with static life may go after us
    return *Result;
}

void TDropSite::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    if (Operation != opRemove || AComponent != static_cast<TComponent*>(FControl)) return;
    FControl->viewport()->removeEventFilter(this);
    TCustomControl* const Control = std::exchange(FControl, nullptr);
    Sites().erase(Control); // and with it this object
}

} // namespace

TShiftState KeysToShiftState(std::uint32_t KeyState) {
    TShiftState Result;
    for (const auto& [Bit, Value] : KeyBits)
        if (KeyState & Bit) Result.Include(Value);
    return Result;
}

std::uint32_t ShiftStateToKeys(TShiftState Shift) {
    std::uint32_t Result = 0;
    for (const auto& [Bit, Value] : KeyBits)
        if (Shift.Contains(Value)) Result |= Bit;
    return Result;
}

std::uint32_t GetKeysHeld() {
    return ShiftStateToKeys(
        ShiftFromQt(QGuiApplication::keyboardModifiers(), QGuiApplication::mouseButtons()));
}

HResult OleInitialize() { return Users++ == 0 ? S_OK : S_FALSE; }

void OleUninitialize() {
    if (Users == 0 || --Users > 0) return;
    Sites().clear();
}

bool IsOleInitialized() { return Users > 0; }

HResult RegisterDragDrop(HWND Control, IDropTarget* Target) {
    if (!IsOleInitialized()) return CO_E_NOTINITIALIZED;
    if (!Control || TControlGuard(Control).operator bool() == false) return DRAGDROP_E_INVALIDHWND;
    if (!Target) return E_INVALIDARG;
    if (Sites().contains(Control)) return DRAGDROP_E_ALREADYREGISTERED;
    Sites().emplace(Control, std::make_unique<TDropSite>(Control, Target));
    return S_OK;
}

HResult RevokeDragDrop(HWND Control) {
    if (!Control) return DRAGDROP_E_INVALIDHWND;
    const auto Place = Sites().find(Control);
    if (Place == Sites().end()) return DRAGDROP_E_NOTREGISTERED;
    // Out of the table first: its end may call application code.
    const std::unique_ptr<TDropSite> Site = std::move(Place->second);
    Sites().erase(Place);
    return S_OK;
}

} // namespace quill
