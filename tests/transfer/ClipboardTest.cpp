#include "host/transfer/Clipboard.h"

#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace quill;
using namespace quill::testing;

namespace {

TEST(Clipboard, TakesAndGivesTextPicturesAndHandles) {
    TClipboard& Board = Clipboard();
    const std::size_t Before = GetHandleCount();
    Board.Clear();
    EXPECT_FALSE(Board.HasFormat(CF_TEXT));
    EXPECT_EQ(Board.GetAsText(), "");
    Board.SetAsText("t\xC3\xA9xt");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toUtf8(), "t\xC3\xA9xt");
    QGuiApplication::clipboard()->setText("from outside");
    EXPECT_EQ(Board.GetAsText(), "from outside");
    {
        const TClipboardScope Open;
        Board.SetAsText("both");
        const TBitmap Bitmap = RedBitmap(2, 2);
        TPicture Picture;
        Picture.SetBitmap(&Bitmap);
        Board.Assign(&Picture);
        EXPECT_EQ(Board.GetAsText(), "both"); // also before it is closed
        EXPECT_EQ(QGuiApplication::clipboard()->text(), "from outside");
    }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "both");
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(2, 2));
    EXPECT_NE(BitmapOfHandle(Board.GetAsHandle(CF_BITMAP)), nullptr);
    Board.Clear();
    EXPECT_FALSE(Board.HasFormat(CF_BITMAP));
    EXPECT_EQ(GetHandleCount(), Before);
}

TEST(Clipboard, DataAreFetchedLateAndKeptWhenFlushed) {
    const std::uint16_t Private = RegisterClipboardFormatA("Private Test");
    {
        auto* const Data = new TTestData({{1, "late"}, {Private, "bytes"}});
        const TInterfaceRef<IDataObject> Keep(Data);
        ASSERT_EQ(OleSetClipboard(Data), S_OK);
        EXPECT_EQ(OleIsCurrentClipboard(Data), S_OK);
        EXPECT_EQ(OleFlushClipboard(), S_OK);
        EXPECT_EQ(OleIsCurrentClipboard(Data), S_FALSE);
        const int Asked = Data->Asked;
        EXPECT_EQ(Clipboard().GetAsText(), "late");
        EXPECT_EQ(Data->Asked, Asked);
    }
    EXPECT_EQ(GlobalBytes(Clipboard().GetAsHandle(Private)), "bytes");
    // A source that its owner frees takes its data along.
    {
        TOLEDropSource Source;
        Source.GetDataWrapper()->SetString("gone");
        OleSetClipboard(&Source);
        EXPECT_EQ(Clipboard().GetAsText(), "gone");
    }
    EXPECT_EQ(Clipboard().GetAsText(), "");
    TInterfaceRef<IDataObject> Empty;
    EXPECT_EQ(OleGetClipboard(Empty), S_OK);
    ASSERT_TRUE(Empty);
    Clipboard().Clear();
}

// A source that puts its text on the clipboard and serves the wish to move or copy it.
class TCopySource : public TOLEDropSource {
public:
    using TOLEDropSource::TOLEDropSource;

protected:
    bool CutOrCopyToClipboard() override {
        Clipboard().SetAsText(GetDataWrapper()->GetString());
        return true;
    }
    HResult DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) override {
        if (FormatEtc.cfFormat != CF_PREFERREDDROPEFFECT) return TOLEDropSource::DoGetData(FormatEtc, Medium);
        Medium.tymed = TYMED_HGLOBAL;
        Medium.hGlobal = CopyToGlobal(std::string(1, static_cast<char>(GetClipboardEffect())));
        return S_OK;
    }
};

TEST(Clipboard, CutAndCopyCarryTheirEffect) {
    Clipboard().SetAsText("before");
    TOLEDropSource Plain;
    Plain.GetDataWrapper()->SetString("plain");
    EXPECT_FALSE(Plain.CopyToClipboard());
    EXPECT_EQ(Clipboard().GetAsText(), "before");
    TCopySource Source;
    Source.GetDataWrapper()->SetString("nodes");
    EXPECT_TRUE(Source.CutToClipboard());
    EXPECT_EQ(Clipboard().GetAsText(), "nodes");
    EXPECT_EQ(GlobalBytes(Clipboard().GetAsHandle(CF_PREFERREDDROPEFFECT)), "\x02");
    EXPECT_TRUE(Source.CopyToClipboard());
    EXPECT_EQ(GlobalBytes(Clipboard().GetAsHandle(CF_PREFERREDDROPEFFECT)), "\x01");
    TOLEDropTarget Target;
    Target.PasteFromClipboard();
    EXPECT_EQ(Target.GetDroppedText(), "nodes");
    Clipboard().Clear();
}

} // namespace
