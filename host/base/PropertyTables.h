// Makes the entries of property tables from accessors:
//
//   Published<&T::GetIndent, &T::SetIndent>("Indent", 20)
//
// The kind follows from the type of the value. Enumerations have to tell the names of their values in TEnumNames.
#pragma once

#include "host/base/NamedHandlers.h"
#include "host/base/Reflection.h"
#include "host/base/Types.h"

#include <tuple>
#include <type_traits>

namespace quill {

template <class TEnum>
struct TEnumNames; // static constexpr std::string_view Names[], by ordinal

namespace PropertyTables {

template <class T>
struct TMethod;
template <class TClass, class TResult, class... TArgs>
struct TMethod<TResult (TClass::*)(TArgs...)> {
    using Class = TClass;
    using Result = TResult;
    using Value = std::tuple<std::decay_t<TArgs>...>;
};
template <class TClass, class TResult, class... TArgs>
struct TMethod<TResult (TClass::*)(TArgs...) const> : TMethod<TResult (TClass::*)(TArgs...)> {};

template <class T>
struct TElement {};
template <class TEnum>
struct TElement<TSet<TEnum>> {
    using Type = TEnum;
};
template <class T>
concept CSet = requires {
    typename TElement<T>::Type;
};

// Accessors of the toolkit are not always const, though they change nothing.
template <auto Get>
auto Call(const TPersistent& Object) {
    using TClass = typename TMethod<decltype(Get)>::Class;
    return (const_cast<TClass&>(static_cast<const TClass&>(Object)).*Get)();
}

template <auto Get>
std::int64_t GetOrdinal(const TPersistent& Object) {
    const auto Value = Call<Get>(Object);
    if constexpr (CSet<std::decay_t<decltype(Value)>>) {
        return Value.Bits();
    } else {
        return static_cast<std::int64_t>(Value);
    }
}

template <auto Set>
void SetOrdinal(TPersistent& Object, std::int64_t Value) {
    using TSetter = TMethod<decltype(Set)>;
    using TValue = std::tuple_element_t<0, typename TSetter::Value>;
    auto& Target = static_cast<typename TSetter::Class&>(Object);
    if constexpr (CSet<TValue>) {
        (Target.*Set)(TValue::FromBits(static_cast<std::uint32_t>(Value)));
    } else if constexpr (std::is_same_v<TValue, bool>) {
        (Target.*Set)(Value != 0);
    } else {
        (Target.*Set)(static_cast<TValue>(Value));
    }
}

template <auto Get>
std::string GetString(const TPersistent& Object) {
    return Call<Get>(Object);
}

template <auto Set>
void SetString(TPersistent& Object, const std::string& Value) {
    (static_cast<typename TMethod<decltype(Set)>::Class&>(Object).*Set)(Value);
}

template <auto Get>
TPersistent* GetObject(const TPersistent& Object) {
    return Call<Get>(Object);
}

template <auto Set>
bool SetObject(TPersistent& Object, TPersistent* Value) {
    using TSetter = TMethod<decltype(Set)>;
    using TValue = std::tuple_element_t<0, typename TSetter::Value>;
    auto* const Fitting = dynamic_cast<TValue>(Value);
    if (Value && !Fitting) return false;
    (static_cast<typename TSetter::Class&>(Object).*Set)(Fitting);
    return true;
}

template <class T>
struct TField;
template <class TClass, class TValue>
struct TField<TValue TClass::*> {
    using Class = TClass;
    using Value = TValue;
};

template <auto Event>
std::string GetEvent(const TPersistent& Object) {
    return HandlerName(static_cast<const typename TField<decltype(Event)>::Class&>(Object).*Event);
}

template <auto Event>
bool SetEvent(TPersistent& Object, const std::any& Handler) {
    using TMember = TField<decltype(Event)>;
    auto& Target = static_cast<typename TMember::Class&>(Object).*Event;
    if (!Handler.has_value()) {
        Target = nullptr;
        return true;
    }
    const auto* Function = std::any_cast<typename TMember::Value>(&Handler);
    if (Function) Target = *Function;
    return Function != nullptr;
}

} // namespace PropertyTables

// A number, Boolean, enumeration, set, colour or string.
template <auto Get, auto Set>
constexpr TPropertyInfo Published(std::string_view Name, std::optional<std::int64_t> Default = {}) {
    using TValue = std::decay_t<typename PropertyTables::TMethod<decltype(Get)>::Result>;
    TPropertyInfo Info{.Name = Name};
    if constexpr (std::is_same_v<TValue, std::string>) {
        Info.Kind = TPropertyKind::String;
        Info.GetString = PropertyTables::GetString<Get>;
        Info.SetString = PropertyTables::SetString<Set>;
    } else {
        Info.GetOrdinal = PropertyTables::GetOrdinal<Get>;
        Info.SetOrdinal = PropertyTables::SetOrdinal<Set>;
        Info.Default = Default;
        if constexpr (std::is_same_v<TValue, bool>) {
            Info.Kind = TPropertyKind::Boolean;
        } else if constexpr (PropertyTables::CSet<TValue>) {
            Info.Kind = TPropertyKind::Set;
            Info.Names = TEnumNames<typename PropertyTables::TElement<TValue>::Type>::Names;
        } else if constexpr (std::is_enum_v<TValue>) {
            Info.Kind = TPropertyKind::Enumeration;
            Info.Names = TEnumNames<TValue>::Names;
        } else if constexpr (std::is_same_v<TValue, TColor>) {
            Info.Kind = TPropertyKind::Color;
        } else {
            Info.Kind = TPropertyKind::Integer;
        }
    }
    return Info;
}

template <class TEnum>
constexpr std::int64_t SetDefault(TSet<TEnum> Value) {
    return Value.Bits();
}

// An object that belongs to its holder and is streamed by its own properties, if it publishes any.
template <auto Get>
constexpr TPropertyInfo PublishedObject(std::string_view Name) {
    return {.Name = Name, .Kind = TPropertyKind::Object, .GetObject = PropertyTables::GetObject<Get>};
}

// Another component. Without Always a null reference is left out.
template <auto Get, auto Set>
constexpr TPropertyInfo PublishedReference(std::string_view Name, bool Always = false) {
    TPropertyInfo Info{.Name = Name, .Kind = TPropertyKind::Reference};
    if (!Always) Info.Default = 0;
    Info.GetObject = PropertyTables::GetObject<Get>;
    Info.SetObject = PropertyTables::SetObject<Set>;
    return Info;
}

// An event, by its member: PublishedEvent<&T::OnClick>("OnClick").
template <auto Event>
constexpr TPropertyInfo PublishedEvent(std::string_view Name) {
    return {.Name = Name,
            .Kind = TPropertyKind::Event,
            .GetEvent = PropertyTables::GetEvent<Event>,
            .SetEvent = PropertyTables::SetEvent<Event>};
}

constexpr TPropertyInfo Opaque(TPropertyInfo Info) {
    Info.Opaque = true;
    return Info;
}

constexpr TPropertyInfo InRange(TPropertyInfo Info, std::int64_t Lowest, std::int64_t Highest) {
    Info.Lowest = Lowest;
    Info.Highest = Highest;
    return Info;
}

constexpr TPropertyInfo StoredIf(TPropertyInfo Info, bool (*Stored)(const TPersistent& Object)) {
    Info.Stored = Stored;
    return Info;
}

constexpr TPropertyInfo DefaultLast(TPropertyInfo Info) {
    Info.DefaultLast = true;
    return Info;
}

} // namespace quill
