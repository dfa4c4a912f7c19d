#include "htmldraw/HTMLDraw.h"

#include "host/base/Utf8.h"
#include "host/graphics/Canvas.h"
#include "host/graphics/ReadingOrder.h"
#include "htmldraw/Markup.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quill {

namespace {

using markup::TLook;
using markup::TTagReader;

// The sample that gives a font's line height.
constexpr std::string_view Sample = "Ag";

constexpr std::size_t None = std::string_view::npos;

// Gives the canvas back as it was.
class TCanvasKeeper {
public:
    explicit TCanvasKeeper(TCanvas& Canvas)
        : FCanvas(Canvas), FMirrored(Canvas.GetCanvasOrientation() == coRightToLeft),
          FBkMode(Canvas.GetBkMode()), FTextFlags(Canvas.GetTextFlags()), FPenPos(Canvas.GetPenPos()) {
        FFont.Assign(Canvas.GetFont());
        FBrush.Assign(Canvas.GetBrush());
    }
    ~TCanvasKeeper() {
        FCanvas.SetFont(&FFont);
        FCanvas.SetBrush(&FBrush);
        if (FMirrored) FCanvas.SetMirrored(true, FCanvas.GetMirrorWidth());
        FCanvas.SetBkMode(FBkMode);
        FCanvas.SetTextFlags(FTextFlags);
        FCanvas.MoveTo(FPenPos.X, FPenPos.Y);
    }
    TCanvasKeeper(const TCanvasKeeper&) = delete;
    TCanvasKeeper& operator=(const TCanvasKeeper&) = delete;

    const TBrush& Brush() const { return FBrush; }

private:
    TCanvas& FCanvas;
    TFont FFont;
    TBrush FBrush;
    bool FMirrored;
    int FBkMode;
    int FTextFlags;
    TPoint FPenPos;
};

// A piece of a line in one look.
struct TChunk {
    std::string Text;
    std::size_t Look = 0; // among the looks of the call
    int Width = 0;
    int Height = 0;
    int Ascent = 0;
    double Baseline = 0.0;    // the ascent to the device pixel
    bool RightToLeft = false; // how it is read
};

struct TLine {
    std::vector<TChunk> Chunks;
    int Width = 0;
    int Height = 0;
    int Ascent = 0;
    double Baseline = 0.0;
};

// Nothing is placed farther away, so that sums of two places do not overflow.
int Clamped(std::int64_t Value) {
    constexpr std::int64_t Limit = 1 << 28;
    return static_cast<int>(std::clamp(Value, -Limit, Limit));
}

int AddClamped(int A, int B) { return Clamped(std::int64_t{A} + B); }

// The widths of the starts of one run of text, shaped piece by piece as far as they are asked for.
class TRunWidths {
public:
    explicit TRunWidths(TCanvas& Canvas) : FCanvas(Canvas) {}

    void Start(std::string_view Run) {
        FRun = Run;
        FDone = 0;
        FEnds.clear();
    }
    // The width of the characters First .. Last - 1 alone, rounded as TextWidth does: up to whole device pixels, and
    // those up to whole units.
    int Between(std::size_t First, std::size_t Last) {
        const double Scale = FCanvas.GetScale();
        const double Device = std::ceil((EndOf(Last) - EndOf(First)) * Scale - 0.01);
        return static_cast<int>(std::ceil(Device / Scale - 1e-6));
    }

private:
    double EndOf(std::size_t Count) {
        constexpr std::size_t PieceBytes = 1024;
        while (FEnds.size() < Count && FDone < FRun.size()) {
            std::size_t End = std::min(FDone + PieceBytes, FRun.size());
            if (End < FRun.size()) {
                const std::size_t Space = FRun.rfind(' ', End - 1);
                if (Space != None && Space > FDone) End = Space + 1;
                while (End < FRun.size() && (static_cast<unsigned char>(FRun[End]) & 0xC0) == 0x80) ++End;
            }
            const double Before = FEnds.empty() ? 0.0 : FEnds.back();
            const std::size_t First = FEnds.size();
            FCanvas.AppendTextEnds(FRun.substr(FDone, End - FDone), FEnds);
            for (std::size_t I = First; I < FEnds.size(); ++I) FEnds[I] += Before;
            FDone = End;
        }
        return Count == 0 || FEnds.empty() ? 0.0 : FEnds[std::min(Count, FEnds.size()) - 1];
    }

