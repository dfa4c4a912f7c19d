#include "host/transfer/FileLists.h"

#include "tests/transfer/TransferTestTools.h"

#include <gtest/gtest.h>

using namespace quill;
using namespace quill::testing;

namespace {

std::string Header(std::uint32_t Offset, bool Wide) {
    std::string Result(DropFilesHeaderSize, '\xEE'); // point and client-area flag hold anything
    for (std::size_t I = 0; I < 4; ++I) {
        Result[I] = static_cast<char>(Offset >> (8 * I));
        Result[16 + I] = '\0';
    }
    if (Wide) Result[17] = 1; // any number but 0
    return Result;
}

std::string Bytes(const char16_t* Text, std::size_t Units) {
    std::string Result;
    for (std::size_t I = 0; I < Units; ++I) {
        Result += static_cast<char>(Text[I] & 0xFF);
        Result += static_cast<char>(Text[I] >> 8);
    }
    return Result;
}

TEST(FileLists, DropFilesBlocksOfAnyKindAreRead) {
    using namespace std::string_literals;
    const std::tuple<const char*, std::string, std::string> Cases[] = {
        {"nothing", "", ""},
        {"truncated header", Header(20, false).substr(0, 19), ""},
        {"header alone", Header(20, false), ""},
        {"bytes", Header(20, false) + "/a\0/b c\0\0"s, "[/a][/b c]"},
        {"no final terminator", Header(20, false) + "/a\0/b\0"s, "[/a][/b]"},
        {"no terminator at all", Header(20, false) + "/a", "[/a]"},
        {"behind the list", Header(20, false) + "/a\0\0/b\0\0"s, "[/a]"},
        {"empty list", Header(20, false) + "\0/b\0\0"s, ""},
        {"names further behind", Header(23, false) + "xyz/a\0\0"s, "[/a]"},
        {"names inside the header", Header(16, false) + "/a\0\0"s, ""},
        {"offset at the end", Header(24, false) + "/a\0\0"s, ""},
        {"wild offset", Header(0xFFFFFFFF, false) + "/a\0\0"s, ""},
        {"wild offset, wide", Header(0x80000000, true) + "/a\0\0"s, ""},
        {"wide", Header(20, true) + Bytes(u"/\u00e9\0/\U0001F600\0\0", 8), "[/\xC3\xA9][/\xF0\x9F\x98\x80]"},
        {"wide, odd length", Header(20, true) + Bytes(u"/a", 2) + "b", "[/a]"},
        {"wide, lone surrogates", Header(20, true) + Bytes(u"\xDC00/\xD800", 3),
         "[\xEF\xBF\xBD/\xEF\xBF\xBD]"},
        {"wide, cut pair", Header(20, true) + Bytes(u"a\xD83D", 2) + "\x01", "[a\xEF\xBF\xBD]"},
    };
    for (const auto& [Name, Block, Expected] : Cases)
        EXPECT_EQ(Joined(ReadDropFiles(Block)), Expected) << Name;
    EXPECT_EQ(BuildDropFiles({"/a", "/b"}), "\x14"s + std::string(19, '\0') + "/a\0/b\0\0"s);
}

TEST(FileLists, UriListsHoldFilesOfThisMachine) {
    const std::pair<std::string, std::string> Cases[] = {
        {"file:///a%20b\r\nfile:///c\r\n", "[/a b][/c]"},
        {"file:/a\nFILE://localhost/b", "[/a][/b]"},
        {"# comment\r\n\r\nfile:///a\r\n", "[/a]"},
        {"http://host/a\nfile://other/b\nfile:c\nfile://", ""},
        {"file:///%C3%A9%FF%zz%4", "[/\xC3\xA9\xFF%zz%4]"},
        {"file:///a%00b\nfile:///c#part", "[/c]"},
        {std::string("file:///a\r\n\0", 12), "[/a]"},
    };
    for (const auto& [Text, Expected] : Cases) EXPECT_EQ(Joined(ReadUriList(Text)), Expected) << Text;
    const TFileNames Odd{"/a b%#?\n\xFF", "/\xC3\xA9"};
    EXPECT_EQ(BuildUriList(Odd), "file:///a%20b%25%23%3F%0A%FF\r\nfile:///%C3%A9\r\n");
    EXPECT_EQ(ReadUriList(BuildUriList(Odd)), Odd);
    EXPECT_FALSE(AreFilePaths({}));
    EXPECT_FALSE(AreFilePaths({"/a", "b"}));
    EXPECT_FALSE(AreFilePaths({"/a\tb"}));
    EXPECT_TRUE(AreFilePaths({"/a", "/b c"}));
}

TEST(GlobalMemory, HandlesAreNumbersThatCannotBeMistaken) {
    const std::size_t Before = GetHandleCount();
    const HGLOBAL Block = GlobalAlloc(GMEM_ZEROINIT, 3);
    EXPECT_EQ(GlobalSize(Block), 3u);
    std::memcpy(GlobalLock(Block), "abc", 4); // the terminator has room behind the block
    EXPECT_EQ(GlobalBytes(Block), "abc");
    EXPECT_FALSE(GlobalUnlock(Block));
    const THandle Picture = CreateBitmapHandle(RedBitmap(2, 2));
    EXPECT_EQ(GlobalLock(Picture), nullptr);
    EXPECT_FALSE(GlobalFree(Picture));
    EXPECT_FALSE(DeleteObject(Block));
    EXPECT_EQ(MetafileOfHandle(Picture), nullptr);
    EXPECT_TRUE(DeleteObject(Picture));
    EXPECT_TRUE(GlobalFree(Block));
    EXPECT_FALSE(GlobalFree(Block));
    EXPECT_EQ(GlobalAlloc(0, SIZE_MAX), 0u);
    EXPECT_EQ(GlobalAlloc(0, LargestBlock + 1), 0u);
    EXPECT_EQ(GetHandleCount(), Before);
}

TEST(ClipboardFormats, NamesHaveNumbersAndTypes) {
    const std::uint16_t Number = RegisterClipboardFormatA("My Format");
    EXPECT_GE(Number, 0xC000);
    EXPECT_EQ(RegisterClipboardFormatA("MY FORMAT"), Number);
    EXPECT_EQ(GetClipboardFormatName(Number), "My Format");
    EXPECT_EQ(FormatOfMimeType(MimeTypeOfFormat(Number)), Number);
    EXPECT_EQ(MimeTypeOfFormat(RegisterClipboardFormatA("text/html")), "text/html");
    EXPECT_EQ(MimeTypeOfFormat(CF_TEXT) + GetClipboardFormatName(0xFFFF), "");
    EXPECT_EQ(RegisterClipboardFormatA(""), 0);
    EXPECT_EQ(GetClipboardFormatName(CF_PREFERREDDROPEFFECT), "Preferred DropEffect");
}

} // namespace
