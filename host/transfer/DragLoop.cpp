// The modal drag loop over QDrag.
#include "host/transfer/DataObjects.h"
#include "host/transfer/DragDrop.h"
#include "host/transfer/ImageDrag.h"
#include "host/transfer/XdndResult.h"
#include "host/windows/Keys.h"

#include <QDrag>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QTimer>

#include <exception>
#include <new>
#include <optional>

namespace quill {

namespace {

constexpr Qt::DropAction Actions[] = {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction, Qt::IgnoreAction};

// The picture of a cursor as Qt wants it: with the hot spot in its centre.
QPixmap CenteredCursor(TCursor Cursor) {
    TPoint HotSpot;
    const TBitmap Bitmap = CursorPicture(Cursor, HotSpot);
    const int Side = 2 * GetCursorSize();
    QPixmap Result(Side, Side);
    Result.fill(Qt::transparent);
    QPainter Painter(&Result);
    Painter.setRenderHint(QPainter::SmoothPixmapTransform);
    Painter.drawImage(
        QRect(Side / 2 - HotSpot.X, Side / 2 - HotSpot.Y, Bitmap.GetWidth(), Bitmap.GetHeight()),
        Bitmap.GetImage(1.0));
    return Result;
}

class TDragLoop : public QObject {
public:
    explicit TDragLoop(IDropSource* Source) : FSource(Source) {}

    HResult Run(IDataObject* Data, std::uint32_t OKEffects, std::uint32_t& Effect);
    void SetCursor(TCursor Cursor) {
        FCursor = Cursor;
        if (FHasOwnCursor) ShowCursor(true);
    }

    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    // What the source says; trouble ends the drag.
    HResult Ask(bool Escape, std::uint32_t Keys);
    void GiveFeedback(std::uint32_t Effect);
    void ShowCursor(bool Own);
    // Ends the drag with an answer other than "go on".
    void End(HResult Answer, QObject* Window);
    void WaitForPeer(TXdndResult& Result);

    // While the source is asked.
    struct TAsking {
        explicit TAsking(TDragLoop& ALoop) : Loop(ALoop) { ++Loop.FAsking; }
        ~TAsking() { --Loop.FAsking; }
        TAsking(const TAsking&) = delete;
        TAsking& operator=(const TAsking&) = delete;
        TDragLoop& Loop;
    };

