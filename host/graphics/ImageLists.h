// Image lists: numbered pictures of one size, shared by controls that are told about changes.
#pragma once

#include "host/base/Objects.h"
#include "host/graphics/Graphics.h"

#include <vector>

namespace quill {

class TCustomImageList;
class TStream;

// A control's subscription to an image list; unlinks itself from either side.
class TChangeLink : public TObject {
public:
    ~TChangeLink() override;
    TNotifyEvent OnChange;
    TCustomImageList* GetSender() const { return FSender; }
    void Change();

private:
    friend class TCustomImageList;
    TCustomImageList* FSender = nullptr;
};

class TCustomImageList : public TComponent {
public:
    explicit TCustomImageList(TComponent* AOwner = nullptr, int AWidth = 16, int AHeight = 16);
    ~TCustomImageList() override;

    // Pictures are Width x Height device-independent pixels; a change of size empties the list.
    int GetWidth() const { return FWidth; }
    int GetHeight() const { return FHeight; }
    void SetSize(int AWidth, int AHeight);
    void SetWidth(int Value) { SetSize(Value, FHeight); }
    void SetHeight(int Value) { SetSize(FWidth, Value); }
    int GetCount() const { return static_cast<int>(FImages.size()); }
    // The list has storage: from the first picture or HandleNeeded on.
    bool HandleAllocated() const { return FHandleAllocated; }
    void HandleNeeded() { FHandleAllocated = true; }

    // Adds a picture (a wider one is cut into several); returns the first index, -1 when Image is empty.
    // Mask: white pixels are transparent, null for none. AddMasked makes MaskColor transparent.
    int Add(const TBitmap& Image, const TBitmap* Mask = nullptr);
    int AddMasked(const TBitmap& Image, TColor MaskColor);
    // An index outside raises EListError, here and in Delete.
    void Replace(int Index, const TBitmap& Image, const TBitmap* Mask = nullptr);
    // -1 deletes all.
    void Delete(int Index);
    void Clear() { Delete(-1); }

    // Copies picture Index into Bitmap, transparency included; an index outside empties Bitmap and returns false.
    bool GetBitmap(int Index, TBitmap& Bitmap) const;
    // Draws picture Index at (X, Y), with overlay Overlay (an index into the list, -1 for none) over it.
    void Draw(TCanvas& Canvas, int X, int Y, int Index, int Overlay = -1) const;

    void RegisterChanges(TChangeLink* Value);
    void UnRegisterChanges(TChangeLink* Value);
    void BeginUpdate() { ++FUpdateCount; }
    void EndUpdate();

    // The size, and the pictures in both of their representations.
    const TClassInfo* GetClassInfo() const override;
    void DefineProperties(TFiler& Filer) override;
    void ReadPictures(TStream& Stream);
    void WritePictures(TStream& Stream) const;

    TNotifyEvent OnChange;

protected:
    // Tells links and OnChange.
    virtual void Change();

private:
    int FWidth;
    int FHeight;
    int FUpdateCount = 0;
    bool FChanged = false;
    bool FHandleAllocated = false;
    std::vector<TBitmap> FImages;
    std::vector<TChangeLink*> FLinks;
    // Expires with the list.
    std::shared_ptr<void> FAlive = std::make_shared<char>();
};

class TImageList : public TCustomImageList {
    using TCustomImageList::TCustomImageList;
};

} // namespace quill
