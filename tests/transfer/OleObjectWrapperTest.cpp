#include "host/base/Errors.h"
#include "host/transfer/FileLists.h"
#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

using namespace quill;
using namespace quill::testing;
using namespace std::string_literals;

namespace {

// What the wrapper serves for a format: "result bytes" or the kind of picture.
std::string Served(TOleObjectWrapper& Wrapper, int Number) {
    TScopedMedium Medium;
    const HResult Result = Wrapper.GetInternalData(Format(Number), Medium);
    if (Result == DV_E_FORMATETC) return Medium.hGlobal || Medium.tymed ? "handle left" : "no";
    if (Result != S_OK) return "failed";
    if (BitmapOfHandle(Medium.hGlobal)) return "bitmap " + std::to_string(Medium.tymed);
    if (MetafileOfHandle(Medium.hGlobal)) return "metafile " + std::to_string(Medium.tymed);
    return std::to_string(Medium.tymed) + ":" + std::string(GlobalBytes(Medium.hGlobal));
}

TEST(OleObjectWrapper, ServesWhatItHoldsAndNothingElse) {
    const std::size_t Before = GetHandleCount();
    TOleObjectWrapper Wrapper(nullptr);
    const auto All = [&] {
        std::string Result;
        for (const int Number : {1, 2, 3, 14, 15, 13, 16, 0xC000}) Result += Served(Wrapper, Number) + "|";
        return Result;
    };
    EXPECT_EQ(All(), "1:|no|no|no|no|no|no|no|");
    Wrapper.SetString("/a\r\n/b");
    EXPECT_EQ(All(), "1:/a\r\n/b|no|no|no|1:\x14"s + std::string(19, '\0') + "/a\0/b\0\0|no|no|no|"s);
    const TBitmap Bitmap = RedBitmap(3, 2);
    Wrapper.SetBitmap(&Bitmap);
    EXPECT_EQ(Wrapper.GetString(), "");
    EXPECT_EQ(All(), "1:|bitmap 16|no|no|no|no|no|no|");
    EXPECT_NE(Wrapper.GetBitmap(), &Bitmap);
    TMetafile Metafile;
    ASSERT_TRUE(Metafile.SetSvg(SmallSvg));
    EXPECT_EQ(Metafile.GetHeight(), 76);
    Wrapper.SetMetafile(&Metafile);
    EXPECT_EQ(All(), "1:|no|metafile 16|metafile 16|no|no|no|no|");
    Wrapper.SetString("x");
    EXPECT_EQ(Wrapper.GetMetafile(), nullptr);
    EXPECT_EQ(GetHandleCount(), Before);
}

TEST(OleObjectWrapper, ReadsWhatItsDataObjectOffers) {
    const std::size_t Before = GetHandleCount();
    {
        auto* const Data = new TTestData({{1, "text\0rest"s}, {15, BuildDropFiles({"/a", "/b"})}});
        const TInterfaceRef<IDataObject> Keep(Data);
        TOleObjectWrapper Wrapper(Data);
        EXPECT_TRUE(Wrapper.HasDataFormat(15));
        EXPECT_FALSE(Wrapper.HasDataFormat(2));
        EXPECT_EQ(Wrapper.GetString(), "text");
        TStrings* Files = Wrapper.GetFileList();
        ASSERT_NE(Files, nullptr);
        EXPECT_EQ(Files->GetCommaText(), "/a,/b");
        const int Asked = Data->Asked;
        EXPECT_EQ(Wrapper.GetFileList(), Files);
        EXPECT_EQ(Data->Asked, Asked);
        EXPECT_EQ(Wrapper.GetBitmap(), nullptr);
        // What the object lists is not given as a value.
        EXPECT_EQ(Wrapper.GetData(1).index(), 0u);
        EXPECT_EQ(Wrapper.GetData(15).index(), 0u);
        EXPECT_TRUE(std::holds_alternative<TOlePicture>(Wrapper.GetData(2)));
    }
    EXPECT_EQ(GetHandleCount(), Before);
}

TEST(OleObjectWrapper, ValuesGoInAndComeOut) {
    TOleObjectWrapper Wrapper(nullptr);
    Wrapper.SetData(std::string("text"), 1);
    EXPECT_EQ(std::get<std::string>(Wrapper.GetData(1)), "text");
    Wrapper.SetData(std::string("ignored"), 7);
    EXPECT_EQ(Wrapper.GetString(), "text");
    TPicture Picture;
    const TBitmap Bitmap = RedBitmap(3, 2);
    Picture.SetBitmap(&Bitmap);
    TOlePicture Value;
    GetOlePicture(Picture, Value);
    Wrapper.SetData(Value, 2);
    EXPECT_EQ(Wrapper.GetBitmap()->GetWidth(), 3);
    EXPECT_EQ(std::get<TOlePicture>(Wrapper.GetData(2))->GetWidth(), 3);
    EXPECT_EQ(std::get<TOlePicture>(Wrapper.GetData(14))->GetGraphic(), nullptr);
    EXPECT_EQ(std::get<std::vector<std::string>>(Wrapper.GetData(15)).size(), 0u);
}

// A source that lies: nothing crashes, nothing leaks, and what is missing reads as empty.
TEST(OleObjectWrapper, SurvivesSourcesThatLie) {
    const std::size_t Before = GetHandleCount();
    using TEntry = TTestData::TEntry;
    // Of a text, files and a picture.
    const std::tuple<TEntry, TEntry, TEntry, const char*> Cases[] = {
        {{1, "", E_FAIL},
         {15, "", E_FAIL},
         {2, "", E_FAIL},
         "text() files(IDataObject.GetData failed) bitmap(no)"},
        {{1, "", S_OK, 1, true},
         {15, "", S_OK, 1, true},
         {2, "", S_OK, 16, true},
         "text() files() bitmap(no)"},
        {{1, "no end"}, {15, "short"}, {2, "bytes", S_OK, 16}, "text(no end) files() bitmap(no)"},
        {{1, "\0x"s}, {15, "/a", S_OK, 16}, {2, "bytes"}, "text() files() bitmap(no)"},
    };
    for (const auto& [Text, Files, Picture, Expected] : Cases) {
        auto* const Data = new TTestData({Text, Files, Picture, {3, ""}, {14, "x"}});
        const TInterfaceRef<IDataObject> Keep(Data);
        TOleObjectWrapper Wrapper(Data);
        std::string Log = "text(" + Wrapper.GetString() + ") files(";
        try {
            Log += Wrapper.GetFileList()->GetCommaText();
        } catch (const Exception& Error) {
            Log += Error.GetMessage();
        }
        Log += ") bitmap("s + (Wrapper.GetBitmap() || Wrapper.GetMetafile() ? "yes" : "no") + ")";
        EXPECT_EQ(Log, Expected);
        // The same object towards the desktop offers only what there is.
        std::unique_ptr<QMimeData> Mime(NewMimeData(Data));
        EXPECT_FALSE(Mime->hasImage() || Mime->hasUrls() || Mime->hasFormat("image/svg+xml")) << Log;
        EXPECT_EQ(Mime->hasText(), !Wrapper.GetString().empty()) << Log;
    }
    EXPECT_EQ(GetHandleCount(), Before);
}

TEST(Mime, WhatASourceRaisesIsNoData) {
    const TExpectQtWarning Warning("A source of data failed: trouble");
    TOLEDropSource Source;
    Source.GetDataWrapper()->SetString("text");
    Source.OnSetData = [](NV_IDataObject*, int) { throw Exception("trouble"); };
    const std::unique_ptr<QMimeData> Mime(NewMimeData(&Source));
    EXPECT_EQ(Mime->formats().join(' ').toStdString(), "text/plain text/plain;charset=utf-8");
}

TEST(Mime, EveryKindOfDataArrivesAsItWas) {
    const std::uint16_t Private = RegisterClipboardFormatA("Private Test");
    const std::string Odd = "a\0\xFF\n"s;
    TOLEDropSource Source;
    const auto Types = [&] {
        const std::unique_ptr<QMimeData> Mime(NewMimeData(&Source));
        return Mime->formats().join(' ').toStdString();
    };
    EXPECT_EQ(Types(), "");
    Source.GetDataWrapper()->SetString("no path\r\n/a");
    EXPECT_EQ(Types(), "text/plain text/plain;charset=utf-8");
    Source.GetDataWrapper()->SetString("/a b\n/\xC3\xA9");
    EXPECT_EQ(Types(), "text/plain text/plain;charset=utf-8 text/uri-list");
    const TBitmap Bitmap = RedBitmap(3, 2);
    Source.GetDataWrapper()->SetBitmap(&Bitmap);
    EXPECT_EQ(Types(), "image/png application/x-qt-image");

    // Out to the desktop's types and in again, as from another program.
    TMetafile Metafile;
    ASSERT_TRUE(Metafile.SetSvg(SmallSvg));
    auto* const Stored = new TStoredDataObject;
    const TInterfaceRef<IDataObject> Keep(Stored);
    Stored->Store(CF_TEXT, CopyToGlobal("t\xC3\xA9xt", 1));
    Stored->Store(CF_HDROP, CopyToGlobal(BuildDropFiles({"/a b", "/\xC3\xA9"})));
    Stored->Store(CF_BITMAP, CreateBitmapHandle(Bitmap));
    Stored->Store(CF_ENHMETAFILE, CreateMetafileHandle(Metafile));
    Stored->Store(Private, CopyToGlobal(Odd));
    const std::unique_ptr<QMimeData> Out(NewMimeData(Stored));
    EXPECT_EQ(DataObjectOf(Out.get()).Get(), Stored);
    QMimeData Foreign;
    for (const QString& Type : Out->formats())
        if (Type != "application/x-qt-image") Foreign.setData(Type, Out->data(Type));
    const TInterfaceRef<IDataObject> In = DataObjectOf(&Foreign);
    TOleObjectWrapper Wrapper(In.Get());
    EXPECT_EQ(Wrapper.GetString(), "t\xC3\xA9xt");
    EXPECT_EQ(Wrapper.GetFileList()->GetText(), "/a b\r\n/\xC3\xA9\r\n");
    ASSERT_NE(Wrapper.GetBitmap(), nullptr);
    EXPECT_EQ(Wrapper.GetBitmap()->GetCanvas()->GetPixel(1, 1), clRed);
    ASSERT_NE(Wrapper.GetMetafile(), nullptr);
    EXPECT_EQ(Wrapper.GetMetafile()->GetSvg(), SmallSvg);
    TScopedMedium Medium;
    ASSERT_EQ(In->GetData(Format(Private), Medium), S_OK);
    EXPECT_EQ(GlobalBytes(Medium.hGlobal), Odd);

    // Addresses elsewhere are no files.
    QMimeData Web;
    Web.setData("text/uri-list", "http://host/a\r\n");
    EXPECT_EQ(DataObjectOf(&Web)->QueryGetData(Format(CF_HDROP)), DV_E_FORMATETC);
    EndAccess(In.Get());
    EXPECT_EQ(In->GetData(Format(CF_TEXT), Medium), E_UNEXPECTED);
}

} // namespace
