// Byte streams over memory and files.
#pragma once

#include "host/base/Objects.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quill {

enum TSeekOrigin { soBeginning, soCurrent, soEnd };

class TStream : public TObject {
public:
    // Reads up to Count bytes; returns how many were there (0 at the end). Raises EReadError on a device fault.
    virtual std::int64_t Read(void* Buffer, std::int64_t Count) = 0;
    // Writes up to Count bytes; returns how many were taken. Raises EWriteError on a device fault.
    virtual std::int64_t Write(const void* Buffer, std::int64_t Count) = 0;
    virtual std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) = 0;
    virtual std::int64_t GetSize();
    virtual void SetSize(std::int64_t NewSize);

    std::int64_t GetPosition() { return Seek(0, soCurrent); }
    void SetPosition(std::int64_t Value) { Seek(Value, soBeginning); }
    // All Count bytes, or EReadError / EWriteError.
    void ReadBuffer(void* Buffer, std::int64_t Count);
    void WriteBuffer(const void* Buffer, std::int64_t Count);
    // Everything from the current position to the end.
    std::string ReadRest();
    // Copies Count bytes of Source (0: all of it, from its start); returns the number copied.
    std::int64_t CopyFrom(TStream& Source, std::int64_t Count);
};

class TMemoryStream : public TStream {
public:
    TMemoryStream() = default;
    explicit TMemoryStream(std::string Content) : FData(std::move(Content)) {}

    std::int64_t Read(void* Buffer, std::int64_t Count) override;
    std::int64_t Write(const void* Buffer, std::int64_t Count) override;
    std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
    std::int64_t GetSize() override { return static_cast<std::int64_t>(FData.size()); }
    void SetSize(std::int64_t NewSize) override;
    void Clear();

    const std::string& GetMemory() const { return FData; }
    void LoadFromFile(const std::string& FileName);
    // Replaces the file safely (host/base/Files.h).
    void SaveToFile(const std::string& FileName);

private:
    std::string FData;
    std::size_t FPosition = 0;
};

// A memory stream whose content is read as a string.
class TStringStream : public TMemoryStream {
public:
    using TMemoryStream::TMemoryStream;
    const std::string& GetDataString() const { return GetMemory(); }
};

inline constexpr std::uint16_t fmCreate = 0xFFFF;
inline constexpr std::uint16_t fmOpenRead = 0x0000;
inline constexpr std::uint16_t fmOpenWrite = 0x0001;
inline constexpr std::uint16_t fmOpenReadWrite = 0x0002;

// An unbuffered file. A name that cannot be opened raises EFOpenError (EFCreateError with fmCreate) with the name
// and the system's reason; a directory cannot be opened.
class TFileStream : public TStream {
public:
    TFileStream(const std::string& FileName, std::uint16_t Mode);
    // Takes over an open descriptor; FileName is for messages.
    TFileStream(int Handle, const std::string& FileName) : FFileName(FileName), FHandle(Handle) {}
    ~TFileStream() override;
    TFileStream(const TFileStream&) = delete;
    TFileStream& operator=(const TFileStream&) = delete;

    std::int64_t Read(void* Buffer, std::int64_t Count) override;
    std::int64_t Write(const void* Buffer, std::int64_t Count) override;
    std::int64_t Seek(std::int64_t Offset, TSeekOrigin Origin) override;
    void SetSize(std::int64_t NewSize) override;
    // Forces the content to the disk; raises EWriteError when the system reports that it could not.
    void Flush();
    const std::string& GetFileName() const { return FFileName; }
    int GetHandle() const { return FHandle; }

private:
    std::string FFileName;
    int FHandle = -1;
};

} // namespace quill
