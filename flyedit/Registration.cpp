#include "flyedit/Registration.h"

#include "host/forms/Forms.h"
#include "htmldraw/HTMLText.h"
#include "htmldraw/NVHTMLHintWindow.h"

#include <algorithm>
#include <vector>

namespace quill {

namespace {

std::vector<TRegisteredComponent>& Registry() {
    static std::vector<TRegisteredComponent> Components;
    return Components;
}

template <class T>
TComponent* Make(TComponent* Owner) {
    return new T(Owner);
}

const TPackageUnit Units[] = {{"Quill", nullptr},
                              {"OLEDragDrop", nullptr},
                              {"SysInit", nullptr},
                              {"HTMLDraw", nullptr},
                              {"flyedit", nullptr},
                              {"QuillTree", nullptr},
                              {"exgrid", nullptr},
                              {"NVHTMLHintWindow", NVHTMLHintWindow::Register},
                              {"HTMLText", HTMLText::Register}};

} // namespace

std::span<const TRegisteredComponent> RegisteredComponents() { return Registry(); }

const TRegisteredComponent* FindRegisteredComponent(std::string_view ClassName) {
    const auto& All = Registry();
    const auto Found = std::find_if(All.begin(), All.end(),
                                    [ClassName](const auto& Item) { return Item.ClassName == ClassName; });
    return Found == All.end() ? nullptr : &*Found;
}

void RegisterComponents(std::string_view Page, std::string_view ClassName,
                        TComponent* (*Create)(TComponent* Owner)) {
    if (FindRegisteredComponent(ClassName)) return;
    Registry().push_back({std::string(Page), std::string(ClassName), Create});
    RegisterComponentClass(std::string(ClassName), Create);
}

void RegisterNoIcon(std::string_view ClassName, TComponent* (*Create)(TComponent* Owner)) {
    RegisterComponents({}, ClassName, Create);
}

void HTMLText::Register() { RegisterComponents(PalettePage, "TNVHTMLText", Make<TNVHTMLText>); }

void NVHTMLHintWindow::Register() { RegisterNoIcon("TNVHTMLHintWindow", Make<TNVHTMLHintWindow>); }

std::span<const TPackageUnit> PackageUnits() { return Units; }

void RegisterPackage() {
    for (const TPackageUnit& Unit : Units) {
        if (Unit.Register) Unit.Register();
    }
}

} // namespace quill
