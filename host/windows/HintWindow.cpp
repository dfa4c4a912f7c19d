#include "host/windows/HintWindow.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QToolTip>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace quill {

namespace {

// Around the text; the side where it begins is the nearer one.
constexpr int MarginBefore = 2;
constexpr int MarginBehind = 4;
constexpr int MarginAbove = 1;

TRect FromQt(const QRect& R) { return Bounds(R.x(), R.y(), R.width(), R.height()); }

std::vector<TRect> ScreenRects() {
    std::vector<TRect> Result;
    for (const QScreen* Screen : QGuiApplication::screens()) Result.push_back(FromQt(Screen->geometry()));
    return Result;
}

// How far Value is outside [From, To).
std::int64_t Outside(int Value, int From, int To) {
    if (Value < From) return std::int64_t{From} - Value;
    return Value < To ? 0 : std::int64_t{Value} - To + 1;
}

std::int64_t CommonArea(const TRect& A, const TRect& B) {
    const std::int64_t Width = std::int64_t{std::min(A.Right, B.Right)} - std::max(A.Left, B.Left);
    const std::int64_t Height = std::int64_t{std::min(A.Bottom, B.Bottom)} - std::max(A.Top, B.Top);
    return Width > 0 && Height > 0 ? Width * Height : 0;
}

const TRect& ChooseScreen(const TRect& Window, std::span<const TRect> Screens, TPoint Corner) {
    for (const TRect& Screen : Screens)
        if (Screen.Contains(Corner)) return Screen;
    const auto Most = std::max_element(Screens.begin(), Screens.end(), [&](const TRect& A, const TRect& B) {
        return CommonArea(Window, A) < CommonArea(Window, B);
    });
    if (CommonArea(Window, *Most) > 0) return *Most;
    const auto Distance = [Corner](const TRect& Screen) {
        return Outside(Corner.X, Screen.Left, Screen.Right) + Outside(Corner.Y, Screen.Top, Screen.Bottom);
    };
    return *std::min_element(Screens.begin(), Screens.end(),
                             [&](const TRect& A, const TRect& B) { return Distance(A) < Distance(B); });
}

// Where an extent of Size that wants to begin at From goes in [Low, High), which is large enough.
int Fit(std::int64_t From, int Size, int Low, int High) {
    return static_cast<int>(std::max<std::int64_t>(std::min<std::int64_t>(From, High - Size), Low));
}

} // namespace

// A child of its owner's widget as far as the window system is concerned: it stays above that window and is placed
// with it where programs cannot place windows freely.
THintWindow::THintWindow(TComponent* AOwner) : TCustomControl(AOwner, dynamic_cast<QWidget*>(AOwner)) {
    // A tooltip stays on top anyway. Unless we say so Qt makes its X11 window twice, and the second one is not
    // transparent for input: the window below would see the mouse leave as soon as the hint is shown under it.
    setWindowFlags(Qt::ToolTip | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint |
                   Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_WindowPropagation);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    SetCtl3D(false);
    SetColor(clInfoBk);
    GetFont()->SetFromQt(QToolTip::font());
    if (parentWidget()) parentWidget()->installEventFilter(this);
}

THintWindow::~THintWindow() { BeginDestruction(); }

void THintWindow::CreateParams(TCreateParams& Params) {
    TCustomControl::CreateParams(Params);
    Params.Style |= WS_BORDER;
    Params.ExStyle &= ~WS_EX_CLIENTEDGE;
}

void THintWindow::SetCaption(const std::string& Value) {
    if (FCaption == Value) return;
    FCaption = Value;
    setAccessibleName(QString::fromStdString(Value));
    Invalidate();
}

void THintWindow::FollowOwner() {
    const auto* Owner = dynamic_cast<TCustomControl*>(GetOwner());
    if (!Owner) return;
    SetBiDiMode(Owner->GetBiDiMode());
    if (!isVisible() && screen() != Owner->screen()) setScreen(Owner->screen());
}

// --- measuring and showing ----------------------------------------------------------------------------------------