    TCanvas& FCanvas;
    std::string_view FRun;
    std::size_t FDone = 0;
    std::vector<double> FEnds;
};

// One call: reads the markup line by line.
class TReader {
public:
    TReader(TCanvas& Canvas, std::string_view Text, bool WordWrap, int Room, const TLook& Look)
        : FCanvas(Canvas), FText(Text.substr(0, Text.find('\0'))), FTags(FText, Look, Look.Color),
          FWordWrap(WordWrap), FRoom(Room), FWidths(Canvas) {}

    bool AtEnd() const { return FPos >= FText.size(); }
    const TLook& GetLook() const { return FTags.GetLook(); }

    // Reads the tag that may begin here and the chunk behind it; LineWidth is that of the line so far. True when the
    // line ends after it.
    bool Read(int LineWidth, std::string& Chunk) {
        if (FTagsAllowed && FText[FPos] == '<' && !FTags.Read(FPos)) FTagsAllowed = false;
        return ReadChunk(LineWidth, Chunk);
    }

private:
    // The end of the run of text that begins at FPos: at a "<" or at the line's end.
    std::size_t RunEnd() const {
        const std::size_t From = FTagsAllowed ? FPos : FPos + 1;
        return std::min(FText.find_first_of("<\n", From), FText.size());
    }

    bool ReadChunk(int LineWidth, std::string& Chunk) {
        Chunk.clear();
        if (AtEnd()) return true;
        if (FWordWrap) return ReadWrapped(LineWidth, Chunk);
        const std::size_t End = RunEnd();
        Take(FPos, End, Chunk);
        FPos = End;
        return EndRun();
    }

    // What stands at the end of a run decides whether the line ends there.
    bool EndRun() {
        FTagsAllowed = true;
        if (AtEnd()) return true;
        if (FText[FPos] != '\n') return false;
        ++FPos;
        return true;
    }

    bool ReadWrapped(int LineWidth, std::string& Chunk) {
        if (FPos < FRunStart || FPos >= FRunStop) {
            StartRun();
            // A run that fits as a whole is not looked at letter by letter.
            constexpr std::size_t LongestTried = 256;
            if (FRunStop - FRunStart <= LongestTried) {
                Take(FRunStart, FRunStop, Chunk);
                if (AddClamped(FCanvas.TextWidth(Chunk), LineWidth) <= FRoom) {
                    FPos = FRunStop;
                    return EndRun();
                }
                Chunk.clear();
            }
        }
        // Characters are counted from the start of the run.
        const std::size_t First = FRunChars;
        std::size_t Count = First;
        std::size_t Restart = FPos;
        std::size_t RestartCount = First;
        int RestartWidth = LineWidth;
        for (std::size_t Pos = FPos; Pos < FRunStop;) {
            const char C = FText[Pos];
            if (C == '\r') {
                ++Pos;
                continue;
            }
            std::size_t Next = Pos;
            DecodeUtf8(FText, Next);
            ++Count;
            const int Width = AddClamped(FWidths.Between(First, Count), LineWidth);
            if (C == ' ') {
                Restart = Next;
                RestartCount = Count;
                RestartWidth = Width;
            } else if (Width > FRoom && RestartWidth != 0) {
                Take(FPos, Restart, Chunk);
                FPos = Restart;
                FRunChars = RestartCount;
                return true;
            }
            Pos = Next;
        }
        Take(FPos, FRunStop, Chunk);
        FPos = FRunStop;
        return EndRun();
    }

    void StartRun() {
        FRunStart = FPos;
        FRunStop = RunEnd();
        FRunChars = 0;
        std::string_view Run = FText.substr(FRunStart, FRunStop - FRunStart);
        if (Run.find('\r') != None) {
            FRunText.clear();
            Take(FRunStart, FRunStop, FRunText);
            Run = FRunText;
        }
        FWidths.Start(Run);
    }

    void Take(std::size_t From, std::size_t To, std::string& Out) const {
        const std::string_view Part = FText.substr(From, To - From);
        Out.assign(Part);
        if (Part.find('\r') != None) std::erase(Out, '\r');
    }

