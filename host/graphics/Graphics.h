// Drawing tools: fonts, pens, brushes, and graphics that can be drawn on a canvas.
#pragma once

#include "host/base/Events.h"
#include "host/base/Objects.h"

#include <memory>
#include <string>

class QFont;
class QImage;
class QPalette;

namespace quill {

class TCanvas;

// An object with a change notification, base of the drawing tools.
class TGraphicsObject : public TPersistent {
public:
    TNotifyEvent OnChange;

protected:
    void Changed() { FireEvent(OnChange, this); }
};

enum TFontStyle { fsBold, fsItalic, fsUnderline, fsStrikeOut };
using TFontStyles = TSet<TFontStyle>;

// A font by description. An empty name means the application's font. The height rules: a negative Height is the
// character height in pixels; Size is in points (1/72 inch at 96 pixels an inch), Height = -MulDiv(Size, 96, 72).
class TFont : public TGraphicsObject {
public:
    TFont();
    const std::string& GetName() const { return FName; }
    void SetName(const std::string& Value);
    int GetHeight() const { return FHeight; }
    void SetHeight(int Value);
    int GetSize() const;
    void SetSize(int Value);
    TColor GetColor() const { return FColor; }
    void SetColor(TColor Value);
    TFontStyles GetStyle() const { return FStyle; }
    void SetStyle(TFontStyles Value);
    void Assign(TPersistent* Source) override;
    const TClassInfo* GetClassInfo() const override;
    // Same face, height and style; the colour does not count.
    bool SameShape(const TFont& Other) const;
    // Copies from the toolkit's font without asking for points.
    void SetFromQt(const QFont& Font);

private:
    std::string FName;
    int FHeight;
    TColor FColor = clWindowText;
    TFontStyles FStyle;
};

enum TPenStyle { psSolid, psDash, psDot, psDashDot, psDashDotDot, psClear };
enum TPenMode { pmBlack, pmWhite, pmNot, pmCopy, pmXor, pmNotXor };

// Width is in pixels. Up to 1 the line is a hairline of constant device width; from 2 on it is geometric with flat
// ends, centred on the coordinate (a line of width w at x covers [x - w div 2, x - w div 2 + w)).
class TPen : public TGraphicsObject {
public:
    TColor GetColor() const { return FColor; }
    void SetColor(TColor Value);
    int GetWidth() const { return FWidth; }
    void SetWidth(int Value);
    TPenStyle GetStyle() const { return FStyle; }
    void SetStyle(TPenStyle Value);
    TPenMode GetMode() const { return FMode; }
    void SetMode(TPenMode Value);
    void Assign(TPersistent* Source) override;

private:
    TColor FColor = clBlack;
    int FWidth = 1;
    TPenStyle FStyle = psSolid;
    TPenMode FMode = pmCopy;
};

enum TBrushStyle { bsSolid, bsClear };

class TBrush : public TGraphicsObject {
public:
    TColor GetColor() const { return FColor; }
    // Setting a colour also makes a clear brush solid.
    void SetColor(TColor Value);
    TBrushStyle GetStyle() const { return FStyle; }
    void SetStyle(TBrushStyle Value);
    void Assign(TPersistent* Source) override;

private:
    TColor FColor = clWhite;
    TBrushStyle FStyle = bsSolid;
};

// Something with a size that a canvas can draw.
class TGraphic : public TGraphicsObject {
public:
    virtual int GetWidth() const = 0;
    virtual int GetHeight() const = 0;
    virtual bool GetEmpty() const = 0;
    bool GetTransparent() const { return FTransparent; }
    void SetTransparent(bool Value) { FTransparent = Value; }
    // Draws into Rect of Canvas (client pixels, already mapped by the canvas), stretched when the size differs.
    virtual void DrawOn(TCanvas& Canvas, const TRect& Rect) = 0;

protected:
    bool FTransparent = false;
};

enum TTransparentMode { tmAuto, tmFixed };

// A raster picture. Its size is in device-independent pixels; it may hold a second representation with twice the
// pixels, which is taken when the target's scale is above 1. Copies share the pixels until one is drawn on.
class TBitmap : public TGraphic {
public:
    TBitmap();
    TBitmap(const TBitmap& Other);
    TBitmap& operator=(const TBitmap& Other);
    ~TBitmap() override;

    // An opaque bitmap of that size whose pixels match Canvas's scale one to one (for snapshots).
    static std::unique_ptr<TBitmap> CreateCompatible(const TCanvas& Canvas, int Width, int Height);
    // A fully transparent bitmap with the given scale (device pixels per unit).
    static std::unique_ptr<TBitmap> CreateTransparent(int Width, int Height, double Scale = 1.0);

    int GetWidth() const override;
    int GetHeight() const override;
    bool GetEmpty() const override { return GetWidth() < 1 || GetHeight() < 1; }
    // Gives the bitmap a new size; old pixels in the common part stay, new ones are white (transparent when the
    // bitmap has alpha). Only the representation with the most pixels stays.
    void SetSize(int Width, int Height);
    void SetWidth(int Value) { SetSize(Value, GetHeight()); }
    void SetHeight(int Value) { SetSize(GetWidth(), Value); }

    // A canvas that draws on the bitmap; lives as long as the bitmap. The first operation that draws leaves only the
    // representation with the most pixels.
    TCanvas* GetCanvas();

    // The colour that is not drawn while Transparent is on: with tmAuto the pixel at the bottom left corner. Setting
    // it chooses tmFixed, setting clDefault tmAuto. Bitmaps with alpha are blended and have no such colour.
    TColor GetTransparentColor() const;
    void SetTransparentColor(TColor Value);
    TTransparentMode GetTransparentMode() const { return FTransparentMode; }
    void SetTransparentMode(TTransparentMode Value) { FTransparentMode = Value; }

    // Raises EFOpenError or EReadError. BMP and PNG at least; a file NAME@2x beside it is the second representation.
    void LoadFromFile(const std::string& FileName);
    // PNG, from the representation with the most pixels.
    void SaveToFile(const std::string& FileName) const;
    // A resource of the library by name ("EXPANDED"); false when there is none.
    bool LoadFromResourceName(const std::string& Name);
    void Assign(TPersistent* Source) override;
    // Replaces every pixel of Color (0x00BBGGRR) by full transparency, in all representations.
    void MakeTransparent(TColor Color);
    bool HasAlpha() const;

    void DrawOn(TCanvas& Canvas, const TRect& Rect) override;

    // For the toolkit side: the representation for a scale (the smallest that is sharp there), and taking one over.
    const QImage& GetImage(double Scale) const;
    void SetImage(const QImage& Image, double Scale = 1.0);
    void AddImage(const QImage& Image, double Scale);

private:
    struct TRepresentations;

    TRepresentations& Unique();
    TRepresentations& UniqueForDrawing();
    void FinishDrawing() const;
    void Rebind();

    // Shared by all copies until one is changed; null for an empty bitmap.
    std::shared_ptr<TRepresentations> FImages;
    std::unique_ptr<TCanvas> FCanvas;
    TTransparentMode FTransparentMode = tmAuto;
    TColor FTransparentColor = clNone;
};

// Where system colours are looked up: the palette of a control, or the application's for null.
// 0x00BBGGRR for any colour; clNone and clDefault come back as black.
TColor ColorToRGB(TColor Color);
TColor ColorToRGB(TColor Color, const QPalette& Palette);
bool IsDarkPalette(const QPalette& Palette);

} // namespace quill
