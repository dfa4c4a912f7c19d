#include "host/transfer/FileLists.h"

#include "host/base/Strings.h"
#include "host/base/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace quill {

namespace {

constexpr std::size_t WideFlagAt = 16;
constexpr std::string_view FileScheme = "file:";

unsigned ByteAt(std::string_view Bytes, std::size_t At) { return static_cast<unsigned char>(Bytes[At]); }

std::uint32_t NumberAt(std::string_view Block, std::size_t At) {
    return ByteAt(Block, At) | ByteAt(Block, At + 1) << 8 | ByteAt(Block, At + 2) << 16 |
           ByteAt(Block, At + 3) << 24;
}

// The UTF-16 name at Pos, which moves behind its terminator.
std::string WideName(std::string_view Bytes, std::size_t& Pos) {
    std::string Result;
    const auto Unit = [&](std::size_t At) {
        return static_cast<char32_t>(ByteAt(Bytes, At) | ByteAt(Bytes, At + 1) << 8);
    };
    while (Pos + 1 < Bytes.size()) {
        char32_t C = Unit(Pos);
        Pos += 2;
        if (C == 0) return Result;
        if (C >= 0xD800 && C < 0xE000) {
            const char32_t Second = C < 0xDC00 && Pos + 1 < Bytes.size() ? Unit(Pos) : 0;
            if (Second >= 0xDC00 && Second < 0xE000) {
                C = 0x10000 + ((C - 0xD800) << 10) + (Second - 0xDC00);
                Pos += 2;
            } else {
                C = ReplacementCharacter;
            }
        }
        AppendUtf8(Result, C);
    }
    Pos = Bytes.size();
    return Result;
}

int HexDigit(char C) {
    if (C >= '0' && C <= '9') return C - '0';
    if (C >= 'a' && C <= 'f') return C - 'a' + 10;
    if (C >= 'A' && C <= 'F') return C - 'A' + 10;
    return -1;
}

// The bytes that a percent-encoded text stands for; what is no encoding stays.
std::string Decoded(std::string_view Text) {
    std::string Result;
    for (std::size_t I = 0; I < Text.size(); ++I) {
        const int High = Text[I] == '%' && I + 2 < Text.size() ? HexDigit(Text[I + 1]) : -1;
        const int Low = High >= 0 ? HexDigit(Text[I + 2]) : -1;
        if (Low >= 0) {
            Result += static_cast<char>(High * 16 + Low);
            I += 2;
        } else {
            Result += Text[I];
        }
    }
    return Result;
}

// A file may have any name; a line of a text that looks like a path has none of these.
bool IsPlainPath(std::string_view Name) {
    return !Name.empty() && Name.front() == '/' &&
           std::all_of(Name.begin(), Name.end(), [](char C) { return static_cast<unsigned char>(C) >= 32; });
}

// The path of a file address ("file:/a", "file:///a", "file://localhost/a"), empty for an address elsewhere.
std::string PathOf(std::string_view Uri) {
    std::string Scheme(Uri.substr(0, FileScheme.size()));
    for (char& C : Scheme)
        if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
    if (Scheme != FileScheme) return {};
    Uri.remove_prefix(FileScheme.size());
    if (Uri.starts_with("//")) {
        Uri.remove_prefix(2);
        const std::size_t Slash = Uri.find('/');
        // A host of the network cannot be reached by a path; a program that names this one by its name is rare.
        if (Slash == std::string_view::npos || (Slash > 0 && Uri.substr(0, Slash) != "localhost")) return {};
        Uri.remove_prefix(Slash);
    }
    return Decoded(Uri.substr(0, Uri.find_first_of("?#")));
}

} // namespace

std::string BuildDropFiles(const TFileNames& Names) {
    std::string Result(DropFilesHeaderSize, '\0');
    Result[0] = static_cast<char>(DropFilesHeaderSize);
    for (const std::string& Name : Names) {
        Result += std::string_view(Name).substr(0, Name.find('\0'));
        Result += '\0';
    }
    Result += '\0';
    return Result;
}

TFileNames ReadDropFiles(std::string_view Block) {
    TFileNames Result;
    if (Block.size() < DropFilesHeaderSize) return Result;
    const std::uint32_t Offset = NumberAt(Block, 0);
    if (Offset >= Block.size()) return Result;
    const bool IsWide = NumberAt(Block, WideFlagAt) != 0;
    const std::string_view Names = Block.substr(Offset);
    for (std::size_t Pos = 0; Pos < Names.size();) {
        std::string Name;
        if (IsWide) {
            Name = WideName(Names, Pos);
        } else {
            const std::size_t End = std::min(Names.find('\0', Pos), Names.size());
            Name = Names.substr(Pos, End - Pos);
            Pos = End + 1;
        }
        if (Name.empty()) break;
        Result.push_back(std::move(Name));
    }
    return Result;
}

TFileNames ReadUriList(std::string_view Text) {
    TFileNames Result;
    std::size_t Pos = 0;
    std::string_view Line;
    while (NextTextLine(Text, Pos, Line)) {
        // Some programs end the whole text with a NUL.
        Line = Line.substr(0, Line.find('\0'));
        while (!Line.empty() && (Line.back() == ' ' || Line.back() == '\t')) Line.remove_suffix(1);
        if (Line.starts_with('#')) continue;
        std::string Path = PathOf(Line);
        if (Path.starts_with('/') && Path.find('\0') == std::string::npos) Result.push_back(std::move(Path));
    }
    return Result;
}

std::string BuildUriList(const TFileNames& Names) {
    constexpr std::string_view Plain = "-._~/!$&'()*+,;=:@";
    constexpr std::string_view Hex = "0123456789ABCDEF";
    std::string Result;
    for (const std::string& Name : Names) {
        Result += "file://";
        for (const char C : Name) {
            const bool IsLetter = (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || (C >= '0' && C <= '9');
            if (IsLetter || Plain.find(C) != std::string_view::npos) {
                Result += C;
            } else {
                const auto Byte = static_cast<unsigned char>(C);
                Result += '%';
                Result += Hex[Byte >> 4];
                Result += Hex[Byte & 15];
            }
        }
        Result += "\r\n";
    }
    return Result;
}

bool AreFilePaths(const TFileNames& Names) {
    return !Names.empty() && std::all_of(Names.begin(), Names.end(), IsPlainPath);
}

} // namespace quill
