// What a control takes over from its parent, hints, popup menus, the order of Tab, and what forms store of every
// control.
#include "host/base/PropertyTables.h"
#include "host/windows/ControlImpl.h"
#include "host/windows/Menus.h"
#include "host/windows/PublishedNames.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QTextDocument>

#include <algorithm>
#include <vector>

namespace quill {

// --- the parent's properties --------------------------------------------------------------------------------------

TCustomControl* TCustomControl::FindParentControl() const {
    if (isWindow() && !testAttribute(Qt::WA_WindowPropagation)) return nullptr;
    for (QWidget* Ancestor = parentWidget(); Ancestor; Ancestor = Ancestor->parentWidget())
        if (auto* Parent = dynamic_cast<TCustomControl*>(Ancestor)) return Parent;
    return nullptr;
}

// Fonts and directions come down with the platform's.
void TCustomControl::FollowParent() {
    const TCustomControl* const Parent = FindParentControl();
    if (!Parent || FImpl->DestructionBegun) return;
    const TControlGuard Guard(this);
    const TControlGuard ParentGuard(Parent);
    if (FParentColor) ChangeColor(Parent->GetColor());
    if (Guard && ParentGuard && FParentCtl3D) ChangeCtl3D(Parent->GetCtl3D());
    if (Guard && ParentGuard && FImpl->ParentShowHint) ChangeShowHint(Parent->GetShowHint());
}

void TCustomControl::TellChildren() const {
    // The nearest controls below; each tells its own.
    std::vector<QWidget*> Open{viewport()};
    std::vector<QPointer<QWidget>> Found;
    for (QObject* Child : children())
        if (Child != viewport() && Child->isWidgetType()) Open.push_back(static_cast<QWidget*>(Child));
    while (!Open.empty()) {
        const QWidget* const Widget = Open.back();
        Open.pop_back();
        for (QObject* Child : Widget->children()) {
            if (!Child->isWidgetType()) continue;
            if (dynamic_cast<TCustomControl*>(Child))
                Found.emplace_back(static_cast<QWidget*>(Child));
            else
                Open.push_back(static_cast<QWidget*>(Child));
        }
    }
    for (const QPointer<QWidget>& Widget : Found)
        if (auto* Control = dynamic_cast<TCustomControl*>(Widget.data())) Control->FollowParent();
}

// --- hints --------------------------------------------------------------------------------------------------------

std::string TCustomControl::GetHint() const { return FImpl->Hint; }

void TCustomControl::SetHint(const std::string& Value) {
    FImpl->Hint = Value;
    FImpl->ApplyHint();
}

bool TCustomControl::GetShowHint() const { return FImpl->ShowHint; }

void TCustomControl::SetShowHint(bool Value) {
    FImpl->ParentShowHint = false;
    ChangeShowHint(Value);
}

void TCustomControl::ChangeShowHint(bool Value) {
    if (FImpl->ShowHint == Value) return;
    FImpl->ShowHint = Value;
    FImpl->ApplyHint();
    TellChildren();
}

bool TCustomControl::GetParentShowHint() const { return FImpl->ParentShowHint; }

void TCustomControl::SetParentShowHint(bool Value) {
    FImpl->ParentShowHint = Value;
    if (!Value) return;
    const TCustomControl* const Parent = FindParentControl();
    ChangeShowHint(Parent && Parent->GetShowHint());
}

void TCustomControl::TImpl::ApplyHint() {
    const bool Shown = ShowHint && !Hint.empty() && !Control.HasState(csDesigning);
    const QString Text = Shown ? QString::fromStdString(Hint) : QString();
    // A hint is plain text, whatever it looks like.
    Control.setToolTip(Qt::mightBeRichText(Text) ? Qt::convertFromPlainText(Text) : Text);
}

// --- popup menus --------------------------------------------------------------------------------------------------

TPopupMenu* TCustomControl::GetPopupMenu() const { return FImpl->PopupMenu; }

void TCustomControl::SetPopupMenu(TPopupMenu* Value) {
    if (FImpl->PopupMenu == Value) return;
    // The menu belongs to the control, so that its short cuts work there.
    if (FImpl->PopupMenu) removeAction(FImpl->PopupMenu->GetMenu()->menuAction());
    FImpl->PopupMenu = Value;
    if (Value) addAction(Value->GetMenu()->menuAction());
    FreeNotification(Value);
}

void TCustomControl::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    if (Operation == opRemove && FImpl && AComponent == FImpl->PopupMenu) FImpl->PopupMenu = nullptr;
}

