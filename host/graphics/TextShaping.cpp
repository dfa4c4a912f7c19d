#include "host/graphics/TextShaping.h"

#include "host/base/Utf8.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <limits>
#include <list>
#include <map>
#include <tuple>
#include <unordered_map>

namespace quill::text {
namespace {

constexpr std::size_t MaxEntries = 8192;
constexpr std::size_t MaxBytes = std::size_t{8} << 20;
constexpr std::size_t MaxFaces = 256;
// Up to this many bytes a text is measured exactly, single lines in chunks.
constexpr std::size_t MeasuredBytes = std::size_t{64} << 10;
constexpr std::size_t ChunkBytes = 4096;
// No line is laid out wider; the layout engine counts in 1/64 pixels.
constexpr int WidestLine = 1 << 24;

// --- cache --------------------------------------------------------------------------------------------------------

struct TKey {
    std::uint32_t Face;
    unsigned Flags;
    int Width;
    std::string_view Text;
    bool operator==(const TKey&) const = default;
};

struct TKeyHash {
    std::size_t operator()(const TKey& Key) const {
        std::size_t Hash = std::hash<std::string_view>()(Key.Text);
        const std::uint64_t Rest = (std::uint64_t{Key.Face} << 40) ^ (std::uint64_t{Key.Flags} << 32) ^
                                   static_cast<std::uint32_t>(Key.Width);
        return Hash ^ (Rest * 0x9E3779B97F4A7C15u);
    }
};

struct TEntry {
    std::string Text; // the key's view points here
    TKey Key;
    TBlock Block;
    std::size_t Bytes = 0;
};

using TFaceKey = std::tuple<std::string, QString, int, std::uint32_t>;

struct TCache {
    // Most recently used first.
    std::list<TEntry> Entries;
    std::unordered_map<TKey, std::list<TEntry>::iterator, TKeyHash> Index;
    std::map<TFaceKey, std::unique_ptr<const TFace>> Faces;
    std::size_t Bytes = 0;
    std::uint64_t Hits = 0;
    std::uint64_t Misses = 0;
    std::uint64_t Placed = 0;
    std::uint32_t LastFaceId = 0;
    // Counts the times that faces were dropped, so that remembered ones are looked up again.
    unsigned Generation = 1;
    bool CleansUp = false;

    void Clear() {
        Index.clear();
        Entries.clear();
        Faces.clear();
        Bytes = 0;
        ++Generation;
    }
};

TCache& Cache() {
    static TCache Instance;
    if (!Instance.CleansUp) {
        // Glyphs and fonts must not outlive the application object.
        Instance.CleansUp = true;
        qAddPostRoutine([] {
            Instance.Clear();
            Instance.CleansUp = false;
        });
    }
    return Instance;
}

// --- preparing the text -------------------------------------------------------------------------------------------

QString ToQString(std::string_view Text) {
    const auto Size = static_cast<qsizetype>(Text.size());
    if (std::all_of(Text.begin(), Text.end(), [](char C) { return static_cast<unsigned char>(C) < 0x80; }))
        return QString::fromLatin1(Text.data(), Size);
    if (IsValidUtf8(Text)) return QString::fromUtf8(Text.data(), Size);
    const std::u32string CodePoints = Utf8ToUtf32(Text);
    return QString::fromUcs4(CodePoints.data(), static_cast<qsizetype>(CodePoints.size()));
}

// Nothing but line breaks of our own may break a line, and control characters have no glyphs.
void BlankControls(QString& Text) {
    for (QChar& C : Text)
        if (C.unicode() < 0x20 || C == QChar::LineSeparator || C == QChar::ParagraphSeparator) C = u' ';
}

// Takes the prefix characters out; returns the index of the marked character, -1 for none.
qsizetype TakePrefixes(QString& Text) {
    qsizetype Mark = -1;
    qsizetype To = 0;
    for (qsizetype From = 0; From < Text.size(); ++From) {
        if (Text[From] == u'&') {
            if (++From == Text.size()) break;
            if (Text[From] != u'&') Mark = To;
        }
        Text[To++] = Text[From];
    }
    Text.truncate(To);
    return Mark;
}

// The line at Pos without its end (CR, LF or the pair); moves Pos behind the end.
std::string_view TakeLine(std::string_view Text, std::size_t& Pos) {
    const std::size_t End = std::min(Text.find_first_of("\r\n", Pos), Text.size());
    const std::string_view Line = Text.substr(Pos, End - Pos);
    Pos = End;
    if (Pos < Text.size()) Pos += Text.substr(Pos, 2) == "\r\n" ? 2 : 1;
    return Line;
}

// The first bytes of Text, at most Limit, not ending inside a character.
std::string_view Prefixed(std::string_view Text, std::size_t Limit) {
    if (Text.size() <= Limit) return Text;
    std::size_t End = Limit;
    for (int I = 0; I < 3 && End > 1 && (static_cast<unsigned char>(Text[End]) & 0xC0) == 0x80; ++I) --End;
    return Text.substr(0, End);
}

// --- shaping ------------------------------------------------------------------------------------------------------

int CeilWidth(qreal Width) { return static_cast<int>(std::ceil(Width - 0.01)); }

class TShaper {
public:
    TShaper(const TFace& Face, TBlock& Block, int Width, unsigned Flags)
        : FFace(Face), FBlock(Block), FWidth(std::max(0, Width)), FFlags(Flags) {}

