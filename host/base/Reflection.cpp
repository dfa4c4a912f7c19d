#include "host/base/Reflection.h"

namespace quill {

const TPropertyInfo* FindProperty(const TClassInfo* Info, std::string_view Name) {
    for (; Info; Info = Info->Parent)
        for (const TPropertyInfo& Property : Info->Properties)
            if (Property.Name == Name) return &Property;
    return nullptr;
}

} // namespace quill
