#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

#include <QApplication>

using namespace quill;
using namespace quill::testing;

namespace {

void Settle() {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

TEST(DragImageList, FollowsTheProtocol) {
    TCustomControl First(nullptr);
    TCustomControl Second(nullptr);
    First.SetBounds(100, 100, 200, 100);
    Second.SetBounds(400, 100, 200, 100);
    TNVDragImageList List(nullptr, 20, 10);
    EXPECT_EQ(List.GetDragCursor(), crNone);
    EXPECT_FALSE(List.SetDragImage(0, 1, 1) || List.BeginDrag(&First, 0, 0, 0, 0) || List.DragMove(1, 1) ||
                 List.DragLock(&First, 1, 1) || List.EndDrag());
    List.SetDragCursor(crDrag);
    EXPECT_FALSE(List.EndDrag());
    EXPECT_EQ(List.GetDragCursor(), crDrag);
    List.SetDragCursor(crNone);
    List.Add(RedBitmap(20, 10));

    EXPECT_TRUE(List.BeginDrag(&First, 10, 10, 3, 4));
    EXPECT_TRUE(List.GetDragging());
    EXPECT_EQ(List.GetHotSpot(), (TPoint{3, 4}));
    EXPECT_FALSE(List.DragLock(&First, 50, 50)); // entered already
    Settle();
    EXPECT_TRUE(IsDragImageVisible());
    EXPECT_EQ(GetDragImagePosition(), First.ClientToScreen({10, 10}));
    EXPECT_TRUE(List.DragMove(30, 20));
    EXPECT_EQ(GetDragImagePosition(), First.ClientToScreen({30, 20}));
    List.HideDragImage();
    Settle();
    EXPECT_FALSE(IsDragImageVisible());
    List.ShowDragImage();
    List.SetDragCursor(crArrow); // combined at once
    EXPECT_TRUE(List.DragLock(&Second, 5, 5));
    Settle();
    EXPECT_TRUE(IsDragImageVisible());
    EXPECT_EQ(GetDragImagePosition(), Second.ClientToScreen({5, 5}));
    List.DragUnlock();
    Settle();
    EXPECT_FALSE(IsDragImageVisible());
    EXPECT_TRUE(List.EndDrag());
    EXPECT_EQ(List.GetDragCursor(), crNone);
    EXPECT_FALSE(List.EndDrag());
}

// What a target puts in the place of the cursor hides nothing of the picture.
TEST(DragImageList, BlankCursorOfATargetIsTransparent) {
    TCustomControl Control(nullptr);
    TOLEDropTarget Target;
    Target.Register(&Control);
    TNVDragImageList List(nullptr, 40, 40);
    List.Add(RedBitmap(40, 40));
    List.SetDragImage(0, 0, 0);
    auto* const Data = new TTestData({{CF_TEXT, "x"}});
    const TInterfaceRef<IDataObject> Keep(Data);
    std::uint32_t Effect = 7;
    Target.DragEnter(Data, 0, {5, 5}, Effect);
    Settle();
    QWidget* Overlay = nullptr;
    for (QWidget* Widget : QApplication::topLevelWidgets())
        if (Widget->isVisible() && Widget->size() == QSize(40, 40)) Overlay = Widget;
    ASSERT_NE(Overlay, nullptr);
    const QImage Shown = Overlay->grab().toImage();
    for (int I = 0; I < 40; ++I) EXPECT_EQ(Shown.pixel(I, 31), 0xFFFF0000) << I;
    Target.DragLeave();
    Settle();
    EXPECT_FALSE(IsDragImageVisible());
}

TEST(DragImageList, OutlivesItsWindowAndEndsWithTheList) {
    auto Window = std::make_unique<TCustomControl>(nullptr);
    auto List = std::make_unique<TNVDragImageList>(nullptr, 8, 8);
    List->Add(RedBitmap(8, 8));
    EXPECT_TRUE(List->BeginDrag(Window.get(), 0, 0, 0, 0));
    Settle();
    Window.reset();
    Settle();
    EXPECT_EQ(List->GetLockWindow(), nullptr);
    EXPECT_FALSE(IsDragImageVisible());
    EXPECT_TRUE(List->DragMove(3, 3));
    List.reset();
    EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
}

} // namespace
