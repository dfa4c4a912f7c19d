#include "host/base/Streams.h"

#include "host/base/Errors.h"
#include "host/base/Files.h"
#include "host/base/Numbers.h"
#include "host/base/Texts.h"

#include <array>

namespace quill {

namespace {

constexpr std::size_t CopyBlock = 65'536;

} // namespace

std::int64_t TStream::GetSize() {
    const std::int64_t Position = GetPosition();
    const std::int64_t Size = Seek(0, soEnd);
    SetPosition(Position);
    return Size;
}

void TStream::SetSize(std::int64_t) {
    throw EStreamError(FormatText(SSizeError, {FormatText(SNotSupported, {ClassName()})}));
}

void TStream::ReadBuffer(void* Buffer, std::int64_t Count) {
    const std::int64_t Got = Count > 0 ? Read(Buffer, Count) : 0;
    if (Got < Count)
        throw EReadError(
            FormatText(SReadError, {FormatText(SUnexpectedEnd, {IntToStr(Count), IntToStr(Got)})}));
}

void TStream::WriteBuffer(const void* Buffer, std::int64_t Count) {
    const std::int64_t Taken = Count > 0 ? Write(Buffer, Count) : 0;
    if (Taken < Count)
        throw EWriteError(
            FormatText(SWriteError, {FormatText(SShortWrite, {IntToStr(Count), IntToStr(Taken)})}));
}

std::string TStream::ReadRest() {
    std::string Result;
    // The size is a hint only: pipes have none and some files grow or lie about it.
    std::int64_t Expected = 0;
    try {
        Expected = GetSize() - GetPosition();
    } catch (const EStreamError&) {
        Expected = 0;
    }
    if (Expected > 0) {
        Result.resize(static_cast<std::size_t>(Expected));
        const std::int64_t Got = Read(Result.data(), Expected);
        Result.resize(static_cast<std::size_t>(Got));
        if (Got < Expected) return Result;
    }
    std::array<char, CopyBlock> Block;
    for (;;) {
        const std::int64_t Got = Read(Block.data(), static_cast<std::int64_t>(Block.size()));
        if (Got == 0) return Result;
        Result.append(Block.data(), static_cast<std::size_t>(Got));
    }
}

std::int64_t TStream::CopyFrom(TStream& Source, std::int64_t Count) {
    if (&Source == this || Count < 0) return 0;
    const bool All = Count == 0;
    if (All) Source.SetPosition(0);
    std::array<char, CopyBlock> Block;
    std::int64_t Copied = 0;
    while (All || Copied < Count) {
        const std::int64_t Size = static_cast<std::int64_t>(Block.size());
        std::int64_t Part = All ? Size : std::min(Size, Count - Copied);
        if (All) {
            Part = Source.Read(Block.data(), Part);
            if (Part == 0) break;
        } else {
            Source.ReadBuffer(Block.data(), Part);
        }
        WriteBuffer(Block.data(), Part);
        Copied += Part;
    }
    return Copied;
}

std::int64_t TMemoryStream::Read(void* Buffer, std::int64_t Count) {
    if (Count <= 0 || FPosition >= FData.size()) return 0;
    const std::size_t Part = std::min(static_cast<std::size_t>(Count), FData.size() - FPosition);
    FData.copy(static_cast<char*>(Buffer), Part, FPosition);
    FPosition += Part;
    return static_cast<std::int64_t>(Part);
}

std::int64_t TMemoryStream::Write(const void* Buffer, std::int64_t Count) {
    if (Count <= 0) return 0;
    if (FPosition > FData.size()) FData.resize(FPosition);
    const std::size_t Part = static_cast<std::size_t>(Count);
    FData.replace(FPosition, std::min(Part, FData.size() - FPosition), static_cast<const char*>(Buffer),
                  Part);
    FPosition += Part;
    return Count;
}

std::int64_t TMemoryStream::Seek(std::int64_t Offset, TSeekOrigin Origin) {
    std::int64_t Position = Offset;
    if (Origin == soCurrent) Position += static_cast<std::int64_t>(FPosition);
    if (Origin == soEnd) Position += GetSize();
    if (Position < 0) throw EStreamError(FormatText(SSeekError, {IntToStr(Position)}));
    FPosition = static_cast<std::size_t>(Position);
    return Position;
}

void TMemoryStream::SetSize(std::int64_t NewSize) {
    if (NewSize < 0) throw EStreamError(FormatText(SSizeError, {IntToStr(NewSize)}));
    FData.resize(static_cast<std::size_t>(NewSize));
    FPosition = std::min(FPosition, FData.size());
}

void TMemoryStream::Clear() {
    FData = {};
    FPosition = 0;
}

void TMemoryStream::LoadFromFile(const std::string& FileName) {
    TFileStream Stream(FileName, fmOpenRead);
    FData = Stream.ReadRest();
    FPosition = 0;
}

void TMemoryStream::SaveToFile(const std::string& FileName) {
    ReplaceFile(FileName, [&](TStream& Stream) { Stream.WriteBuffer(FData.data(), GetSize()); });
}

} // namespace quill
