// A canvas that writes down what is drawn on it.
#pragma once

#include "host/graphics/Canvas.h"

#include <memory>
#include <string>
#include <vector>

namespace quill {

// Logs every drawing operation as one line of text, with its arguments as the caller gave them (before mapping), and
// performs it on a bitmap of its own as well. For tests of drawing order. What an operation does inside (a picture
// that draws itself) is not logged, nor is measuring.
//
//   FillRect (0,0,80,16) clWindow
//   Line (0,16)-(81,16) clSilver
//   Text (4,0,80,16) "Apple" left vcenter singleline ellipsis noprefix, clWindowText underline
class TRecordingCanvas : public TCanvas {
public:
    explicit TRecordingCanvas(int Width = 400, int Height = 300, double Scale = 1.0);
    ~TRecordingCanvas() override;

    const std::vector<std::string>& GetLines() const { return FLines; }
    // All lines, each with a line feed.
    std::string GetLog() const;
    // The lines that begin with Operation ("Text", "Line", ...).
    std::string GetLog(std::string_view Operation) const;
    void ClearLog() { FLines.clear(); }
    // The picture so far, in device pixels.
    const QImage& GetImage() const { return *FPicture; }

    void SetMirrored(bool On, int Width) override;
    void IntersectClip(const TRect& Rect) override;
    void RestoreClip() override;
    void LineTo(int X, int Y) override;
    void FillRect(const TRect& Rect) override;
    void FrameRect(const TRect& Rect) override;
    void Rectangle(const TRect& Rect) override;
    void Ellipse(const TRect& Rect) override;
    void Polygon(std::span<const TPoint> Points) override;
    void DrawFocusRect(const TRect& Rect) override;
    void InvertRect(const TRect& Rect) override;
    void SetPixel(int X, int Y, TColor Color) override;
    void SetPixels(std::span<const TPoint> Points, TColor Color) override;
    int DrawText(std::string_view Text, TRect& Rect, unsigned Flags) override;
    void TextOut(int X, int Y, std::string_view Text) override;
    // Recorded as TextOut.
    void TextOutOnBaseline(int X, int Y, double Baseline, std::string_view Text) override;
    void DrawEdge(const TRect& Rect, unsigned Edge, unsigned Flags) override;
    void DrawFrameControl(const TRect& Rect, unsigned Type, unsigned State) override;
    void Draw(int X, int Y, TGraphic* Graphic) override;
    void StretchDraw(const TRect& Rect, TGraphic* Graphic) override;
    void BitBlt(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                unsigned Rop) override;
    void AlphaBlend(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                    int Alpha) override;
    void PatBlt(int X, int Y, int Width, int Height, unsigned Rop) override;
    void CopyRect(const TRect& Rect, TCanvas& Source, const TRect& SrcRect) override;

private:
    class TInner;

    void Log(std::string Line);
    std::string Pen() const;
    std::string Brush() const;
    std::string Ink() const;

    std::vector<std::string> FLines;
    std::unique_ptr<QImage> FPicture;
    // Above 0 while an operation runs.
    int FDepth = 0;
};

} // namespace quill