    void Run(std::string_view Text) {
        if ((FFlags & (MultiLine | WordWrap)) == 0) {
            std::string Joined;
            if (Text.find("\r\n") != std::string_view::npos) {
                for (std::size_t Pos = 0; Pos < Text.size();) {
                    Joined += TakeLine(Text, Pos);
                    if (Pos < Text.size() || Text.ends_with('\n') || Text.ends_with('\r')) Joined += ' ';
                }
                Text = Joined;
            }
            Paragraph(Text);
        } else {
            std::size_t Pos = 0;
            do Paragraph(TakeLine(Text, Pos));
            while (Pos < Text.size());
        }
        for (const TLine& Line : FBlock.Lines) FBlock.Width = std::max(FBlock.Width, Line.Width);
        const auto Height = static_cast<std::int64_t>(FBlock.Lines.size()) * FFace.LineHeight();
        FBlock.Height = static_cast<int>(std::min<std::int64_t>(Height, WidestLine));
    }

private:
    static const TBlock& EllipsisOf(const TFace& Face) {
        if (!Face.Ellipsis) {
            auto Block = std::make_shared<TBlock>();
            TShaper(Face, *Block, 0, 0).Run("\u2026");
            Face.Ellipsis = Block;
        }
        return *Face.Ellipsis;
    }

    void Paragraph(std::string_view Bytes) {
        QString Text = ToQString(Bytes);
        BlankControls(Text);
        const qsizetype Mark = (FFlags & Prefix) != 0 ? TakePrefixes(Text) : -1;
        if (Text.isEmpty()) {
            FBlock.Lines.push_back({static_cast<int>(FBlock.Runs.size()), 0, 0, 0, 0});
            return;
        }
        const bool Wraps = (FFlags & WordWrap) != 0;
        if (!Wraps && Mark < 0 && (FFlags & RightToLeft) == 0 && Placed(Text)) return;
        QTextLayout Layout(Text, FFace.Font);
        Prepare(Layout, Wraps ? QTextOption::WordWrap : QTextOption::NoWrap, !Wraps);
        Layout.beginLayout();
        for (QTextLine Line = Layout.createLine(); Line.isValid(); Line = Layout.createLine())
            Line.setLineWidth(Wraps ? FWidth : WidestLine);
        Layout.endLayout();
        if ((FFlags & Elide) != 0 && !Wraps && CeilWidth(Layout.lineAt(0).horizontalAdvance()) > FWidth) {
            Elided(Text, Mark);
            return;
        }
        for (int I = 0; I < Layout.lineCount(); ++I) Take(Layout.lineAt(I), Mark);
        if (!Wraps && (FFlags & RightToLeft) == 0 && FBlock.Lines.back().RunCount == 1)
            FFace.Glyphs.Learn(FFace.Font, Text, FBlock.Runs.back(), Layout.lineAt(0).horizontalAdvance());
    }

