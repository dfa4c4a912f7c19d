#include "host/transfer/XdndResult.h"

#include "host/transfer/DragDrop.h"

#include <QGuiApplication>
#include <QLibrary>

#include <cstdlib>
#include <cstring>

namespace quill {

namespace {

// The part of the X protocol that is needed, so that the library neither needs X11 to be built nor links to it.
constexpr std::uint8_t ClientMessageEvent = 33;
struct TClientMessage {
    std::uint8_t ResponseType;
    std::uint8_t Format;
    std::uint16_t Sequence;
    std::uint32_t Window;
    std::uint32_t Type;
    std::uint32_t Data[5];
};
struct TInternReply {
    std::uint8_t ResponseType;
    std::uint8_t Pad;
    std::uint16_t Sequence;
    std::uint32_t Length;
    std::uint32_t Atom;
};
struct TInternCookie {
    unsigned Sequence;
};
using TIntern = TInternCookie (*)(void* Connection, std::uint8_t OnlyIfExists, std::uint16_t Length,
                                  const char* Name);
using TInternResult = TInternReply* (*)(void* Connection, TInternCookie Cookie, void** Error);

std::uint32_t AtomOf(void* Connection, TIntern Intern, TInternResult GetResult, const char* Name) {
    const TInternCookie Cookie = Intern(Connection, 0, static_cast<std::uint16_t>(std::strlen(Name)), Name);
    TInternReply* Reply = GetResult(Connection, Cookie, nullptr);
    const std::uint32_t Result = Reply ? Reply->Atom : 0;
    std::free(Reply);
    return Result;
}

} // namespace

bool TXdndResult::IsUseful() { return QGuiApplication::platformName() == QStringLiteral("xcb"); }

TXdndResult::TXdndResult() {
    if (!IsUseful()) return;
#if QT_CONFIG(xcb)
    const auto* X11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Qt's plugin has loaded it already.
    QLibrary Library(QStringLiteral("xcb"), 1);
    const auto Intern = reinterpret_cast<TIntern>(Library.resolve("xcb_intern_atom"));
    const auto GetResult = reinterpret_cast<TInternResult>(Library.resolve("xcb_intern_atom_reply"));
    if (!X11 || !Intern || !GetResult) return;
    void* const Connection = X11->connection();
    FFinished = AtomOf(Connection, Intern, GetResult, "XdndFinished");
    FCopy = AtomOf(Connection, Intern, GetResult, "XdndActionCopy");
    FMove = AtomOf(Connection, Intern, GetResult, "XdndActionMove");
    FLink = AtomOf(Connection, Intern, GetResult, "XdndActionLink");
    qGuiApp->installNativeEventFilter(this);
#endif
}

TXdndResult::~TXdndResult() {
    if (FFinished && qGuiApp) qGuiApp->removeNativeEventFilter(this);
}

bool TXdndResult::nativeEventFilter(const QByteArray& Type, void* Message, qintptr*) {
    if (Type != "xcb_generic_event_t") return false;
    TClientMessage Event;
    std::memcpy(&Event, Message, sizeof(Event));
    if ((Event.ResponseType & 0x7F) != ClientMessageEvent || Event.Type != FFinished) return false;
    const bool IsAccepted = (Event.Data[1] & 1) != 0;
    const std::uint32_t Action = Event.Data[2];
    FEffect = DROPEFFECT_NONE;
    if (IsAccepted && Action == FCopy) FEffect = DROPEFFECT_COPY;
    if (IsAccepted && Action == FMove) FEffect = DROPEFFECT_MOVE;
    if (IsAccepted && Action == FLink) FEffect = DROPEFFECT_LINK;
    if (OnResult) OnResult();
    return false;
}

} // namespace quill