    TCanvas& FCanvas;
    std::string_view FText;
    TTagReader FTags;
    bool FWordWrap;
    int FRoom;
    std::size_t FPos = 0;
    bool FTagsAllowed = true;
    // The run that is being wrapped, and how many of its characters are in finished lines.
    TRunWidths FWidths;
    std::string FRunText;
    std::size_t FRunStart = 0;
    std::size_t FRunStop = 0;
    std::size_t FRunChars = 0;
};

TLook LookOf(TCanvas& Canvas) {
    const TFont& Font = *Canvas.GetFont();
    const TBrush& Brush = *Canvas.GetBrush();
    return {Font.GetName(), Font.GetHeight(), Font.GetStyle(), Font.GetColor(),
            Brush.GetStyle() == bsClear ? clNone : Brush.GetColor()};
}

// --- measuring --------------------------------------------------------------------------------------------------------

TSize Measure(TCanvas& Canvas, std::string_view Text, bool WordWrap, int Room) {
    TReader Reader(Canvas, Text, WordWrap, Room, LookOf(Canvas));
    // Grows with the highest chunk and is never lowered again.
    int LineHeight = Canvas.TextHeight(Sample);
    int LineWidth = 0;
    bool HasChunk = false;
    TSize Total{0, 0};
    std::string Chunk;
    while (!Reader.AtEnd()) {
        const bool LineEnds = Reader.Read(LineWidth, Chunk);
        if (!Chunk.empty()) {
            const TSize Extent = Canvas.TextExtent(Chunk);
            HasChunk = true;
            LineHeight = std::max(LineHeight, Extent.cy);
            LineWidth = AddClamped(LineWidth, Extent.cx);
            Total.cx = std::max(Total.cx, LineWidth);
        }
        if (!LineEnds) continue;
        if (HasChunk) Total.cy = AddClamped(Total.cy, LineHeight);
        HasChunk = false;
        LineWidth = 0;
    }
    return Total;
}

// Extents that were asked for lately: cells are measured again and again.
class TMeasured {
public:
    TSize Get(TCanvas& Canvas, std::string_view Text, bool WordWrap, int Room) {
        constexpr std::size_t LongestKept = 512;
        constexpr std::size_t MostKept = 4096;
        if (Text.size() > LongestKept) return Measure(Canvas, Text, WordWrap, Room);
        // The sample's extent stands for what the canvas makes of the font.
        const TSize Extent = Canvas.TextExtent(Sample);
        const TFont& Font = *Canvas.GetFont();
        FKey.assign(Text);
        FKey += '\0';
        FKey += Font.GetName();
        const int Numbers[] = {Font.GetHeight(),
                               static_cast<int>(Font.GetStyle().Bits()),
                               Canvas.GetTextFlags(),
                               Extent.cx,
                               Extent.cy,
                               static_cast<int>(std::lround(Canvas.GetScale() * 1000)),
                               WordWrap ? Room : -1,
                               WordWrap};
        FKey.append(reinterpret_cast<const char*>(Numbers), sizeof Numbers);
        const auto Found = FSizes.find(FKey);
        if (Found != FSizes.end()) return Found->second;
        const std::string Key = FKey; // measuring may come here again
        const TSize Size = Measure(Canvas, Text, WordWrap, Room);
        if (FSizes.size() >= MostKept) FSizes.clear();
        FSizes.emplace(Key, Size);
        return Size;
    }

private:
    std::string FKey;
    std::unordered_map<std::string, TSize> FSizes;
};

// --- drawing ----------------------------------------------------------------------------------------------------------

class TPage {
public:
    // Rect in client pixels as the canvas shows it, not mirrored.
    TPage(TCanvas& Canvas, const TRect& Rect, int HorzAlign, const TLook& Start)
        : FCanvas(Canvas), FRect(Rect), FHorzAlign(HorzAlign), FBackground(Start.Background), FLooks{Start} {}

    // Reads the lines that can be seen: what follows when the page is full changes nothing.
    void ReadLines(TReader& Reader) {
        TLine Line;
        std::string Text;
        while (!Reader.AtEnd() && FHeight < FRect.Height()) {
            const bool LineEnds = Reader.Read(Line.Width, Text);
            if (!Text.empty()) Append(Line, std::move(Text), Reader.GetLook());
            if (!LineEnds) continue;
            Finish(Line);
            Line = {};
        }
    }

