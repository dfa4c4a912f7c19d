// The data-transfer interfaces and records of this unit, under its own names.
//
// An interface of C++ is its type, so what the host toolkit calls into is named here and not declared again: a second
// declaration would need an adapter object at every border. What only this unit knows is declared below.
#pragma once

#include "host/transfer/Com.h"
#include "host/transfer/DataObjects.h"

namespace quill {

using NV_IDataObject = IDataObject;
using NV_IDropSource = IDropSource;
using NV_IDropTarget = IDropTarget;
using NV_IEnumFORMATETC = IEnumFORMATETC;
using NV_IEnumSTATDATA = IEnumSTATDATA;
using NV_IAdviseSink = IAdviseSink;

using TNVFormatEtc = FORMATETC;
using TNVStgMedium = STGMEDIUM;
using TDVTargetDevice = DVTARGETDEVICE;
using PDVTargetDevice = DVTARGETDEVICE*;
using TStatData = STATDATA;

// --- declared for completeness; dragging does not use them --------------------------------------------------------

class NV_IMoniker;
class NV_IEnumMoniker;

class NV_IPersist : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x10C);
    virtual HResult GetClassID(TGUID& ClassID) = 0;

protected:
    ~NV_IPersist() = default;
};

class NV_IStream : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x0C);
    virtual HResult Read(void* Buffer, std::uint32_t Count, std::uint32_t* Done) = 0;
    virtual HResult Write(const void* Buffer, std::uint32_t Count, std::uint32_t* Done) = 0;
    virtual HResult Seek(std::int64_t Move, std::uint32_t Origin, std::uint64_t* NewPosition) = 0;
    virtual HResult SetSize(std::uint64_t NewSize) = 0;
    virtual HResult CopyTo(NV_IStream* Target, std::uint64_t Count, std::uint64_t* BytesRead,
                           std::uint64_t* Written) = 0;
    virtual HResult Commit(std::uint32_t Flags) = 0;
    virtual HResult Revert() = 0;
    virtual HResult LockRegion(std::uint64_t Offset, std::uint64_t Count, std::uint32_t Kind) = 0;
    virtual HResult UnlockRegion(std::uint64_t Offset, std::uint64_t Count, std::uint32_t Kind) = 0;
    virtual HResult Stat(void* Statistics, std::uint32_t Flags) = 0;
    virtual HResult Clone(TInterfaceRef<NV_IStream>& Stream) = 0;

protected:
    ~NV_IStream() = default;
};

class NV_IPersistStreamX : public NV_IPersist {
public:
    static constexpr TGUID IID = PlatformGUID(0x109);
    virtual HResult IsDirty() = 0;
    virtual HResult Load(NV_IStream* Stream) = 0;
    virtual HResult Save(NV_IStream* Stream, bool ClearDirty) = 0;
    virtual HResult GetSizeMax(std::uint64_t& Size) = 0;

protected:
    ~NV_IPersistStreamX() = default;
};

class NV_IRunningObjectTable : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x10);
    virtual HResult Register(std::uint32_t Flags, IInterface* Object, NV_IMoniker* Name,
                             std::uint32_t& Registered) = 0;
    virtual HResult Revoke(std::uint32_t Registered) = 0;
    virtual HResult IsRunning(NV_IMoniker* Name) = 0;
    virtual HResult GetObject(NV_IMoniker* Name, TInterfaceRef<IInterface>& Object) = 0;
    virtual HResult NoteChangeTime(std::uint32_t Registered, std::uint64_t FileTime) = 0;
    virtual HResult GetTimeOfLastChange(NV_IMoniker* Name, std::uint64_t& FileTime) = 0;
    virtual HResult EnumRunning(TInterfaceRef<NV_IEnumMoniker>& Enum) = 0;

protected:
    ~NV_IRunningObjectTable() = default;
};

class NV_IEnumString : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x101);
    virtual HResult Next(std::uint32_t Count, std::string* Elements, std::uint32_t* Fetched) = 0;
    virtual HResult Skip(std::uint32_t Count) = 0;
    virtual HResult Reset() = 0;
    virtual HResult Clone(TInterfaceRef<NV_IEnumString>& Enum) = 0;

protected:
    ~NV_IEnumString() = default;
};

