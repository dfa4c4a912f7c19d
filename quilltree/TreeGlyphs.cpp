// The glyph set: state and button bitmaps, and their drawn forms.
#include "host/graphics/Canvas.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quill {

namespace {

constexpr std::array<std::string_view, 15> GlyphResources = {
    "EXPANDED",         "COLLAPSED",       "FOPEN",
    "FCLOSED",          "EMPTY",           "CHECKED",
    "UNCHECKED",        "GRAYED",          "OPTIONED",
    "UNOPTIONED",       "GRAYEDUNCHECKED", "GRAYEDOPTIONED",
    "GRAYEDUNOPTIONED", "DOUBLECHECKED",   "GRAYEDDOUBLECHECKED"};

// Node state index to glyph kind.
constexpr std::array<int, 11> StateGlyphs = {obEmpty,           obUnchecked,          obChecked,
                                             obGrayedChecked,   obOptioned,           obUnoptioned,
                                             obGrayedUnchecked, obGrayedOptioned,     ObGrayedUnoptioned,
                                             ObDoubleChecked,   ObGrayedDoubleChecked};

// The marks inside the double-check glyphs, shared by all trees.
std::unique_ptr<TBitmap> DoubleCheckMark;
std::unique_ptr<TBitmap> GrayedDoubleCheckMark;

} // namespace

int FCheckWidth = 0;

// The platform's check-box bitmap holds four glyphs in a row; our style draws them in this size.
int GetCheckSize() {
    if (FCheckWidth < 1) FCheckWidth = TreeMetrics::CheckBoxSize;
    return FCheckWidth;
}

void InitDoubleChecks() {
    DoubleCheckMark = std::make_unique<TBitmap>();
    DoubleCheckMark->LoadFromResourceName("DCIMG");
    DoubleCheckMark->MakeTransparent(clWhite);
    GrayedDoubleCheckMark = std::make_unique<TBitmap>();
    GrayedDoubleCheckMark->LoadFromResourceName("GDCIMG");
    GrayedDoubleCheckMark->MakeTransparent(clWhite);
}

void TCustomQuillTree::InitGlyphs() {
    TBitmap First;
    First.LoadFromResourceName(std::string(GlyphResources[obExpanded]));
    FGlyphs = std::make_unique<TImageList>(nullptr, First.GetWidth(), First.GetHeight());
    for (const std::string_view Name : GlyphResources) {
        TBitmap Glyph;
        Glyph.LoadFromResourceName(std::string(Name));
        // The folder pictures are a pixel larger than the set; a picture wider than the list would be cut in two.
        if (Glyph.GetWidth() != First.GetWidth()) Glyph.SetSize(First.GetWidth(), First.GetHeight());
        FGlyphs->AddMasked(Glyph, clWhite);
    }
}

int TCustomQuillTree::StateGlyph(int StateIndex) {
    if (StateIndex < 0 || StateIndex >= static_cast<int>(StateGlyphs.size())) return -1;
    return StateGlyphs[static_cast<std::size_t>(StateIndex)];
}

void TCustomQuillTree::GetImage(TFlyNode*, int Index, TBitmap& Bitmap) {
    if (FGlyphs) FGlyphs->GetBitmap(Index, Bitmap);
}

void TCustomQuillTree::GetBitmap(TFlyNode*, int Index, TBitmap& Bitmap) {
    if (FImages) FImages->GetBitmap(Index, Bitmap);
}

void TCustomQuillTree::DrawImage(TCanvas& Canvas, TBitmap& Bitmap, const TRect& Rect) {
    Bitmap.SetTransparent(true);
    Canvas.Draw(Rect.Left + (Rect.Width() - Bitmap.GetWidth()) / 2, Rect.Top, &Bitmap);
}

void TCustomQuillTree::DrawImagelistPic(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind,
                                        const TRect& Rect) {
    if (!FGlyphs || FGlyphs->GetCount() <= Kind) return;
    TBitmap Picture;
    GetImage(Node, Kind, Picture);
    if (Picture.GetEmpty()) return;
    const int Left = Rect.Left + (FIndent - Picture.GetWidth()) / 2;
    const int Top = Rect.Top + (Rect.Height() - Picture.GetHeight()) / 2;
    Picture.SetTransparent(FTransparentMode);
    Canvas.StretchDraw(Bounds(Left, Top, Picture.GetWidth(), Picture.GetHeight()), &Picture);
}

