#include "host/graphics/RecordingCanvas.h"

#include "host/graphics/Colors.h"

#include <QImage>

#include <cmath>
#include <utility>

namespace quill {
namespace {

struct TFlagName {
    unsigned Flag;
    const char* Name;
};

template <class... TParts>
std::string Join(const TParts&... Parts) {
    std::string Result;
    ((Result += Parts), ...);
    return Result;
}

std::string Names(unsigned Flags, std::initializer_list<TFlagName> Known) {
    std::string Result;
    for (const auto& [Flag, Name] : Known) {
        if ((Flags & Flag) == 0) continue;
        Result += ' ';
        Result += Name;
    }
    return Result;
}

std::string Show(TPoint P) { return Join("(", std::to_string(P.X), ",", std::to_string(P.Y), ")"); }

std::string Show(const TRect& R) {
    return Join("(", std::to_string(R.Left), ",", std::to_string(R.Top), ",", std::to_string(R.Right), ",",
                std::to_string(R.Bottom), ")");
}

std::string ShowArea(int X, int Y, int Width, int Height) {
    return Join(Show(TPoint{X, Y}), " ", std::to_string(Width), "x", std::to_string(Height));
}

std::string Rop(unsigned Code) {
    switch (Code) {
    case SRCCOPY:
        return "copy";
    case SRCINVERT:
        return "xor";
    case PATCOPY:
        return "pattern";
    case PATINVERT:
        return "xorpattern";
    case DSTINVERT:
        return "invert";
    case BLACKNESS:
        return "black";
    case WHITENESS:
        return "white";
    default:
        return Join("rop ", std::to_string(Code));
    }
}

std::string Quoted(std::string_view Text) {
    std::string Result = "\"";
    for (const char C : Text) {
        if (C == '\n') {
            Result += "\\n";
        } else if (C == '\r') {
            Result += "\\r";
        } else {
            Result += C;
        }
    }
    return Join(Result, "\"");
}

} // namespace

// Marks that an operation runs, so that those it calls are not logged.
class TRecordingCanvas::TInner {
public:
    explicit TInner(TRecordingCanvas& Canvas) : FCanvas(Canvas) { ++FCanvas.FDepth; }
    ~TInner() { --FCanvas.FDepth; }
    TInner(const TInner&) = delete;
    TInner& operator=(const TInner&) = delete;

private:
    TRecordingCanvas& FCanvas;
};

TRecordingCanvas::TRecordingCanvas(int Width, int Height, double Scale)
    : FPicture(std::make_unique<QImage>(static_cast<int>(Width * Scale), static_cast<int>(Height * Scale),
                                        QImage::Format_RGB32)) {
    FPicture->fill(Qt::white);
    Bind(FPicture.get(), Scale);
}

TRecordingCanvas::~TRecordingCanvas() { Bind(nullptr, 1.0); }

void TRecordingCanvas::Log(std::string Line) {
    if (FDepth == 0) FLines.push_back(std::move(Line));
}

std::string TRecordingCanvas::GetLog() const {
    std::string Result;
    for (const std::string& Line : FLines) Result += Join(Line, "\n");
    return Result;
}

std::string TRecordingCanvas::GetLog(std::string_view Operation) const {
    std::string Result;
    for (const std::string& Line : FLines)
        if (std::string_view(Line).substr(0, Line.find(' ')) == Operation) Result += Join(Line, "\n");
    return Result;
}

std::string TRecordingCanvas::Pen() const {
    static constexpr const char* Styles[] = {"", " dash", " dot", " dashdot", " dashdotdot", " clear"};
    static constexpr const char* Modes[] = {" black", " white", " not", "", " xor", " notxor"};
    std::string Result = Join(" ", ColorToString(FPen.GetColor()));
    if (FPen.GetWidth() != 1) Result += Join(" width ", std::to_string(FPen.GetWidth()));
    return Join(Result, Styles[FPen.GetStyle()], Modes[FPen.GetMode()]);
}

std::string TRecordingCanvas::Brush() const {
    return FBrush.GetStyle() == bsClear ? std::string(" clear") : Join(" ", ColorToString(FBrush.GetColor()));
}

std::string TRecordingCanvas::Ink() const {
    static constexpr const char* Styles[] = {" bold", " italic", " underline", " strikeout"};
    std::string Result = Join(" ", ColorToString(FFont.GetColor()));
    for (const TFontStyle Style : {fsBold, fsItalic, fsUnderline, fsStrikeOut})
        if (FFont.GetStyle().Contains(Style)) Result += Styles[Style];
    if (FBkMode == OPAQUE && FBrush.GetStyle() != bsClear) Result += Join(" on", Brush());
    return Result;
}

void TRecordingCanvas::SetMirrored(bool On, int Width) {
    Log(On ? Join("Mirror ", std::to_string(Width)) : std::string("Mirror off"));
    TCanvas::SetMirrored(On, Width);
}

void TRecordingCanvas::IntersectClip(const TRect& Rect) {
    Log(Join("Clip ", Show(Rect)));
    TCanvas::IntersectClip(Rect);
}

void TRecordingCanvas::RestoreClip() {
    Log("Unclip");
    TCanvas::RestoreClip();
}

void TRecordingCanvas::LineTo(int X, int Y) {
    Log(Join("Line ", Show(FPenPos), "-", Show(TPoint{X, Y}), Pen()));
    TCanvas::LineTo(X, Y);
}

void TRecordingCanvas::FillRect(const TRect& Rect) {
    Log(Join("FillRect ", Show(Rect), Brush()));
    TCanvas::FillRect(Rect);
}

void TRecordingCanvas::FrameRect(const TRect& Rect) {
    Log(Join("FrameRect ", Show(Rect), Brush()));
    TCanvas::FrameRect(Rect);
}

void TRecordingCanvas::Rectangle(const TRect& Rect) {
    Log(Join("Rectangle ", Show(Rect), Pen(), " fill", Brush()));
    TCanvas::Rectangle(Rect);
}

void TRecordingCanvas::Ellipse(const TRect& Rect) {
    Log(Join("Ellipse ", Show(Rect), Pen(), " fill", Brush()));
    TCanvas::Ellipse(Rect);
}

void TRecordingCanvas::Polygon(std::span<const TPoint> Points) {
    std::string Line = "Polygon";
    for (const TPoint& P : Points) Line += Join(" ", Show(P));
    Log(Join(Line, Pen(), " fill", Brush()));
    TCanvas::Polygon(Points);
}

void TRecordingCanvas::DrawFocusRect(const TRect& Rect) {
    Log(Join("FocusRect ", Show(Rect)));
    TCanvas::DrawFocusRect(Rect);
}

void TRecordingCanvas::InvertRect(const TRect& Rect) {
    Log(Join("InvertRect ", Show(Rect)));
    TCanvas::InvertRect(Rect);
}

void TRecordingCanvas::SetPixel(int X, int Y, TColor Color) {
    Log(Join("Pixel ", Show(TPoint{X, Y}), " ", ColorToString(Color)));
    TCanvas::SetPixel(X, Y, Color);
}

void TRecordingCanvas::SetPixels(std::span<const TPoint> Points, TColor Color) {
    if (!Points.empty())
        Log(Join("Pixels ", std::to_string(Points.size()), " ", Show(Points.front()), "..",
                 Show(Points.back()), " ", ColorToString(Color)));
    TCanvas::SetPixels(Points, Color);
}

int TRecordingCanvas::DrawText(std::string_view Text, TRect& Rect, unsigned Flags) {
    if ((Flags & DT_CALCRECT) == 0) {
        std::string Line = Join("Text ", Show(Rect), " ", Quoted(Text));
        if ((Flags & (DT_CENTER | DT_RIGHT)) == 0) Line += " left";
        Line += Names(Flags, {{DT_CENTER, "center"},
                              {DT_RIGHT, "right"},
                              {DT_VCENTER, "vcenter"},
                              {DT_BOTTOM, "bottom"},
                              {DT_WORDBREAK, "wordbreak"},
                              {DT_SINGLELINE, "singleline"},
                              {DT_NOCLIP, "noclip"},
                              {DT_END_ELLIPSIS, "ellipsis"},
                              {DT_NOPREFIX, "noprefix"},
                              {DT_RTLREADING, "rtl"}});
        Log(Join(Line, ",", Ink()));
    }
    return TCanvas::DrawText(Text, Rect, Flags);
}

void TRecordingCanvas::TextOut(int X, int Y, std::string_view Text) {
    Log(Join("TextOut ", Show(TPoint{X, Y}), " ", Quoted(Text), ",", Ink()));
    TCanvas::TextOut(X, Y, Text);
}

void TRecordingCanvas::TextOutOnBaseline(int X, int Y, double Baseline, std::string_view Text) {
    const int Top = Y + static_cast<int>(std::lround(Baseline - GetTextMetrics().Baseline));
    Log(Join("TextOut ", Show(TPoint{X, Top}), " ", Quoted(Text), ",", Ink()));
    TCanvas::TextOutOnBaseline(X, Y, Baseline, Text);
}

void TRecordingCanvas::DrawEdge(const TRect& Rect, unsigned Edge, unsigned Flags) {
    std::string Line = Join("Edge ", Show(Rect),
                            Names(Edge, {{BDR_RAISEDOUTER, "raisedouter"},
                                         {BDR_SUNKENOUTER, "sunkenouter"},
                                         {BDR_RAISEDINNER, "raisedinner"},
                                         {BDR_SUNKENINNER, "sunkeninner"}}));
    if (Flags != BF_RECT)
        Line +=
            Names(Flags, {{BF_LEFT, "left"}, {BF_TOP, "top"}, {BF_RIGHT, "right"}, {BF_BOTTOM, "bottom"}});
    Log(Line);
    TCanvas::DrawEdge(Rect, Edge, Flags);
}

void TRecordingCanvas::DrawFrameControl(const TRect& Rect, unsigned Type, unsigned State) {
    Log(Join(((State & DFCS_BUTTONRADIO) != 0 ? "Radio " : "Check "), Show(Rect),
             Names(State, {{DFCS_CHECKED, "checked"},
                           {DFCS_INACTIVE, "inactive"},
                           {DFCS_PUSHED, "pushed"},
                           {DFCS_FLAT, "flat"}})));
    TCanvas::DrawFrameControl(Rect, Type, State);
}

void TRecordingCanvas::Draw(int X, int Y, TGraphic* Graphic) {
    if (Graphic != nullptr)
        Log(Join("Draw ", ShowArea(X, Y, Graphic->GetWidth(), Graphic->GetHeight()),
                 (Graphic->GetTransparent() ? " transparent" : "")));
    const TInner Inner(*this);
    TCanvas::Draw(X, Y, Graphic);
}

void TRecordingCanvas::StretchDraw(const TRect& Rect, TGraphic* Graphic) {
    if (Graphic != nullptr)
        Log(Join("StretchDraw ", Show(Rect), " ", std::to_string(Graphic->GetWidth()), "x",
                 std::to_string(Graphic->GetHeight()), (Graphic->GetTransparent() ? " transparent" : "")));
    const TInner Inner(*this);
    TCanvas::StretchDraw(Rect, Graphic);
}

void TRecordingCanvas::BitBlt(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                              unsigned Code) {
    Log(Join("BitBlt ", ShowArea(X, Y, Width, Height), " from ", (&Source == this ? "itself " : ""),
             Show(TPoint{SrcX, SrcY}), " ", Rop(Code)));
    TCanvas::BitBlt(X, Y, Width, Height, Source, SrcX, SrcY, Code);
}

void TRecordingCanvas::AlphaBlend(int X, int Y, int Width, int Height, TCanvas& Source, int SrcX, int SrcY,
                                  int Alpha) {
    Log(Join("AlphaBlend ", ShowArea(X, Y, Width, Height), " from ", Show(TPoint{SrcX, SrcY}), " ",
             std::to_string(Alpha)));
    TCanvas::AlphaBlend(X, Y, Width, Height, Source, SrcX, SrcY, Alpha);
}

void TRecordingCanvas::PatBlt(int X, int Y, int Width, int Height, unsigned Code) {
    Log(Join("PatBlt ", ShowArea(X, Y, Width, Height), " ", Rop(Code), Brush()));
    TCanvas::PatBlt(X, Y, Width, Height, Code);
}

void TRecordingCanvas::CopyRect(const TRect& Rect, TCanvas& Source, const TRect& SrcRect) {
    Log(Join("CopyRect ", Show(Rect), " from ", Show(SrcRect)));
    TCanvas::CopyRect(Rect, Source, SrcRect);
}

} // namespace quill
