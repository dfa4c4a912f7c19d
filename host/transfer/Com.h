// The protocol of data transfer: reference-counted interfaces, result codes and the records that describe data.
//
// Interfaces keep the platform's method order. Their methods never raise; they return result codes.
#pragma once

#include "host/base/Objects.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace quill {

// --- results ------------------------------------------------------------------------------------------------------

using HResult = std::int32_t;
constexpr HResult MakeHResult(std::uint32_t Code) { return static_cast<HResult>(Code); }

inline constexpr HResult S_OK = 0;
inline constexpr HResult S_FALSE = 1;
inline constexpr HResult E_NOTIMPL = MakeHResult(0x80004001);
inline constexpr HResult E_NOINTERFACE = MakeHResult(0x80004002);
inline constexpr HResult E_FAIL = MakeHResult(0x80004005);
inline constexpr HResult E_UNEXPECTED = MakeHResult(0x8000FFFF);
inline constexpr HResult E_OUTOFMEMORY = MakeHResult(0x8007000E);
inline constexpr HResult E_INVALIDARG = MakeHResult(0x80070057);
inline constexpr HResult OLE_E_ADVISENOTSUPPORTED = MakeHResult(0x80040003);
inline constexpr HResult DV_E_FORMATETC = MakeHResult(0x80040064);
inline constexpr HResult DV_E_TYMED = MakeHResult(0x80040069);
inline constexpr HResult DV_E_DVASPECT = MakeHResult(0x8004006B);
inline constexpr HResult DATA_S_SAMEFORMATETC = MakeHResult(0x00040130);
inline constexpr HResult DRAGDROP_E_NOTREGISTERED = MakeHResult(0x80040100);
inline constexpr HResult DRAGDROP_E_ALREADYREGISTERED = MakeHResult(0x80040101);
inline constexpr HResult DRAGDROP_E_INVALIDHWND = MakeHResult(0x80040102);
inline constexpr HResult DRAGDROP_S_DROP = MakeHResult(0x00040100);
inline constexpr HResult DRAGDROP_S_CANCEL = MakeHResult(0x00040101);
inline constexpr HResult DRAGDROP_S_USEDEFAULTCURSORS = MakeHResult(0x00040102);
inline constexpr HResult CO_E_NOTINITIALIZED = MakeHResult(0x800401F0);

constexpr bool Succeeded(HResult Result) { return Result >= 0; }

// --- interfaces ---------------------------------------------------------------------------------------------------

// The identity of an interface.
struct TGUID {
    std::uint32_t D1 = 0;
    std::uint16_t D2 = 0;
    std::uint16_t D3 = 0;
    std::uint64_t D4 = 0;
    friend constexpr bool operator==(const TGUID&, const TGUID&) = default;
};
// The platform's own interfaces differ in their first number only.
constexpr TGUID PlatformGUID(std::uint32_t Number) { return {Number, 0, 0, 0xC000000000000046}; }

class IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0);
    // Stores the interface with that identity in Obj, with a reference for the caller; null and E_NOINTERFACE when the
    // object has no such interface.
    virtual HResult QueryInterface(const TGUID& Id, void*& Obj) = 0;
    // Both return the new count.
    virtual int _AddRef() = 0;
    virtual int _Release() = 0;

protected:
    ~IInterface() = default;
};

// Holds a reference to an interface. A component that implements it may be destroyed by its owner whatever the count
// says: the reference is null from then on.
template <class T>
class TInterfaceRef {
public:
    TInterfaceRef() = default;
    TInterfaceRef(T* Object) : FObject(Object) {
        if (!FObject) return;
        if (auto* Component = dynamic_cast<TComponent*>(FObject))
            FGuard = std::make_unique<TComponentGuard>(Component);
        FObject->_AddRef();
    }
    TInterfaceRef(const TInterfaceRef& Other) : TInterfaceRef(Other.Get()) {}
    TInterfaceRef(TInterfaceRef&& Other) noexcept
        : FObject(std::exchange(Other.FObject, nullptr)), FGuard(std::move(Other.FGuard)) {}
    TInterfaceRef& operator=(TInterfaceRef Other) noexcept {
        std::swap(FObject, Other.FObject);
        std::swap(FGuard, Other.FGuard);
        return *this;
    }
    ~TInterfaceRef() {
        if (T* Object = Get()) Object->_Release();
    }

