// A program for the tests between processes (desktop_test.py): one window that drags data out, or takes what is
// dropped; or a user of the clipboard. It tells what happens on standard output, a line each.
//
//   quill_transfer_peer source KIND X Y     KIND: text, files, bitmap, private, all
//   quill_transfer_peer self KIND X Y       both
//   quill_transfer_peer target X Y
//   quill_transfer_peer put KIND | get      the clipboard
#include "host/base/Errors.h"
#include "host/transfer/Clipboard.h"
#include "host/windows/Application.h"
#include "tests/transfer/TransferTestTools.h"

#include <QApplication>
#include <QTimer>
#include <QWindow>

#include <cstdio>
#include <cstdlib>

using namespace quill;
using namespace quill::testing;

namespace {

constexpr const char* PrivateName = "Quill Test";
const std::string PrivateBytes("\0\x01\xFF\r\n", 5);
const std::string Text = "two lines\r\n\xC3\xA9\xE2\x82\xAC";
const std::string Files = "/tmp/a b\n/tmp/\xC3\xA9";

template <class... TArgs>
void Say(const char* Pattern, TArgs... Args) {
    std::printf(Pattern, Args...);
    std::puts("");
    std::fflush(stdout);
}

std::string Readable(std::string_view Bytes) {
    std::string Result;
    for (const char C : Bytes) {
        char Code[5];
        std::snprintf(Code, sizeof(Code), "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(C)));
        Result += C >= ' ' && C < 127 ? std::string(1, C) : Code;
    }
    return Result;
}

// What a data object gives, as one line.
std::string Contents(NV_IDataObject* Data) {
    TOleObjectWrapper Wrapper(Data);
    std::string Result;
    if (const std::string S = Wrapper.GetString(); !S.empty()) Result += " text=" + Readable(S);
    if (TStrings* List = Wrapper.GetFileList()) {
        for (int I = 0; I < List->GetCount(); ++I) Result += " file=" + Readable(List->Get(I));
    }
    if (const TBitmap* Bitmap = Wrapper.GetBitmap())
        Result += " bitmap=" + std::to_string(Bitmap->GetWidth()) + "x" + std::to_string(Bitmap->GetHeight());
    TScopedMedium Medium;
    if (Data->GetData(Format(RegisterClipboardFormatA(PrivateName)), Medium) == S_OK)
        Result += " private=" + Readable(GlobalBytes(Medium.hGlobal));
    return Result;
}

// Serves all kinds that it is told to.
class TSource : public TOLEDropSource {
public:
    explicit TSource(const std::string& Kind) {
        const bool All = Kind == "all";
        if (Kind == "text" || All) GetDataWrapper()->SetString(Text);
        if (Kind == "files") GetDataWrapper()->SetString(Files);
        const TBitmap Bitmap = RedBitmap(30, 20);
        if (Kind == "bitmap") GetDataWrapper()->SetBitmap(&Bitmap);
        if (Kind == "private" || All)
            AddFormatEtc(RegisterClipboardFormatA(PrivateName), nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL);
        SetDragTypes({dtCopy, dtMove});
    }

protected:
    HResult DoGetData(const TNVFormatEtc& FormatEtc, TNVStgMedium& Medium) override {
        if (FormatEtc.cfFormat != RegisterClipboardFormatA(PrivateName))
            return TOLEDropSource::DoGetData(FormatEtc, Medium);
        Medium = {};
        Medium.tymed = TYMED_HGLOBAL;
        Medium.hGlobal = CopyToGlobal(PrivateBytes);
        return S_OK;
    }
};

// Takes anything.
class TTarget : public TOLEDropTarget {
public:
    using TOLEDropTarget::TOLEDropTarget;
    bool HasValidFormats() override { return true; }
    bool DoGetData() override { return true; }
};

class TWindow : public TCustomControl {
public:
    TWindow(int X, int Y) : TCustomControl(nullptr) {
        setWindowFlags(Qt::Window);
        setGeometry(X, Y, 200, 150);
    }
    ~TWindow() override { BeginDestruction(); }
    std::function<void()> OnDrag;

    void MouseMove(TShiftState Shift, int X, int Y) override {
        TCustomControl::MouseMove(Shift, X, Y);
        if (!OnDrag || FIsDragging || !Shift.Contains(ssLeft)) return;
        FIsDragging = true;
        OnDrag();
        FIsDragging = false;
    }
    // Tells the place once the window manager has stopped moving the window.
    void Announce() {
        const TPoint Center = ClientToScreen({GetClientWidth() / 2, GetClientHeight() / 2});
        FStill = windowHandle()->isExposed() && Center == FCenter ? FStill + 1 : 0;
        FCenter = Center;
        if (FStill == 4)
            Say("ready %d %d", Center.X, Center.Y);
        else
            QTimer::singleShot(100, this, [this] { Announce(); });
    }

private:
    bool FIsDragging = false;
    TPoint FCenter;
    int FStill = 0;
};

} // namespace

int main(int argc, char** argv) {
    QApplication App(argc, argv);
    const std::string Mode = argc > 1 ? argv[1] : "";
    const std::string Kind = argc > 2 ? argv[2] : "";
    if (Mode == "get") {
        // The window system has to tell us of the clipboard first.
        for (int I = 0; I < 50; ++I) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        TInterfaceRef<IDataObject> Data;
        OleGetClipboard(Data);
        Say("got%s", Contents(Data.Get()).c_str());
        return EXIT_SUCCESS;
    }
    TSource Source(Kind);
    if (Mode == "put") {
        OleSetClipboard(&Source);
        Say("ready");
        return App.exec();
    }
    const int Shift = Mode == "target" ? 0 : 1;
    if (argc < 4 + Shift) return EXIT_FAILURE;
    TWindow Window(std::atoi(argv[2 + Shift]), std::atoi(argv[3 + Shift]));
    TNVDragImageList Images(nullptr, 60, 40);
    TBitmap Picture = RedBitmap(60, 40);
    Picture.GetCanvas()->GetBrush()->SetColor(clBlue);
    Picture.GetCanvas()->FillRect({20, 10, 40, 30});
    Images.AddMasked(Picture, clBlue);
    TTarget Target;
    if (Mode != "target") {
        Source.SetImages(&Images);
        Source.OnFeedback = [](TObject*, int Effect, bool&) { Say("effect %d", Effect); };
        Window.OnDrag = [&] {
            const std::uint32_t Start = GetTickCount();
            const TDragResult Result = Source.Execute(&Window);
            Say("done %d in %d00 ms", static_cast<int>(Result),
                static_cast<int>((GetTickCount() - Start) / 100));
        };
    }
    if (Mode != "source") {
        Target.Register(&Window);
        Target.OnOleDragEnter = [](TObject*, NV_IDataObject*, TShiftState, TPoint, int&) { Say("enter"); };
        Target.OnOleDragLeave = [](TObject*) { Say("leave"); };
        Target.OnOleDragDrop = [](TObject*, NV_IDataObject* Data, TShiftState, TPoint, int& Effect) {
            try {
                Say("drop %d%s", Effect, Contents(Data).c_str());
            } catch (const Exception& Error) {
                Say("drop failed: %s", Error.what());
            }
        };
    }
    Window.show();
    Window.Announce();
    return App.exec();
}
