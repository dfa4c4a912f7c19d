#include "host/windows/Placement.h"

#include "host/base/PropertyTables.h"
#include "host/windows/ControlImpl.h"
#include "host/windows/FlagScope.h"

#include <QLayout>
#include <QSplitter>

#include <algorithm>

namespace quill {

namespace {

// 0 means no limit in the properties.
int Most(int Value) { return Value > 0 ? std::min(Value, QWIDGETSIZE_MAX) : QWIDGETSIZE_MAX; }

} // namespace

// --- constraints --------------------------------------------------------------------------------------------------

void TSizeConstraints::Store(int& Field, int Value, int& Other, bool IsLeast) {
    Value = std::clamp(Value, 0, QWIDGETSIZE_MAX);
    if (Field == Value) return;
    Field = Value;
    if (Value > 0 && Other > 0 && (IsLeast ? Other < Value : Other > Value)) Other = Value;
    FireEvent(OnChange, this);
}

void TSizeConstraints::Assign(TPersistent* Source) {
    const auto* Other = dynamic_cast<TSizeConstraints*>(Source);
    if (!Other) {
        TPersistent::Assign(Source);
        return;
    }
    FMinWidth = Other->FMinWidth;
    FMinHeight = Other->FMinHeight;
    FMaxWidth = Other->FMaxWidth;
    FMaxHeight = Other->FMaxHeight;
    FireEvent(OnChange, this);
}

const TClassInfo* TSizeConstraints::GetClassInfo() const {
    using T = TSizeConstraints;
    static const TPropertyInfo Properties[] = {
        Published<&T::GetMaxHeight, &T::SetMaxHeight>("MaxHeight", 0),
        Published<&T::GetMaxWidth, &T::SetMaxWidth>("MaxWidth", 0),
        Published<&T::GetMinHeight, &T::SetMinHeight>("MinHeight", 0),
        Published<&T::GetMinWidth, &T::SetMinWidth>("MinWidth", 0),
    };
    static const TClassInfo Info{"TSizeConstraints", nullptr, Properties};
    return &Info;
}

TSizeConstraints* TCustomControl::GetConstraints() {
    if (!FImpl->Constraints) {
        FImpl->Constraints = std::make_unique<TSizeConstraints>();
        FImpl->Constraints->OnChange = [this](TObject*) { FImpl->ApplyConstraints(); };
    }
    return FImpl->Constraints.get();
}

void TCustomControl::SetConstraints(TSizeConstraints* Value) { GetConstraints()->Assign(Value); }

void TCustomControl::TImpl::ApplyConstraints() {
    if (DestructionBegun) return;
    const TSizeConstraints& C = *Constraints;
    const TControlGuard Guard(&Control);
    // The platform keeps to them as well, whoever sizes the widget, and gives it a fitting size now.
    Control.setMinimumSize(C.GetMinWidth(), C.GetMinHeight());
    Control.setMaximumSize(Most(C.GetMaxWidth()), Most(C.GetMaxHeight()));
    if (!Guard) return;
    LayOut();
    ClientResized();
}

bool TCustomControl::TImpl::CheckSize(int& Width, int& Height) {
    const TControlGuard Guard(&Control);
    bool Resize = true;
    FireEvent(Control.OnCanResize, &Control, Width, Height, Resize);
    if (!Guard || !Resize) return false;
    if (Control.OnConstrainedResize) {
        TSizeConstraints& C = *Control.GetConstraints();
        int MinWidth = C.GetMinWidth();
        int MinHeight = C.GetMinHeight();
        int MaxWidth = C.GetMaxWidth();
        int MaxHeight = C.GetMaxHeight();
        FireEvent(Control.OnConstrainedResize, &Control, MinWidth, MinHeight, MaxWidth, MaxHeight);
        if (!Guard) return false;
        Width = std::max(std::min(Width, Most(MaxWidth)), MinWidth);
        Height = std::max(std::min(Height, Most(MaxHeight)), MinHeight);
    }
    Width = std::max(Width, 0);
    Height = std::max(Height, 0);
    return true;
}

// --- aligned and anchored controls --------------------------------------------------------------------------------

// Belongs to the parent widget, and hears of its size.
class TCustomControl::TImpl::TLayouter : public QObject {
public:
    explicit TLayouter(QWidget* AParent) : QObject(AParent), FParent(AParent) {
        AParent->installEventFilter(this);
    }

