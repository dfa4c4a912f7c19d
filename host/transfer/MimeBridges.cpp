// The bridges between data objects and Qt's mime data.
#include "host/graphics/Pictures.h"
#include "host/transfer/DataObjects.h"
#include "host/transfer/FileLists.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <QPointer>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <map>
#include <optional>

namespace quill {

namespace {

const QString TextType = QStringLiteral("text/plain");
const QString Utf8TextType = QStringLiteral("text/plain;charset=utf-8");
const QString UriListType = QStringLiteral("text/uri-list");
const QString PngType = QStringLiteral("image/png");
const QString QtImageType = QStringLiteral("application/x-qt-image");
const QString SvgType = QStringLiteral("image/svg+xml");

QByteArray ToBytes(std::string_view Text) { return {Text.data(), static_cast<qsizetype>(Text.size())}; }

// --- out ----------------------------------------------------------------------------------------------------------

class TDataObjectMime : public QMimeData {
public:
    TDataObjectMime(IDataObject* Object, std::function<void()> Asked)
        : FObject(Object), FAsked(std::move(Asked)) {}
    IDataObject* GetObject() const { return FObject.Get(); }
    void Reset() {
        FObject.Reset();
        FAsked = nullptr;
        FTypes.clear();
        FNames.clear();
    }

    QStringList formats() const override {
        Look();
        return FNames;
    }
    bool hasFormat(const QString& Type) const override { return formats().contains(Type); }

protected:
    QVariant retrieveData(const QString& Type, QMetaType Wanted) const override {
        Look();
        const auto Place = FTypes.find(Type);
        if (Place == FTypes.end() || !FObject) return {};
        const std::uint16_t Format = Place->second;
        if (FAsked) FAsked();
        TScopedMedium Medium;
        if (!Fetch(Format, Medium)) return {};
        return Convert(Type, Format, Medium, Wanted);
    }

private:
    // The object's answer may be a lie: a block where a picture was promised, or success with nothing.
    bool Fetch(std::uint16_t Format, STGMEDIUM& Medium) const {
        // Held while it is asked: a handler may end the link.
        const TInterfaceRef<IDataObject> Object = FObject;
        if (!Object) return false;
        FORMATETC Request;
        Request.cfFormat = Format;
        Request.tymed = TYMED_HGLOBAL | TYMED_GDI;
        // Called from the middle of Qt's work for another program, which no exception may cross.
        try {
            return Succeeded(Object->GetData(Request, Medium)) && Medium.hGlobal != 0;
        } catch (const std::exception& Error) {
            qWarning("A source of data failed: %s", Error.what());
        } catch (...) {
            qWarning("A source of data failed");
        }
        return false;
    }

    void Offer(const QString& Type, std::uint16_t Format) const {
        if (FTypes.emplace(Type, Format).second) FNames.append(Type);
    }

    void OfferPicture(const STGMEDIUM& Medium, std::uint16_t Format) const {
        if (const TBitmap* Bitmap = BitmapOfHandle(Medium.hGlobal); Bitmap && !Bitmap->GetEmpty()) {
            Offer(PngType, Format);
            Offer(QtImageType, Format);
        } else if (const TMetafile* Metafile = MetafileOfHandle(Medium.hGlobal);
                   Metafile && !Metafile->GetEmpty()) {
            Offer(SvgType, Format);
        }
    }

    void Look() const {
        if (FLooked) return;
        FLooked = true; // first: data that are asked for may look themselves
        const TInterfaceRef<IDataObject> Object = FObject;
        if (!Object) return;
        for (const FORMATETC& Entry : FormatsOf(*Object.Get())) {
            if (Entry.dwAspect != DVASPECT_CONTENT) continue;
            TScopedMedium Medium;
            if (!Fetch(Entry.cfFormat, Medium)) continue;
            switch (Entry.cfFormat) {
            case CF_TEXT:
                if (TextOfMedium(Medium).empty()) break;
                Offer(TextType, CF_TEXT);
                Offer(Utf8TextType, CF_TEXT);
                break;
            case CF_HDROP:
                if (AreFilePaths(ReadDropFiles(GlobalBytes(Medium.hGlobal)))) Offer(UriListType, CF_HDROP);
                break;
            case CF_BITMAP:
            case CF_METAFILEPICT:
            case CF_ENHMETAFILE:
                OfferPicture(Medium, Entry.cfFormat);
                break;
            default:
                if (const std::string Type = MimeTypeOfFormat(Entry.cfFormat); !Type.empty())
                    Offer(QString::fromStdString(Type), Entry.cfFormat);
            }
        }
    }