void TCustomQuillTree::DrawButton(TCanvas& Canvas, TFlyNode* Node, TQuillBitmap Kind, TRect Rect) {
    const bool IsButton = Kind == obExpanded || Kind == obCollapsed;
    int Left = 0;
    if (IsButton) {
        Left = OutlineCentre(FOutlineLeft, LevelOf(Node)) - FButtonSize / 2;
    } else {
        Left = Rect.Left + (FIndent - FButtonSize) / 2;
        if (Left % 2 == 0) ++Left;
    }
    const int Top = Rect.Top + (Rect.Height() - FButtonSize) / 2;
    TRect Frame = Bounds(Left, MadeOddRow(Top), FButtonSize, FButtonSize);

    const unsigned Flat = GetCtl3D() ? 0 : DFCS_FLAT;
    const TColor OldBrush = Canvas.GetBrush()->GetColor();
    Canvas.GetBrush()->SetColor(clWindow);
    if (Kind >= obOpen && GetCtl3D()) Frame.Inflate(1, 1);

    unsigned State = 0;
    switch (Kind) {
    case obExpanded:
    case obCollapsed:
        DrawExpandBox(Canvas, Frame, Kind == obCollapsed);
        break;
    case obChecked:
        State = DFCS_BUTTONCHECK | DFCS_CHECKED;
        break;
    case obUnchecked:
        State = DFCS_BUTTONCHECK;
        break;
    case obGrayedChecked:
        State = DFCS_CHECKED | DFCS_INACTIVE;
        break;
    case obOptioned:
        State = DFCS_BUTTONRADIO | DFCS_CHECKED;
        break;
    case obUnoptioned:
        State = DFCS_BUTTONRADIO;
        break;
    case obGrayedUnchecked:
        State = DFCS_INACTIVE;
        break;
    case obGrayedOptioned:
        State = DFCS_BUTTONRADIO | DFCS_CHECKED | DFCS_INACTIVE;
        break;
    case ObGrayedUnoptioned:
        State = DFCS_BUTTONRADIO | DFCS_INACTIVE;
        break;
    case ObDoubleChecked:
        State = DFCS_BUTTONCHECK;
        break;
    case ObGrayedDoubleChecked:
        State = DFCS_INACTIVE;
        break;
    case obOpen:
    case obClose:
    case obEmpty:
        break;
    }
    if (Kind >= obChecked) Canvas.DrawFrameControl(Frame, DFC_BUTTON, State | Flat);
    if (Kind == ObDoubleChecked || Kind == ObGrayedDoubleChecked) {
        const int Shrink = Flat ? 1 : 2;
        Frame.Inflate(-Shrink, -Shrink);
        if (!DoubleCheckMark) InitDoubleChecks();
        TBitmap& Mark = Kind == ObDoubleChecked ? *DoubleCheckMark : *GrayedDoubleCheckMark;
        Canvas.Draw(Frame.Left + (Frame.Width() - Mark.GetWidth()) / 2,
                    Frame.Top + (Frame.Height() - Mark.GetHeight()) / 2, &Mark);
    }
    Canvas.GetBrush()->SetColor(OldBrush);
}

// A framed box with a minus, and a bar that makes it a plus.
void TCustomQuillTree::DrawExpandBox(TCanvas& Canvas, const TRect& Frame, bool Plus) {
    const TColor OldPen = Canvas.GetPen()->GetColor();
    Canvas.GetPen()->SetColor(FOutlineColor);
    Canvas.Rectangle(Frame);
    // Black as it stands on a light window; on a dark palette the window's text colour takes its part.
    Canvas.GetPen()->SetColor(clWindowText);
    // Points of a mirrored canvas fall one pixel beside the mirrored rectangle's middle.
    const int X = Frame.Left + Frame.Width() / 2 + (UseRightToLeftAlignment() ? 1 : 0);
    const int Y = Frame.Top + Frame.Height() / 2;
    const int Arm = TreeMetrics::ButtonArm;
    // Each arm is drawn from the centre; the end point itself is not painted.
    Canvas.MoveTo(X, Y);
    Canvas.LineTo(X - Arm, Y);
    Canvas.MoveTo(X, Y);
    Canvas.LineTo(X + Arm, Y);
    if (Plus) {
        Canvas.MoveTo(X, Y);
        Canvas.LineTo(X, Y - Arm);
        Canvas.MoveTo(X, Y);
        Canvas.LineTo(X, Y + Arm);
    }
    Canvas.GetPen()->SetColor(OldPen);
}

} // namespace quill