    static TLayouter* Of(QWidget* Parent, bool Make) {
        if (!Parent) return nullptr;
        for (QObject* Child : Parent->children())
            if (auto* Layouter = dynamic_cast<TLayouter*>(Child)) return Layouter;
        return Make ? new TLayouter(Parent) : nullptr; // the parent's
    }

    bool eventFilter(QObject*, QEvent* Event) override {
        if (Event->type() == QEvent::Resize) ParentResized();
        return false;
    }

    void ParentResized() {
        if (FBusy || FParent->layout()) return;
        const QPointer<TLayouter> Self(this);
        {
            const QSize Size = FParent->size();
            for (const QPointer<QWidget>& Widget : Widgets()) {
                auto* const Control = dynamic_cast<TCustomControl*>(Widget.data());
                if (Control) Control->FImpl->KeepAnchors(Size);
                if (!Self) return;
            }
        }
        LayOut();
    }

    // The aligned ones, each side from the edge inwards.
    void LayOut() {
        if (FParent->layout()) return;
        if (FBusy) {
            FAgain = true;
            return;
        }
        const QPointer<TLayouter> Self(this);
        FBusy = true;
        // Constraints may answer a size with another one; after that things have to have settled.
        for (int Round = 0; Self && Round < 2; ++Round) {
            FAgain = false;
            Place();
            if (!Self || !FAgain) break;
        }
        if (Self) FBusy = false;
    }

private:
    std::vector<QPointer<QWidget>> Widgets() const {
        std::vector<QPointer<QWidget>> Result;
        for (QObject* Child : FParent->children())
            if (auto* Control = dynamic_cast<TCustomControl*>(Child); Control && !Control->isWindow())
                Result.emplace_back(Control);
        return Result;
    }

    void Place() {
        const QPointer<TLayouter> Self(this);
        QRect Room = FParent->contentsRect();
        for (const TAlign Side : {alTop, alBottom, alLeft, alRight, alClient}) {
            std::vector<QPointer<QWidget>> Aligned;
            for (const QPointer<QWidget>& Widget : Widgets()) {
                const auto* Control = dynamic_cast<TCustomControl*>(Widget.data());
                if (Control->GetAlign() == Side && Control->GetVisible()) Aligned.push_back(Widget);
            }
            const auto Distance = [Side](const QPointer<QWidget>& W) {
                switch (Side) {
                case alTop:
                    return W->y();
                case alBottom:
                    return -W->geometry().bottom();
                case alLeft:
                    return W->x();
                case alRight:
                    return -W->geometry().right();
                default:
                    return 0;
                }
            };
            std::stable_sort(Aligned.begin(), Aligned.end(),
                             [&](const auto& A, const auto& B) { return Distance(A) < Distance(B); });
            for (const QPointer<QWidget>& Widget : Aligned) {
                auto* const Control = dynamic_cast<TCustomControl*>(Widget.data());
                if (!Control) continue;
                PlaceOne(*Control, Side, Room);
                if (!Self) return;
            }
        }
    }

    static void PlaceOne(TCustomControl& Control, TAlign Side, QRect& Room) {
        QRect Bounds = Room;
        if (Side == alTop || Side == alBottom) Bounds.setHeight(Control.height());
        if (Side == alLeft || Side == alRight) Bounds.setWidth(Control.width());
        if (Side == alBottom) Bounds.moveBottom(Room.bottom());
        if (Side == alRight) Bounds.moveRight(Room.right());
        const TControlGuard Guard(&Control);
        Control.FImpl->PlaceAt(Bounds);
        if (!Guard) return;
        const QSize Size = Control.size(); // as constraints allow
        if (Side == alTop) Room.setTop(Room.top() + Size.height());
        if (Side == alBottom) Room.setBottom(Room.bottom() - Size.height());
        if (Side == alLeft) Room.setLeft(Room.left() + Size.width());
        if (Side == alRight) Room.setRight(Room.right() - Size.width());
    }

