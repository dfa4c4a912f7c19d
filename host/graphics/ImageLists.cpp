#include "host/graphics/ImageLists.h"

#include "host/base/Errors.h"
#include "host/base/Texts.h"
#include "host/graphics/Canvas.h"
#include "host/graphics/Pixels.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace quill {
namespace {

constexpr double Scales[] = {1.0, 2.0};

// The part of Image that begins at unit Left, Width x Height units large, transparent where Image ends. White pixels
// of Mask are left out.
QImage Cut(const QImage& Image, double Scale, const QImage& Mask, int Left, int Width, int Height) {
    const QRect Part(static_cast<int>(std::lround(Left * Scale)), 0,
                     static_cast<int>(std::lround(Width * Scale)),
                     static_cast<int>(std::lround(Height * Scale)));
    if (Part == Image.rect() && Mask.isNull()) return Image;
    QImage Result = Image.copy(Part); // outside: black, or transparent when there is alpha
    if (Image.rect().contains(Part) && Mask.isNull()) return Result;
    Result = Result.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const pixels::TView View = pixels::Writable(Result);
    for (int Y = 0; Y < View.Height; ++Y) {
        for (int X = 0; X < View.Width; ++X) {
            const QPoint From = Part.topLeft() + QPoint(X, Y);
            // The mask may have fewer pixels than the picture.
            const QPoint InMask = Mask.isNull()
                                      ? QPoint()
                                      : QPoint(From.x() * Mask.width() / std::max(1, Image.width()),
                                               From.y() * Mask.height() / std::max(1, Image.height()));
            const bool Masked =
                !Mask.isNull() && Mask.rect().contains(InMask) && (Mask.pixel(InMask) & 0xFFFFFF) == 0xFFFFFF;
            if (!Image.rect().contains(From) || Masked) View.Row(Y)[X] = 0;
        }
    }
    return Result;
}

TBitmap CutBitmap(const TBitmap& Image, const TBitmap* Mask, int Left, int Width, int Height) {
    const bool Whole = Left == 0 && Image.GetWidth() == Width && Image.GetHeight() == Height;
    if (Whole && Mask == nullptr) {
        TBitmap Result(Image);
        Result.SetTransparent(false);
        return Result;
    }
    TBitmap Result;
    const QImage* Last = nullptr;
    for (const double Wanted : Scales) {
        const QImage& Pixels = Image.GetImage(Wanted);
        if (&Pixels == Last) break;
        Last = &Pixels;
        const double Scale = static_cast<double>(Pixels.width()) / std::max(1, Image.GetWidth());
        Result.AddImage(
            Cut(Pixels, Scale, Mask != nullptr ? Mask->GetImage(Wanted) : QImage(), Left, Width, Height),
            Scale);
    }
    return Result;
}

} // namespace

// --- change links -------------------------------------------------------------------------------------------------

TChangeLink::~TChangeLink() {
    if (FSender != nullptr) FSender->UnRegisterChanges(this);
}

void TChangeLink::Change() { FireEvent(OnChange, FSender); }

void TCustomImageList::RegisterChanges(TChangeLink* Value) {
    if (Value == nullptr || Value->FSender == this) return;
    if (Value->FSender != nullptr) Value->FSender->UnRegisterChanges(Value);
    Value->FSender = this;
    FLinks.push_back(Value);
}

void TCustomImageList::UnRegisterChanges(TChangeLink* Value) {
    const auto Place = std::find(FLinks.begin(), FLinks.end(), Value);
    if (Place == FLinks.end()) return;
    (*Place)->FSender = nullptr;
    FLinks.erase(Place);
}

// --- list ---------------------------------------------------------------------------------------------------------

TCustomImageList::TCustomImageList(TComponent* AOwner, int AWidth, int AHeight)
    : TComponent(AOwner), FWidth(std::max(1, AWidth)), FHeight(std::max(1, AHeight)) {}

TCustomImageList::~TCustomImageList() {
    Destroying();
    while (!FLinks.empty()) UnRegisterChanges(FLinks.back());
}

void TCustomImageList::SetSize(int AWidth, int AHeight) {
    AWidth = std::max(1, AWidth);
    AHeight = std::max(1, AHeight);
    if (AWidth == FWidth && AHeight == FHeight) return;
    FWidth = AWidth;
    FHeight = AHeight;
    FImages.clear();
    Change();
}

int TCustomImageList::Add(const TBitmap& Image, const TBitmap* Mask) {
    if (Image.GetEmpty()) return -1;
    const int First = GetCount();
    const int Count = std::max(1, Image.GetWidth() / FWidth);
    for (int I = 0; I < Count; ++I) FImages.push_back(CutBitmap(Image, Mask, I * FWidth, FWidth, FHeight));
    FHandleAllocated = true;
    Change();
    return First;
}

int TCustomImageList::AddMasked(const TBitmap& Image, TColor MaskColor) {
    TBitmap Masked(Image);
    if (MaskColor == clDefault) {
        Masked.SetTransparentMode(tmAuto);
        MaskColor = Masked.GetTransparentColor();
    }
    if (MaskColor != clNone) Masked.MakeTransparent(MaskColor);
    return Add(Masked);
}

void TCustomImageList::Replace(int Index, const TBitmap& Image, const TBitmap* Mask) {
    if (Index < 0 || Index >= GetCount())
        throw EListError(FormatText(SListIndexError, {std::to_string(Index)}));
    FImages[static_cast<std::size_t>(Index)] = CutBitmap(Image, Mask, 0, FWidth, FHeight);
    Change();
}

void TCustomImageList::Delete(int Index) {
    if (Index < -1 || Index >= GetCount())
        throw EListError(FormatText(SListIndexError, {std::to_string(Index)}));
    if (Index == -1) {
        FImages.clear();
    } else {
        FImages.erase(FImages.begin() + Index);
    }
    Change();
}

bool TCustomImageList::GetBitmap(int Index, TBitmap& Bitmap) const {
    if (Index < 0 || Index >= GetCount()) {
        Bitmap.Assign(nullptr);
        return false;
    }
    Bitmap = FImages[static_cast<std::size_t>(Index)];
    return true;
}

void TCustomImageList::Draw(TCanvas& Canvas, int X, int Y, int Index, int Overlay) const {
    for (const int Picture : {Index, Overlay}) {
        if (Picture < 0 || Picture >= GetCount()) continue;
        TBitmap Bitmap(FImages[static_cast<std::size_t>(Picture)]);
        Canvas.Draw(X, Y, &Bitmap);
    }
}

void TCustomImageList::EndUpdate() {
    if (FUpdateCount > 0) --FUpdateCount;
    if (FUpdateCount == 0 && FChanged) Change();
}

void TCustomImageList::Change() {
    if (FUpdateCount > 0) {
        FChanged = true;
        return;
    }
    FChanged = false;
    // A handler may add, remove or destroy links, or this list: after each call the lists are looked at afresh.
    const std::weak_ptr<void> Alive = FAlive;
    const std::vector<TChangeLink*> Links = FLinks;
    for (TChangeLink* Link : Links) {
        if (std::find(FLinks.begin(), FLinks.end(), Link) == FLinks.end()) continue;
        Link->Change();
        if (Alive.expired()) return;
    }
    FireEvent(OnChange, this);
}

} // namespace quill