    // Makes the line from the glyphs that are known of the face, when they suffice.
    bool Placed(const QString& Text) {
        TPlacement Placement;
        if (!FFace.Glyphs.Place(Text, Placement)) return false;
        ++Cache().Placed;
        TLine Line;
        Line.FirstRun = static_cast<int>(FBlock.Runs.size());
        double Width = Placement.Ends.back();
        if ((FFlags & Elide) != 0 && CeilWidth(Width) > FWidth) {
            const TBlock& Ellipsis = EllipsisOf(FFace);
            const auto Fitting = std::upper_bound(Placement.Ends.begin(), Placement.Ends.end(),
                                                  static_cast<double>(FWidth - Ellipsis.Width));
            const auto Kept = Fitting - Placement.Ends.begin();
            Width = Kept > 0 ? Placement.Ends[static_cast<std::size_t>(Kept) - 1] : 0.0;
            Placement.Glyphs.resize(Kept);
            Placement.Positions.resize(Kept);
            for (QGlyphRun Run : Ellipsis.Runs) {
                QList<QPointF> Shifted = Run.positions();
                for (QPointF& Position : Shifted) Position.rx() += Width;
                Run.setPositions(Shifted);
                FBlock.Runs.push_back(Run);
            }
            Width += Ellipsis.Width;
        }
        if (!Placement.Glyphs.isEmpty()) {
            QGlyphRun Run;
            Run.setRawFont(FFace.Glyphs.Font());
            Run.setGlyphIndexes(Placement.Glyphs);
            Run.setPositions(Placement.Positions);
            FBlock.Runs.push_back(Run);
        }
        Line.RunCount = static_cast<int>(FBlock.Runs.size()) - Line.FirstRun;
        Line.Width = CeilWidth(Width);
        FBlock.Lines.push_back(Line);
        return true;
    }

    void Prepare(QTextLayout& Layout, QTextOption::WrapMode Mode, bool TrailingSpaces) const {
        QTextOption Option(Qt::AlignLeft | Qt::AlignAbsolute);
        Option.setWrapMode(Mode);
        Option.setTextDirection((FFlags & RightToLeft) != 0 ? Qt::RightToLeft : Qt::LeftToRight);
        if (TrailingSpaces) Option.setFlags(QTextOption::IncludeTrailingSpaces);
        Layout.setTextOption(Option);
        Layout.setCacheEnabled(true);
    }

    // The longest start of Text that leaves room for the ellipsis, in reading order, and the ellipsis.
    void Elided(const QString& Text, qsizetype Mark) {
        const QString Ellipsis(QChar(0x2026));
        const qreal Room = FWidth - QFontMetricsF(FFace.Font).horizontalAdvance(Ellipsis);
        qsizetype Kept = 0;
        if (Room > 0) {
            QTextLayout Fitting(Text, FFace.Font);
            Prepare(Fitting, QTextOption::WrapAnywhere, true);
            Fitting.beginLayout();
            QTextLine Line = Fitting.createLine();
            Line.setLineWidth(Room);
            Kept = Line.textLength();
            // A first cluster that is too wide is laid out all the same.
            if (Line.horizontalAdvance() > Room + 0.01) Kept = 0;
            Fitting.endLayout();
        }
        QTextLayout Layout(Text.left(Kept) + Ellipsis, FFace.Font);
        Prepare(Layout, QTextOption::NoWrap, true);
        Layout.beginLayout();
        QTextLine Line = Layout.createLine();
        Line.setLineWidth(WidestLine);
        Layout.endLayout();
        Take(Line, Mark < Kept ? Mark : -1);
    }