    static QVariant Convert(const QString& Type, std::uint16_t Format, const STGMEDIUM& Medium,
                            QMetaType Wanted) {
        if (Format == CF_TEXT) {
            const QByteArray Text = ToBytes(TextOfMedium(Medium));
            return Wanted.id() == QMetaType::QString ? QVariant(QString::fromUtf8(Text)) : QVariant(Text);
        }
        if (Format == CF_HDROP) {
            const TFileNames Names = ReadDropFiles(GlobalBytes(Medium.hGlobal));
            const QByteArray Text = ToBytes(BuildUriList(Names));
            if (Wanted.id() != QMetaType::QVariantList && Wanted.id() != QMetaType::QUrl) return Text;
            QVariantList Urls;
            for (const QByteArray& Line : Text.split('\n'))
                if (!Line.trimmed().isEmpty()) Urls.append(QUrl::fromEncoded(Line.trimmed()));
            return Urls;
        }
        if (const TBitmap* Bitmap = BitmapOfHandle(Medium.hGlobal)) {
            const QImage& Image = Bitmap->GetImage(2.0);
            if (Type == QtImageType) return Image;
            QByteArray Bytes;
            QBuffer Buffer(&Bytes);
            Image.save(&Buffer, "PNG");
            return Bytes;
        }
        if (const TMetafile* Metafile = MetafileOfHandle(Medium.hGlobal)) return ToBytes(Metafile->GetSvg());
        return ToBytes(GlobalBytes(Medium.hGlobal));
    }

    TInterfaceRef<IDataObject> FObject;
    std::function<void()> FAsked;
    mutable bool FLooked = false;
    mutable QStringList FNames; // in the object's order, which is its order of preference
    mutable std::map<QString, std::uint16_t> FTypes;
};

// --- in -----------------------------------------------------------------------------------------------------------

class TMimeDataObject : public TReadOnlyDataObject {
public:
    explicit TMimeDataObject(const QMimeData* Data) : FData(Data) {}
    void EndAccess() { FData = nullptr; }

