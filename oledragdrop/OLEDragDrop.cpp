#include "host/transfer/DragDrop.h"
#include "oledragdrop/InterfacedComponent.h"
#include "oledragdrop/Interfaces.h"

namespace quill {

namespace {

int UnitUsers = 0;

// Opens data transfer for the life of the program; a second one does nothing.
struct TUnit {
    TUnit() {
        if (UnitUsers++ == 0) OleInitialize();
    }
    ~TUnit() {
        if (--UnitUsers == 0) OleUninitialize();
    }
    TUnit(const TUnit&) = delete;
    TUnit& operator=(const TUnit&) = delete;
} Unit;

} // namespace

const std::uint16_t CF_PREFERREDDROPEFFECT = RegisterClipboardFormatA("Preferred DropEffect");

std::uint32_t EffectsOf(TDragTypes Types) {
    std::uint32_t Result = DROPEFFECT_NONE;
    if (Types.Contains(dtCopy)) Result |= DROPEFFECT_COPY;
    if (Types.Contains(dtMove)) Result |= DROPEFFECT_MOVE;
    if (Types.Contains(dtLink)) Result |= DROPEFFECT_LINK;
    return Result;
}

// --- components with interfaces -----------------------------------------------------------------------------------

HResult TInterfacedComponent::QueryInterface(const TGUID& Id, void*& Obj) {
    Obj = nullptr;
    return GetInterface(Id, Obj) ? S_OK : E_NOINTERFACE;
}

int TInterfacedComponent::_Release() {
    const int Count = --FRefCount;
    if (Count == 0 && !GetOwner()) delete this;
    return Count;
}

} // namespace quill
