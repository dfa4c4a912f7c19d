#include "host/forms/QtProperties.h"

#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/graphics/Graphics.h"

#include <QWidget>

#include <stdexcept>

namespace quill::QtProperties {

namespace {

// A name that the class does not publish is a slip of its declaration.
const TPropertyInfo& PropertyOf(const TPersistent& Object, const char* Name) {
    const TPropertyInfo* const Property = FindProperty(Object.GetClassInfo(), Name);
    if (!Property) throw std::logic_error(std::string("no published property ") + Name);
    return *Property;
}

template <class TWork>
void Attempt(const char* Name, const TWork& Work) {
    try {
        Work();
    } catch (const Exception& Error) {
        qWarning("%s: %s", Name, Error.what());
    }
}

TColor FromQt(const QColor& Color) {
    return static_cast<TColor>(Color.red() | Color.green() << 8 | Color.blue() << 16);
}

} // namespace

std::int64_t ReadOrdinal(const TPersistent& Object, const char* Name) {
    return PropertyOf(Object, Name).GetOrdinal(Object);
}

void WriteOrdinal(TPersistent& Object, const char* Name, std::int64_t Value) {
    const TPropertyInfo& Property = PropertyOf(Object, Name);
    if (Property.Kind == TPropertyKind::Integer && (Value < Property.Lowest || Value > Property.Highest)) {
        qWarning("%s: %lld is out of range", Name, static_cast<long long>(Value));
        return;
    }
    Attempt(Name, [&] { Property.SetOrdinal(Object, Value); });
}

QString ReadString(const TPersistent& Object, const char* Name) {
    return QString::fromStdString(PropertyOf(Object, Name).GetString(Object)).remove('\r');
}

void WriteString(TPersistent& Object, const char* Name, const QString& Value) {
    Attempt(Name, [&] { PropertyOf(Object, Name).SetString(Object, Value.toStdString()); });
}

QColor ReadColor(const TPersistent& Object, const QWidget& Widget, const char* Name) {
    const TColor Rgb = ColorToRGB(static_cast<TColor>(ReadOrdinal(Object, Name)), Widget.palette());
    return {static_cast<int>(Rgb & 0xFF), static_cast<int>(Rgb >> 8 & 0xFF),
            static_cast<int>(Rgb >> 16 & 0xFF)};
}

void WriteColor(TPersistent& Object, const QWidget& Widget, const char* Name, const QColor& Value) {
    if (Value.isValid() && Value.rgb() != ReadColor(Object, Widget, Name).rgb())
        WriteOrdinal(Object, Name, FromQt(Value));
}

} // namespace quill::QtProperties