    HResult GetData(const FORMATETC& Format, STGMEDIUM& Medium) override {
        Medium = {};
        if (!FData) return E_UNEXPECTED;
        if (Format.dwAspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
        const bool IsPicture = Format.cfFormat == CF_BITMAP || Format.cfFormat == CF_METAFILEPICT ||
                               Format.cfFormat == CF_ENHMETAFILE;
        const std::uint32_t Type = IsPicture ? TYMED_GDI : TYMED_HGLOBAL;
        if ((Format.tymed & Type) == 0) return DV_E_TYMED;
        const HResult Result = Fetch(Format.cfFormat, Medium.hGlobal);
        if (Result == S_OK) Medium.tymed = Type;
        return Result;
    }

protected:
    std::vector<FORMATETC> GetFormats() override {
        std::vector<FORMATETC> Result;
        const auto Add = [&](std::uint16_t Format, std::uint32_t Type) {
            FORMATETC Entry;
            Entry.cfFormat = Format;
            Entry.tymed = Type;
            Result.push_back(Entry);
        };
        if (!FData) return Result;
        const QStringList Types = FData->formats();
        // A uri-list of web addresses is no list of files, so it has to be read; once.
        if (Types.contains(UriListType) && !Files().empty()) Add(CF_HDROP, TYMED_HGLOBAL);
        if (!FData) return Result;
        if (OffersText(Types)) Add(CF_TEXT, TYMED_HGLOBAL);
        if (!ImageType(Types).isEmpty()) Add(CF_BITMAP, TYMED_GDI);
        if (Types.contains(SvgType)) {
            Add(CF_ENHMETAFILE, TYMED_GDI);
            Add(CF_METAFILEPICT, TYMED_GDI);
        }
        for (const QString& Type : Types) {
            if (Type == QtImageType) continue;
            if (const std::uint16_t Format = FormatOfMimeType(Type.toStdString())) Add(Format, TYMED_HGLOBAL);
        }
        return Result;
    }

private:
    bool OffersText(const QStringList& Types) const {
        return std::any_of(Types.begin(), Types.end(), [](const QString& Type) {
            return Type == TextType || Type.startsWith(TextType + u';');
        });
    }

    // The toolkit's image if it is there, else the first type that can be read; vector pictures are none.
    QString ImageType(const QStringList& Types) const {
        if (Types.contains(QtImageType)) return QtImageType;
        for (const QString& Type : Types)
            if (Type.startsWith(u"image/") && Type != SvgType &&
                QImageReader::supportedMimeTypes().contains(Type.toUtf8()))
                return Type;
        return {};
    }

    const TFileNames& Files() {
        if (!FFiles) {
            const QByteArray Bytes = FData->data(UriListType);
            FFiles = ReadUriList({Bytes.constData(), static_cast<std::size_t>(Bytes.size())});
        }
        return *FFiles;
    }

    static HResult Store(std::string_view Bytes, std::size_t Terminator, THandle& Handle) {
        Handle = CopyToGlobal(Bytes, Terminator);
        return Handle ? S_OK : E_OUTOFMEMORY;
    }

    // Waiting for another program may run events, so FData is looked at again after it.
    HResult Fetch(std::uint16_t Format, THandle& Handle) {
        const QStringList Types = FData->formats();
        if (Format == CF_TEXT) {
            if (!OffersText(Types)) return DV_E_FORMATETC;
            const QByteArray Text = FData->text().toUtf8();
            if (Text.isEmpty()) return DV_E_FORMATETC;
            return Store({Text.constData(), static_cast<std::size_t>(Text.size())}, 1, Handle);
        }
        if (Format == CF_HDROP) {
            if (!Types.contains(UriListType) || Files().empty()) return DV_E_FORMATETC;
            return Store(BuildDropFiles(Files()), 0, Handle);
        }
        if (Format == CF_BITMAP) {
            const QString Type = ImageType(Types);
            if (Type.isEmpty()) return DV_E_FORMATETC;
            const QImage Image = Type == QtImageType ? qvariant_cast<QImage>(FData->imageData())
                                                     : QImage::fromData(FData->data(Type));
            if (Image.isNull()) return DV_E_FORMATETC;
            TBitmap Bitmap;
            Bitmap.SetImage(Image);
            Handle = CreateBitmapHandle(Bitmap);
            return S_OK;
        }
        if (Format == CF_ENHMETAFILE || Format == CF_METAFILEPICT) {
            TMetafile Metafile;
            if (!Types.contains(SvgType) || !Metafile.SetSvg(FData->data(SvgType).toStdString()))
                return DV_E_FORMATETC;
            Handle = CreateMetafileHandle(Metafile);
            return S_OK;
        }
        for (const QString& Type : Types) {
            if (FormatOfMimeType(Type.toStdString()) != Format) continue;
            const QByteArray Bytes = FData->data(Type);
            return Store({Bytes.constData(), static_cast<std::size_t>(Bytes.size())}, 0, Handle);
        }
        return DV_E_FORMATETC;
    }

    QPointer<const QMimeData> FData;
    std::optional<TFileNames> FFiles;
};

} // namespace

QMimeData* NewMimeData(IDataObject* Object, std::function<void()> Asked) {
    return new TDataObjectMime(Object, std::move(Asked));
}

void CutOff(QMimeData* Data) {
    if (auto* Ours = dynamic_cast<TDataObjectMime*>(Data)) Ours->Reset();
}

TInterfaceRef<IDataObject> DataObjectOf(const QMimeData* Data) {
    if (!Data) return {};
    if (const auto* Ours = dynamic_cast<const TDataObjectMime*>(Data)) return Ours->GetObject();
    return new TMimeDataObject(Data);
}

void EndAccess(IDataObject* Object) {
    if (auto* Ours = dynamic_cast<TMimeDataObject*>(Object)) Ours->EndAccess();
}

} // namespace quill
