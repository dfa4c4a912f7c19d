#include "host/transfer/DataObjects.h"

#include "host/graphics/Pictures.h"

#include <algorithm>

namespace quill {

// --- enumerator ---------------------------------------------------------------------------------------------------

HResult TEnumFormatEtc::Next(std::uint32_t Count, FORMATETC* Elements, std::uint32_t* Fetched) {
    std::uint32_t Done = 0;
    if (Elements) {
        for (; Done < Count && FIndex < FFormats.size(); ++Done) Elements[Done] = FFormats[FIndex++];
    }
    if (Fetched) *Fetched = Done;
    return Done == Count ? S_OK : S_FALSE;
}

HResult TEnumFormatEtc::Skip(std::uint32_t Count) {
    const std::size_t Left = FFormats.size() - FIndex;
    FIndex += std::min<std::size_t>(Count, Left);
    return Count <= Left ? S_OK : S_FALSE;
}

HResult TEnumFormatEtc::Reset() {
    FIndex = 0;
    return S_OK;
}

HResult TEnumFormatEtc::Clone(TInterfaceRef<IEnumFORMATETC>& Enum) {
    Enum = TInterfaceRef<IEnumFORMATETC>(new TEnumFormatEtc(FFormats, FIndex));
    return S_OK;
}

// --- read-only objects --------------------------------------------------------------------------------------------

HResult TReadOnlyDataObject::QueryGetData(const FORMATETC& Format) {
    for (const FORMATETC& Entry : GetFormats())
        if (Entry.cfFormat == Format.cfFormat && Entry.dwAspect == Format.dwAspect &&
            (Entry.tymed & Format.tymed))
            return S_OK;
    return DV_E_FORMATETC;
}

HResult TReadOnlyDataObject::GetCanonicalFormatEtc(const FORMATETC& Format, FORMATETC& Canonical) {
    Canonical = Format;
    Canonical.ptd = nullptr;
    return DATA_S_SAMEFORMATETC;
}

HResult TReadOnlyDataObject::EnumFormatEtc(std::uint32_t Direction, TInterfaceRef<IEnumFORMATETC>& Enum) {
    if (Direction != DATADIR_GET) return E_NOTIMPL;
    Enum = TInterfaceRef<IEnumFORMATETC>(new TEnumFormatEtc(GetFormats()));
    return S_OK;
}

// --- stored data --------------------------------------------------------------------------------------------------

namespace {

void FreeHandle(THandle Handle) {
    if (!GlobalFree(Handle)) DeleteObject(Handle);
}

std::uint32_t MediumTypeOf(THandle Handle) {
    return BitmapOfHandle(Handle) || MetafileOfHandle(Handle) ? TYMED_GDI : TYMED_HGLOBAL;
}

} // namespace

TStoredDataObject::~TStoredDataObject() {
    for (const TItem& Item : FItems) FreeHandle(Item.Handle);
}

void TStoredDataObject::Store(std::uint16_t Format, THandle Handle) {
    std::erase_if(FItems, [&](const TItem& Item) {
        if (Item.Format.cfFormat != Format) return false;
        if (Item.Handle != Handle) FreeHandle(Item.Handle);
        return true;
    });
    FORMATETC Entry;
    Entry.cfFormat = Format;
    Entry.tymed = MediumTypeOf(Handle);
    FItems.push_back({Entry, Handle});
}

HResult TStoredDataObject::GetData(const FORMATETC& Format, STGMEDIUM& Medium) {
    Medium = {};
    for (const TItem& Item : FItems) {
        if (Item.Format.cfFormat != Format.cfFormat) continue;
        if ((Item.Format.tymed & Format.tymed) == 0) return DV_E_TYMED;
        Medium.hGlobal = DuplicateHandle(Item.Handle);
        if (Medium.hGlobal == 0) return E_OUTOFMEMORY;
        Medium.tymed = Item.Format.tymed;
        return S_OK;
    }
    return DV_E_FORMATETC;
}

void TStoredDataObject::CopyFrom(IDataObject& Source) {
    for (FORMATETC Format : FormatsOf(Source)) {
        const auto IsKnown = [&](const TItem& Item) { return Item.Format.cfFormat == Format.cfFormat; };
        if (std::any_of(FItems.begin(), FItems.end(), IsKnown)) continue;
        Format.tymed = TYMED_HGLOBAL | TYMED_GDI;
        TScopedMedium Medium;
        if (!Succeeded(Source.GetData(Format, Medium))) continue;
        if (const THandle Copy = DuplicateHandle(Medium.hGlobal)) Store(Format.cfFormat, Copy);
    }
}

std::vector<FORMATETC> TStoredDataObject::GetFormats() {
    std::vector<FORMATETC> Result;
    for (const TItem& Item : FItems) Result.push_back(Item.Format);
    return Result;
}

// --- helpers ------------------------------------------------------------------------------------------------------

std::vector<FORMATETC> FormatsOf(IDataObject& Object) {
    // An object that never stops enumerating is cut off.
    constexpr std::size_t Most = 10000;
    std::vector<FORMATETC> Result;
    TInterfaceRef<IEnumFORMATETC> Enum;
    if (!Succeeded(Object.EnumFormatEtc(DATADIR_GET, Enum)) || !Enum) return Result;
    Enum->Reset();
    FORMATETC Entry;
    std::uint32_t Fetched = 0;
    while (Result.size() < Most && Enum->Next(1, &Entry, &Fetched) == S_OK && Fetched == 1) {
        Entry.ptd = nullptr; // belongs to the object
        Result.push_back(Entry);
    }
    return Result;
}

std::string_view TextOfMedium(const STGMEDIUM& Medium) {
    const std::string_view Bytes = GlobalBytes(Medium.hGlobal);
    return Bytes.substr(0, Bytes.find('\0'));
}

void SaveToClipboardFormat(const TBitmap& Bitmap, std::uint16_t& Format, THandle& Data) {
    Format = CF_BITMAP;
    Data = CreateBitmapHandle(Bitmap);
}

void SaveToClipboardFormat(const TMetafile& Metafile, std::uint16_t& Format, THandle& Data) {
    Format = CF_ENHMETAFILE;
    Data = CreateMetafileHandle(Metafile);
}

bool LoadFromClipboardFormat(TBitmap& Bitmap, std::uint16_t Format, THandle Data) {
    const TBitmap* Source = BitmapOfHandle(Data);
    if (Format != CF_BITMAP || !Source) return false;
    Bitmap = *Source;
    return true;
}

bool LoadFromClipboardFormat(TMetafile& Metafile, std::uint16_t Format, THandle Data) {
    const TMetafile* Source = MetafileOfHandle(Data);
    if ((Format != CF_ENHMETAFILE && Format != CF_METAFILEPICT) || !Source) return false;
    Metafile = *Source;
    return true;
}

} // namespace quill
