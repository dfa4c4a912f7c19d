// Data that come from other programs: lists of files in both forms, text, pictures, formats of any name. What is checked
// besides the sanitizers: what was read can be handed on and reads the same again, and no handle is left.
#include "host/transfer/DataObjects.h"
#include "host/transfer/DragDrop.h"
#include "host/transfer/FileLists.h"
#include "oledragdrop/OLEDragDrop.h"
#include "tests/fuzz/Fuzz.h"

#include <QApplication>
#include <QMimeData>

#include <cstdlib>

using namespace quill;

namespace {

void CheckNames(const TFileNames& Names, bool AreAbsolute) {
    for (const std::string& Name : Names) {
        fuzz::Check(!Name.empty() && Name.find('\0') == std::string::npos, "a name that is none");
        fuzz::Check(!AreAbsolute || Name.front() == '/', "a relative file");
    }
    fuzz::Check(ReadDropFiles(BuildDropFiles(Names)) == Names, "the block reads differently");
    if (AreAbsolute) fuzz::Check(ReadUriList(BuildUriList(Names)) == Names, "the uri-list reads differently");
}

// The first byte chooses the type that the data are said to have.
void Run(std::string_view Input) {
    static const char* const Types[] = {"text/plain", "text/uri-list",           "image/png", "image/svg+xml",
                                        "x",          "text/plain;charset=utf-8"};
    const std::size_t Handles = GetHandleCount();
    CheckNames(ReadDropFiles(Input), false);
    CheckNames(ReadUriList(Input), true);
    AreFilePaths(ReadDropFiles(Input));
    const std::size_t Kind = Input.empty() ? 0 : static_cast<unsigned char>(Input[0]) % std::size(Types);
    const std::string_view Bytes = Input.empty() ? Input : Input.substr(1);
    {
        // As it comes from the desktop.
        QMimeData Data;
        Data.setData(QString::fromLatin1(Types[Kind]),
                     QByteArray(Bytes.data(), static_cast<qsizetype>(Bytes.size())));
        const TInterfaceRef<IDataObject> Object = DataObjectOf(&Data);
        TOleObjectWrapper Wrapper(Object.Get());
        Wrapper.GetString();
        try {
            Wrapper.GetFileList();
        } catch (const std::exception&) {
            fuzz::Check(false, "files were listed and not given");
        }
        Wrapper.GetBitmap();
        Wrapper.GetMetafile();
    }
    {
        // As a data object hands it out: the bytes under every format.
        auto* const Stored = new TStoredDataObject;
        const TInterfaceRef<IDataObject> Object(Stored);
        for (const std::uint16_t Format : {CF_TEXT, CF_BITMAP, CF_METAFILEPICT, CF_ENHMETAFILE, CF_HDROP})
            Stored->Store(Format, CopyToGlobal(Input));
        TOleObjectWrapper Wrapper(Stored);
        fuzz::Check(Wrapper.GetString() == Input.substr(0, Input.find('\0')), "the text differs");
        fuzz::Check(Wrapper.GetFileList() != nullptr, "the list is missing");
        fuzz::Check(!Wrapper.GetBitmap() && !Wrapper.GetMetafile(), "a picture out of bytes");
        const std::unique_ptr<QMimeData> Data(NewMimeData(Stored));
        for (const QString& Type : Data->formats())
            fuzz::Check(!Data->data(Type).isNull(), "offered and not given");
    }
    {
        TOLEDropSource Source;
        Source.GetDataWrapper()->SetString(std::string(Input));
        const std::unique_ptr<QMimeData> Data(NewMimeData(&Source));
        fuzz::Check(!Data->hasUrls() || AreFilePaths(ReadUriList(Data->data("text/uri-list").toStdString())),
                    "files that are none");
    }
    fuzz::Check(GetHandleCount() == Handles, "a handle is left");
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    using namespace std::string_literals;
    return fuzz::Main(argc, argv,
                      {"transfer",
                       Run,
                       {"\x14\0\0\0"s + std::string(12, '\0') + "\0\0\0\0"s,
                        "\x14\0\0\0"s + std::string(12, '\0') + "\x01\0\0\0"s,
                        "\xFF\xFF\xFF\xFF",
                        "\x15\0\0\0"s,
                        "\0"s,
                        "\0\0"s,
                        "/\0a\0\0\0"s,
                        "\xD8\0\xDC\0"s,
                        "/a",
                        "/\xC3\xA9",
                        "file:///",
                        "file:",
                        "file://localhost/",
                        "http://host/",
                        "%20",
                        "%00",
                        "%",
                        "#",
                        "\r\n",
                        "\n",
                        "?",
                        "\x89PNG\r\n\x1A\n",
                        "IHDR",
                        "<svg width='1' height='2'>",
                        "</svg>",
                        "<!DOCTYPE svg [",
                        "<!ENTITY a 'b'>",
                        "viewBox='0 0 1 1'",
                        "1e99",
                        "\x00",
                        "\x01",
                        "\x02",
                        "\x03",
                        "\x04",
                        "\x05",
                        "\xFF\xFE"}});
}
