#include "oledragdrop/DropSource.h"

#include "host/base/Events.h"
#include "host/transfer/Clipboard.h"
#include "host/windows/Application.h"

#include <new>
#include <optional>

namespace quill {

namespace {

std::optional<TDragType> DragTypeOf(std::uint32_t Effect) {
    if (Effect & DROPEFFECT_COPY) return dtCopy;
    if (Effect & DROPEFFECT_MOVE) return dtMove;
    if (Effect & DROPEFFECT_LINK) return dtLink;
    return std::nullopt;
}

TDragResult DragResultOf(HResult Code, std::uint32_t Effect, std::uint32_t Allowed) {
    if (Code == E_OUTOFMEMORY) return drOutMemory;
    if (Code == DRAGDROP_S_CANCEL) return drCancel;
    if (Code != DRAGDROP_S_DROP) return drUnspec;
    if ((Effect & Allowed) == 0) return drCancel;
    if (Effect & DROPEFFECT_COPY) return drDropCopy;
    return Effect & DROPEFFECT_MOVE ? drDropMove : drDropLink;
}

} // namespace

TOLEDropSource::TOLEDropSource(TComponent* AOwner)
    : TInterfacedComponent(AOwner), FData(std::make_unique<TOleObjectWrapper>(nullptr)) {
    _AddRef(); // those of the platform never free it
    // Global memory also for pictures, although those are served as objects: QueryGetData compares with these entries.
    for (const std::uint16_t Format : {CF_TEXT, CF_BITMAP, CF_METAFILEPICT, CF_ENHMETAFILE, CF_HDROP})
        TOLEDropSource::AddFormatEtc(Format, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL);
}

TOLEDropSource::~TOLEDropSource() { Destroying(); }

void TOLEDropSource::Notification(TComponent* AComponent, TOperation Operation) {
    TInterfacedComponent::Notification(AComponent, Operation);
    if (Operation == opRemove && AComponent == FImages) SetImages(nullptr);
}

// --- properties ---------------------------------------------------------------------------------------------------

void TOLEDropSource::SetImages(TNVDragImageList* Value) {
    if (FImages == Value) return;
    if (FImages) RemoveFreeNotification(FImages);
    FImages = Value;
    if (FImages) FreeNotification(FImages);
    FImageIndex = 0;
    FShowImage = FImages != nullptr;
}

void TOLEDropSource::SetImageIndex(int Value) {
    const int Count = FImages ? FImages->GetCount() : 0;
    if (Value < 0 || Count == 0) {
        FImageIndex = 0;
        FShowImage = false;
    } else if (Value < Count) {
        FImageIndex = Value;
    }
}

void TOLEDropSource::AddFormatEtc(std::uint16_t Format, PDVTargetDevice TargetDevice, std::int32_t Aspect,
                                  std::int32_t Index, std::int32_t MediumTypes) {
    if (FFormatCount >= MaxFormats) return;
    FFormats[static_cast<std::size_t>(FFormatCount++)] = {Format, TargetDevice,
                                                          static_cast<std::uint32_t>(Aspect), Index,
                                                          static_cast<std::uint32_t>(MediumTypes)};
}

// --- drag ---------------------------------------------------------------------------------------------------------

TDragResult TOLEDropSource::Execute(HWND Window) {
    const TComponentGuard Self(this);
    const TComponentGuard WindowGuard(Window);
    std::uint32_t Allowed = EffectsOf(FDragTypes);
    FLastEffect = DROPEFFECT_NONE;
    if (FShowImage && FImages && Window) {
        const TPoint Client = Window->ScreenToClient(Mouse.GetCursorPos());
        FImages->BeginDrag(Window, Client.X, Client.Y, FPoint.X, FPoint.Y);
    }
    // The picture ends also when the source does not live that long, or a handler raises.
    struct TImageEnd {
        explicit TImageEnd(TNVDragImageList* AImages) : Images(AImages), Guard(AImages) {}
        ~TImageEnd() { End(); }
        void End() {
            if (!Guard.IsGone() && Images->GetDragging()) Images->EndDrag();
        }
        TNVDragImageList* Images;
        TComponentGuard Guard;
    } ImageEnd(FImages);
    int AllowedByHandler = static_cast<int>(Allowed);
    StartDrag(this, AllowedByHandler);
    if (Self.IsGone()) return drUnknown;
    Allowed = static_cast<std::uint32_t>(AllowedByHandler);
    std::uint32_t Effect = DROPEFFECT_NONE;
    // The drag takes the mouse: the window will not see the end of its press.
    if (Window && !WindowGuard.IsGone()) Window->Perform(WM_CANCELMODE, 0, 0);
    if (Self.IsGone()) return drUnknown;
    const HResult Code = DoDragDrop(this, this, Allowed, Effect);
    if (Self.IsGone()) return drUnknown;
    CompleteDrag(Code);
    return DragResultOf(Code, Effect, Allowed);
}

void TOLEDropSource::StartDrag(NV_IDataObject* Data, int& AllowedEffects) {
    FireEvent(OnStartDrag, Data, AllowedEffects);
}

void TOLEDropSource::CompleteDrag(HResult Result) { FireEvent(OnCompleteDrag, static_cast<int>(Result)); }

HResult TOLEDropSource::QueryContinueDrag(bool EscapePressed, std::uint32_t KeyState) {
    if (EscapePressed) return DRAGDROP_S_CANCEL;
    if (KeyState & (MK_LBUTTON | MK_RBUTTON)) return S_OK;
    const std::optional<TDragType> Type = DragTypeOf(FLastEffect);
    bool ContinueDrop = Type && FDragTypes.Contains(*Type);
    if (ContinueDrop) FireEvent(OnDrop, this, *Type, ContinueDrop);
    return ContinueDrop ? DRAGDROP_S_DROP : DRAGDROP_S_CANCEL;
}

HResult TOLEDropSource::GiveFeedback(std::uint32_t Effect) {
    FLastEffect = Effect;
    bool UseDefaultCursors = true;
    FireEvent(OnFeedback, this, static_cast<int>(Effect), UseDefaultCursors);
    return UseDefaultCursors ? DRAGDROP_S_USEDEFAULTCURSORS : S_OK;
}

// --- data ---------------------------------------------------------------------------------------------------------

HResult TOLEDropSource::DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) {
    const HResult Result = FData->GetInternalData(FormatEtc, Medium);
    if (!Succeeded(Result)) FireEvent(OnSetData, this, static_cast<int>(FormatEtc.cfFormat));
    return Result;
}

