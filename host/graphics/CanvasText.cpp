// Text drawing and measuring.
#include "host/graphics/CanvasState.h"

#include <algorithm>
#include <cmath>

namespace quill {
namespace {

// The units that hold a device length; text measured so always fits where it was measured for.
int Units(int Device, double Scale) { return static_cast<int>(std::ceil(Device / Scale - 1e-6)); }

int DeviceRoom(const TRect& Rect, double Scale) {
    const double Width = (static_cast<double>(Rect.Right) - Rect.Left) * Scale;
    return static_cast<int>(std::clamp(std::floor(Width + 1e-6), 0.0, double{1 << 24}));
}

unsigned ShapingFlags(unsigned Flags) {
    unsigned Result = 0;
    if ((Flags & DT_SINGLELINE) == 0) {
        Result |= text::MultiLine;
        if ((Flags & DT_WORDBREAK) != 0) Result |= text::WordWrap;
    }
    if ((Flags & DT_END_ELLIPSIS) != 0) Result |= text::Elide;
    if ((Flags & DT_RTLREADING) != 0) Result |= text::RightToLeft;
    if ((Flags & DT_NOPREFIX) == 0) Result |= text::Prefix;
    return Result;
}

} // namespace

int TCanvas::DrawText(std::string_view Text, TRect& Rect, unsigned Flags) {
    const text::TFace* Face = FState->FontUse.Resolve(FFont, FScale);
    if (Face == nullptr) return 0;
    const unsigned Shaping = ShapingFlags(Flags);
    const int Room = DeviceRoom(Rect, FScale);
    if ((Flags & DT_CALCRECT) != 0) {
        const text::TExtent Extent = text::Measure(*Face, Text, Room, Shaping);
        const int Height = Units(Extent.Height, FScale);
        Rect.Right = AddClamped(Rect.Left, Units(Extent.Width, FScale));
        Rect.Bottom = AddClamped(Rect.Top, Height);
        return Height;
    }
    const auto Unseen = [&] {
        Face = FState->FontUse.Resolve(FFont, FScale);
        const bool OneLine = (Flags & DT_SINGLELINE) != 0;
        return Units(OneLine ? Face->LineHeight() : text::Measure(*Face, Text, Room, Shaping).Height, FScale);
    };
    const bool Clips = (Flags & DT_NOCLIP) == 0;
    if ((Clips && !RectVisible(Rect)) || !BeginDrawing()) return Unseen();
    // Application code may have run; the face may be another one now.
    Face = FState->FontUse.Resolve(FFont, FScale);
    const QRect Device = ToDeviceRect(Rect);
    const std::string_view Visible = text::VisiblePart(
        *Face, Text, (Shaping & text::WordWrap) != 0 ? Room : std::min(Room, FImage->width()),
        std::min(Device.height(), FImage->height()), Shaping);
    const text::TBlock& Block = text::Shape(*Face, Visible, Room, Shaping);
    const bool Overflows = Block.Width > Device.width() || Block.Height > Device.height();
    if (Clips && Overflows) {
        FState->Clips.push_back(FState->Clips.empty() ? Device : Device & FState->Clips.back());
        FState->UpdateClip(FImage);
        DrawBlock(Block, Device, Flags);
        FState->Clips.pop_back();
        FState->UpdateClip(FImage);
    } else {
        DrawBlock(Block, Device, Flags);
    }
    return Units(Block.Height, FScale);
}

// Draws shaped text aligned in a device rectangle, as Flags say.
void TCanvas::DrawBlock(const text::TBlock& Block, const QRect& Rect, unsigned Flags) {
    const text::TFace& Face = *FState->FontUse.Resolve(FFont, FScale);
    const int LineHeight = Face.LineHeight();
    int Top = Rect.top();
    if ((Flags & DT_SINGLELINE) != 0) {
        if ((Flags & DT_BOTTOM) != 0) {
            Top = Rect.bottom() + 1 - Block.Height;
        } else if ((Flags & DT_VCENTER) != 0) {
            Top += static_cast<int>(std::floor((Rect.height() - Block.Height) / 2.0));
        }
    }
    // Left and right are those of the application's coordinates.
    const unsigned AtRight = FMirrored ? DT_LEFT : DT_RIGHT;
    const bool Opaque = FBkMode == OPAQUE && FBrush.GetStyle() != bsClear;
    const TFontStyles Style = FFont.GetStyle();
    for (const text::TLine& Line : Block.Lines) {
        int Left = Rect.left();
        if ((Flags & DT_CENTER) != 0) {
            Left += (Rect.width() - Line.Width) / 2;
        } else if ((Flags & DT_RIGHT) == AtRight) {
            Left += Rect.width() - Line.Width;
        }
        if (Opaque) FillDevice(QRect(Left, Top, Line.Width, LineHeight), FBrush.GetColor());
        const int Baseline = Top + Face.Ascent;
        if (Line.RunCount > 0 && Top <= FState->ClipBounds.bottom() &&
            Top + LineHeight > FState->ClipBounds.top()) {
            SetPainterPen(FFont.GetColor());
            for (int I = 0; I < Line.RunCount; ++I)
                FState->Painter.drawGlyphRun(QPointF(Left, Baseline),
                                             Block.Runs[static_cast<std::size_t>(Line.FirstRun + I)]);
        }
        const auto Stroke = [&](int X, int Y, int Width) {
            FillDevice(QRect(X, Baseline + Y, Width, Face.LineThickness), FFont.GetColor());
        };
        if (Style.Contains(fsUnderline)) Stroke(Left, Face.UnderlineTop, Line.Width);
        if (Style.Contains(fsStrikeOut)) Stroke(Left, Face.StrikeTop, Line.Width);
        if (Line.MarkWidth > 0) Stroke(Left + Line.MarkLeft, Face.UnderlineTop, Line.MarkWidth);
        Top += LineHeight;
    }
}

void TCanvas::TextOut(int X, int Y, std::string_view Text) { DrawLineOfText(X, Y, nullptr, Text); }

void TCanvas::TextOutOnBaseline(int X, int Y, double Baseline, std::string_view Text) {
    DrawLineOfText(X, Y, &Baseline, Text);
}

// Without a baseline the font's own ascent lies below Y.
void TCanvas::DrawLineOfText(int X, int Y, const double* Baseline, std::string_view Text) {
    const text::TFace* Face = FState->FontUse.Resolve(FFont, FScale);
    if (Face == nullptr) return;
    const unsigned Shaping = (FTextFlags & ETO_RTLREADING) != 0 ? unsigned{text::RightToLeft} : 0u;
    const int Width = text::Measure(*Face, Text, 0, Shaping).Width;
    FPenPos = {AddClamped(X, Units(Width, FScale)), Y};
    if (!BeginDrawing()) return;
    Face = FState->FontUse.Resolve(FFont, FScale);
    const text::TBlock& Block =
        text::Shape(*Face, text::VisiblePart(*Face, Text, FImage->width(), 0, Shaping), 0, Shaping);
    const TPoint Mapped = MapPoint(X, Y);
    const int Left = FMirrored ? ToDevice(Mapped.X) - Block.Width : ToDevice(Mapped.X);
    int Top = ToDevice(Mapped.Y);
    if (Baseline != nullptr) Top += static_cast<int>(std::lround(*Baseline * FScale)) - Face->Ascent;
    DrawBlock(Block, QRect(Left, Top, Block.Width, Block.Height), DT_LEFT);
}

TSize TCanvas::TextExtent(std::string_view Text) {
    const text::TFace* Face = FState->FontUse.Resolve(FFont, FScale);
    if (Face == nullptr) return {};
    const unsigned Shaping = (FTextFlags & ETO_RTLREADING) != 0 ? unsigned{text::RightToLeft} : 0u;
    const text::TExtent Extent = text::Measure(*Face, Text, 0, Shaping);
    return {Units(Extent.Width, FScale), Units(Extent.Height, FScale)};
}

void TCanvas::AppendTextEnds(std::string_view Text, std::vector<double>& Ends) {
    const text::TFace* Face = FState->FontUse.Resolve(FFont, FScale);
    if (Face == nullptr) return;
    const std::size_t Start = Ends.size();
    text::AppendEnds(*Face, Text, (FTextFlags & ETO_RTLREADING) != 0, Ends);
    for (std::size_t I = Start; I < Ends.size(); ++I) Ends[I] /= FScale;
}

TTextMetrics TCanvas::GetTextMetrics() {
    const text::TFace* Face = FState->FontUse.Resolve(FFont, FScale);
    if (Face == nullptr) return {};
    TTextMetrics Result;
    Result.Height = Units(Face->LineHeight(), FScale);
    Result.Ascent = std::min(Result.Height, Units(Face->Ascent, FScale));
    Result.Descent = Result.Height - Result.Ascent;
    Result.AveCharWidth = Units(Face->AveCharWidth, FScale);
    Result.Baseline = Face->Ascent / FScale;
    return Result;
}

int TCanvas::SetBkMode(int Mode) {
    const int Old = FBkMode;
    FBkMode = Mode;
    return Old;
}

} // namespace quill
