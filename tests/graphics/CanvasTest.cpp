#include "host/graphics/RecordingCanvas.h"
#include "tests/support/QtTest.h"

namespace quill {
namespace {

TEST(Canvas, FillsItsRectangle) {
    TRecordingCanvas Canvas(20, 20);
    Canvas.GetBrush()->SetColor(clRed);
    Canvas.FillRect({2, 2, 5, 5});
    EXPECT_EQ(Canvas.GetPixel(4, 4), clRed);
    EXPECT_EQ(Canvas.GetPixel(5, 5), clWhite);
    EXPECT_EQ(Canvas.GetLog(), "FillRect (2,2,5,5) clRed\n");
}

} // namespace
} // namespace quill
