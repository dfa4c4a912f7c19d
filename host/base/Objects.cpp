#include "host/base/Objects.h"

#include "host/base/Errors.h"
#include "host/base/PropertyTables.h"
#include "host/base/Texts.h"

#include <cstdlib>
#include <cxxabi.h>
#include <typeinfo>
#include <utility>

namespace quill {

namespace {

template <class T>
void RemoveLast(std::vector<T*>& List, const T* Item) {
    const auto Found = std::find(List.rbegin(), List.rend(), Item);
    if (Found != List.rend()) List.erase(std::next(Found).base());
}

template <class T>
bool Has(const std::vector<T*>& List, const T* Item) {
    return std::find(List.begin(), List.end(), Item) != List.end();
}

std::string WithoutNamespace(const std::string& Name) {
    int Depth = 0;
    for (std::size_t I = Name.size(); I-- > 0;) {
        if (Name[I] == '>' || Name[I] == ')') ++Depth;
        if (Name[I] == '<' || Name[I] == '(') --Depth;
        if (Depth == 0 && Name[I] == ':') return Name.substr(I + 1);
    }
    return Name;
}

} // namespace

std::string TObject::ClassName() const {
    const char* Mangled = typeid(*this).name();
    int Status = 0;
    const std::unique_ptr<char, void (*)(void*)> Demangled(
        abi::__cxa_demangle(Mangled, nullptr, nullptr, &Status), std::free);
    return WithoutNamespace(Demangled ? Demangled.get() : Mangled);
}

void TPersistent::AssignTo(TPersistent* Dest) {
    throw EConvertError(FormatText(SAssignError, {ClassName(), Dest ? Dest->ClassName() : "null"}));
}

void TPersistent::DefineProperties(TFiler&) {}

void TPersistent::Assign(TPersistent* Source) {
    if (!Source) throw EConvertError(FormatText(SAssignError, {"null", ClassName()}));
    Source->AssignTo(this);
}

TComponent::TComponent(TComponent* AOwner) {
    if (AOwner) AOwner->InsertComponent(this);
}

TComponent::~TComponent() { Unlink(); }

void TComponent::Unlink() {
    Destroying();
    // A notified component may destroy any other one, so every round looks at the lists afresh.
    while (!FFreeNotifies.empty()) {
        TComponent* Watcher = FFreeNotifies.back();
        RemoveFreeNotification(Watcher);
        Watcher->Announce(this, opRemove);
    }
    while (!FComponents.empty()) {
        TComponent* Component = FComponents.back();
        FComponents.pop_back();
        Component->FOwner = nullptr;
        // One whose destruction led here goes by itself.
        if (!Component->FInDestructor) delete Component;
    }
    while (!FWatched.empty()) RemoveFreeNotification(FWatched.back());
    if (FOwner) FOwner->RemoveComponent(this);
}

void TComponent::Destroying() {
    FInDestructor = true;
    for (TComponentGuard* Guard = FGuards; Guard; Guard = Guard->FNext) Guard->FComponent = nullptr;
    FGuards = nullptr;
    MarkDestroying();
}

void TComponent::MarkDestroying() {
    if (FComponentState.Contains(csDestroying)) return;
    FComponentState.Include(csDestroying);
    for (TComponent* Component : FComponents) Component->MarkDestroying();
}

void TComponent::SetDesigning(bool Value) {
    if (Value) {
        FComponentState.Include(csDesigning);
    } else {
        FComponentState.Exclude(csDesigning);
    }
    for (TComponent* Component : FComponents) Component->SetDesigning(Value);
}

TComponent* TComponent::GetComponents(int Index) const {
    if (Index < 0 || Index >= GetComponentCount())
        throw EListError(FormatText(SListIndexError, {std::to_string(Index)}));
    return FComponents[static_cast<std::size_t>(Index)];
}

TComponent* TComponent::FindComponent(const std::string& AName) const {
    if (AName.empty()) return nullptr;
    for (TComponent* Component : FComponents)
        if (Component->FName == AName) return Component;
    return nullptr;
}

void TComponent::InsertComponent(TComponent* AComponent) {
    if (!AComponent || AComponent->FOwner == this) return;
    for (const TComponent* Ancestor = this; Ancestor; Ancestor = Ancestor->FOwner)
        if (Ancestor == AComponent) throw EInvalidOperation(std::string(SOwnerLoop));
    if (AComponent->FOwner) AComponent->FOwner->RemoveComponent(AComponent);
    FComponents.push_back(AComponent);
    AComponent->FOwner = this;
    if (HasState(csDesigning)) AComponent->SetDesigning(true);
    Announce(AComponent, opInsert);
}

void TComponent::RemoveComponent(TComponent* AComponent) {
    if (!AComponent || AComponent->FOwner != this) return;
    // Unlinked first: whatever the notified ones destroy, nobody frees AComponent a second time.
    RemoveLast(FComponents, AComponent);
    AComponent->FOwner = nullptr;
    Announce(AComponent, opRemove);
}

void TComponent::FreeNotification(TComponent* AComponent) {
    if (!AComponent || AComponent == this || Has(FWatched, AComponent)) return;
    for (const auto& [Watcher, Watched] : {std::pair{this, AComponent}, std::pair{AComponent, this}}) {
        Watcher->FWatched.push_back(Watched);
        Watched->FFreeNotifies.push_back(Watcher);
    }
}

void TComponent::RemoveFreeNotification(TComponent* AComponent) {
    if (!AComponent) return;
    for (const auto& [Watcher, Watched] : {std::pair{this, AComponent}, std::pair{AComponent, this}}) {
        RemoveLast<TComponent>(Watcher->FWatched, Watched);
        RemoveLast<TComponent>(Watched->FFreeNotifies, Watcher);
    }
}

void TComponent::Notification(TComponent*, TOperation) {}

// Passing on is done here, not by Notification, so that an override may use its object after the inherited call.
void TComponent::Announce(TComponent* AComponent, TOperation Operation) {
    // Any of the notified ones may destroy others, or this component.
    const TComponentGuard Self(this);
    Notification(AComponent, Operation);
    if (Self.IsGone()) return;
    for (std::size_t I = FComponents.size(); I-- > 0;) {
        if (I >= FComponents.size()) continue;
        if (FComponents[I] != AComponent) FComponents[I]->Announce(AComponent, Operation);
        if (Self.IsGone()) return;
    }
}

const TClassInfo* TComponent::GetClassInfo() const {
    static const TPropertyInfo Properties[] = {
        InRange(Published<&TComponent::GetTag, &TComponent::SetTag>("Tag", 0),
                std::numeric_limits<std::intptr_t>::min(), std::numeric_limits<std::intptr_t>::max())};
    static const TClassInfo Info{"TComponent", nullptr, Properties};
    return &Info;
}

void TComponent::Loaded() { FComponentState.Exclude(csLoading); }

void TComponent::BeginLoading() {
    FComponentState.Include(csLoading);
    FComponentState.Include(csReading);
}

void TComponent::EndReading() { FComponentState.Exclude(csReading); }

void TComponent::EndLoading() {
    EndReading();
    const TComponentGuard Self(this);
    Loaded();
    if (!Self.IsGone()) FComponentState.Exclude(csLoading);
}

TComponentGuard::TComponentGuard(TComponent* Component) : FComponent(Component) {
    if (!FComponent) return;
    if (FComponent->FInDestructor) {
        FComponent = nullptr;
        return;
    }
    FNext = FComponent->FGuards;
    FComponent->FGuards = this;
}

TComponentGuard::~TComponentGuard() {
    if (!FComponent) return;
    for (TComponentGuard** Link = &FComponent->FGuards; *Link; Link = &(*Link)->FNext) {
        if (*Link != this) continue;
        *Link = FNext;
        return;
    }
}

} // namespace quill
