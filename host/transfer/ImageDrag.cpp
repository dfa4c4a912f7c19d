#include "host/transfer/ImageDrag.h"

#include "host/graphics/Canvas.h"

#include <QApplication>
#include <QBitmap>
#include <QCursor>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <optional>

namespace quill {

namespace {

constexpr int CursorSide = 32;

// The window with the picture.
class TOverlay : public QWidget {
public:
    TOverlay() {
        setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                       Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus |
                       Qt::BypassWindowManagerHint);
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_QuitOnClose, false);
    }
    void SetPicture(const QImage& Picture, QSize Size) {
        FPicture = Picture;
        setFixedSize(Size);
        // Without a compositor what is transparent would be black.
        if (Picture.hasAlphaChannel() && QGuiApplication::platformName() == QStringLiteral("xcb")) {
            const QImage Scaled = Picture.scaled(Size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
            setMask(QBitmap::fromImage(Scaled.createMaskFromColor(0, Qt::MaskInColor)));
        } else if (!mask().isEmpty()) {
            clearMask();
        }
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter Painter(this);
        Painter.setCompositionMode(QPainter::CompositionMode_Source);
        Painter.setRenderHint(QPainter::SmoothPixmapTransform);
        Painter.drawImage(rect(), FPicture);
    }

private:
    QImage FPicture;
};

struct TDrag {
    TImageList Picture;
    TPoint HotSpot;
    TBitmap Cursor; // empty for none
    TPoint CursorHotSpot;
    QPointer<TCustomControl> Window; // entered
    TPoint Position;                 // in the window
    TPoint Screen;
    bool IsShown = true;
    std::unique_ptr<TOverlay> Overlay;
    QTimer Apply; // changes of visibility wait for it
};

std::optional<TDrag>& Drag() {
    static std::optional<TDrag> Result;
    return Result;
}
bool IsLoopRunning = false;

bool IsWanted(const TDrag& D) {
    if (IsLoopRunning) return D.IsShown && CanPlaceWindows();
    return D.IsShown && D.Window;
}

// The picture with the cursor on it, in the picture's pixels or twice as many.
QImage Compose(const TDrag& D, double Scale) {
    TBitmap Bitmap;
    D.Picture.GetBitmap(0, Bitmap);
    const QImage& Source = Bitmap.GetImage(Scale);
    if (D.Cursor.GetEmpty()) return Source;
    QImage Result = Source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const double Factor = static_cast<double>(Result.width()) / std::max(1, Bitmap.GetWidth());
    QPainter Painter(&Result);
    Painter.setRenderHint(QPainter::SmoothPixmapTransform);
    Painter.scale(Factor, Factor);
    const QRect Place(D.HotSpot.X - D.CursorHotSpot.X, D.HotSpot.Y - D.CursorHotSpot.Y, D.Cursor.GetWidth(),
                      D.Cursor.GetHeight());
    Painter.drawImage(Place, D.Cursor.GetImage(Factor));
    return Result;
}

void ShowPicture(TDrag& D) {
    D.Overlay->SetPicture(Compose(D, qApp->devicePixelRatio()),
                          QSize(D.Picture.GetWidth(), D.Picture.GetHeight()));
}

void Refresh() {
    auto& D = Drag();
    if (!D || !qApp) return;
    if (!IsWanted(*D)) {
        if (D->Overlay) D->Overlay->hide();
        return;
    }
    if (!D->Overlay) {
        D->Overlay = std::make_unique<TOverlay>();
        ShowPicture(*D);
    }
    D->Overlay->move(D->Screen.X - D->HotSpot.X, D->Screen.Y - D->HotSpot.Y);
    if (!D->Overlay->isVisible()) D->Overlay->show();
}

void RefreshSoon() {
    auto& D = Drag();
    if (!D || !qApp) return;
    D->Apply.start(0);
}

void MoveTo(TDrag& D, TPoint Screen) {
    D.Screen = Screen;
    if (D.Overlay && D.Overlay->isVisible()) D.Overlay->move(Screen.X - D.HotSpot.X, Screen.Y - D.HotSpot.Y);
}

void MoveInWindow(TDrag& D, int X, int Y) {
    D.Position = {X, Y};
    if (!D.Window) return;
    const TRect Outer = GetWindowRect(D.Window);
    MoveTo(D, {Outer.Left + X, Outer.Top + Y});
}

} // namespace

// --- drag ---------------------------------------------------------------------------------------------------------

bool ImageList_BeginDrag(const TCustomImageList& List, int Index, int HotSpotX, int HotSpotY) {
    TBitmap Bitmap;
    if (!List.GetBitmap(Index, Bitmap)) return false;
    ImageList_EndDrag();
    TDrag& D = Drag().emplace();
    D.Picture.SetSize(List.GetWidth(), List.GetHeight());
    D.Picture.Add(Bitmap);
    D.HotSpot = {HotSpotX, HotSpotY};
    D.Apply.setSingleShot(true);
    QObject::connect(&D.Apply, &QTimer::timeout, [] { Refresh(); });
    return true;
}

