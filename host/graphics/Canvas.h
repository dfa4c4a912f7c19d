// The drawing surface of controls and bitmaps, with the toolkit's named drawing operations.
#pragma once

#include "host/graphics/Graphics.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

class QImage;
class QPainter;
class QPalette;
class QRect;
class QRegion;

namespace quill {

namespace text {
struct TBlock;
}

// DrawText flags.
inline constexpr unsigned DT_TOP = 0x0;
inline constexpr unsigned DT_LEFT = 0x0;
inline constexpr unsigned DT_CENTER = 0x1;
inline constexpr unsigned DT_RIGHT = 0x2;
inline constexpr unsigned DT_VCENTER = 0x4;
inline constexpr unsigned DT_BOTTOM = 0x8;
inline constexpr unsigned DT_WORDBREAK = 0x10;
inline constexpr unsigned DT_SINGLELINE = 0x20;
inline constexpr unsigned DT_NOCLIP = 0x100;
inline constexpr unsigned DT_CALCRECT = 0x400;
inline constexpr unsigned DT_NOPREFIX = 0x800;
inline constexpr unsigned DT_END_ELLIPSIS = 0x8000;
inline constexpr unsigned DT_RTLREADING = 0x20000;

// DrawFrameControl types and states.
inline constexpr unsigned DFC_BUTTON = 4;
inline constexpr unsigned DFCS_BUTTONCHECK = 0x0;
inline constexpr unsigned DFCS_BUTTONRADIO = 0x4;
inline constexpr unsigned DFCS_INACTIVE = 0x100;
inline constexpr unsigned DFCS_PUSHED = 0x200;
inline constexpr unsigned DFCS_CHECKED = 0x400;
inline constexpr unsigned DFCS_FLAT = 0x4000;

// DrawEdge edges and flags.
inline constexpr unsigned BDR_RAISEDOUTER = 0x1;
inline constexpr unsigned BDR_SUNKENOUTER = 0x2;
inline constexpr unsigned BDR_RAISEDINNER = 0x4;
inline constexpr unsigned BDR_SUNKENINNER = 0x8;
inline constexpr unsigned BF_LEFT = 0x1;
inline constexpr unsigned BF_TOP = 0x2;
inline constexpr unsigned BF_RIGHT = 0x4;
inline constexpr unsigned BF_BOTTOM = 0x8;
inline constexpr unsigned BF_RECT = 0xF;

// Raster operations of BitBlt and PatBlt.
inline constexpr unsigned SRCCOPY = 0xCC0020;
inline constexpr unsigned SRCINVERT = 0x660046;
inline constexpr unsigned PATCOPY = 0xF00021;
inline constexpr unsigned PATINVERT = 0x5A0049;
inline constexpr unsigned DSTINVERT = 0x550009;
inline constexpr unsigned BLACKNESS = 0x000042;
inline constexpr unsigned WHITENESS = 0xFF0062;

// Text flags (SetTextFlags): TextOut and TextExtent read from right to left.
inline constexpr int ETO_RTLREADING = 0x80;

inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;

enum TCanvasOrientation { coLeftToRight, coRightToLeft };

struct TTextMetrics {
    int Height = 0;  // ascent + descent
    int Ascent = 0;  // above the baseline
    int Descent = 0; // below it
    int AveCharWidth = 0;
    double Baseline = 0.0; // the ascent before it is rounded up: a whole number of device pixels
};

// Draws in device-independent pixels. Edges are snapped to device pixels once, so that neighbours always meet; a
// hairline has a constant device width (the whole part of the scale, at least 1 device pixel).
// At fractional scales a hairline's place may be a device pixel wider than the line; that pixel keeps what was there,
// so surfaces are erased before they are painted.
// While the mirrored mapping is on (SetMirrored), points go to Width - x and rectangles [L, R) to
// [Width - R, Width - L); glyphs and pictures are never flipped, texts keep their reading order.
// All operations are virtual: TRecordingCanvas logs them. An operation on a canvas without a surface does nothing,
// measuring excepted.
class TCanvas : public TPersistent {
public:
    TCanvas();
    ~TCanvas() override;
    TCanvas(const TCanvas&) = delete;
    TCanvas& operator=(const TCanvas&) = delete;

    TFont* GetFont() { return &FFont; }
    void SetFont(TFont* Value) { FFont.Assign(Value); }
    TPen* GetPen() { return &FPen; }
    void SetPen(TPen* Value) { FPen.Assign(Value); }
    TBrush* GetBrush() { return &FBrush; }
    void SetBrush(TBrush* Value) { FBrush.Assign(Value); }

