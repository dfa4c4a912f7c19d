// The package: its units in their order, and the components that it announces to designers.
#pragma once

#include "host/base/Objects.h"

#include <span>
#include <string>
#include <string_view>

namespace quill {

// The palette page of this package's components.
inline constexpr std::string_view PalettePage = "NORVIK";

struct TRegisteredComponent {
    std::string Page; // of the palette; empty for a class without an icon, which is on none
    std::string ClassName;
    TComponent* (*Create)(TComponent* Owner) = nullptr;

    bool HasIcon() const { return !Page.empty(); }
};

// What was registered, in that order. A class is known to forms, too, from then on.
std::span<const TRegisteredComponent> RegisteredComponents();
// Null when no class of that name is registered.
const TRegisteredComponent* FindRegisteredComponent(std::string_view ClassName);

// For the units' Register procedures. A class that is registered already stays as it is.
void RegisterComponents(std::string_view Page, std::string_view ClassName,
                        TComponent* (*Create)(TComponent* Owner));
void RegisterNoIcon(std::string_view ClassName, TComponent* (*Create)(TComponent* Owner));

// The units that announce components. The tree and the components for drag and drop are not on the palette.
namespace HTMLText {
void Register();
}
namespace NVHTMLHintWindow {
void Register();
}

// --- the package ----------------------------------------------------------------------------------------------------

struct TPackageUnit {
    std::string_view Name;
    void (*Register)(); // null when it announces nothing
};

// In the package's order. What a unit shares in the process is set up once, at the latest when it is used first, so
// there is nothing that a program would have to initialise.
std::span<const TPackageUnit> PackageUnits();
// Calls Register of all units, in that order. Again: no effect.
void RegisterPackage();

} // namespace quill
