// Root classes: objects, persistent objects and components with owners.
#pragma once

#include "host/base/Types.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quill {

class TFiler;
class TComponent;
class TComponentGuard;
struct TClassInfo;

class TObject {
public:
    virtual ~TObject() = default;
    // The name of the most derived class, without namespace.
    virtual std::string ClassName() const;

protected:
    TObject() = default;
    TObject(const TObject&) = default;
    TObject& operator=(const TObject&) = default;
};

// An event without arguments other than its sender.
using TNotifyEvent = std::function<void(TObject* Sender)>;

// An object whose state can be copied and streamed.
class TPersistent : public TObject {
public:
    // Copies this object into Dest; the base knows no class it could copy into and raises EConvertError.
    virtual void AssignTo(TPersistent* Dest);
    // Declares the properties that are streamed besides the published ones.
    virtual void DefineProperties(TFiler& Filer);
    // Copies Source into this object; the base asks Source to do it (AssignTo). A null Source raises EConvertError.
    virtual void Assign(TPersistent* Source);
    // The published properties of the class, or null when it has none (host/base/Reflection.h).
    virtual const TClassInfo* GetClassInfo() const { return nullptr; }
};

enum TComponentStateValue { csLoading, csReading, csWriting, csDestroying, csDesigning, csAncestor };
using TComponentState = TSet<TComponentStateValue>;
enum TOperation { opInsert, opRemove };

// An object with a name, an owner that destroys it, and components that it owns.
// Not copyable. Removing and destroying is safe in any order: both sides unlink.
class TComponent : public TPersistent {
public:
    explicit TComponent(TComponent* AOwner = nullptr);
    ~TComponent() override;
    TComponent(const TComponent&) = delete;
    TComponent& operator=(const TComponent&) = delete;

    TComponent* GetOwner() const { return FOwner; }
    const std::string& GetName() const { return FName; }
    void SetName(const std::string& Value) { FName = Value; }
    std::intptr_t GetTag() const { return FTag; }
    void SetTag(std::intptr_t Value) { FTag = Value; }

    TComponentState GetComponentState() const { return FComponentState; }
    bool HasState(TComponentStateValue Value) const { return FComponentState.Contains(Value); }
    // Design-time state: the control is being laid out, not used. Set by designers.
    void SetDesigning(bool Value);

    int GetComponentCount() const { return static_cast<int>(FComponents.size()); }
    TComponent* GetComponents(int Index) const;
    TComponent* FindComponent(const std::string& AName) const;
    void InsertComponent(TComponent* AComponent);
    void RemoveComponent(TComponent* AComponent);

    // Links both components: whichever goes first calls the other's Notification(it, opRemove).
    void FreeNotification(TComponent* AComponent);
    void RemoveFreeNotification(TComponent* AComponent);

    // Tag.
    const TClassInfo* GetClassInfo() const override;
    // For forms: the component that this one stands in; null in the root itself. The root owns all of them. The base
    // stands in nothing and lets nothing be changed.
    virtual TComponent* GetParentComponent() const { return nullptr; }
    virtual void SetParentComponent(TComponent* /*Value*/) {}

    // A component comes or goes that this one, or one of its owners, owns or asked about. The base does nothing.
    virtual void Notification(TComponent* AComponent, TOperation Operation);
    // The component was read from a stream completely.
    virtual void Loaded();

    // For readers of form streams: csLoading and csReading around reading, then Loaded.
    void BeginLoading();
    void EndReading();
    void EndLoading();

protected:
    // To be called first by the most derived destructors, so that overridden operations see csDestroying and
    // guards know that the component is gone.
    void Destroying();
    // All that the destructor does: tells those that asked, destroys what is owned, leaves the owner. For destructors
    // of descendants with a second base, whose object has to be whole while others are told.
    void Unlink();
    void IncludeState(TComponentStateValue Value) { FComponentState.Include(Value); }
    void ExcludeState(TComponentStateValue Value) { FComponentState.Exclude(Value); }

private:
    friend class TComponentGuard;
    void MarkDestroying();
    void Announce(TComponent* AComponent, TOperation Operation);

    TComponent* FOwner = nullptr;
    std::string FName;
    std::intptr_t FTag = 0;
    TComponentState FComponentState;
    bool FInDestructor = false;
    std::vector<TComponent*> FComponents;
    // Those that asked to hear of our end, and those whose end we asked to hear of.
    std::vector<TComponent*> FFreeNotifies;
    std::vector<TComponent*> FWatched;
    TComponentGuard* FGuards = nullptr;
};

// Stands on the stack around a call into application code and tells afterwards whether the component survived it.
class TComponentGuard {
public:
    explicit TComponentGuard(TComponent* Component);
    ~TComponentGuard();
    TComponentGuard(const TComponentGuard&) = delete;
    TComponentGuard& operator=(const TComponentGuard&) = delete;

    // True once destruction has begun.
    bool IsGone() const { return !FComponent; }

private:
    friend class TComponent;
    TComponent* FComponent;
    TComponentGuard* FNext = nullptr;
};

} // namespace quill