    // --- mapping and clipping ---------------------------------------------------------------------------------
    // The mirrored mapping over Width pixels; Width counts only when On.
    virtual void SetMirrored(bool On, int Width);
    int GetMirrorWidth() const { return FMirrorWidth; }
    TCanvasOrientation GetCanvasOrientation() const { return FMirrored ? coRightToLeft : coLeftToRight; }
    double GetScale() const { return FScale; }
    // Device pixels of x on the surface.
    int ToDevice(int Value) const;
    // Whether any pixel of Rect (mapped) lies inside the clip.
    virtual bool RectVisible(const TRect& Rect) const;
    // The unmapped bounding rectangle of the clip.
    virtual TRect GetClipRect() const;
    // Narrows the clip to Rect until the matching RestoreClip; brackets nest.
    virtual void IntersectClip(const TRect& Rect);
    virtual void RestoreClip();

    // --- lines and shapes -------------------------------------------------------------------------------------
    virtual void MoveTo(int X, int Y);
    // From the pen position to (X, Y), the last point excluded, with the pen.
    virtual void LineTo(int X, int Y);
    TPoint GetPenPos() const { return FPenPos; }
    // Fills with the brush.
    virtual void FillRect(const TRect& Rect);
    // A frame of one pixel in the brush's colour.
    virtual void FrameRect(const TRect& Rect);
    // Outline with the pen, inside filled with the brush.
    virtual void Rectangle(const TRect& Rect);
    virtual void Ellipse(const TRect& Rect);
    virtual void Polygon(std::span<const TPoint> Points);
    // The dotted focus frame; drawing it twice restores the pixels.
    virtual void DrawFocusRect(const TRect& Rect);
    virtual void InvertRect(const TRect& Rect);
    virtual void SetPixel(int X, int Y, TColor Color);
    // Many single pixels of one colour in one go (dotted lines).
    virtual void SetPixels(std::span<const TPoint> Points, TColor Color);
    // 0x00BBGGRR, or clNone outside the surface.
    virtual TColor GetPixel(int X, int Y) const;

    // --- text -------------------------------------------------------------------------------------------------
    // Draws or measures (DT_CALCRECT) UTF-8 text with the canvas font; returns the text height. Measuring stores the
    // extent in Rect, Left and Top kept: the width of the widest line (with DT_WORDBREAK lines are broken at the
    // given width; a word that is wider overflows it) and the height of all lines. With DT_SINGLELINE line breaks
    // are shown as spaces. The base direction is left to right unless DT_RTLREADING says otherwise.
    // Text that is larger than Rect is clipped to it (unless DT_NOCLIP); one that fits may reach over its edges by
    // the pixel that letters overhang.
    // Without DT_NOPREFIX a single "&" underlines the next character. Mirrored: Rect is mirrored, glyphs are not.
    virtual int DrawText(std::string_view Text, TRect& Rect, unsigned Flags);
    virtual void TextOut(int X, int Y, std::string_view Text);
    // As TextOut in a line at Y whose baseline (as that of the text metrics) is Baseline units below, so that texts in
    // several fonts stand on one also where it lies between two units.
    virtual void TextOutOnBaseline(int X, int Y, double Baseline, std::string_view Text);
    // The extent of a single line; line breaks count as spaces.
    virtual TSize TextExtent(std::string_view Text);
    int TextWidth(std::string_view Text) { return TextExtent(Text).cx; }
    int TextHeight(std::string_view Text) { return TextExtent(Text).cy; }
    virtual TTextMetrics GetTextMetrics();
    // Appends the widths of the starts of a line, one for each of Text's characters (code points; a malformed byte
    // is one). Exact where TextWidth rounds up to whole pixels.
    void AppendTextEnds(std::string_view Text, std::vector<double>& Ends);
    // TRANSPARENT or OPAQUE (text background filled with the brush); returns the old mode.
    virtual int SetBkMode(int Mode);
    int GetBkMode() const { return FBkMode; }
    // ETO_RTLREADING or 0.
    int GetTextFlags() const { return FTextFlags; }
    void SetTextFlags(int Value) { FTextFlags = Value; }

    // --- frames and controls ----------------------------------------------------------------------------------
    virtual void DrawEdge(const TRect& Rect, unsigned Edge, unsigned Flags);
    // Check boxes and radio buttons in the classic look, right on light and dark palettes.
    virtual void DrawFrameControl(const TRect& Rect, unsigned Type, unsigned State);

