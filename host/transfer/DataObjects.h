// Data objects: the enumerator of formats, an object that stores data, and the bridges between data objects and what
// the desktop exchanges. Text is UTF-8 byte for byte, pictures travel as PNG and as the toolkit's image, vector
// pictures as SVG, lists of files as uri-lists, registered formats byte for byte.
#pragma once

#include "host/transfer/ClipboardFormats.h"
#include "host/transfer/GlobalMemory.h"

#include <functional>
#include <string>
#include <vector>

class QMimeData;

namespace quill {

// Enumerates a copy of format entries.
class TEnumFormatEtc : public TInterfacedObject<IEnumFORMATETC> {
public:
    explicit TEnumFormatEtc(std::vector<FORMATETC> Formats, std::size_t Index = 0)
        : FFormats(std::move(Formats)), FIndex(Index) {}
    HResult Next(std::uint32_t Count, FORMATETC* Elements, std::uint32_t* Fetched) override;
    HResult Skip(std::uint32_t Count) override;
    HResult Reset() override;
    HResult Clone(TInterfaceRef<IEnumFORMATETC>& Enum) override;

private:
    std::vector<FORMATETC> FFormats;
    std::size_t FIndex;
};

// The operations that read-only data objects answer alike; GetData and GetFormats are left.
class TReadOnlyDataObject : public TInterfacedObject<IDataObject> {
public:
    HResult GetDataHere(const FORMATETC&, STGMEDIUM&) override { return E_NOTIMPL; }
    HResult QueryGetData(const FORMATETC& Format) override;
    HResult GetCanonicalFormatEtc(const FORMATETC& Format, FORMATETC& Canonical) override;
    HResult SetData(const FORMATETC&, STGMEDIUM&, bool) override { return E_NOTIMPL; }
    HResult EnumFormatEtc(std::uint32_t Direction, TInterfaceRef<IEnumFORMATETC>& Enum) override;
    HResult DAdvise(const FORMATETC&, std::uint32_t, IAdviseSink*, std::uint32_t&) override {
        return OLE_E_ADVISENOTSUPPORTED;
    }
    HResult DUnadvise(std::uint32_t) override { return OLE_E_ADVISENOTSUPPORTED; }
    HResult EnumDAdvise(TInterfaceRef<IEnumSTATDATA>&) override { return OLE_E_ADVISENOTSUPPORTED; }

protected:
    virtual std::vector<FORMATETC> GetFormats() = 0;
};

// Holds data under handles that it owns.
class TStoredDataObject : public TReadOnlyDataObject {
public:
    ~TStoredDataObject() override;
    HResult GetData(const FORMATETC& Format, STGMEDIUM& Medium) override;
    // Takes over the handle of a block or picture; what was stored for the format before goes.
    void Store(std::uint16_t Format, THandle Handle);
    bool IsEmpty() const { return FItems.empty(); }
    // Stores copies of all that Source gives.
    void CopyFrom(IDataObject& Source);

protected:
    std::vector<FORMATETC> GetFormats() override;

private:
    struct TItem {
        FORMATETC Format;
        THandle Handle;
    };
    std::vector<TItem> FItems;
};

// The formats of a data object; empty when it cannot tell.
std::vector<FORMATETC> FormatsOf(IDataObject& Object);
// The text of a medium: up to its first NUL, or all of the block.
std::string_view TextOfMedium(const STGMEDIUM& Medium);
// The clipboard's form of a picture: stores the format that fits it and a new handle. LoadFrom... is the way back;
// false, and nothing changes, when the handle stands for something else.
void SaveToClipboardFormat(const TBitmap& Bitmap, std::uint16_t& Format, THandle& Data);
void SaveToClipboardFormat(const TMetafile& Metafile, std::uint16_t& Format, THandle& Data);
bool LoadFromClipboardFormat(TBitmap& Bitmap, std::uint16_t Format, THandle Data);
bool LoadFromClipboardFormat(TMetafile& Metafile, std::uint16_t Format, THandle Data);

// --- bridges (for the sources of this folder) ---------------------------------------------------------------------

// What the desktop gets from a data object. Every type that it offers was asked for once, at the first look at the
// types, and was there; the data themselves are fetched again whenever somebody wants them. Owned by whoever it is
// handed to. Asked is called whenever that happens.
QMimeData* NewMimeData(IDataObject* Object, std::function<void()> Asked = {});
// Ends the link to the object: from now on there are no data.
void CutOff(QMimeData* Data);

// A data object over what the desktop offers. If Data came from NewMimeData in this program, the original. Data may
// go before the object, which then has none; EndAccess says that it may not be asked any more.
TInterfaceRef<IDataObject> DataObjectOf(const QMimeData* Data);
void EndAccess(IDataObject* Object);

} // namespace quill
