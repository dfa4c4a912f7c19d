// The markup label: what a new one is, the size that it takes, its border, and where its text goes.
#include "htmldraw/HTMLText.h"

#include "host/base/Reflection.h"
#include "htmldraw/HTMLDraw.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QImage>

#include <climits>
#include <memory>

namespace quill::testing {
namespace {

struct TLabel : TNVHTMLText {
    explicit TLabel(const std::string& Text = "", QWidget* Parent = nullptr) : TNVHTMLText(nullptr, Parent) {
        SetBiDiMode(bdLeftToRight);
        GetFont()->SetHeight(-14);
        SetText(Text);
    }
    ~TLabel() override { BeginDestruction(); }
    void SetText(const std::string& Text) {
        TStringList Strings;
        Strings.SetText(Text);
        SetStrings(&Strings);
    }
    TRect Measured(int Width, bool Wrap) {
        TRect R{0, 0, Width, 0};
        DrawHTML(R, *GetCanvas(), GetLines()->GetText(), Wrap, true, 0, 0);
        return R;
    }
    std::string Size() const { return std::to_string(GetWidth()) + "x" + std::to_string(GetHeight()); }
};

std::string SizeText(int Width, int Height) { return std::to_string(Width) + "x" + std::to_string(Height); }

// The bounds of what is not the background's colour.
TRect InkBounds(TCustomControl& Control) {
    const QImage Image = Control.GetSurfaceImage();
    TRect Result{INT_MAX, INT_MAX, 0, 0};
    for (int Y = 0; Y < Image.height(); ++Y) {
        for (int X = 0; X < Image.width(); ++X) {
            if (Image.pixel(X, Y) == Image.pixel(0, 0)) continue;
            Result = {std::min(Result.Left, X), std::min(Result.Top, Y), std::max(Result.Right, X + 1),
                      std::max(Result.Bottom, Y + 1)};
        }
    }
    return Result;
}

TEST(HTMLText, PublishesWhatAFormLeavesOut) {
    TNVHTMLText Label;
    EXPECT_EQ(SizeText(Label.GetWidth(), Label.GetHeight()), "105x105");
    EXPECT_TRUE(Label.GetControlStyle().Contains(csFramed) &&
                Label.GetControlStyle().Contains(csReplicatable));
    std::string Values;
    // Its own; those of the host follow.
    for (const TPropertyInfo& Property : Label.GetClassInfo()->Properties.first(7)) {
        Values += std::string(Property.Name);
        if (Property.GetOrdinal) {
            const auto Value = Property.GetOrdinal(Label);
            Values += " " + std::to_string(Value);
            if (Value != *Property.Default) Values += " (not " + std::to_string(*Property.Default) + ")";
            Property.SetOrdinal(Label, Value + 1);
            EXPECT_EQ(Property.GetOrdinal(Label), Value + 1) << Property.Name;
        } else {
            Property.SetString(Label, "a\nb");
            EXPECT_EQ(Property.GetString(Label), "a\r\nb\r\n");
        }
        Values += "; ";
    }
    EXPECT_EQ(
        Values,
        "BorderStyle 0; AutoSize 0 (not 1); WordWrap 0; Alignment 0; VerticalAlignment 2; Lines; Margin 4; ");
}

TEST(HTMLText, TakesTheSizeOfItsTextOnlyWhenAsked) {
    TLabel Label("one <B>two</B> three\nfour");
    EXPECT_EQ(Label.Size(), "105x105");
    const TRect Text = Label.Measured(0, false);
    const std::string Expected = SizeText(4 + Text.Right + 4, 1 + Text.Bottom + 4);
    Label.SetAutosize(true);
    EXPECT_EQ(Label.Size(), Expected);
    Label.SetMargin(20);
    EXPECT_EQ(Label.Size(), Expected) << "a margin only repaints";
    Label.SetAlignment(taCenter);
    EXPECT_EQ(Label.Size(), SizeText(4 + Text.Right + 20, 1 + Text.Bottom + 20)) << "the next change sizes";
    Label.SetMargin(4);
    Label.GetLines()->Add("a much longer line than those before");
    EXPECT_NE(Label.Size(), Expected);
    Label.SetText("one <B>two</B> three\nfour");
    EXPECT_EQ(Label.Size(), Expected);
    Label.GetFont()->SetHeight(-28);
    EXPECT_GT(Label.GetHeight(), Text.Bottom + 5) << "a new font sizes";
    Label.HandleNeeded();
    const std::string Large = Label.Size();
    Label.SetBounds(0, 0, 500, 300);
    EXPECT_EQ(Label.Size(), Large) << "nobody else sizes it";
    // An empty one stays as it is, however often it is changed.
    for (const char* Empty : {"", "\n"}) {
        Label.SetText(Empty);
        for (const TAlignment Alignment : {taRightJustify, taCenter}) Label.SetAlignment(Alignment);
        EXPECT_EQ(Label.Size(), "8x5");
    }
    Label.SetAutosize(false);
    for (const int Wild : {INT_MAX, INT_MIN, -3}) {
        Label.SetMargin(Wild);
        Label.SetText("x");
        Label.Repaint();
    }
}

TEST(HTMLText, WrapsAtTheWidthThatItHas) {
    TLabel Label("one two three four five six seven eight nine ten");
    Label.SetWordWrap(true);
    const TRect Text = Label.Measured(105 - 8, true);
    ASSERT_GT(Text.Bottom, 2 * Label.Measured(5000, true).Bottom);
    Label.SetAutosize(true);
    EXPECT_EQ(Label.Size(), SizeText(Text.Right + 8, Text.Bottom + 5));
    Label.Changed();
    EXPECT_EQ(Label.Size(), SizeText(Text.Right + 8, Text.Bottom + 5)) << "lines break there again";
}

TEST(HTMLText, HasTheBorderOfItsLook) {
    TLabel Label;
    Label.SetBorderStyle(bsSingle);
    const auto Styles = [&Label] {
        Label.HandleNeeded();
        const TCreateParams& Params = Label.GetWindowParams();
        return std::string((Params.Style & WS_BORDER) != 0 ? "flat" : "") +
               ((Params.ExStyle & WS_EX_CLIENTEDGE) != 0 ? "sunken" : "");
    };
    EXPECT_EQ(Styles(), "sunken");
    Label.SetCtl3D(false);
    EXPECT_EQ(Styles(), "flat");
    EXPECT_EQ(SizeText(Label.GetClientWidth(), Label.GetClientHeight()), "103x103");
    Label.SetBorderStyle(bsNone);
    EXPECT_EQ(Styles(), "");
    EXPECT_EQ(Label.GetClientWidth(), 105);
    Label.SetBorderWidth(7);
    EXPECT_EQ(SizeText(Label.GetClientWidth(), Label.GetClientHeight()), "91x91");
    Label.SetColor(clRed);
    EXPECT_EQ(Label.grab().toImage().pixelColor(3, 50), QColor(Qt::red))
        << "the border has the control's colour";
}

TEST(HTMLText, PlacesItsTextByTheCodesOfItsAlignments) {
    TLabel Label("<BGCOLOR=#0000FF><COLOR=#0000FF>text"); // a filled rectangle
    Label.SetColor(clWhite);
    Label.SetMargin(10);
    Label.HandleNeeded();
    const TRect Text = Label.Measured(0, false);
    const int LeftOf[] = {10, 95 - Text.Right, 10 + (85 - Text.Right) / 2};
    const int TopOf[] = {10, 95 - Text.Bottom, 10 + (85 - Text.Bottom) / 2};
    for (const TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        Label.SetBiDiMode(Mode); // sides are sides
        for (const TAlignment Alignment : {taLeftJustify, taRightJustify, taCenter}) {
            for (const TNVVerticalAlign Vertical : {vaTop, vaBottom, vaCenter}) {
                Label.SetAlignment(Alignment);
                Label.SetVertAlign(Vertical);
                EXPECT_EQ(InkBounds(Label),
                          Bounds(LeftOf[Alignment], TopOf[Vertical], Text.Right, Text.Bottom))
                    << Alignment << " " << Vertical;
            }
        }
    }
}

TEST(HTMLText, RepaintsWhenItsLinesAreAssignedNotWhenTheyChange) {
    TLabel Label("a");
    Label.HandleNeeded();
    Label.Update();
    auto Paints = [&Label, Before = Label.GetPaintCount()]() mutable {
        Label.Update();
        return Label.GetPaintCount() - std::exchange(Before, Label.GetPaintCount());
    };
    Label.GetLines()->SetText("b");
    EXPECT_EQ(Paints(), 0U);
    Label.Changed();
    EXPECT_EQ(Paints(), 1U);
    Label.SetMargin(5);
    EXPECT_EQ(Paints(), 1U);
    Label.SetMargin(5);
    Label.SetWordWrap(false);
    EXPECT_EQ(Paints(), 0U);
    Label.SetBounds(0, 0, 200, 200);
    EXPECT_EQ(Paints(), 1U) << "the text is placed by the size";
}

} // namespace
} // namespace quill::testing