    // --- pictures ---------------------------------------------------------------------------------------------
    virtual void Draw(int X, int Y, TGraphic* Graphic);
    virtual void StretchDraw(const TRect& Rect, TGraphic* Graphic);
    // Copies Width x Height pixels from (SrcX, SrcY) of Source, clipped to both surfaces; never stretched. A copy
    // between canvases of one scale moves device pixels exactly; source and target may be one canvas.
    virtual void BitBlt(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                        unsigned Rop);
    // The same with a constant opacity of Alpha (0 .. 255).
    virtual void AlphaBlend(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                            int Alpha);
    virtual void PatBlt(int X, int Y, int Width, int Height, unsigned Rop);
    // Copies SrcRect of Source into Rect, stretched when the sizes differ.
    virtual void CopyRect(const TRect& Rect, TCanvas& Source, const TRect& SrcRect);

    // --- the toolkit side (host/ only) ------------------------------------------------------------------------
    // Binds the canvas to an image in device pixels (RGB32 or ARGB32_Premultiplied, any other counts as none), null
    // to unbind. The image must outlive the binding. All clips are lifted.
    void Bind(QImage* Image, double Scale);
    QImage* GetSurface() const { return FImage; }
    // The palette that system colours and frames are taken from.
    void SetPalette(const QPalette& Palette);
    const QPalette& GetPalette() const;
    // Restricts drawing to a region in device pixels; an empty region lifts the restriction.
    void SetDeviceClip(const QRegion& Region);
    // Closes the painter (it opens again at the next operation); needed before the image is used elsewhere.
    void EndPainting();
    // The open painter, clipped, in device pixels; null without a surface. Leave its transformation as it is.
    QPainter* GetPainter();
    // Draws Image into Rect, which is already mapped; pixels are moved one to one when Image has the scale of the
    // canvas or fits Rect exactly, else stretched smoothly.
    void DrawImage(const TRect& Rect, const QImage& Image, double ImageScale);
    // Rect as the operations see it: mapped, then snapped to device pixels.
    QRect ToDeviceRect(const TRect& Rect) const;
    // Called before the first drawing operation after Bind or EndPainting (a control learns that it was drawn on).
    std::function<void()> OnOpen;

protected:
    TRect MapRect(const TRect& Rect) const;
    TPoint MapPoint(int X, int Y) const;

    TFont FFont;
    TPen FPen;
    TBrush FBrush;
    TPoint FPenPos;
    bool FMirrored = false;
    int FMirrorWidth = 0;
    int FBkMode = OPAQUE;
    int FTextFlags = 0;
    double FScale = 1.0;

private:
    friend class TBitmap;
    struct TState;

    // Another image of the same size and scale; clips stay.
    void ReplaceSurface(QImage* Image);
    bool BeginDrawing();
    QPainter& Painter();
    void SetPainterPen(TColor Color);
    int Hairline() const;
    QRect DeviceRect(const TRect& Mapped) const;
    void FillDevice(const QRect& Rect, TColor Color);
    void InkDevice(const QRect& Rect, std::uint32_t And, std::uint32_t Xor);
    void PenDevice(const QRect& Rect);
    void StraightLine(TPoint From, TPoint To);
    void SlantedLine(TPoint From, TPoint To);
    void FrameDevice(const QRect& Rect, int Thickness, TColor Color);
    void Shape(std::span<const TPoint> Mapped, bool IsEllipse);
    void DrawGraphic(const TRect& Rect, TGraphic* Graphic);
    void CopyPixels(QRect Rect, TCanvas& Source, QRect From, unsigned Rop, int Alpha);
    void StretchPixels(const QRect& Rect, TCanvas& Source, const QRect& From, unsigned Rop, int Alpha);
    void CopyUnits(const TRect& Rect, TCanvas& Source, const TRect& From, unsigned Rop, int Alpha);
    void DrawBlock(const text::TBlock& Block, const QRect& Rect, unsigned Flags);
    void DrawLineOfText(int X, int Y, const double* Baseline, std::string_view Text);

    QImage* FImage = nullptr;
    std::unique_ptr<TState> FState;
};

// A canvas that writes every drawing operation as one line of text, with its arguments in client pixels before
// mapping, and performs it as well. For tests of drawing order.
class TRecordingCanvas;

} // namespace quill
