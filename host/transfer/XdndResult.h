// What another program did with the data that were dropped on it, from its final message. For the sources of this
// folder only.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <cstdint>
#include <functional>
#include <optional>

namespace quill {

// Under X11 a drag returns before the other program has taken the data: the last status says what it meant to do, the
// final message (XdndFinished) what it did. This filter reads that message; elsewhere it sees nothing.
class TXdndResult : public QAbstractNativeEventFilter {
public:
    // Watches while the object lives.
    TXdndResult();
    ~TXdndResult() override;
    static bool IsUseful();
    // DROPEFFECT_ number, nothing before the message has come.
    std::optional<std::uint32_t> GetEffect() const { return FEffect; }
    // Called when the message has come.
    std::function<void()> OnResult;

    bool nativeEventFilter(const QByteArray& Type, void* Message, qintptr* Result) override;

private:
    std::uint32_t FFinished = 0; // atoms, 0 when unknown
    std::uint32_t FCopy = 0;
    std::uint32_t FMove = 0;
    std::uint32_t FLink = 0;
    std::optional<std::uint32_t> FEffect;
};

} // namespace quill