bool ImageList_EndDrag() {
    if (!Drag()) return false;
    Drag().reset();
    return true;
}

bool ImageList_DragEnter(HWND Window, int X, int Y) {
    auto& D = Drag();
    if (!D || !Window) return false;
    D->Window = Window;
    MoveInWindow(*D, X, Y);
    RefreshSoon();
    return true;
}

bool ImageList_DragLeave(HWND Window) {
    auto& D = Drag();
    if (!D) return false;
    if (D->Window == Window) D->Window = nullptr;
    RefreshSoon();
    return true;
}

bool ImageList_DragMove(int X, int Y) {
    auto& D = Drag();
    if (!D) return false;
    MoveInWindow(*D, X, Y);
    return true;
}

bool ImageList_DragShowNolock(bool Show) {
    auto& D = Drag();
    if (!D) return false;
    D->IsShown = Show;
    RefreshSoon();
    return true;
}

bool ImageList_SetDragCursorImage(const TCustomImageList& List, int Index, int HotSpotX, int HotSpotY) {
    auto& D = Drag();
    if (!D) return false;
    const bool IsThere = List.GetBitmap(Index, D->Cursor);
    D->CursorHotSpot = {HotSpotX, HotSpotY};
    if (D->Overlay) ShowPicture(*D);
    return IsThere;
}

const TCustomImageList* ImageList_GetDragImage(TPoint* Position, TPoint* HotSpot) {
    auto& D = Drag();
    if (!D) return nullptr;
    if (Position) *Position = D->Position;
    if (HotSpot) *HotSpot = D->HotSpot;
    return &D->Picture;
}

bool IsDragImageVisible() { return Drag() && Drag()->Overlay && Drag()->Overlay->isVisible(); }
TPoint GetDragImagePosition() { return Drag() ? Drag()->Screen : TPoint(); }

bool CanPlaceWindows() {
    const QString Name = QGuiApplication::platformName();
    return Name == QStringLiteral("xcb") || Name == QStringLiteral("offscreen");
}

void DragImageFollow(TPoint Screen) {
    if (Drag()) MoveTo(*Drag(), Screen);
}

void SetDragImageLoop(bool Running) {
    IsLoopRunning = Running;
    RefreshSoon();
}

TRect GetWindowRect(HWND Window) {
    if (!Window) return {};
    const QPoint Corner = Window->mapToGlobal(QPoint(0, 0));
    return Bounds(Corner.x(), Corner.y(), Window->width(), Window->height());
}

// --- cursors ------------------------------------------------------------------------------------------------------

int GetCursorSize() { return CursorSide; }

// The platform keeps the pictures of its cursors to itself, so these are drawn: an arrow, with a mark for some.
TBitmap CursorPicture(TCursor Cursor, TPoint& HotSpot) {
    constexpr int Scale = 2;
    QImage Image(CursorSide * Scale, CursorSide * Scale, QImage::Format_ARGB32_Premultiplied);
    Image.fill(Qt::transparent);
    HotSpot = {};
    if (Cursor != crNone) {
        QPainter Painter(&Image);
        Painter.setRenderHint(QPainter::Antialiasing);
        Painter.scale(Scale, Scale);
        if (Cursor == crCross) {
            HotSpot = {8, 8};
            Painter.setPen(QPen(Qt::white, 3));
            for (const QColor Color : {QColor(Qt::white), QColor(Qt::black)}) {
                Painter.setPen(QPen(Color, Color == Qt::white ? 3 : 1));
                Painter.drawLine(QPointF(8.5, 1), QPointF(8.5, 16));
                Painter.drawLine(QPointF(1, 8.5), QPointF(16, 8.5));
            }
        } else {
            const QPolygonF Arrow(
                {{0.5, 0.5}, {0.5, 16}, {4.5, 12.5}, {7, 18.5}, {9.5, 17.5}, {7, 11.5}, {12, 11.5}});
            Painter.setPen(QPen(Qt::black, 1));
            Painter.setBrush(Qt::white);
            Painter.drawPolygon(Arrow);
            if (Cursor == crNoDrop) {
                Painter.setBrush(Qt::NoBrush);
                Painter.setPen(QPen(Qt::red, 2));
                Painter.drawEllipse(QRectF(14, 14, 12, 12));
                Painter.drawLine(QPointF(16, 24), QPointF(24, 16));
            } else if (Cursor == crDrag) {
                Painter.setBrush(Qt::white);
                Painter.drawRect(QRectF(12.5, 16.5, 12, 9));
            }
        }
    }
    TBitmap Result;
    Result.SetImage(Image, Scale);
    return Result;
}

} // namespace quill
