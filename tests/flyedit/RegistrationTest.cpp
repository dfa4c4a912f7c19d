#include "flyedit/Registration.h"
#include "host/forms/Forms.h"
#include "tests/support/QtTest.h"

#include <memory>

namespace quill {
namespace {

// Everything that designers are told, in order, whatever is registered how often.
TEST(Registration, AnnouncesTheLabelOnItsPageAndTheHintWindowWithoutIcon) {
    RegisterPackage();
    RegisterPackage();
    std::string All;
    for (const TRegisteredComponent& Component : RegisteredComponents()) {
        All += Component.ClassName + "(" + (Component.HasIcon() ? Component.Page : "no icon") + ") ";
        TComponent Owner;
        TComponent* const Made = Component.Create(&Owner);
        EXPECT_EQ(Made->ClassName(), Component.ClassName);
        EXPECT_EQ(Made->GetOwner(), &Owner);
        EXPECT_NE(FindComponentClass(Component.ClassName), nullptr) << Component.ClassName;
    }
    EXPECT_EQ(All, "TNVHTMLHintWindow(no icon) TNVHTMLText(NORVIK) ");
    EXPECT_EQ(FindRegisteredComponent("TQuillTree"), nullptr);
}

TEST(Registration, UnitsStandInThePackagesOrder) {
    std::string All;
    for (const TPackageUnit& Unit : PackageUnits())
        All += std::string(Unit.Name) + (Unit.Register ? "! " : " ");
    EXPECT_EQ(All,
              "Quill OLEDragDrop SysInit HTMLDraw flyedit QuillTree exgrid NVHTMLHintWindow! HTMLText! ");
}

} // namespace
} // namespace quill