    TInterfaceRef<IDropSource> FSource;
    QPointer<QDrag> FDrag;
    QTimer FPatience;
    Qt::MouseButtons FButtons; // Qt's own state is lost outside our windows
    std::optional<std::uint32_t> FLastEffect;
    std::optional<HResult> FOutcome;
    std::exception_ptr FError;
    TCursor FCursor = crArrow;
    bool FHasOwnCursor = false;
    int FAsking = 0;
};

TDragLoop* Current = nullptr;

HResult TDragLoop::Ask(bool Escape, std::uint32_t Keys) {
    const TInterfaceRef<IDropSource> Source = FSource;
    if (!Source) return DRAGDROP_S_CANCEL;
    const TAsking Asking(*this);
    try {
        return Source->QueryContinueDrag(Escape, Keys);
    } catch (...) {
        FError = std::current_exception();
        return DRAGDROP_S_CANCEL;
    }
}

void TDragLoop::GiveFeedback(std::uint32_t Effect) {
    if (FLastEffect == Effect) return;
    FLastEffect = Effect;
    const TInterfaceRef<IDropSource> Source = FSource;
    if (!Source) return;
    const TAsking Asking(*this);
    try {
        ShowCursor(Source->GiveFeedback(Effect) == S_OK);
    } catch (...) {
        FError = std::current_exception();
        End(DRAGDROP_S_CANCEL, nullptr);
    }
}

void TDragLoop::ShowCursor(bool Own) {
    if (!FDrag || (!Own && !FHasOwnCursor)) return;
    FHasOwnCursor = Own;
    const QPixmap Pixmap = Own ? CenteredCursor(FCursor) : QPixmap();
    for (const Qt::DropAction Action : Actions) FDrag->setDragCursor(Pixmap, Action);
}

void TDragLoop::End(HResult Answer, QObject* Window) {
    if (FOutcome) return;
    FOutcome = Answer == DRAGDROP_S_DROP ? DRAGDROP_S_DROP : DRAGDROP_S_CANCEL;
    if (FOutcome == DRAGDROP_S_CANCEL) {
        QDrag::cancel();
    } else if (Window) {
        // Dropped in the middle of a move: Qt drops at a release.
        const QPointF Pos = QCursor::pos();
        QCoreApplication::postEvent(Window, new QMouseEvent(QEvent::MouseButtonRelease, Pos, Pos,
                                                            Qt::LeftButton, Qt::NoButton, Qt::NoModifier));
    }
}

bool TDragLoop::eventFilter(QObject* Watched, QEvent* Event) {
    if (FAsking > 0) {
        // A handler shows a dialog. Qt's own filter would keep all input from it.
        if (!dynamic_cast<QInputEvent*>(Event)) return false;
        Watched->event(Event);
        return true;
    }
    if (FOutcome || !Watched->isWindowType()) return false;
    switch (Event->type()) {
    case QEvent::MouseMove: {
        const auto* Mouse = static_cast<QMouseEvent*>(Event);
        FButtons = Mouse->buttons();
        const QPoint Screen = Mouse->globalPosition().toPoint();
        DragImageFollow({Screen.x(), Screen.y()});
        if (!FLastEffect) GiveFeedback(DROPEFFECT_NONE);
        if (FOutcome) return true;
        const HResult Answer = Ask(false, ShiftStateToKeys(ShiftFromQt(Mouse->modifiers(), FButtons)));
        if (Answer == S_OK) return false;
        End(Answer, Watched);
        return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: {
        const auto* Mouse = static_cast<QMouseEvent*>(Event);
        FButtons = Mouse->buttons();
        const HResult Answer = Ask(false, ShiftStateToKeys(ShiftFromQt(Mouse->modifiers(), FButtons)));
        // Qt would drop at the release of any button.
        if (Answer == S_OK) return true;
        const bool IsRelease = Event->type() == QEvent::MouseButtonRelease;
        End(Answer, IsRelease ? nullptr : Watched);
        return !IsRelease || Answer != DRAGDROP_S_DROP;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        const auto* Key = static_cast<QKeyEvent*>(Event);
        const bool Escape = Key->key() == Qt::Key_Escape && Event->type() == QEvent::KeyPress;
        const HResult Answer = Ask(Escape, ShiftStateToKeys(ShiftFromQt(Key->modifiers(), FButtons)));
        // Escape is the source's business alone.
        if (Answer == S_OK) return Escape;
        End(Answer, Watched);
        return true;
    }
    default:
        return false;
    }
}

// Data are on their way to another program: until it has said what it did with them, or Qt has given it up.
void TDragLoop::WaitForPeer(TXdndResult& Result) {
    if (Result.GetEffect()) return;
    QEventLoop Loop;
    Result.OnResult = [&Loop] { Loop.quit(); };
    connect(FDrag, &QObject::destroyed, &Loop, &QEventLoop::quit);
    connect(&FPatience, &QTimer::timeout, &Loop, &QEventLoop::quit);
    FPatience.start(DropPatience);
    Loop.exec(QEventLoop::ExcludeUserInputEvents);
    FPatience.stop();
    Result.OnResult = nullptr;
}

HResult TDragLoop::Run(IDataObject* Data, std::uint32_t OKEffects, std::uint32_t& Effect) {
    Effect = DROPEFFECT_NONE;
    FButtons = QGuiApplication::mouseButtons();
    const HResult First = Ask(false, GetKeysHeld());
    if (FError) std::rethrow_exception(FError);
    // Nothing is under the mouse yet that could take the data.
    if (First != S_OK) return First;

    FPatience.setSingleShot(true);
    FDrag = new QDrag(qApp);
    const QPointer<QMimeData> Mime = NewMimeData(Data, [this] {
        if (FPatience.isActive()) FPatience.start(DropPatience);
    });
    FDrag->setMimeData(Mime);
    // Without a picture Qt would show the text.
    QPixmap Picture(1, 1);
    Picture.fill(Qt::transparent);
    TPoint HotSpot;
    if (const TCustomImageList* List = ImageList_GetDragImage(nullptr, &HotSpot);
        List && !CanPlaceWindows()) {
        TBitmap Bitmap;
        List->GetBitmap(0, Bitmap);
        Picture = QPixmap::fromImage(Bitmap.GetImage(1.0));
        FDrag->setHotSpot(QPoint(HotSpot.X, HotSpot.Y));
    }
    FDrag->setPixmap(Picture);
    connect(FDrag, &QDrag::actionChanged, this,
            [this](Qt::DropAction Action) { GiveFeedback(static_cast<std::uint32_t>(Action)); });

    Qt::DropActions Allowed;
    Qt::DropAction Preferred = Qt::IgnoreAction;
    for (const Qt::DropAction Action : {Qt::LinkAction, Qt::MoveAction, Qt::CopyAction}) {
        if ((OKEffects & static_cast<std::uint32_t>(Action)) == 0) continue;
        Allowed |= Action;
        Preferred = Action;
    }
    TXdndResult PeerResult;
    // Qt puts its own filter in first: ours has to come later to see events before it.
    QTimer::singleShot(0, this, [this] { qApp->installEventFilter(this); });
    SetDragImageLoop(true);
    Effect = static_cast<std::uint32_t>(FDrag->exec(Allowed, Preferred)) & OKEffects;
    qApp->removeEventFilter(this);
    SetDragImageLoop(false);
    // Where the platform has its own way the source was not asked.
    if (!FOutcome) FOutcome = Effect ? DRAGDROP_S_DROP : DRAGDROP_S_CANCEL;
    if (FOutcome == DRAGDROP_S_CANCEL) Effect = DROPEFFECT_NONE;

    if (Effect && FDrag && !FDrag->target() && TXdndResult::IsUseful()) {
        WaitForPeer(PeerResult);
        // A move that nobody confirmed must not cost the source its data.
        Effect = PeerResult.GetEffect().value_or(DROPEFFECT_NONE) & OKEffects;
    }
    CutOff(Mime);
    if (FError) std::rethrow_exception(FError);
    return *FOutcome;
}

} // namespace

bool IsDragRunning() { return Current != nullptr; }

void SetDragCursor(TCursor Cursor) {
    if (Current) Current->SetCursor(Cursor);
}

HResult DoDragDrop(IDataObject* Data, IDropSource* Source, std::uint32_t OKEffects, std::uint32_t& Effect) {
    Effect = DROPEFFECT_NONE;
    if (!IsOleInitialized()) return CO_E_NOTINITIALIZED;
    if (!Data || !Source) return E_INVALIDARG;
    if (Current || !qGuiApp) return E_UNEXPECTED;
    const TInterfaceRef<IDataObject> KeepData(Data);
    struct TReset {
        ~TReset() { Current = nullptr; }
    } Reset;
    try {
        TDragLoop Loop(Source);
        Current = &Loop;
        return Loop.Run(Data, OKEffects, Effect);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

} // namespace quill
