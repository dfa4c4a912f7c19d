#include "oledragdrop/OleObjectWrapper.h"

#include "host/base/Errors.h"
#include "host/transfer/FileLists.h"

#include <cstring>

namespace quill {

namespace {

// Registered formats and all others from here on are never served by a wrapper.
constexpr int FirstForeignFormat = 16;

bool IsMetafileFormat(int Format) { return Format == CF_METAFILEPICT || Format == CF_ENHMETAFILE; }

TNVFormatEtc FormatEtcOf(int Format, std::uint32_t MediumType) {
    TNVFormatEtc Result;
    Result.cfFormat = static_cast<std::uint16_t>(Format);
    Result.tymed = MediumType;
    return Result;
}

} // namespace

TOleObjectWrapper::TOleObjectWrapper(NV_IDataObject* DataObject) : FDataObject(DataObject) {}

TOleObjectWrapper::~TOleObjectWrapper() { ClearData(); }

void TOleObjectWrapper::ClearData() {
    FMetafile = nullptr;
    FBitmap = nullptr;
    FFileList = nullptr;
    FString.clear();
}

// --- setting ------------------------------------------------------------------------------------------------------

void TOleObjectWrapper::SetString(const std::string& S) {
    const std::string Copy = S; // it may be the one that goes
    ClearData();
    FString = Copy;
}

void TOleObjectWrapper::SetBitmap(const TBitmap* Bitmap) {
    auto Copy = Bitmap ? std::make_unique<TBitmap>(*Bitmap) : nullptr;
    ClearData();
    FBitmap = std::move(Copy);
}

void TOleObjectWrapper::SetMetafile(const TMetafile* Metafile) {
    auto Copy = Metafile ? std::make_unique<TMetafile>(*Metafile) : nullptr;
    ClearData();
    FMetafile = std::move(Copy);
}

void TOleObjectWrapper::SetData(const OleVariant& Data, int Format) {
    if (Format == CF_TEXT) {
        if (const auto* Text = std::get_if<std::string>(&Data)) SetString(*Text);
        if (const auto* Number = std::get_if<int>(&Data)) SetString(std::to_string(*Number));
        return;
    }
    const auto* Value = std::get_if<TOlePicture>(&Data);
    if (!Value || (Format != CF_BITMAP && !IsMetafileFormat(Format))) return;
    TPicture Picture;
    SetOlePicture(Picture, *Value);
    if (Format == CF_BITMAP)
        SetBitmap(Picture.GetBitmap());
    else
        SetMetafile(Picture.GetMetafile());
}

// --- reading ------------------------------------------------------------------------------------------------------

bool TOleObjectWrapper::HasDataFormat(int Format) const {
    if (!FDataObject) return false;
    for (const TNVFormatEtc& Entry : FormatsOf(*FDataObject.Get()))
        if (Entry.cfFormat == Format) return true;
    return false;
}

bool TOleObjectWrapper::Request(int Format, std::uint32_t MediumType, TNVStgMedium& Medium) const {
    const TInterfaceRef<NV_IDataObject> Object = FDataObject;
    return Object && Succeeded(Object->GetData(FormatEtcOf(Format, MediumType), Medium));
}

std::string TOleObjectWrapper::GetString() {
    if (FString.empty() && HasDataFormat(CF_TEXT)) {
        TScopedMedium Medium;
        if (Request(CF_TEXT, TYMED_HGLOBAL, Medium)) FString = TextOfMedium(Medium);
    }
    return FString;
}

TStrings* TOleObjectWrapper::GetFileList() {
    if (FFileList) return FFileList.get();
    if (!HasDataFormat(CF_HDROP)) return nullptr;
    TScopedMedium Medium; // freed also without a release interface: nobody else would
    if (!Request(CF_HDROP, TYMED_HGLOBAL, Medium)) throw Exception("IDataObject.GetData failed");
    auto List = std::make_unique<TStringList>();
    if (Medium.tymed == TYMED_HGLOBAL)
        for (const std::string& Name : ReadDropFiles(GlobalBytes(Medium.hGlobal))) List->Add(Name);
    FFileList = std::move(List);
    return FFileList.get();
}

TBitmap* TOleObjectWrapper::GetBitmap() {
    if (!FBitmap && HasDataFormat(CF_BITMAP)) {
        TScopedMedium Medium;
        auto Bitmap = std::make_unique<TBitmap>();
        if (Request(CF_BITMAP, TYMED_GDI, Medium) &&
            LoadFromClipboardFormat(*Bitmap, CF_BITMAP, Medium.hGlobal))
            FBitmap = std::move(Bitmap);
    }
    return FBitmap.get();
}

TMetafile* TOleObjectWrapper::GetMetafile() {
    for (const std::uint16_t Format : {CF_METAFILEPICT, CF_ENHMETAFILE}) {
        if (FMetafile || !HasDataFormat(Format)) continue;
        TScopedMedium Medium;
        auto Metafile = std::make_unique<TMetafile>();
        if (Request(Format, TYMED_GDI, Medium) && LoadFromClipboardFormat(*Metafile, Format, Medium.hGlobal))
            FMetafile = std::move(Metafile);
    }
    return FMetafile.get();
}

Variant TOleObjectWrapper::GetData(int Format) {
    // So required: the wrapper gives what it holds itself, and nothing of what its data object lists.
    if (HasDataFormat(Format)) return {};
    if (Format == CF_TEXT) return GetString();
    if (Format == CF_BITMAP || IsMetafileFormat(Format)) {
        const TGraphic* Graphic = nullptr;
        if (Format == CF_BITMAP)
            Graphic = GetBitmap();
        else
            Graphic = GetMetafile();
        TPicture Picture;
        Picture.SetGraphic(Graphic);
        TOlePicture Result;
        GetOlePicture(Picture, Result);
        return Result;
    }
    if (Format == CF_HDROP) {
        std::vector<std::string> Names;
        if (const TStrings* List = GetFileList())
            for (int I = 0; I < List->GetCount(); ++I) Names.push_back(List->Get(I));
        return Names;
    }
    return {};
}

// --- serving ------------------------------------------------------------------------------------------------------

HResult TOleObjectWrapper::GetInternalData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) {
    Medium = {};
    switch (FormatEtc.cfFormat < FirstForeignFormat ? FormatEtc.cfFormat : 0) {
    case CF_TEXT: {
        Medium.tymed = TYMED_HGLOBAL;
        Medium.hGlobal = GlobalAlloc(GMEM_SHARE | GMEM_ZEROINIT, FString.size());
        auto* Memory = static_cast<char*>(GlobalLock(Medium.hGlobal));
        if (!Memory) {
            Medium = {};
            return E_OUTOFMEMORY;
        }
        std::memcpy(Memory, FString.c_str(), FString.size() + 1);
        GlobalUnlock(Medium.hGlobal);
        return S_OK;
    }
    case CF_BITMAP: {
        if (!FBitmap) return DV_E_FORMATETC;
        std::uint16_t Format = FormatEtc.cfFormat;
        SaveToClipboardFormat(*FBitmap, Format, Medium.hGlobal);
        Medium.tymed = TYMED_GDI;
        return S_OK;
    }
    case CF_METAFILEPICT:
    case CF_ENHMETAFILE: {
        if (!FMetafile) return DV_E_FORMATETC;
        std::uint16_t Format = FormatEtc.cfFormat;
        SaveToClipboardFormat(*FMetafile, Format, Medium.hGlobal);
        Medium.tymed = TYMED_GDI;
        return S_OK;
    }
    case CF_HDROP: {
        TStringList Lines;
        Lines.SetText(GetString());
        if (Lines.GetCount() == 0) return DV_E_FORMATETC;
        TFileNames Names;
        for (int I = 0; I < Lines.GetCount(); ++I) Names.push_back(Lines[I]);
        const std::string Block = BuildDropFiles(Names);
        Medium.hGlobal = GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE, Block.size());
        auto* Memory = static_cast<char*>(GlobalLock(Medium.hGlobal));
        if (!Memory) return E_OUTOFMEMORY;
        std::memcpy(Memory, Block.data(), Block.size());
        GlobalUnlock(Medium.hGlobal);
        Medium.tymed = TYMED_HGLOBAL;
        return S_OK;
    }
    default:
        return DV_E_FORMATETC;
    }
}

} // namespace quill