    QWidget* FParent;
    bool FBusy = false;
    bool FAgain = false;
};

void TCustomControl::TImpl::PlaceAt(const QRect& Bounds) {
    if (Control.geometry() == Bounds) return;
    const TFlagScope Scope(&Control, Placing);
    Control.SetBounds(Bounds.x(), Bounds.y(), Bounds.width(), Bounds.height());
}

void TCustomControl::TImpl::KeepAnchors(QSize Parent) {
    if (Align != alNone || Anchors == TAnchors{akLeft, akTop} || Control.HasState(csLoading)) return;
    if (!AnchoredIn.isValid()) return;
    QRect Bounds = AnchoredBounds;
    const auto Keep = [](bool Near, bool Far, int Old, int New, int& From, int& Extent) {
        if (Near && Far) Extent = std::max(0, Extent + New - Old);
        if (!Near && Far) From += New - Old;
        // The centre stays in proportion.
        if (!Near && !Far && Old > 0) From = MulDiv(2 * From + Extent, New, 2 * Old) - Extent / 2;
    };
    int Left = Bounds.x();
    int Top = Bounds.y();
    int Width = Bounds.width();
    int Height = Bounds.height();
    Keep(Anchors.Contains(akLeft), Anchors.Contains(akRight), AnchoredIn.width(), Parent.width(), Left,
         Width);
    Keep(Anchors.Contains(akTop), Anchors.Contains(akBottom), AnchoredIn.height(), Parent.height(), Top,
         Height);
    PlaceAt(QRect(Left, Top, Width, Height));
}

void TCustomControl::TImpl::ChildrenRoomChanged() {
    // A hidden parent gets no event when its client area changes.
    if (Control.isVisible()) return;
    if (auto* Layouter = TLayouter::Of(Control.viewport(), false)) Layouter->ParentResized();
}

void TCustomControl::TImpl::RememberAnchors() {
    const QWidget* const Parent = Control.parentWidget();
    AnchoredBounds = Control.geometry();
    AnchoredIn = Parent && !Control.isWindow() ? Parent->size() : QSize();
}

void TCustomControl::TImpl::NotePlace(QEvent::Type Change) {
    QWidget* const Parent = Control.isWindow() ? nullptr : Control.parentWidget();
    const TControlGuard Guard(&Control);
    if (Change == QEvent::ParentChange) {
        RememberAnchors();
        Control.FollowParent();
        if (!Guard) return;
    } else if (!Placing && (Change == QEvent::Move || Change == QEvent::Resize)) {
        RememberAnchors();
    }
    if (Change == QEvent::Resize && Control.OnResize) {
        std::erase_if(Waiting, [](const TMessage& M) { return M.Msg == ResizeNotification; });
        Wait(ResizeNotification);
    }
    if (Placing || !Parent) return;
    const bool Special = Align != alNone || Anchors != TAnchors{akLeft, akTop};
    TLayouter* const Layouter = TLayouter::Of(Parent, Special);
    if (Layouter && (Align != alNone || Change == QEvent::ParentChange)) Layouter->LayOut();
}

TAlign TCustomControl::GetAlign() const { return FImpl->Align; }

void TCustomControl::SetAlign(TAlign Value) {
    if (FImpl->Align == Value) return;
    FImpl->Align = Value;
    FImpl->RememberAnchors();
    // Those that fill what this one leaves follow, too.
    if (QWidget* const Parent = isWindow() ? nullptr : parentWidget())
        TImpl::TLayouter::Of(Parent, true)->LayOut();
}

TAnchors TCustomControl::GetAnchors() const { return FImpl->Anchors; }

void TCustomControl::SetAnchors(TAnchors Value) {
    if (FImpl->Anchors == Value) return;
    FImpl->Anchors = Value;
    FImpl->RememberAnchors();
    if (QWidget* const Parent = isWindow() ? nullptr : parentWidget()) TImpl::TLayouter::Of(Parent, true);
}

bool TCustomControl::IsLaidOut() const {
    const QWidget* const Parent = isWindow() ? nullptr : parentWidget();
    return Parent && (Parent->layout() || qobject_cast<const QSplitter*>(Parent));
}

} // namespace quill