    T* Get() const { return FGuard && FGuard->IsGone() ? nullptr : FObject; }
    T* operator->() const { return Get(); }
    explicit operator bool() const { return Get() != nullptr; }
    void Reset() { *this = TInterfaceRef(); }

private:
    T* FObject = nullptr;
    std::unique_ptr<TComponentGuard> FGuard;
};

// Answers QueryInterface from a list of interfaces that Object implements; the first one stands for IInterface.
template <class TFirst, class... TRest, class TImplementor>
bool FindInterface(TImplementor* Object, const TGUID& Id, void*& Obj) {
    const auto Take = [&]<class T>(T* Found) {
        Found->_AddRef();
        Obj = Found;
        return true;
    };
    if (Id == IInterface::IID || Id == TFirst::IID) return Take(static_cast<TFirst*>(Object));
    return ((Id == TRest::IID && Take(static_cast<TRest*>(Object))) || ...);
}

// An object that lives as long as it is referenced: made with new, first held by a TInterfaceRef.
template <class T>
class TInterfacedObject : public TObject, public T {
public:
    HResult QueryInterface(const TGUID& Id, void*& Obj) override {
        Obj = nullptr;
        return FindInterface<T>(this, Id, Obj) ? S_OK : E_NOINTERFACE;
    }
    int _AddRef() override { return ++FRefCount; }
    int _Release() override {
        const int Count = --FRefCount;
        if (Count == 0) delete this;
        return Count;
    }

protected:
    ~TInterfacedObject() override = default;

private:
    std::atomic<int> FRefCount{0};
};

// --- records ------------------------------------------------------------------------------------------------------

// A number from the table of handles (host/transfer/GlobalMemory.h); 0 is none.
using THandle = std::uint32_t;

inline constexpr std::uint32_t TYMED_NULL = 0;
inline constexpr std::uint32_t TYMED_HGLOBAL = 1;
inline constexpr std::uint32_t TYMED_GDI = 16;
inline constexpr std::uint32_t DVASPECT_CONTENT = 1;
inline constexpr std::uint32_t DATADIR_GET = 1;

// The device that data is made for; nobody here asks for one.
struct DVTARGETDEVICE {
    std::uint32_t tdSize = 0;
    std::uint16_t tdDriverNameOffset = 0;
    std::uint16_t tdDeviceNameOffset = 0;
    std::uint16_t tdPortNameOffset = 0;
    std::uint16_t tdExtDevmodeOffset = 0;
    std::uint8_t tdData[1] = {};
};

// What data is asked for or offered.
struct FORMATETC {
    std::uint16_t cfFormat = 0; // clipboard format
    DVTARGETDEVICE* ptd = nullptr;
    std::uint32_t dwAspect = DVASPECT_CONTENT;
    std::int32_t lindex = -1;
    std::uint32_t tymed = 0; // medium types, a mask
};

// Data and where it is. Freed with ReleaseStgMedium.
struct STGMEDIUM {
    std::uint32_t tymed = TYMED_NULL;
    THandle hGlobal = 0; // or the handle of a picture (TYMED_GDI)
    // Owns the data when assigned: releasing it frees them.
    TInterfaceRef<IInterface> unkForRelease;
};

class IAdviseSink : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x10F);
    virtual void OnDataChange(const FORMATETC& Format, STGMEDIUM& Medium) = 0;
    virtual void OnViewChange(std::uint32_t Aspect, std::int32_t Index) = 0;
    virtual void OnRename(IInterface* Moniker) = 0;
    virtual void OnSave() = 0;
    virtual void OnClose() = 0;

