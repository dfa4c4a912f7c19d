// The names of the controls' enumeration values, for property tables.
#pragma once

#include "host/base/PropertyTables.h"
#include "host/windows/Controls.h"

namespace quill {

// Gives an enumeration the names of its values.
#define QUILL_ENUM_NAMES(TEnum, ...)                                                                         \
    template <>                                                                                              \
    struct TEnumNames<TEnum> {                                                                               \
        static constexpr std::string_view Names[] = {__VA_ARGS__};                                           \
    }

QUILL_ENUM_NAMES(TAlign, "alNone", "alTop", "alBottom", "alLeft", "alRight", "alClient", "alCustom");
QUILL_ENUM_NAMES(TAnchorKind, "akLeft", "akTop", "akRight", "akBottom");
QUILL_ENUM_NAMES(TAlignment, "taLeftJustify", "taRightJustify", "taCenter");
QUILL_ENUM_NAMES(TBiDiMode, "bdLeftToRight", "bdRightToLeft", "bdRightToLeftNoAlign",
                 "bdRightToLeftReadingOnly");
QUILL_ENUM_NAMES(TBorderStyle, "bsNone", "bsSingle");
QUILL_ENUM_NAMES(TDragKind, "dkDrag", "dkDock");
QUILL_ENUM_NAMES(TDragMode, "dmManual", "dmAutomatic");
QUILL_ENUM_NAMES(TScrollStyle, "ssNone", "ssHorizontal", "ssVertical", "ssBoth");
QUILL_ENUM_NAMES(TSortType, "stNone", "stData", "stText", "stBoth");

inline constexpr TNamedValue CursorNames[] = {
    {"crDefault", crDefault},    {"crNone", crNone},     {"crArrow", crArrow},   {"crCross", crCross},
    {"crIBeam", crIBeam},        {"crSizeNS", crSizeNS}, {"crSizeWE", crSizeWE}, {"crHourGlass", crHourGlass},
    {"crDrag", crDrag},          {"crNoDrop", crNoDrop}, {"crHSplit", crHSplit}, {"crVSplit", crVSplit},
    {"crHandPoint", crHandPoint}};

constexpr TPropertyInfo AsCursor(TPropertyInfo Info) {
    Info.NamedValues = CursorNames;
    return Info;
}

// Lengths in pixels that a form may hold.
inline constexpr int MaxFormLength = 0x7FFF;
constexpr TPropertyInfo AsLength(TPropertyInfo Info) { return InRange(Info, 0, MaxFormLength); }

// A font that comes from the parent has a colour of its own all the same.
inline bool IsFontStored(const TPersistent& Object) {
    const auto& Control = static_cast<const TCustomControl&>(Object);
    return !Control.GetParentFont() ||
           const_cast<TCustomControl&>(Control).GetFont()->GetColor() != clWindowText;
}

// A property that follows the parent is stored while it does not.
template <auto Get>
bool IsFalse(const TPersistent& Object) {
    return !PropertyTables::Call<Get>(Object);
}

} // namespace quill
