#include "host/windows/Menus.h"

#include "host/base/Events.h"
#include "host/base/PropertyTables.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace quill {

TMenuItem::TMenuItem(TComponent* AOwner) : TComponent(AOwner), FAction(std::make_unique<QAction>()) {
    // From the event loop: a handler may destroy the item.
    FAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(
        FAction.get(), &QAction::triggered, FAction.get(), [this] { Click(); }, Qt::QueuedConnection);
}

TMenuItem::~TMenuItem() {
    Unlink();
    FAction->setMenu(nullptr);
}

void TMenuItem::SetCaption(const std::string& Value) {
    FCaption = Value;
    FAction->setText(QString::fromStdString(Value));
    FAction->setSeparator(Value == "-");
}

std::string TMenuItem::GetShortCut() const {
    return FAction->shortcut().toString(QKeySequence::PortableText).toStdString();
}

void TMenuItem::SetShortCut(const std::string& Value) {
    FAction->setShortcut(QKeySequence(QString::fromStdString(Value), QKeySequence::PortableText));
}

void TMenuItem::SetChecked(bool Value) {
    FChecked = Value;
    FAction->setCheckable(Value);
    FAction->setChecked(Value);
}

bool TMenuItem::GetEnabled() const { return FAction->isEnabled(); }
void TMenuItem::SetEnabled(bool Value) { FAction->setEnabled(Value); }
bool TMenuItem::GetVisible() const { return FAction->isVisible(); }
void TMenuItem::SetVisible(bool Value) { FAction->setVisible(Value); }

void TMenuItem::Click() {
    // The platform's menu has changed the mark of a checked command; that is the handler's business here.
    FAction->setChecked(FChecked);
    if (!HasState(csDesigning)) FireEvent(OnClick, this);
}

TMenuItem* TMenuItem::Add(const std::string& Caption, TNotifyEvent OnClickOfIt) {
    auto* const Item = new TMenuItem(this);
    Item->SetCaption(Caption);
    Item->OnClick = std::move(OnClickOfIt);
    Item->SetParentComponent(this);
    return Item;
}

TComponent* TMenuItem::GetParentComponent() const { return FParent; }

QMenu* TMenuItem::MenuIn(TComponent* Component) {
    if (auto* const Menu = dynamic_cast<TPopupMenu*>(Component)) return Menu->GetMenu();
    auto* const Item = dynamic_cast<TMenuItem*>(Component);
    if (!Item) return nullptr;
    if (!Item->FSubMenu) Item->FSubMenu = std::make_unique<QMenu>();
    return Item->FSubMenu.get();
}

// An item without items is a command.
void TMenuItem::ShowAsMenu() {
    const bool HasItems = FSubMenu && !FSubMenu->actions().isEmpty();
    FAction->setMenu(HasItems ? FSubMenu.get() : nullptr);
}

void TMenuItem::SetParentComponent(TComponent* Value) {
    if (Value == FParent) return;
    for (const TComponent* Outer = Value; Outer; Outer = Outer->GetParentComponent())
        if (Outer == this) return;
    QMenu* const Menu = MenuIn(Value);
    if (Value && !Menu) return;
    if (FParent) {
        MenuIn(FParent)->removeAction(FAction.get());
        if (auto* const Outer = dynamic_cast<TMenuItem*>(FParent)) Outer->ShowAsMenu();
        RemoveFreeNotification(FParent);
    }
    FParent = Value;
    if (!Value) return;
    Menu->addAction(FAction.get());
    if (auto* const Outer = dynamic_cast<TMenuItem*>(Value)) Outer->ShowAsMenu();
    FreeNotification(Value);
}

void TMenuItem::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    if (Operation != opRemove) return;
    if (AComponent == FParent) FParent = nullptr;
    auto* const Item = dynamic_cast<TMenuItem*>(AComponent);
    if (Item && Item->FParent == this) Item->SetParentComponent(nullptr);
}

const TClassInfo* TMenuItem::GetClassInfo() const {
    using T = TMenuItem;
    static const TPropertyInfo Properties[] = {
        Published<&T::GetCaption, &T::SetCaption>("Caption"),
        Published<&T::GetChecked, &T::SetChecked>("Checked", false),
        Published<&T::GetEnabled, &T::SetEnabled>("Enabled", true),
        Published<&T::GetShortCut, &T::SetShortCut>("ShortCut"),
        Published<&T::GetVisible, &T::SetVisible>("Visible", true),
        PublishedEvent<&T::OnClick>("OnClick"),
    };
    static const TClassInfo Info{"TMenuItem", TComponent::GetClassInfo(), Properties};
    return &Info;
}

TPopupMenu::TPopupMenu(TComponent* AOwner) : TComponent(AOwner), FMenu(std::make_unique<QMenu>()) {
    QObject::connect(FMenu.get(), &QMenu::aboutToShow, FMenu.get(), [this] { FireEvent(OnPopup, this); });
}

TPopupMenu::~TPopupMenu() { Unlink(); }

TMenuItem* TPopupMenu::Add(const std::string& Caption, TNotifyEvent OnClick) {
    auto* const Item = new TMenuItem(this); // owned by the menu
    Item->SetCaption(Caption);
    Item->OnClick = std::move(OnClick);
    Item->SetParentComponent(this);
    return Item;
}

void TPopupMenu::Popup(int X, int Y) { FMenu->popup(QPoint(X, Y)); }

void TPopupMenu::SetPopupComponent(TComponent* Value) {
    FPopupComponent = Value;
    FreeNotification(Value);
}

void TPopupMenu::Notification(TComponent* AComponent, TOperation Operation) {
    TComponent::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FPopupComponent) FPopupComponent = nullptr;
}

const TClassInfo* TPopupMenu::GetClassInfo() const {
    using T = TPopupMenu;
    static const TPropertyInfo Properties[] = {
        Published<&T::GetAutoPopup, &T::SetAutoPopup>("AutoPopup", true),
        PublishedEvent<&T::OnPopup>("OnPopup"),
    };
    static const TClassInfo Info{"TPopupMenu", TComponent::GetClassInfo(), Properties};
    return &Info;
}

} // namespace quill
