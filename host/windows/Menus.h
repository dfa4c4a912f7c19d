// Popup menus that forms can hold: components around the platform's menus.
#pragma once

#include "host/base/Objects.h"

#include <QPointer>

#include <memory>
#include <string>

class QAction;
class QMenu;

namespace quill {

// A command of a popup menu, or with items of its own a menu inside it. A caption of "-" is a line between commands; "&"
// stands before the letter that chooses it.
class TMenuItem : public TComponent {
public:
    explicit TMenuItem(TComponent* AOwner = nullptr);
    ~TMenuItem() override;

    const std::string& GetCaption() const { return FCaption; }
    void SetCaption(const std::string& Value);
    // As the platform writes it: "Ctrl+C". Works while a control with the menu, or something in that control, has the
    // focus.
    std::string GetShortCut() const;
    void SetShortCut(const std::string& Value);
    bool GetChecked() const { return FChecked; }
    void SetChecked(bool Value);
    bool GetEnabled() const;
    void SetEnabled(bool Value);
    bool GetVisible() const;
    void SetVisible(bool Value);
    void Click();
    // A new command at the end of this item's menu; the item owns it.
    TMenuItem* Add(const std::string& Caption, TNotifyEvent OnClick = {});
    QAction* GetAction() const { return FAction.get(); }

    TNotifyEvent OnClick;

    const TClassInfo* GetClassInfo() const override;
    TComponent* GetParentComponent() const override;
    // A TPopupMenu or another item; this one comes last in it. Null takes it out. Anything else, and an item inside this
    // one, is ignored.
    void SetParentComponent(TComponent* Value) override;
    void Notification(TComponent* AComponent, TOperation Operation) override;

private:
    // The platform's menu of what items can stand in; null for other components.
    static QMenu* MenuIn(TComponent* Component);
    void ShowAsMenu();

    std::unique_ptr<QAction> FAction;
    std::unique_ptr<QMenu> FSubMenu; // made for the first item
    TComponent* FParent = nullptr;
    std::string FCaption;
    bool FChecked = false;
};

class TPopupMenu : public TComponent {
public:
    explicit TPopupMenu(TComponent* AOwner = nullptr);
    ~TPopupMenu() override;

    // A new command at the end; the menu owns it.
    TMenuItem* Add(const std::string& Caption, TNotifyEvent OnClick = {});
    // Shows the menu with its corner at a screen position, and returns at once. OnPopup may change the items before.
    void Popup(int X, int Y);
    // Whether a control shows the menu by itself.
    bool GetAutoPopup() const { return FAutoPopup; }
    void SetAutoPopup(bool Value) { FAutoPopup = Value; }
    // The control whose menu was opened last; null for none.
    TComponent* GetPopupComponent() const { return FPopupComponent; }
    void SetPopupComponent(TComponent* Value);
    // The platform's menu, for what this class does not offer.
    QMenu* GetMenu() const { return FMenu.get(); }

    TNotifyEvent OnPopup;

    const TClassInfo* GetClassInfo() const override;
    void Notification(TComponent* AComponent, TOperation Operation) override;

private:
    std::unique_ptr<QMenu> FMenu;
    TComponent* FPopupComponent = nullptr;
    bool FAutoPopup = true;
};

} // namespace quill
