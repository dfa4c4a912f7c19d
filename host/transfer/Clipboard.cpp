#include "host/transfer/Clipboard.h"

#include "host/base/Errors.h"
#include "host/base/Texts.h"
#include "host/graphics/Pictures.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>

namespace quill {

namespace {

QPointer<QMimeData> Ours; // what we put there last

QClipboard* Board() { return qGuiApp ? QGuiApplication::clipboard() : nullptr; }

bool IsOurs() { return Ours && Board() && Board()->mimeData() == Ours; }

} // namespace

HResult OleSetClipboard(IDataObject* Data) {
    QClipboard* const Target = Board();
    if (!Target) return E_FAIL;
    if (!Data) {
        Ours = nullptr;
        Target->clear();
        return S_OK;
    }
    Ours = NewMimeData(Data);
    Target->setMimeData(Ours);
    return S_OK;
}

HResult OleGetClipboard(TInterfaceRef<IDataObject>& Data) {
    Data.Reset();
    if (!Board()) return E_FAIL;
    Data = DataObjectOf(Board()->mimeData());
    // Empty, or the object that was put there has gone.
    if (!Data) Data = TInterfaceRef<IDataObject>(new TStoredDataObject);
    return S_OK;
}

HResult OleIsCurrentClipboard(IDataObject* Data) {
    return Data && IsOurs() && DataObjectOf(Ours).Get() == Data ? S_OK : S_FALSE;
}

HResult OleFlushClipboard() {
    if (!IsOurs()) return S_OK;
    const TInterfaceRef<IDataObject> Original = DataObjectOf(Ours);
    if (!Original) return S_OK;
    auto* const Copy = new TStoredDataObject;
    const TInterfaceRef<IDataObject> Keep(Copy);
    Copy->CopyFrom(*Original.Get());
    return OleSetClipboard(Copy);
}

// --- the toolkit's clipboard --------------------------------------------------------------------------------------

TClipboard& Clipboard() {
    static TClipboard* const Result = new TClipboard; // its handles and the toolkit may go in any order
    return *Result;
}

TClipboard::~TClipboard() { FreeHandles(); }

void TClipboard::Open() {
    // What was read before the bracket may have been replaced since.
    if (FOpenCount++ == 0) FreeHandles();
}

void TClipboard::Close() {
    if (FOpenCount == 0 || --FOpenCount > 0) return;
    FreeHandles();
    Publish();
}

void TClipboard::Publish() {
    const TInterfaceRef<IDataObject> Pending = std::exchange(FPending, {});
    const bool IsEmpty = !FStored || FStored->IsEmpty();
    FStored = nullptr;
    if (std::exchange(FChanged, false)) OleSetClipboard(IsEmpty ? nullptr : Pending.Get());
}

void TClipboard::FreeHandles() {
    for (const auto& [Format, Handle] : FHandles)
        if (!GlobalFree(Handle)) DeleteObject(Handle);
    FHandles.clear();
    FRead.Reset();
}

void TClipboard::Clear() {
    Open();
    FreeHandles();
    FPending.Reset();
    FStored = nullptr;
    FChanged = true;
    Close();
}

bool TClipboard::HasFormat(std::uint16_t Format) {
    TInterfaceRef<IDataObject> Data = FChanged ? FPending : TInterfaceRef<IDataObject>();
    if (!FChanged && !Succeeded(OleGetClipboard(Data))) return false;
    if (!Data) return false;
    for (const FORMATETC& Entry : FormatsOf(*Data.Get()))
        if (Entry.cfFormat == Format) return true;
    return false;
}

THandle TClipboard::GetAsHandle(std::uint16_t Format) {
    if (FOpenCount == 0) FreeHandles(); // those of the last call
    if (const auto Known = FHandles.find(Format); Known != FHandles.end()) return Known->second;
    if (FChanged) FRead = FPending;
    if (!FRead && !FChanged) OleGetClipboard(FRead);
    if (!FRead) return 0;
    FORMATETC Request;
    Request.cfFormat = Format;
    Request.tymed = TYMED_HGLOBAL | TYMED_GDI;
    TScopedMedium Medium;
    if (!Succeeded(FRead->GetData(Request, Medium))) return 0;
    const THandle Copy = DuplicateHandle(Medium.hGlobal);
    if (Copy) FHandles[Format] = Copy;
    return Copy;
}

void TClipboard::SetAsHandle(std::uint16_t Format, THandle Value) {
    if (Value == 0) return;
    Open();
    FreeHandles();
    if (!FStored) {
        FStored = new TStoredDataObject;
        FPending = TInterfaceRef<IDataObject>(FStored);
    }
    FStored->Store(Format, Value);
    FChanged = true;
    Close();
}

std::string TClipboard::GetAsText() {
    const TClipboardScope Scope;
    STGMEDIUM Medium;
    Medium.hGlobal = GetAsHandle(CF_TEXT);
    return std::string(TextOfMedium(Medium));
}

void TClipboard::SetAsText(const std::string& Value) { SetAsHandle(CF_TEXT, CopyToGlobal(Value, 1)); }

void TClipboard::Assign(TPersistent* Source) {
    std::uint16_t Format = 0;
    THandle Handle = 0;
    if (const auto* Picture = dynamic_cast<TPicture*>(Source)) Source = Picture->GetGraphic();
    if (const auto* Bitmap = dynamic_cast<TBitmap*>(Source)) {
        SaveToClipboardFormat(*Bitmap, Format, Handle);
    } else if (const auto* Metafile = dynamic_cast<TMetafile*>(Source)) {
        SaveToClipboardFormat(*Metafile, Format, Handle);
    } else {
        TPersistent::Assign(Source);
    }
    SetAsHandle(Format, Handle);
}

} // namespace quill
