// Data of one's own, or those of a data object, as a program reads them.
#pragma once

#include "host/base/Strings.h"
#include "host/graphics/Pictures.h"
#include "host/transfer/Variants.h"
#include "oledragdrop/Interfaces.h"

#include <memory>
#include <string>

namespace quill {

// Holds a string, a bitmap or a metafile to be handed out (GetInternalData), at most one of them, or wraps a data
// object that was received and reads it.
class TOleObjectWrapper : public TObject {
public:
    // Null for one that holds data of its own only.
    explicit TOleObjectWrapper(NV_IDataObject* DataObject);
    ~TOleObjectWrapper() override;
    TOleObjectWrapper(const TOleObjectWrapper&) = delete;
    TOleObjectWrapper& operator=(const TOleObjectWrapper&) = delete;

    NV_IDataObject* DataObject() const { return FDataObject.Get(); }
    // Drops what is held and what was read; lists and pictures that were given out go.
    void ClearData();
    // Each keeps a copy in place of all that was held. A null picture leaves nothing held.
    void SetString(const std::string& S);
    void SetBitmap(const TBitmap* Bitmap);
    void SetMetafile(const TMetafile* Metafile);
    // Text (1) from a text; bitmap (2) and metafile (3, 14) from a picture. Other formats, and values of another kind,
    // are ignored.
    void SetData(const OleVariant& Data, int Format);

    // Whether the data object lists the format; false without one.
    bool HasDataFormat(int Format) const;
    // The held string, or if that is empty the text of the data object, which is held then.
    std::string GetString();
    // The names that the data object offers, read once; null when it offers none. The list stays the wrapper's.
    // Raises Exception "IDataObject.GetData failed" when the object offers files and gives none.
    TStrings* GetFileList();
    // What is held, or else what the data object offers; null for neither. Stays the wrapper's.
    TBitmap* GetBitmap();
    TMetafile* GetMetafile();
    // The data that the wrapper itself holds: a text (1), a picture (2, 3, 14), a list of file names (15). Only for a
    // format that the wrapped data object does not list: what it lists comes back unassigned.
    Variant GetData(int Format);

    // Serves what is held. The medium is the caller's on success.
    // Text goes into a block of exactly its length; its terminating NUL stands behind the block. Files are served
    // when the held string has lines, each of which is a file name.
    HResult GetInternalData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium);

private:
    bool Request(int Format, std::uint32_t MediumType, TNVStgMedium& Medium) const;

    TInterfaceRef<NV_IDataObject> FDataObject;
    std::string FString;
    std::unique_ptr<TStringList> FFileList;
    std::unique_ptr<TMetafile> FMetafile;
    std::unique_ptr<TBitmap> FBitmap;
};

} // namespace quill