protected:
    ~IAdviseSink() = default;
};

// One connection of a sink to data.
struct STATDATA {
    FORMATETC formatetc;
    std::uint32_t advf = 0;
    TInterfaceRef<IAdviseSink> advSink;
    std::uint32_t dwConnection = 0;
};

// Enumerators: Next stores up to Count elements and tells in Fetched how many; S_FALSE when there were fewer.
class IEnumFORMATETC : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x103);
    virtual HResult Next(std::uint32_t Count, FORMATETC* Elements, std::uint32_t* Fetched) = 0;
    virtual HResult Skip(std::uint32_t Count) = 0;
    virtual HResult Reset() = 0;
    virtual HResult Clone(TInterfaceRef<IEnumFORMATETC>& Enum) = 0;

protected:
    ~IEnumFORMATETC() = default;
};

class IEnumSTATDATA : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x105);
    virtual HResult Next(std::uint32_t Count, STATDATA* Elements, std::uint32_t* Fetched) = 0;
    virtual HResult Skip(std::uint32_t Count) = 0;
    virtual HResult Reset() = 0;
    virtual HResult Clone(TInterfaceRef<IEnumSTATDATA>& Enum) = 0;

protected:
    ~IEnumSTATDATA() = default;
};

// Data in one or several formats.
class IDataObject : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x10E);
    // The caller owns Medium on success.
    virtual HResult GetData(const FORMATETC& Format, STGMEDIUM& Medium) = 0;
    virtual HResult GetDataHere(const FORMATETC& Format, STGMEDIUM& Medium) = 0;
    virtual HResult QueryGetData(const FORMATETC& Format) = 0;
    virtual HResult GetCanonicalFormatEtc(const FORMATETC& Format, FORMATETC& Canonical) = 0;
    // With Release the object takes over Medium on success.
    virtual HResult SetData(const FORMATETC& Format, STGMEDIUM& Medium, bool Release) = 0;
    virtual HResult EnumFormatEtc(std::uint32_t Direction, TInterfaceRef<IEnumFORMATETC>& Enum) = 0;
    virtual HResult DAdvise(const FORMATETC& Format, std::uint32_t Flags, IAdviseSink* Sink,
                            std::uint32_t& Connection) = 0;
    virtual HResult DUnadvise(std::uint32_t Connection) = 0;
    virtual HResult EnumDAdvise(TInterfaceRef<IEnumSTATDATA>& Enum) = 0;

protected:
    ~IDataObject() = default;
};

// Steers a drag. KeyState is a mask of MK_ bits (host/transfer/DragDrop.h).
class IDropSource : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x121);
    // S_OK to go on, DRAGDROP_S_DROP, or DRAGDROP_S_CANCEL.
    virtual HResult QueryContinueDrag(bool EscapePressed, std::uint32_t KeyState) = 0;
    // What the target would do. DRAGDROP_S_USEDEFAULTCURSORS, or S_OK when the source shows a cursor of its own.
    virtual HResult GiveFeedback(std::uint32_t Effect) = 0;

protected:
    ~IDropSource() = default;
};

// Is told what happens to a drag over a control. Effect comes in as what the source allows and goes out as what a
// drop would do (DROPEFFECT_ numbers). Points are screen coordinates.
class IDropTarget : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x122);
    virtual HResult DragEnter(IDataObject* DataObject, std::uint32_t KeyState, TPoint Pt,
                              std::uint32_t& Effect) = 0;
    virtual HResult DragOver(std::uint32_t KeyState, TPoint Pt, std::uint32_t& Effect) = 0;
    virtual HResult DragLeave() = 0;
    virtual HResult Drop(IDataObject* DataObject, std::uint32_t KeyState, TPoint Pt,
                         std::uint32_t& Effect) = 0;

protected:
    ~IDropTarget() = default;
};

} // namespace quill