void TCustomControl::contextMenuEvent(QContextMenuEvent* Event) {
    TPopupMenu* const Menu = FImpl->PopupMenu;
    // Without one of its own the control leaves the menu to its parents.
    if (!Menu || !Menu->GetAutoPopup() || HasState(csDesigning)) {
        Event->ignore();
        return;
    }
    Event->accept();
    Menu->SetPopupComponent(this);
    Menu->Popup(Event->globalX(), Event->globalY());
}

// --- the order of Tab ---------------------------------------------------------------------------------------------

int TCustomControl::GetTabOrder() const { return FImpl->TabOrder; }

void TCustomControl::SetTabOrder(int Value) {
    Value = std::max(Value, -1);
    if (FImpl->TabOrder == Value) return;
    FImpl->TabOrder = Value;
    if (!HasState(csLoading)) FImpl->ApplyTabOrder();
}

void TCustomControl::TImpl::ApplyTabOrder() {
    if (TabOrder < 0 || !Control.parentWidget()) return;
    std::vector<TCustomControl*> Ordered;
    for (QObject* Child : Control.parentWidget()->children()) {
        auto* const Sibling = dynamic_cast<TCustomControl*>(Child);
        if (Sibling && Sibling->FImpl->TabOrder >= 0) Ordered.push_back(Sibling);
    }
    std::stable_sort(Ordered.begin(), Ordered.end(),
                     [](const auto* A, const auto* B) { return A->FImpl->TabOrder < B->FImpl->TabOrder; });
    for (std::size_t I = 1; I < Ordered.size(); ++I) QWidget::setTabOrder(Ordered[I - 1], Ordered[I]);
}

// --- kept for forms -----------------------------------------------------------------------------------------------

bool TCustomControl::GetUseDockManager() const { return FImpl->UseDockManager; }
void TCustomControl::SetUseDockManager(bool Value) { FImpl->UseDockManager = Value; }
bool TCustomControl::GetDockSite() const { return FImpl->DockSite; }
void TCustomControl::SetDockSite(bool Value) { FImpl->DockSite = Value; }

// --- forms --------------------------------------------------------------------------------------------------------

TComponent* TCustomControl::GetParentComponent() const { return FindParentControl(); }

void TCustomControl::SetParentComponent(TComponent* Value) {
    if (auto* Parent = dynamic_cast<TCustomControl*>(Value)) SetParent(Parent);
}

void TCustomControl::Loaded() {
    TComponent::Loaded();
    const TControlGuard Guard(this);
    FImpl->RememberAnchors();
    FImpl->ApplyHint();
    FImpl->ApplyTabOrder();
    // A child that comes to a parent on the screen waits to be shown.
    if (isHidden() && GetVisible() && parentWidget() && !isWindow() && parentWidget()->isVisible()) show();
    if (Guard && FImpl->Align != alNone) FImpl->NotePlace(QEvent::ShowToParent);
}

void TCustomControl::UpdateDesigner() {
    if (HasState(csDesigning) && !HasState(csLoading) && HandleAllocated()) Q_EMIT designerModified();
}

namespace {

const TCustomControl& ControlOf(const TPersistent& Object) {
    return static_cast<const TCustomControl&>(Object);
}

// In a layout the bounds are the layout's business.
constexpr TPropertyInfo AsBound(TPropertyInfo Info, int Lowest) {
    return StoredIf(InRange(Info, Lowest, QWIDGETSIZE_MAX),
                    [](const TPersistent& Object) { return !ControlOf(Object).IsLaidOut(); });
}

} // namespace

const TClassInfo* TCustomControl::GetClassInfo() const {
    using T = TCustomControl;
    static const TPropertyInfo Properties[] = {
        AsBound(Published<&T::GetLeft, &T::SetLeft>("Left"), -QWIDGETSIZE_MAX),
        AsBound(Published<&T::GetTop, &T::SetTop>("Top"), -QWIDGETSIZE_MAX),
        AsBound(Published<&T::GetWidth, &T::SetWidth>("Width"), 0),
        AsBound(Published<&T::GetHeight, &T::SetHeight>("Height"), 0),
        AsCursor(Published<&T::GetCursor, &T::SetCursor>("Cursor", crDefault)),
        Published<&T::GetHint, &T::SetHint>("Hint"),
    };
    static const TClassInfo Info{"TCustomControl", TComponent::GetClassInfo(), Properties};
    return &Info;
}

} // namespace quill