class NV_IBindCtx : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x0E);
    virtual HResult RegisterObjectBound(IInterface* Object) = 0;
    virtual HResult RevokeObjectBound(IInterface* Object) = 0;
    virtual HResult ReleaseBoundObjects() = 0;
    virtual HResult SetBindOptions(const void* Options) = 0;
    virtual HResult GetBindOptions(void* Options) = 0;
    virtual HResult GetRunningObjectTable(TInterfaceRef<NV_IRunningObjectTable>& Table) = 0;
    virtual HResult RegisterObjectParam(const std::string& Key, IInterface* Object) = 0;
    virtual HResult GetObjectParam(const std::string& Key, TInterfaceRef<IInterface>& Object) = 0;
    virtual HResult EnumObjectParam(TInterfaceRef<NV_IEnumString>& Enum) = 0;
    virtual HResult RevokeObjectParam(const std::string& Key) = 0;

protected:
    ~NV_IBindCtx() = default;
};

class NV_IEnumMoniker : public IInterface {
public:
    static constexpr TGUID IID = PlatformGUID(0x102);
    virtual HResult Next(std::uint32_t Count, TInterfaceRef<NV_IMoniker>* Elements,
                         std::uint32_t* Fetched) = 0;
    virtual HResult Skip(std::uint32_t Count) = 0;
    virtual HResult Reset() = 0;
    virtual HResult Clone(TInterfaceRef<NV_IEnumMoniker>& Enum) = 0;

protected:
    ~NV_IEnumMoniker() = default;
};

class NV_IMoniker : public NV_IPersistStreamX {
public:
    static constexpr TGUID IID = PlatformGUID(0x0F);
    virtual HResult BindToObject(NV_IBindCtx* Context, NV_IMoniker* Left, const TGUID& Id, void*& Object) = 0;
    virtual HResult BindToStorage(NV_IBindCtx* Context, NV_IMoniker* Left, const TGUID& Id,
                                  void*& Object) = 0;
    virtual HResult Reduce(NV_IBindCtx* Context, std::uint32_t HowFar, TInterfaceRef<NV_IMoniker>& Left,
                           TInterfaceRef<NV_IMoniker>& Reduced) = 0;
    virtual HResult ComposeWith(NV_IMoniker* Right, bool OnlyIfNotGeneric,
                                TInterfaceRef<NV_IMoniker>& Both) = 0;
    virtual HResult Enum(bool Forward, TInterfaceRef<NV_IEnumMoniker>& Monikers) = 0;
    virtual HResult IsEqual(NV_IMoniker* Other) = 0;
    virtual HResult Hash(std::uint32_t& Value) = 0;
    virtual HResult IsRunning(NV_IBindCtx* Context, NV_IMoniker* Left, NV_IMoniker* NewlyRunning) = 0;
    virtual HResult GetTimeOfLastChange(NV_IBindCtx* Context, NV_IMoniker* Left, std::uint64_t& FileTime) = 0;
    virtual HResult Inverse(TInterfaceRef<NV_IMoniker>& Inverse) = 0;
    virtual HResult CommonPrefixWith(NV_IMoniker* Other, TInterfaceRef<NV_IMoniker>& Prefix) = 0;
    virtual HResult RelativePathTo(NV_IMoniker* Other, TInterfaceRef<NV_IMoniker>& Path) = 0;
    virtual HResult GetDisplayName(NV_IBindCtx* Context, NV_IMoniker* Left, std::string& Name) = 0;
    virtual HResult ParseDisplayName(NV_IBindCtx* Context, NV_IMoniker* Left, const std::string& Name,
                                     std::uint32_t& Eaten, TInterfaceRef<NV_IMoniker>& Out) = 0;
    virtual HResult IsSystemMoniker(std::uint32_t& System) = 0;

protected:
    ~NV_IMoniker() = default;
};

// --- shared by source, target and tree ----------------------------------------------------------------------------

enum TDragType { dtCopy, dtMove, dtLink };
using TDragTypes = TSet<TDragType>;
enum TDragResult { drDropCopy, drDropMove, drDropLink, drCancel, drOutMemory, drUnknown, drUnspec };

// The number of "Preferred DropEffect", registered when the program starts.
extern const std::uint16_t CF_PREFERREDDROPEFFECT;

// The DROPEFFECT_ bits of a set of drag types.
std::uint32_t EffectsOf(TDragTypes Types);

} // namespace quill