    void Take(const QTextLine& Line, qsizetype Mark) {
        TLine Result;
        Result.FirstRun = static_cast<int>(FBlock.Runs.size());
        Result.Width = CeilWidth(Line.horizontalAdvance());
        const QPointF Origin(Line.x(), Line.y() + Line.ascent());
        for (QGlyphRun& Run : Line.glyphRuns()) {
            QList<QPointF> Positions = Run.positions();
            for (QPointF& Position : Positions) Position -= Origin;
            Run.setPositions(Positions);
            Run.setUnderline(false);
            Run.setStrikeOut(false);
            FBlock.Runs.push_back(Run);
        }
        Result.RunCount = static_cast<int>(FBlock.Runs.size()) - Result.FirstRun;
        if (Mark >= Line.textStart() && Mark < Line.textStart() + Line.textLength()) {
            const qreal A = Line.cursorToX(static_cast<int>(Mark)) - Line.x();
            const qreal B = Line.cursorToX(static_cast<int>(Mark) + 1) - Line.x();
            Result.MarkLeft = static_cast<int>(std::floor(std::min(A, B)));
            Result.MarkWidth = std::max(1, CeilWidth(std::abs(B - A)));
        }
        FBlock.Lines.push_back(Result);
    }

    const TFace& FFace;
    TBlock& FBlock;
    int FWidth;
    unsigned FFlags;
};

std::size_t SizeOf(const TEntry& Entry) {
    std::size_t Bytes = sizeof(TEntry) + 2 * sizeof(void*) + sizeof(TKey) + Entry.Text.capacity() +
                        Entry.Block.Lines.capacity() * sizeof(TLine);
    // Glyph numbers and positions, and the shared record of a run.
    for (const QGlyphRun& Run : Entry.Block.Runs)
        Bytes +=
            160 + static_cast<std::size_t>(Run.glyphIndexes().size()) * (sizeof(quint32) + sizeof(QPointF));
    return Bytes;
}

const TBlock& Cached(const TFace& Face, std::string_view Text, int Width, unsigned Flags) {
    TCache& C = Cache();
    if ((Flags & (Elide | WordWrap)) == 0) Width = 0;
    const auto Found = C.Index.find(TKey{Face.Id, Flags, Width, Text});
    if (Found != C.Index.end()) {
        ++C.Hits;
        C.Entries.splice(C.Entries.begin(), C.Entries, Found->second);
        return Found->second->Block;
    }
    ++C.Misses;
    C.Entries.emplace_front();
    TEntry& Entry = C.Entries.front();
    Entry.Text = Text;
    Entry.Key = {Face.Id, Flags, Width, Entry.Text};
    TShaper(Face, Entry.Block, Width, Flags).Run(Text);
    Entry.Bytes = SizeOf(Entry);
    C.Bytes += Entry.Bytes;
    C.Index.emplace(Entry.Key, C.Entries.begin());
    while (C.Entries.size() > 1 && (C.Entries.size() > MaxEntries || C.Bytes > MaxBytes)) {
        const TEntry& Oldest = C.Entries.back();
        C.Bytes -= Oldest.Bytes;
        C.Index.erase(Oldest.Key);
        C.Entries.pop_back();
    }
    return Entry.Block;
}

int Clamped(double Value) { return static_cast<int>(std::min(Value, double{WidestLine})); }

} // namespace

// --- faces --------------------------------------------------------------------------------------------------------

const TFace* TFontUse::Resolve(const TFont& Font, double Scale) {
    if (qGuiApp == nullptr) return nullptr;
    TCache& C = Cache();
    const std::uint32_t Style = Font.GetStyle().Bits() & (TFontStyles(fsBold) + TFontStyles(fsItalic)).Bits();
    const bool IsDefault = Font.GetName().empty();
    if (FFace != nullptr && FGeneration == C.Generation && FHeight == Font.GetHeight() && FStyle == Style &&
        FScale == Scale && FName == Font.GetName() &&
        (!IsDefault || FApplicationFont == QGuiApplication::font()))
        return FFace;
    FName = Font.GetName();
    FHeight = Font.GetHeight();
    FStyle = Style;
    FScale = Scale;
    FApplicationFont = QGuiApplication::font();

    QFont Qt = FApplicationFont;
    if (!IsDefault) Qt.setFamilies({ToQString(FName)});
    Qt.setBold(Font.GetStyle().Contains(fsBold));
    Qt.setItalic(Font.GetStyle().Contains(fsItalic));
    Qt.setUnderline(false);
    Qt.setStrikeOut(false);
    double Size = FHeight == 0 ? 12.0 : std::abs(static_cast<double>(FHeight));
    if (FHeight > 0) {
        // A positive height is that of the line, so the characters get what ascent and descent leave them.
        constexpr int Sample = 200;
        Qt.setPixelSize(Sample);
        const QFontMetricsF Metrics(Qt);
        if (Metrics.ascent() + Metrics.descent() > 0) Size *= Sample / (Metrics.ascent() + Metrics.descent());
    }
    const int Pixels = static_cast<int>(std::clamp(std::round(Size * Scale), 1.0, 4096.0));
    Qt.setPixelSize(Pixels);

    if (C.Faces.size() >= MaxFaces) {
        C.Faces.clear();
        ++C.Generation;
    }
    std::unique_ptr<const TFace>& Known = C.Faces[{FName, IsDefault ? Qt.key() : QString(), Pixels, Style}];
    if (!Known) {
        auto Face = std::make_unique<TFace>();
        const QFontMetricsF Metrics(Qt);
        Face->Id = ++C.LastFaceId;
        Face->Font = Qt;
        Face->Ascent = static_cast<int>(std::ceil(Metrics.ascent() - 0.01));
        Face->Descent = static_cast<int>(std::ceil(Metrics.descent() - 0.01));
        Face->AveCharWidth = std::max(1, static_cast<int>(std::lround(Metrics.averageCharWidth())));
        Face->LineThickness = std::max(1, static_cast<int>(std::lround(Metrics.lineWidth())));
        Face->UnderlineTop = std::max(1, static_cast<int>(std::lround(Metrics.underlinePos())));
        Face->StrikeTop = -static_cast<int>(std::lround(Metrics.strikeOutPos()));
        Known = std::move(Face);
    }
    FGeneration = C.Generation;
    FFace = Known.get();
    return FFace;
}

// --- blocks -------------------------------------------------------------------------------------------------------

const TBlock& Shape(const TFace& Face, std::string_view Text, int Width, unsigned Flags) {
    if ((Flags & Elide) != 0) {
        // What fits is the same at every width, so most widths share one entry.
        const TBlock& Whole = Cached(Face, Text, Width, Flags & ~unsigned{Elide});
        if (Whole.Width <= Width || (Flags & WordWrap) != 0) return Whole;
    }
    return Cached(Face, Text, Width, Flags);
}

TExtent Measure(const TFace& Face, std::string_view Text, int Width, unsigned Flags) {
    Flags &= ~unsigned{Elide};
    const bool OneLine = (Flags & (MultiLine | WordWrap)) == 0;
    if (Text.size() <= (OneLine ? ChunkBytes : MeasuredBytes)) {
        const TBlock& Block = Cached(Face, Text, Width, Flags);
        return {Block.Width, Block.Height};
    }
    const std::string_view Start = Prefixed(Text, MeasuredBytes);
    const double Factor = static_cast<double>(Text.size()) / static_cast<double>(Start.size());
    if (OneLine) {
        double Total = 0.0;
        for (std::size_t Pos = 0; Pos < Start.size();) {
            const std::string_view Chunk = Prefixed(Start.substr(Pos), ChunkBytes);
            Total += Cached(Face, Chunk, 0, Flags).Width;
            Pos += Chunk.size();
        }
        return {Clamped(Total * Factor), Face.LineHeight()};
    }
    if ((Flags & WordWrap) != 0) {
        const TBlock& Block = Cached(Face, Start, Width, Flags);
        return {Block.Width, Clamped(Block.Height * Factor)};
    }
    // Lines are counted exactly; the widest is measured among the longest of the start and estimated beyond.
    std::size_t Lines = 0;
    std::string_view Longest;
    for (std::size_t Pos = 0; Pos < Text.size(); ++Lines) {
        const std::string_view Line = TakeLine(Text, Pos);
        if (Line.size() > Longest.size()) Longest = Line;
    }
    const TExtent Widest = Measure(Face, Longest, 0, Flags & ~unsigned{MultiLine});
    const TBlock& Block = Cached(Face, Prefixed(Text, ChunkBytes), 0, Flags);
    return {std::max(Widest.Width, Block.Width), Clamped(static_cast<double>(Lines) * Face.LineHeight())};
}

void AppendEnds(const TFace& Face, std::string_view Text, bool RightToLeft, std::vector<double>& Ends) {
    // Finding a position in a line costs the characters before it, so lines are kept short.
    constexpr qsizetype Piece = 128;
    QString Line = ToQString(Text);
    BlankControls(Line);
    double Width = 0.0;
    for (qsizetype Start = 0; Start < Line.size();) {
        qsizetype End = std::min(Start + Piece, Line.size());
        if (End < Line.size()) {
            const qsizetype Space = Line.lastIndexOf(u' ', End - 1);
            if (Space > Start) End = Space + 1;
            if (Line[End - 1].isHighSurrogate()) ++End;
        }
        QTextLayout Layout(Line.mid(Start, End - Start), Face.Font);
        QTextOption Option(Qt::AlignLeft | Qt::AlignAbsolute);
        Option.setWrapMode(QTextOption::NoWrap);
        Option.setTextDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        Option.setFlags(QTextOption::IncludeTrailingSpaces);
        Layout.setTextOption(Option);
        Layout.beginLayout();
        QTextLine Shaped = Layout.createLine();
        Shaped.setLineWidth(WidestLine);
        Layout.endLayout();
        const QString& Shown = Layout.text();
        // Steps in both directions count: what is asked is how much room the characters take.
        int Index = 0;
        double Last = Shaped.cursorToX(0);
        double Reached = 0.0;
        while (Index < Shown.size()) {
            Index += Shown[Index].isHighSurrogate() && Index + 1 < Shown.size() ? 2 : 1;
            const double X = Shaped.cursorToX(Index);
            Reached += std::abs(X - Last);
            Last = X;
            Ends.push_back(Width + std::min(Reached, Shaped.horizontalAdvance()));
        }
        Width += Shaped.horizontalAdvance();
        if (!Ends.empty()) Ends.back() = Width;
        Start = End;
    }
}

std::string_view VisiblePart(const TFace& Face, std::string_view Text, int Width, int Height,
                             unsigned Flags) {
    // Far more bytes than characters of common width could need, to leave room for narrow and combining ones.
    std::size_t Room = ChunkBytes + 4 * static_cast<std::size_t>(std::clamp(Width, 0, 8192));
    if (Text.size() <= ChunkBytes) return Text;
    if ((Flags & (MultiLine | WordWrap)) != 0) {
        const int Lines = std::clamp(Height, 0, 8192) / std::max(1, Face.LineHeight()) + 1;
        Room = std::min(MeasuredBytes, Room * static_cast<std::size_t>(Lines));
        std::size_t End = 0;
        for (int I = 0; I < Lines && End < Text.size(); ++I) TakeLine(Text, End);
        Text = Text.substr(0, End);
    }
    return Prefixed(Text, Room);
}

TCacheFigures CacheFigures() {
    const TCache& C = Cache();
    return {C.Entries.size(), C.Bytes, C.Hits, C.Misses, C.Placed};
}

void ClearCache() { Cache().Clear(); }

} // namespace quill::text