unsigned THintWindow::TextFlags() const {
    return DrawTextBiDiModeFlags(DT_LEFT | DT_WORDBREAK | DT_NOPREFIX);
}

TRect THintWindow::CalcHintRect(int MaxWidth, const std::string& AHint, void*) {
    FollowOwner();
    TRect Text{0, 0, std::max(MaxWidth, 1), 0};
    GetCanvas()->SetFont(GetFont());
    GetCanvas()->DrawText(AHint, Text, TextFlags() | DT_CALCRECT);
    return {0, 0, Text.Right + MarginBefore + MarginBehind, Text.Bottom + 2 * MarginAbove};
}

void THintWindow::ActivateHint(const TRect& Rect, const std::string& AHint) {
    const TControlGuard Guard(this);
    FollowOwner();
    SetCaption(AHint);
    HandleNeeded();
    if (!Guard) return;
    TRect Window = Rect;
    Window.Inflate(frameWidth(), frameWidth());
    const std::vector<TRect> Screens = ScreenRects();
    if (!Screens.empty()) Window = KeepOnScreen(Window, Screens, UseRightToLeftAlignment());
    QScreen* const Screen = QGuiApplication::screenAt(QPoint(Window.Left, Window.Top));
    if (Screen && Screen != screen()) setScreen(Screen);
    SetBounds(Window.Left, Window.Top, Window.Width(), Window.Height());
    if (!Guard) return;
    Invalidate();
    if (isVisible())
        raise();
    else
        setVisible(true); // on top of the others
}

void THintWindow::HideHint() { setVisible(false); }

void THintWindow::ReleaseHandle() {
    const TControlGuard Guard(this);
    HideHint();
    if (!Guard) return;
    if (HandleAllocated()) DestroyWnd();
    if (Guard && testAttribute(Qt::WA_WState_Created)) destroy();
}

int THintWindow::MaxHintWidth(TPoint ScreenPos) {
    const QScreen* Screen = QGuiApplication::screenAt(QPoint(ScreenPos.X, ScreenPos.Y));
    if (!Screen) Screen = QGuiApplication::primaryScreen();
    return Screen ? Screen->geometry().width() * 3 / 5 : 600;
}

TRect THintWindow::KeepOnScreen(const TRect& Window, std::span<const TRect> Screens, bool RightToLeft) {
    if (Screens.empty()) return Window;
    const TRect& Screen =
        ChooseScreen(Window, Screens, {RightToLeft ? Window.Right - 1 : Window.Left, Window.Top});
    const auto Extent = [](int From, int To, int Room) {
        return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{To} - From, 1, std::max(Room, 1)));
    };
    const int Width = Extent(Window.Left, Window.Right, Screen.Width());
    const int Height = Extent(Window.Top, Window.Bottom, Screen.Height());
    const std::int64_t Left = RightToLeft ? std::int64_t{Window.Right} - Width : Window.Left;
    return Bounds(Fit(Left, Width, Screen.Left, Screen.Right),
                  Fit(Window.Top, Height, Screen.Top, Screen.Bottom), Width, Height);
}

bool THintWindow::eventFilter(QObject* Watched, QEvent* Event) {
    if (Watched == parentWidget() && IsHintVisible() &&
        (Event->type() == QEvent::Hide || Event->type() == QEvent::WindowDeactivate)) {
        HideHint();
    }
    return TCustomControl::eventFilter(Watched, Event);
}

void THintWindow::Paint() {
    TRect Room = GetClientRect();
    const bool Mirrored = UseRightToLeftAlignment();
    Room.Left += Mirrored ? MarginBehind : MarginBefore;
    Room.Right -= Mirrored ? MarginBefore : MarginBehind;
    Room.Top += MarginAbove;
    GetCanvas()->GetFont()->SetColor(clInfoText);
    GetCanvas()->SetBkMode(TRANSPARENT);
    GetCanvas()->DrawText(FCaption, Room, TextFlags());
}

} // namespace quill
