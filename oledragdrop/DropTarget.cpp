#include "oledragdrop/DropTarget.h"

#include "host/base/Errors.h"
#include "host/base/Events.h"
#include "host/graphics/Canvas.h"
#include "host/transfer/Clipboard.h"
#include "host/transfer/ImageDrag.h"

namespace quill {

namespace {

// The blank picture that takes the place of the cursor on the source's picture.
constexpr int CursorSide = 32;

std::string NameOf(const TWinControl* Control) {
    return Control->GetName().empty() ? Control->objectName().toStdString() : Control->GetName();
}

} // namespace

TOLEDropTarget::TOLEDropTarget(TComponent* AOwner)
    : TInterfacedComponent(AOwner),
      FCursorImages(std::make_unique<TImageList>(nullptr, CursorSide, CursorSide)) {
    // The fill ends a pixel before the edges; what it leaves is transparent already.
    const std::unique_ptr<TBitmap> Blank = TBitmap::CreateTransparent(CursorSide, CursorSide);
    Blank->GetCanvas()->GetBrush()->SetColor(clWindow);
    Blank->GetCanvas()->FillRect({0, 0, CursorSide - 1, CursorSide - 1});
    FCursorImages->AddMasked(*Blank, ColorToRGB(clWindow));
    _AddRef(); // those of the platform never free it
}

TOLEDropTarget::~TOLEDropTarget() {
    Destroying();
    try {
        Unregister();
    } catch (const Exception&) {
        // Somebody else has revoked it: that is what was wanted.
    }
}

void TOLEDropTarget::Notification(TComponent* AComponent, TOperation Operation) {
    TInterfacedComponent::Notification(AComponent, Operation);
    if (Operation != opRemove || AComponent != static_cast<TComponent*>(FControl)) return;
    LeaveImage();
    FControl = nullptr;
    FRegistered = false;
}

// --- registration -------------------------------------------------------------------------------------------------

void TOLEDropTarget::Register(TWinControl* Control) {
    if (Control == FControl) return;
    Unregister();
    if (!Control) return;
    Control->HandleNeeded();
    // Not remembered when it fails: the registration of another target must not be revoked by this one later.
    if (!Succeeded(RegisterDragDrop(Control, this))) throw Exception("Failed to Register " + NameOf(Control));
    FControl = Control;
    FreeNotification(Control);
    FRegistered = true;
}

void TOLEDropTarget::Unregister() {
    FRegistered = false;
    LeaveImage();
    TWinControl* const Control = std::exchange(FControl, nullptr);
    if (!Control) return;
    RemoveFreeNotification(Control);
    // Before the exception: what cannot be revoked is not to be tried again.
    if (Control->HandleAllocated() && !Succeeded(RevokeDragDrop(Control)))
        throw Exception("Failed to Unregister " + NameOf(Control));
}

// --- data ---------------------------------------------------------------------------------------------------------

void TOLEDropTarget::CreateWrapper(NV_IDataObject* DataObject) {
    FData = nullptr;
    FData = std::make_unique<TOleObjectWrapper>(DataObject);
}

bool TOLEDropTarget::HasValidFormats() {
    const TInterfaceRef<NV_IDataObject> Data = FDataObject;
    if (!Data) return false;
    for (const std::uint16_t Format : {CF_TEXT, CF_HDROP}) {
        TNVFormatEtc Request;
        Request.cfFormat = Format;
        Request.tymed = TYMED_HGLOBAL;
        if (Data && Data->QueryGetData(Request) == S_OK) return true;
    }
    return false;
}

bool TOLEDropTarget::DoGetData() {
    FDroppedText.clear();
    if (!FData) return false;
    std::string Text = FData->GetString();
    if (Text.empty() && FData) {
        if (TStrings* Files = FData->GetFileList()) Text = Files->GetText();
    }
    FDroppedText = std::move(Text);
    return !FDroppedText.empty();
}

// DoGetData for the platform, which takes no exceptions: a source that offers what it does not have is refused.
bool TOLEDropTarget::ReadData() {
    try {
        return DoGetData();
    } catch (const Exception&) {
        return false;
    }
}

void TOLEDropTarget::PasteFromClipboard() {
    const TClipboardScope Open;
    if (!Clipboard().HasFormat(CF_TEXT)) return;
    TNVStgMedium Medium;
    Medium.hGlobal = Clipboard().GetAsHandle(CF_TEXT);
    FDroppedText = TextOfMedium(Medium);
}

void TOLEDropTarget::Forget() {
    FDataObject.Reset();
    ClearData();
}

// --- picture ------------------------------------------------------------------------------------------------------

void TOLEDropTarget::ClientPtToWindowPt(HWND Window, TPoint& Point) {
    if (!Window) return;
    const TPoint Screen = Window->ClientToScreen(Point);
    const TRect Outer = GetWindowRect(Window);
    Point = {Screen.X - Outer.Left, Screen.Y - Outer.Top};
}

void TOLEDropTarget::EnterImage() {
    FHasImage = FShowImage && FControl && ImageList_GetDragImage(nullptr, &FHotSpot) != nullptr;
    if (!FHasImage) return;
    ImageList_SetDragCursorImage(*FCursorImages, 0, FHotSpot.X, FHotSpot.Y);
    TPoint Place = FLastPoint;
    ClientPtToWindowPt(FControl, Place);
    ImageList_DragEnter(FControl, Place.X, Place.Y);
}

void TOLEDropTarget::LeaveImage() {
    if (std::exchange(FHasImage, false)) ImageList_DragLeave(FControl);
}

void TOLEDropTarget::SetShowImage(bool Value) {
    FShowImage = Value;
    if (FHasImage) ImageList_DragShowNolock(Value);
}

// --- effects and events -------------------------------------------------------------------------------------------

std::uint32_t TOLEDropTarget::GetValidDropEffect(TShiftState ShiftState, TPoint Point, std::uint32_t Effect) {
    Effect &= EffectsOf(FDragTypes);
    if (OnGetDropEffect) {
        int Answer = static_cast<int>(Effect);
        FireEvent(OnGetDropEffect, this, ShiftState, Point, Answer);
        return static_cast<std::uint32_t>(Answer);
    }
    const bool Shift = ShiftState.Contains(ssShift);
    const bool Ctrl = ShiftState.Contains(ssCtrl);
    if (Shift && Ctrl && (Effect & DROPEFFECT_LINK)) return DROPEFFECT_LINK;
    if (Shift && !Ctrl && (Effect & DROPEFFECT_MOVE)) return DROPEFFECT_MOVE;
    for (const std::uint32_t One : {DROPEFFECT_COPY, DROPEFFECT_MOVE, DROPEFFECT_LINK})
        if (Effect & One) return One;
    return DROPEFFECT_NONE;
}

void TOLEDropTarget::Fire(const TDropTargetEvent& Event, NV_IDataObject* Data, TShiftState ShiftState,
                          TPoint Point, std::uint32_t& Effect) {
    int Answer = static_cast<int>(Effect);
    FireEvent(Event, this, Data, ShiftState, Point, Answer);
    Effect = static_cast<std::uint32_t>(Answer);
}

void TOLEDropTarget::DoEnter(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                             std::uint32_t& Effect) {
    Fire(OnOleDragEnter, Data, ShiftState, Point, Effect);
}

void TOLEDropTarget::DoDragOver(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                                std::uint32_t& Effect) {
    Fire(OnOleDragOver, Data, ShiftState, Point, Effect);
}

void TOLEDropTarget::DoDrop(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                            std::uint32_t& Effect) {
    Fire(OnOleDragDrop, Data, ShiftState, Point, Effect);
}

void TOLEDropTarget::DoLeave() { FireEvent(OnOleDragLeave, this); }

// --- what the platform calls --------------------------------------------------------------------------------------

TPoint TOLEDropTarget::ToClient(TPoint ScreenPoint) const {
    return FControl ? FControl->ScreenToClient(ScreenPoint) : ScreenPoint;
}

HResult TOLEDropTarget::DragEnter(NV_IDataObject* DataObject, std::uint32_t KeyState, TPoint ScreenPoint,
                                  std::uint32_t& Effect) {
    const TComponentGuard Self(this);
    const TInterfaceRef<NV_IDataObject> Data(DataObject); // held while handlers run
    ClearData();
    FDataObject = Data;
    CreateWrapper(DataObject);
    FLastPoint = ToClient(ScreenPoint);
    EnterImage();
    const bool IsWanted = HasValidFormats();
    if (Self.IsGone()) return S_OK;
    if (!IsWanted) {
        FDataObject.Reset();
        Effect = DROPEFFECT_NONE;
        ClearData();
        return S_OK;
    }
    if (FAutoGetData) ReadData();
    if (Self.IsGone()) return S_OK;
    const TShiftState ShiftState = KeysToShiftState(KeyState);
    Effect = GetValidDropEffect(ShiftState, FLastPoint, Effect);
    if (!Self.IsGone()) DoEnter(Data.Get(), ShiftState, FLastPoint, Effect);
    return S_OK;
}

HResult TOLEDropTarget::DragOver(std::uint32_t KeyState, TPoint ScreenPoint, std::uint32_t& Effect) {
    const TComponentGuard Self(this);
    const TPoint Point = ToClient(ScreenPoint);
    const TInterfaceRef<NV_IDataObject> Data = FDataObject;
    if (!Data) {
        Effect = DROPEFFECT_NONE;
    } else {
        const TShiftState ShiftState = KeysToShiftState(KeyState);
        Effect = GetValidDropEffect(ShiftState, Point, Effect);
        if (Self.IsGone()) return S_OK;
        DoDragOver(Data.Get(), ShiftState, Point, Effect);
        if (Self.IsGone()) return S_OK;
    }
    if (FHasImage && !(Point == FLastPoint)) {
        TPoint Place = Point;
        ClientPtToWindowPt(FControl, Place);
        ImageList_DragMove(Place.X, Place.Y);
    }
    FLastPoint = Point;
    return S_OK;
}

namespace {

// Tells the end of a drag, also when a handler throws.
class TEndScope {
public:
    explicit TEndScope(TOLEDropTarget* ATarget) : FTarget(ATarget), FGuard(ATarget) {}
    ~TEndScope() {
        if (!FGuard.IsGone()) FireEvent(FTarget->OnOleDragEnded, FTarget);
    }
    TEndScope(const TEndScope&) = delete;
    TEndScope& operator=(const TEndScope&) = delete;

private:
    TOLEDropTarget* FTarget;
    TComponentGuard FGuard;
};

} // namespace

HResult TOLEDropTarget::DragLeave() {
    const TEndScope End(this);
    const TComponentGuard Self(this);
    LeaveImage();
    FDataObject.Reset();
    DoLeave();
    if (!Self.IsGone()) ClearData();
    return S_OK;
}

HResult TOLEDropTarget::Drop(NV_IDataObject*, std::uint32_t KeyState, TPoint ScreenPoint,
                             std::uint32_t& Effect) {
    const TEndScope End(this);
    const TComponentGuard Self(this);
    // The data object that entered is the one that is dropped; without one the drag was refused.
    const TInterfaceRef<NV_IDataObject> Data = FDataObject;
    if (!Data) {
        Effect = DROPEFFECT_NONE;
    } else {
        const TPoint Point = ToClient(ScreenPoint);
        const TShiftState ShiftState = KeysToShiftState(KeyState);
        LeaveImage();
        Effect = GetValidDropEffect(ShiftState, Point, Effect);
        if (Self.IsGone()) return S_OK;
        if (!FAutoGetData && !ReadData()) {
            Effect = DROPEFFECT_NONE;
        } else if (!Self.IsGone()) {
            DoDrop(Data.Get(), ShiftState, Point, Effect);
        }
        if (Self.IsGone()) return S_OK;
    }
    Forget();
    return S_OK;
}

} // namespace quill
