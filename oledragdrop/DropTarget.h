// Makes a control accept drags.
#pragma once

#include "host/graphics/ImageLists.h"
#include "host/transfer/DragDrop.h"
#include "oledragdrop/InterfacedComponent.h"
#include "oledragdrop/OleObjectWrapper.h"

#include <functional>

namespace quill {

using TWinControl = TCustomControl;

// Point in client coordinates. Effect (DROPEFFECT_ numbers) comes in as what a drop would do; the handler may change
// it, 0 refuses.
using TDropTargetEvent = std::function<void(TObject* Sender, NV_IDataObject* Data, TShiftState ShiftState,
                                            TPoint Point, int& Effect)>;
// Effect comes in as what source and target allow, and goes out as one of them.
using TDropEffectEvent =
    std::function<void(TObject* Sender, TShiftState ShiftState, TPoint Point, int& Effect)>;

// Answers drags over the control that it is registered for. The base takes text and lists of files; a drag that
// carries neither is refused. A descendant that overrides HasValidFormats and DoGetData takes other data.
// Handlers may destroy the control and the target.
class TOLEDropTarget : public TInterfacedComponent, public NV_IDropTarget {
public:
    explicit TOLEDropTarget(TComponent* AOwner = nullptr);
    // Unregisters; never raises.
    ~TOLEDropTarget() override;

    // What the target lets happen to the data.
    TDragTypes GetDragTypes() const { return FDragTypes; }
    void SetDragTypes(TDragTypes Value) { FDragTypes = Value; }
    // Whether the data are read when the drag enters, and not when it is dropped.
    bool GetAutoGetData() const { return FAutoGetData; }
    void SetAutoGetData(bool Value) { FAutoGetData = Value; }
    // Whether the source's picture is shown over the control.
    bool GetShowImage() const { return FShowImage; }
    void SetShowImage(bool Value);
    TWinControl* GetControl() const { return FControl; }
    bool GetRegistered() const { return FRegistered; }
    // The data of the drag that is over the control; null between drags.
    NV_IDataObject* GetDataObject() const { return FDataObject.Get(); }
    TOleObjectWrapper* GetDataWrapper() const { return FData.get(); }

    // Makes Control the one that accepts drags, instead of the one before; null for none. Raises Exception with
    // "Failed to Register " and the control's name when it has a target already; nothing is registered then.
    void Register(TWinControl* Control);
    // Raises Exception with "Failed to Unregister " and the control's name when its registration was revoked by
    // others; the control is forgotten all the same.
    void Unregister();

    void CreateWrapper(NV_IDataObject* DataObject);
    virtual void ClearData() { FData = nullptr; }
    // Whether the data that entered are wanted.
    virtual bool HasValidFormats();
    // Reads the data; false refuses the drop. The base reads the text, or else the list of files; that is then what
    // GetDroppedText gives. Raises Exception "IDataObject.GetData failed" when files are offered and not given, which
    // refuses a drop as well.
    virtual bool DoGetData();
    // Reads the text of the clipboard as if it had been dropped; nothing without text there.
    virtual void PasteFromClipboard();
    // The text read last; the names of files stand one on each line.
    const std::string& GetDroppedText() const { return FDroppedText; }
    // What a drop would do when the source allows Effect and nobody says otherwise: link for Shift with Ctrl, move
    // for Shift alone, else the first of copy, move and link, as far as allowed.
    std::uint32_t GetValidDropEffect(TShiftState ShiftState, TPoint Point, std::uint32_t Effect);
    // A client point of Window, relative to its outer edge.
    static void ClientPtToWindowPt(HWND Window, TPoint& Point);

    TDropTargetEvent OnOleDragEnter;
    TDropTargetEvent OnOleDragOver;
    TDropTargetEvent OnOleDragDrop;
    TNotifyEvent OnOleDragLeave;
    TDropEffectEvent OnGetDropEffect;
    // The drag has left, or its drop is done or was refused: whatever was shown for it can go.
    TNotifyEvent OnOleDragEnded;

    // --- what the platform calls ------------------------------------------------------------------------------
    HResult QueryInterface(const TGUID& Id, void*& Obj) override {
        return TInterfacedComponent::QueryInterface(Id, Obj);
    }
    int _AddRef() override { return TInterfacedComponent::_AddRef(); }
    int _Release() override { return TInterfacedComponent::_Release(); }
    HResult DragEnter(NV_IDataObject* DataObject, std::uint32_t KeyState, TPoint ScreenPoint,
                      std::uint32_t& Effect) override;
    HResult DragOver(std::uint32_t KeyState, TPoint ScreenPoint, std::uint32_t& Effect) override;
    HResult DragLeave() override;
    HResult Drop(NV_IDataObject* DataObject, std::uint32_t KeyState, TPoint ScreenPoint,
                 std::uint32_t& Effect) override;

    void Notification(TComponent* AComponent, TOperation Operation) override;

    // Call the events. Effect may be changed.
    virtual void DoEnter(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point, std::uint32_t& Effect);
    virtual void DoDragOver(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
                            std::uint32_t& Effect);
    virtual void DoDrop(NV_IDataObject* Data, TShiftState ShiftState, TPoint Point, std::uint32_t& Effect);
    virtual void DoLeave();

protected:
    bool GetInterface(const TGUID& Id, void*& Obj) override {
        return FindInterface<NV_IDropTarget>(this, Id, Obj);
    }

private:
    void Fire(const TDropTargetEvent& Event, NV_IDataObject* Data, TShiftState ShiftState, TPoint Point,
              std::uint32_t& Effect);
    TPoint ToClient(TPoint ScreenPoint) const;
    void EnterImage();
    void LeaveImage();
    bool ReadData();
    // Drops the data object and what was read from it.
    void Forget();

    std::unique_ptr<TOleObjectWrapper> FData;
    TInterfaceRef<NV_IDataObject> FDataObject;
    TDragTypes FDragTypes{dtCopy, dtMove, dtLink};
    bool FAutoGetData = false;
    TWinControl* FControl = nullptr;
    bool FRegistered = false;
    bool FShowImage = true;
    std::unique_ptr<TImageList> FCursorImages;
    bool FHasImage = false; // the source's picture is entered in our control
    TPoint FHotSpot;
    TPoint FLastPoint;
    std::string FDroppedText;
};

} // namespace quill
