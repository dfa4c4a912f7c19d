// Published properties (host/base/Reflection.h) as properties of Qt, for its designer and its form loader.
//
//   class TLamp : public TCustomControl {
//       Q_OBJECT
//       QUILL_QT_PROPERTY(bool, Lit)
//
// makes the published property "Lit" one of Qt's under the same name. What Qt publishes for every widget (enabled,
// visible, font, toolTip, ...) and what layouts do instead (Align, Anchors) need no second property.
#pragma once

#include "host/base/Objects.h"

#include <QColor>
#include <QString>

#include <concepts>
#include <cstdint>
#include <type_traits>

class QWidget;

namespace quill::QtProperties {

std::int64_t ReadOrdinal(const TPersistent& Object, const char* Name);
// What the property does not take, out of its bounds or refused, is reported as a warning of the platform.
void WriteOrdinal(TPersistent& Object, const char* Name, std::int64_t Value);
QString ReadString(const TPersistent& Object, const char* Name);
void WriteString(TPersistent& Object, const char* Name, const QString& Value);
// System colours are those of the widget's palette; writing the colour that one has now leaves it a system colour.
QColor ReadColor(const TPersistent& Object, const QWidget& Widget, const char* Name);
void WriteColor(TPersistent& Object, const QWidget& Widget, const char* Name, const QColor& Value);

template <class T>
concept CFlags = requires(T Value) {
    Value.toInt();
};

template <class T, class TControl>
T Read(const TControl& Control, const char* Name) {
    if constexpr (std::is_same_v<T, QColor>) {
        return ReadColor(Control, Control, Name);
    } else if constexpr (std::is_same_v<T, QString>) {
        return ReadString(Control, Name);
    } else if constexpr (CFlags<T>) {
        return T::fromInt(static_cast<typename T::Int>(ReadOrdinal(Control, Name)));
    } else {
        return static_cast<T>(ReadOrdinal(Control, Name));
    }
}

template <class T, class TControl>
void Write(TControl& Control, const char* Name, const T& Value) {
    if constexpr (std::is_same_v<T, QColor>) {
        WriteColor(Control, Control, Name, Value);
    } else if constexpr (std::is_same_v<T, QString>) {
        WriteString(Control, Name, Value);
    } else if constexpr (CFlags<T>) {
        WriteOrdinal(Control, Name, Value.toInt());
    } else {
        WriteOrdinal(Control, Name, static_cast<std::int64_t>(Value));
    }
}

} // namespace quill::QtProperties

// Type is bool, int, QString, QColor, or an enumeration or set of flags that the class declares to Qt with the
// ordinals (bits) of the property's own.
#define QUILL_QT_PROPERTY(Type, Name)                                                                        \
private:                                                                                                     \
    Q_PROPERTY(Type Name READ QtGet##Name WRITE QtSet##Name)                                                 \
    Type QtGet##Name() const { return QtProperties::Read<Type>(*this, #Name); }                              \
    void QtSet##Name(Type Value) { QtProperties::Write<Type>(*this, #Name, Value); }