    void Draw(int VertAlign) {
        int Top = FRect.Top;
        const int Spare = FRect.Height() - FHeight;
        if (VertAlign == HTMLMiddle) Top += std::max(0, Spare / 2);
        if (VertAlign == HTMLBottom) Top += std::max(0, Spare);
        const TRect Rows{FRect.Left, Top, FRect.Right, std::min(AddClamped(Top, FHeight), FRect.Bottom)};
        if (Rows.IsEmpty() || !FCanvas.RectVisible(Rows)) return;
        FCanvas.IntersectClip(Rows);
        FCanvas.SetBkMode(TRANSPARENT);
        Fill(Rows, FBackground);
        for (const TLine& Line : FLines) {
            DrawLine(Line, Top);
            Top = AddClamped(Top, Line.Height);
        }
        FCanvas.RestoreClip();
    }

private:
    void Append(TLine& Line, std::string&& Text, const TLook& Look) {
        if (FLooks.back() != Look) FLooks.push_back(Look);
        TChunk Chunk;
        Chunk.Look = FLooks.size() - 1;
        SetLook(Look);
        const TSize Extent = FCanvas.TextExtent(Text);
        Chunk.Text = std::move(Text);
        Chunk.Width = Extent.cx;
        Chunk.Height = Extent.cy;
        const TTextMetrics Metrics = FCanvas.GetTextMetrics();
        Chunk.Ascent = Metrics.Ascent;
        Chunk.Baseline = Metrics.Baseline;
        SetLook(FLooks.front()); // wrapping measures in the font of the start
        Line.Width = AddClamped(Line.Width, Chunk.Width);
        Line.Height = std::max(Line.Height, Chunk.Height);
        Line.Ascent = std::max(Line.Ascent, Chunk.Ascent);
        Line.Baseline = std::max(Line.Baseline, Chunk.Baseline);
        Line.Chunks.push_back(std::move(Chunk));
    }

    void Finish(TLine& Line) {
        if (Line.Chunks.empty()) return;
        Arrange(Line);
        FHeight = AddClamped(FHeight, Line.Height);
        FLines.push_back(std::move(Line));
    }

    // Spaces at an end of the line that belong to a coloured piece elsewhere go back to it: alone they would be a
    // stripe of its background.
    template <class TChunkAt>
    void JoinSpaces(std::vector<text::TVisualRun>& Runs, bool AtEnd, const std::string& Text,
                    TChunkAt ChunkAt) {
        if (Runs.size() < 2) return;
        const auto Spaces = AtEnd ? Runs.end() - 1 : Runs.begin();
        const TChunk& Chunk = ChunkAt(Spaces->From);
        if (FLooks[Chunk.Look].Background == FBackground) return;
        if (Text.find_first_not_of(' ', Spaces->From) < Spaces->To) return;
        for (text::TVisualRun& Run : Runs) {
            if (&ChunkAt(Run.From) != &Chunk || (Run.To != Spaces->From && Run.From != Spaces->To)) continue;
            Run.From = std::min(Run.From, Spaces->From);
            Run.To = std::max(Run.To, Spaces->To);
            Runs.erase(Spaces);
            return;
        }
    }

    // Puts the pieces of a line in which both directions meet into the order in which they are read.
    void Arrange(TLine& Line) {
        const bool RightToLeft = (FCanvas.GetTextFlags() & ETO_RTLREADING) != 0;
        for (TChunk& Chunk : Line.Chunks) Chunk.RightToLeft = RightToLeft;
        if (Line.Chunks.size() == 1) return; // the canvas does it
        if (!RightToLeft && std::none_of(Line.Chunks.begin(), Line.Chunks.end(), [](const TChunk& Chunk) {
                return text::HasRightToLeft(Chunk.Text);
            })) {
            return;
        }
        std::string Text;
        std::vector<std::size_t> Ends;
        for (TChunk& Chunk : Line.Chunks) {
            Ends.push_back((Text += Chunk.Text).size());
            Chunk.Text.clear(); // each of its runs begins as a copy
        }
        const auto ChunkAt = [&](std::size_t Pos) -> const TChunk& {
            return Line.Chunks[static_cast<std::size_t>(std::upper_bound(Ends.begin(), Ends.end(), Pos) -
                                                        Ends.begin())];
        };
        std::vector<text::TVisualRun> Runs = text::VisualRuns(Text, Ends, RightToLeft);
        for (const bool AtEnd : {false, true}) JoinSpaces(Runs, AtEnd, Text, ChunkAt);
        std::vector<TChunk> Arranged;
        Line.Width = 0;
        for (const text::TVisualRun& Run : Runs) {
            TChunk Chunk = ChunkAt(Run.From);
            Chunk.Text = Text.substr(Run.From, Run.To - Run.From);
            Chunk.RightToLeft = Run.RightToLeft;
            SetLook(FLooks[Chunk.Look]);
            Chunk.Width = FCanvas.TextExtent(Chunk.Text).cx;
            Line.Width = AddClamped(Line.Width, Chunk.Width);
            Arranged.push_back(std::move(Chunk));
        }
        SetLook(FLooks.front());
        Line.Chunks = std::move(Arranged);
    }