HResult TOLEDropSource::QueryGetData(const TNVFormatEtc& FormatEtc) {
    for (int I = 0; I < FFormatCount; ++I) {
        const TNVFormatEtc& Entry = FFormats[static_cast<std::size_t>(I)];
        if (Entry.cfFormat == FormatEtc.cfFormat && Entry.dwAspect == FormatEtc.dwAspect &&
            (Entry.tymed & FormatEtc.tymed) != 0)
            return S_OK;
    }
    return DV_E_FORMATETC;
}

HResult TOLEDropSource::EnumFormatEtc(std::uint32_t Direction, TInterfaceRef<NV_IEnumFORMATETC>& Enum) {
    if (Direction != DATADIR_GET) return E_NOTIMPL;
    Enum = TInterfaceRef<NV_IEnumFORMATETC>(
        new TEnumFormatEtc(std::vector<TNVFormatEtc>(FFormats.begin(), FFormats.begin() + FFormatCount)));
    return S_OK;
}

bool TOLEDropSource::InternalCutCopyToClipboard(std::uint32_t Effect) {
    const TClipboardScope Open;
    if (!CutOrCopyToClipboard()) return false;
    FClipboardEffect = Effect;
    TNVFormatEtc Request;
    Request.cfFormat = CF_PREFERREDDROPEFFECT;
    Request.tymed = TYMED_HGLOBAL;
    TNVStgMedium Medium;
    // The clipboard owns the handle from then on.
    if (Succeeded(GetData(Request, Medium))) Clipboard().SetAsHandle(CF_PREFERREDDROPEFFECT, Medium.hGlobal);
    return true;
}

} // namespace quill
