// The clipboard of the desktop.
#pragma once

#include "host/transfer/DataObjects.h"

#include <map>
#include <string>

namespace quill {

// Puts a data object on the clipboard (null empties it). Its data are fetched when somebody wants them; what was
// put there is gone when the program ends or the object goes, unless it was flushed. E_FAIL without a toolkit.
HResult OleSetClipboard(IDataObject* Data);
// What is on the clipboard; an object without formats when it is empty.
HResult OleGetClipboard(TInterfaceRef<IDataObject>& Data);
// Whether Data is what we put there and still there: S_OK or S_FALSE.
HResult OleIsCurrentClipboard(IDataObject* Data);
// Fetches all data of the object that we put there and lets go of it.
HResult OleFlushClipboard();

// The clipboard as the toolkit's programs use it: formats and handles. What is set between Open and the Close that
// belongs to it arrives as one; the first of it replaces what was there. Without Open each setter does both.
class TClipboard : public TPersistent {
public:
    ~TClipboard() override;
    // Brackets nest. Closing the outermost one frees the handles that GetAsHandle gave.
    void Open();
    void Close();
    void Clear();
    bool HasFormat(std::uint16_t Format);
    // A handle that stays the clipboard's, valid until it is closed or something else is set; 0 when there is
    // nothing in that format.
    THandle GetAsHandle(std::uint16_t Format);
    // Takes over the handle of a block or a picture.
    void SetAsHandle(std::uint16_t Format, THandle Value);
    // UTF-8; a text with a NUL ends there.
    std::string GetAsText();
    void SetAsText(const std::string& Value);
    // A bitmap, metafile or picture.
    void Assign(TPersistent* Source) override;

private:
    void FreeHandles();
    void Publish();
    int FOpenCount = 0;
    TInterfaceRef<IDataObject> FRead; // what GetAsHandle read from
    TInterfaceRef<IDataObject> FPending;
    TStoredDataObject* FStored = nullptr; // FPending
    bool FChanged = false;
    std::map<std::uint16_t, THandle> FHandles;
};

TClipboard& Clipboard();

// Opens the clipboard for its scope.
class TClipboardScope {
public:
    TClipboardScope() { Clipboard().Open(); }
    ~TClipboardScope() { Clipboard().Close(); }
    TClipboardScope(const TClipboardScope&) = delete;
    TClipboardScope& operator=(const TClipboardScope&) = delete;
};

} // namespace quill