    void SetLook(const TLook& Look) {
        TFont& Font = *FCanvas.GetFont();
        Font.SetName(Look.Name);
        Font.SetHeight(Look.Height);
        Font.SetStyle(Look.Style);
    }

    void Fill(const TRect& Rect, TColor Color) {
        if (Color == clNone) return;
        FCanvas.GetBrush()->SetColor(Color);
        FCanvas.FillRect(Rect);
    }

    void DrawLine(const TLine& Line, int Top) {
        if (Top >= FRect.Bottom) return;
        const int Room = FRect.Width() - Line.Width;
        int Left = FRect.Left;
        if (FHorzAlign == HTMLRight) Left += Room;
        if (FHorzAlign == HTMLCenter) Left += Room / 2;
        const TRect All{Left, Top, AddClamped(Left, Line.Width), AddClamped(Top, Line.Height)};
        if (!FCanvas.RectVisible(All)) return;
        // Fonts of several heights can reach below the line, which is as high as the highest of them.
        const bool Sticks = std::any_of(Line.Chunks.begin(), Line.Chunks.end(), [&Line](const TChunk& Chunk) {
            return Line.Ascent - Chunk.Ascent + Chunk.Height > Line.Height;
        });
        if (Sticks) FCanvas.IntersectClip(All);
        // Backgrounds first, so that none cuts off what a letter before it overhangs.
        int X = Left;
        for (const TChunk& Chunk : Line.Chunks) {
            const TLook& Look = FLooks[Chunk.Look];
            const int Y = Top + Line.Ascent - Chunk.Ascent;
            if (Look.Background != FBackground)
                Fill({X, Y, AddClamped(X, Chunk.Width), AddClamped(Y, Chunk.Height)}, Look.Background);
            X = AddClamped(X, Chunk.Width);
        }
        X = Left;
        for (const TChunk& Chunk : Line.Chunks) {
            const TLook& Look = FLooks[Chunk.Look];
            const int Y = Top + Line.Ascent - Chunk.Ascent;
            const TRect Place{X, Y, AddClamped(X, Chunk.Width), AddClamped(Y, Chunk.Height)};
            if (FCanvas.RectVisible(Place)) {
                SetLook(Look);
                FCanvas.GetFont()->SetColor(Look.Color == clNone ? FLooks.front().Color : Look.Color);
                FCanvas.SetTextFlags(Chunk.RightToLeft ? ETO_RTLREADING : 0);
                FCanvas.TextOutOnBaseline(X, Top, Line.Baseline, Chunk.Text);
            }
            X = Place.Right;
        }
        if (Sticks) FCanvas.RestoreClip();
    }

    TCanvas& FCanvas;
    TRect FRect;
    int FHorzAlign;
    TColor FBackground;
    std::vector<TLook> FLooks; // the first is the start's
    std::vector<TLine> FLines;
    int FHeight = 0;
};

} // namespace

void DrawHTML(TRect& Rect, TCanvas& Canvas, std::string_view Text, bool WordWrap, bool MeasureOnly,
              int HorzAlign, int VertAlign) {
    if (Text.empty()) return;
    const int Room = Clamped(std::int64_t{Rect.Right} - Rect.Left);
    if (MeasureOnly) {
        static TMeasured Measured;
        const TSize Size = Measured.Get(Canvas, Text, WordWrap, Room);
        Rect.Right = AddClamped(Rect.Left, Size.cx);
        Rect.Bottom = AddClamped(Rect.Top, Size.cy);
        return;
    }
    if (VertAlign != HTMLTop && VertAlign != HTMLMiddle && VertAlign != HTMLBottom) return;
    const TCanvasKeeper Keeper(Canvas);
    // A width below 0 leaves no room for words, but its size is the page's.
    TRect Page{Clamped(Rect.Left), Clamped(Rect.Top), AddClamped(Rect.Left, std::abs(Room)),
               Clamped(Rect.Bottom)};
    if (Page.IsEmpty()) return;
    if (Canvas.GetCanvasOrientation() == coRightToLeft) {
        // Left and right keep their sides: they swap once as codes and once as offsets that count from the right.
        const int Width = Canvas.GetMirrorWidth();
        Page = {Width - Page.Right, Page.Top, Width - Page.Left, Page.Bottom};
        Canvas.SetMirrored(false, 0);
    }
    const TLook Start = LookOf(Canvas);
    TReader Reader(Canvas, Text, WordWrap, Room, Start);
    TPage Lines(Canvas, Page, HorzAlign, Start);
    Lines.ReadLines(Reader);
    Lines.Draw(VertAlign);
}

} // namespace quill
