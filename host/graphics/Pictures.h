// Vector pictures, and a holder for a picture of any kind.
#pragma once

#include "host/graphics/Graphics.h"

#include <memory>
#include <string>

namespace quill {

class TStream;

// A vector picture: an SVG document, kept byte for byte. It is drawn sharp at every scale by Qt's image reader for
// SVG; where that plugin is not installed an empty frame stands for the picture.
class TMetafile : public TGraphic {
public:
    TMetafile() = default;
    TMetafile(const TMetafile& Other) : TGraphic() { *this = Other; }
    TMetafile& operator=(const TMetafile& Other);
    // The size that the document asks for, in pixels; of a document that asks for none that of its view box.
    int GetWidth() const override { return FWidth; }
    int GetHeight() const override { return FHeight; }
    bool GetEmpty() const override { return FSvg.empty(); }

    const std::string& GetSvg() const { return FSvg; }
    // Takes over a document; false, and the picture stays as it was, when the text is not XML with svg as its root.
    bool SetSvg(const std::string& Value);
    void Clear();

    // What cannot be read as an SVG document raises EReadError.
    void LoadFromStream(TStream& Stream);
    void LoadFromFile(const std::string& FileName);
    void SaveToStream(TStream& Stream) const;
    void SaveToFile(const std::string& FileName) const;
    void Assign(TPersistent* Source) override;
    void DrawOn(TCanvas& Canvas, const TRect& Rect) override;

private:
    std::string FSvg;
    int FWidth = 0;
    int FHeight = 0;
};

// Holds a picture of any kind.
class TPicture : public TPersistent {
public:
    // Null while the picture is empty.
    TGraphic* GetGraphic() const;
    // Copies Value (null empties the picture); a kind that is neither bitmap nor metafile raises EConvertError.
    void SetGraphic(const TGraphic* Value);
    // The bitmap (metafile); an empty one takes the place of a picture of another kind.
    TBitmap* GetBitmap();
    TMetafile* GetMetafile();
    void SetBitmap(const TBitmap* Value) { SetGraphic(Value); }
    void SetMetafile(const TMetafile* Value) { SetGraphic(Value); }
    int GetWidth() const { return GetGraphic() ? GetGraphic()->GetWidth() : 0; }
    int GetHeight() const { return GetGraphic() ? GetGraphic()->GetHeight() : 0; }
    void Assign(TPersistent* Source) override;

private:
    std::unique_ptr<TBitmap> FBitmap;
    std::unique_ptr<TMetafile> FMetafile;
};

} // namespace quill
