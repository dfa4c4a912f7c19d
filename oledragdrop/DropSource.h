// Starts a drag with data, and puts data on the clipboard.
#pragma once

#include "oledragdrop/DragImageList.h"
#include "oledragdrop/InterfacedComponent.h"
#include "oledragdrop/OleObjectWrapper.h"

#include <array>
#include <functional>

namespace quill {

// DragType is what the drop will do; clear ContinueDrop to cancel it.
using TDropEvent = std::function<void(TObject* Sender, TDragType DragType, bool& ContinueDrop)>;
// Effect (DROPEFFECT_ numbers) is what a drop here and now would do. Clear UseDefaultCursors to show a cursor of your
// own (SetDragCursor in host/transfer/DragDrop.h).
using TFeedbackEvent = std::function<void(TObject* Sender, int Effect, bool& UseDefaultCursors)>;
// Somebody asks for data that are not there.
using TSetDataEvent = std::function<void(NV_IDataObject* Data, int Format)>;
// Effect is the result code of the drag.
using TCompleteDragEvent = std::function<void(int Effect)>;
using TStartDragEvent = std::function<void(NV_IDataObject* Data, int& AllowedEffects)>;

// A drag source; everything is set from code. It is the data object and the source of its own drags. Its data, which
// are set through the wrapper (GetData), stay until others are set or ClearData.
//
// A program on the other side is offered what can be got: text when there is some, files when every line of the text
// is an absolute path, pictures, and the formats that a descendant adds. To find that out every format is asked for
// once when a drag begins, so OnSetData is called then for those that are not there.
class TOLEDropSource : public TInterfacedComponent, public NV_IDropSource, public NV_IDataObject {
public:
    static constexpr int MaxFormats = 20;

    explicit TOLEDropSource(TComponent* AOwner = nullptr);
    ~TOLEDropSource() override;

    TDragTypes GetDragTypes() const { return FDragTypes; }
    void SetDragTypes(TDragTypes Value) { FDragTypes = Value; }
    // The picture of the drag; assigning a list chooses picture 0 and shows it.
    TNVDragImageList* GetImages() const { return FImages; }
    void SetImages(TNVDragImageList* Value);
    int GetImageIndex() const { return FImageIndex; }
    // An index at or above the count of images is ignored; a negative one, or one without images, chooses 0 and hides
    // the picture.
    void SetImageIndex(int Value);
    bool GetShowImage() const { return FShowImage; }
    // Stays off while there are no images.
    void SetShowImage(bool Value) { FShowImage = Value && FImages; }
    // The hot spot of the picture: coordinate 1 is the horizontal one, any other the vertical one.
    int GetPoint(int Index) const { return Index == 1 ? FPoint.X : FPoint.Y; }
    void SetPoint(int Index, int Value) { (Index == 1 ? FPoint.X : FPoint.Y) = Value; }

    // The data.
    TOleObjectWrapper* GetDataWrapper() { return FData.get(); }
    void ClearData() { FData->ClearData(); }
    // Offers a format more; ignored when MaxFormats are held.
    virtual void AddFormatEtc(std::uint16_t Format, PDVTargetDevice TargetDevice, std::int32_t Aspect,
                              std::int32_t Index, std::int32_t MediumTypes);
    int GetFormatCount() const { return FFormatCount; }

    // Drags the data with the mouse button that is held, from Window; returns after the drop. A handler may destroy
    // the source meanwhile. drUnknown when it did; drUnspec when the drag could not be started.
    TDragResult Execute(HWND Window);
    void StartDrag(NV_IDataObject* Data, int& AllowedEffects);
    void CompleteDrag(HResult Result);

    // Puts the data on the clipboard, with the wish to move or copy them beside it. The base has no data to put
    // there, leaves the clipboard as it is and returns false: see CutOrCopyToClipboard.
    virtual bool CutToClipboard() { return InternalCutCopyToClipboard(DROPEFFECT_MOVE); }
    virtual bool CopyToClipboard() { return InternalCutCopyToClipboard(DROPEFFECT_COPY); }

    TDropEvent OnDrop;
    TFeedbackEvent OnFeedback;
    TSetDataEvent OnSetData;
    TCompleteDragEvent OnCompleteDrag;
    TStartDragEvent OnStartDrag;

    // --- what the platform calls ------------------------------------------------------------------------------
    HResult QueryInterface(const TGUID& Id, void*& Obj) override {
        return TInterfacedComponent::QueryInterface(Id, Obj);
    }
    int _AddRef() override { return TInterfacedComponent::_AddRef(); }
    int _Release() override { return TInterfacedComponent::_Release(); }
    HResult QueryContinueDrag(bool EscapePressed, std::uint32_t KeyState) override;
    HResult GiveFeedback(std::uint32_t Effect) override;
    HResult GetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) override {
        return DoGetData(FormatEtc, Medium);
    }
    HResult GetDataHere(const TNVFormatEtc&, TNVStgMedium&) override { return E_NOTIMPL; }
    HResult QueryGetData(const TNVFormatEtc& FormatEtc) override;
    HResult GetCanonicalFormatEtc(const TNVFormatEtc&, TNVFormatEtc&) override {
        return DATA_S_SAMEFORMATETC;
    }
    HResult SetData(const TNVFormatEtc&, TNVStgMedium&, bool) override { return E_NOTIMPL; }
    HResult EnumFormatEtc(std::uint32_t Direction, TInterfaceRef<NV_IEnumFORMATETC>& Enum) override;
    HResult DAdvise(const TNVFormatEtc&, std::uint32_t, NV_IAdviseSink*, std::uint32_t&) override {
        return OLE_E_ADVISENOTSUPPORTED;
    }
    HResult DUnadvise(std::uint32_t) override { return OLE_E_ADVISENOTSUPPORTED; }
    HResult EnumDAdvise(TInterfaceRef<NV_IEnumSTATDATA>&) override { return OLE_E_ADVISENOTSUPPORTED; }

    void Notification(TComponent* AComponent, TOperation Operation) override;

    // Serves a format. The base asks the wrapper; for what that does not hold it calls OnSetData and fails. A
    // descendant serves formats of its own (which it has added with AddFormatEtc) here.
    virtual HResult DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium);
    // Puts the data on the clipboard, which is open; true when it did. For descendants: the base has nothing to put.
    virtual bool CutOrCopyToClipboard() { return false; }
    // The effect of the cut or copy that is being done, for a descendant that serves CF_PREFERREDDROPEFFECT.
    std::uint32_t GetClipboardEffect() const { return FClipboardEffect; }
    bool InternalCutCopyToClipboard(std::uint32_t Effect);

protected:
    bool GetInterface(const TGUID& Id, void*& Obj) override {
        return FindInterface<NV_IDropSource, NV_IDataObject>(this, Id, Obj);
    }

private:
    TDragTypes FDragTypes{dtCopy};
    std::array<TNVFormatEtc, MaxFormats> FFormats;
    int FFormatCount = 0;
    TNVDragImageList* FImages = nullptr;
    int FImageIndex = 0;
    bool FShowImage = false;
    TPoint FPoint{16, 16};
    std::unique_ptr<TOleObjectWrapper> FData;
    std::uint32_t FClipboardEffect = DROPEFFECT_NONE;
    std::uint32_t FLastEffect = DROPEFFECT_NONE;
};

} // namespace quill
