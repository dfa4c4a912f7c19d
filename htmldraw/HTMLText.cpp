#include "htmldraw/HTMLText.h"

#include "host/base/Reflection.h"
#include "host/windows/FlagScope.h"
#include "htmldraw/HTMLDraw.h"

#include <algorithm>
#include <string>

namespace quill {

namespace {

constexpr int NewSize = 105;
// What auto-sizing takes off the control's size before it measures, on each side.
constexpr int InsetX = 4;
constexpr int InsetY = 1;

// More than any window, for margins that nobody can mean.
constexpr int MaxExtent = 0xFFFFFF;

int Extent(std::int64_t Value) { return static_cast<int>(std::clamp<std::int64_t>(Value, 0, MaxExtent)); }

int CodeOf(TAlignment Alignment) {
    switch (Alignment) {
    case taRightJustify:
        return HTMLRight;
    case taCenter:
        return HTMLCenter;
    default:
        return HTMLLeft;
    }
}

int CodeOf(TNVVerticalAlign Alignment) {
    switch (Alignment) {
    case vaTop:
        return HTMLTop;
    case vaBottom:
        return HTMLBottom;
    default:
        return HTMLMiddle;
    }
}

// --- published properties -----------------------------------------------------------------------------------------

template <auto Getter>
std::int64_t GetOrdinal(const TPersistent& Object) {
    return static_cast<std::int64_t>((static_cast<const TNVHTMLText&>(Object).*Getter)());
}

template <auto Setter, class TValue>
void SetOrdinal(TPersistent& Object, std::int64_t Value) {
    (static_cast<TNVHTMLText&>(Object).*Setter)(static_cast<TValue>(Value));
}

std::string GetLinesText(const TPersistent& Object) {
    return const_cast<TNVHTMLText&>(static_cast<const TNVHTMLText&>(Object)).GetLines()->GetText();
}

void SetLinesText(TPersistent& Object, const std::string& Value) {
    TStringList Lines;
    Lines.SetText(Value);
    static_cast<TNVHTMLText&>(Object).SetStrings(&Lines);
}

constexpr std::string_view BorderStyles[] = {"bsNone", "bsSingle"};
constexpr std::string_view Alignments[] = {"taLeftJustify", "taRightJustify", "taCenter"};
constexpr std::string_view VerticalAlignments[] = {"vaTop", "vaBottom", "vaCenter"};

} // namespace

const TClassInfo* TNVHTMLText::GetClassInfo() const {
    using T = TNVHTMLText;
    using K = TPropertyKind;
    static const TPropertyInfo Properties[] = {
        {.Name = "BorderStyle",
         .Kind = K::Enumeration,
         .GetOrdinal = GetOrdinal<&T::GetBorderStyle>,
         .SetOrdinal = SetOrdinal<&T::SetBorderStyle, TBorderStyle>,
         .Default = bsNone,
         .Names = BorderStyles},
        {.Name = "AutoSize",
         .Kind = K::Boolean,
         .GetOrdinal = GetOrdinal<&T::GetAutoSize>,
         .SetOrdinal = SetOrdinal<&T::SetAutosize, bool>,
         .Default = true},
        {.Name = "WordWrap",
         .Kind = K::Boolean,
         .GetOrdinal = GetOrdinal<&T::GetWordWrap>,
         .SetOrdinal = SetOrdinal<&T::SetWordWrap, bool>,
         .Default = false},
        {.Name = "Alignment",
         .Kind = K::Enumeration,
         .GetOrdinal = GetOrdinal<&T::GetAlignment>,
         .SetOrdinal = SetOrdinal<&T::SetAlignment, TAlignment>,
         .Default = taLeftJustify,
         .Names = Alignments},
        {.Name = "VerticalAlignment",
         .Kind = K::Enumeration,
         .GetOrdinal = GetOrdinal<&T::GetVerticalAlignment>,
         .SetOrdinal = SetOrdinal<&T::SetVertAlign, TNVVerticalAlign>,
         .Default = vaCenter,
         .Names = VerticalAlignments},
        {.Name = "Lines", .Kind = K::String, .GetString = GetLinesText, .SetString = SetLinesText},
        {.Name = "Margin",
         .Kind = K::Integer,
         .GetOrdinal = GetOrdinal<&T::GetMargin>,
         .SetOrdinal = SetOrdinal<&T::SetMargin, int>,
         .Default = 4},
    };
    static const TClassInfo Info{"TNVHTMLText", TCustomControl::GetClassInfo(), Properties};
    return &Info;
}

// --- life and window ----------------------------------------------------------------------------------------------

TNVHTMLText::TNVHTMLText(TComponent* AOwner, QWidget* AParent) : TCustomControl(AOwner, AParent) {
    SetControlStyle(GetControlStyle() + TControlStyle{csFramed, csReplicatable});
    SetBorderStyle(bsNone);
    SetParentColor(false);
    SetParentColor(true);
    SetBounds(GetLeft(), GetTop(), NewSize, NewSize);
}

TNVHTMLText::~TNVHTMLText() { BeginDestruction(); }

void TNVHTMLText::CreateParams(TCreateParams& Params) {
    TCustomControl::CreateParams(Params);
    if (GetBorderStyle() == bsNone) return;
    if (GetCtl3D()) {
        Params.Style &= ~WS_BORDER;
        Params.ExStyle |= WS_EX_CLIENTEDGE;
    } else {
        Params.Style |= WS_BORDER;
    }
}

// --- properties ---------------------------------------------------------------------------------------------------

void TNVHTMLText::SetAutosize(bool Value) {
    if (FAutoSize == Value) return;
    FAutoSize = Value;
    Changed();
}

void TNVHTMLText::SetWordWrap(bool Value) {
    if (FWordWrap == Value) return;
    FWordWrap = Value;
    Changed();
}

void TNVHTMLText::SetAlignment(TAlignment Value) {
    if (FAlignment == Value) return;
    FAlignment = Value;
    Changed();
}

void TNVHTMLText::SetVertAlign(TNVVerticalAlign Value) {
    if (FVerticalAlignment == Value) return;
    FVerticalAlignment = Value;
    Changed();
}

void TNVHTMLText::SetStrings(TStrings* Value) {
    FLines.Assign(Value);
    Changed();
}

void TNVHTMLText::SetMargin(int Value) {
    if (FMargin == Value) return;
    FMargin = Value;
    Invalidate();
}

// --- size ---------------------------------------------------------------------------------------------------------

void TNVHTMLText::Changed() {
    const TControlGuard Guard(this);
    if (FAutoSize) AdjustAutoSize();
    if (Guard) Invalidate();
}

void TNVHTMLText::ApplyReading() { GetCanvas()->SetTextFlags(UseRightToLeftReading() ? ETO_RTLREADING : 0); }

void TNVHTMLText::CalculateSize(int& Width, int& Height) {
    if (HasState(csLoading) || !FAutoSize) return;
    TRect Text{0, 0, GetWidth(), GetHeight()};
    Text.Inflate(-InsetX, -InsetY);
    const std::string Markup = FLines.GetText();
    if (Markup.empty()) {
        // Measuring changes nothing then, and the control would grow with every change of a property.
        Text.Right = Text.Left;
        Text.Bottom = Text.Top;
    } else {
        GetCanvas()->SetFont(GetFont());
        ApplyReading();
        DrawHTML(Text, *GetCanvas(), Markup, FWordWrap, true, HTMLLeft, CodeOf(FVerticalAlignment));
    }
    Width = Extent(std::int64_t{Text.Right} + FMargin);
    Height = Extent(std::int64_t{Text.Bottom} + FMargin);
}

void TNVHTMLText::AdjustAutoSize() {
    if (!FAutoSize || FAdjusting) return;
    int Width = GetWidth();
    int Height = GetHeight();
    CalculateSize(Width, Height);
    const TFlagScope Scope(this, FAdjusting);
    SetBounds(GetLeft(), GetTop(), Width, Height);
}

// --- messages and painting ----------------------------------------------------------------------------------------

void TNVHTMLText::WMSize(TWMSize& Message) {
    const TControlGuard Guard(this);
    if (FAutoSize) {
        AdjustAutoSize();
        if (!Guard) return;
        Message.Width = GetWidth();
        Message.Height = GetHeight();
    }
    TCustomControl::WMSize(Message);
    if (Guard) Invalidate(); // the text is placed by the size
}

void TNVHTMLText::CMFontChanged(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::CMFontChanged(Message);
    if (Guard) Changed();
}

void TNVHTMLText::CMBorderChanged(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::CMBorderChanged(Message);
    if (Guard) Invalidate();
}

void TNVHTMLText::CMCtl3DChanged(TMessage& Message) {
    const TControlGuard Guard(this);
    TCustomControl::CMCtl3DChanged(Message);
    if (Guard && GetBorderStyle() == bsNone) RecreateWnd(); // with a border the base has done it
}

void TNVHTMLText::Paint() {
    TCanvas& Canvas = *GetCanvas();
    Canvas.SetFont(GetFont());
    Canvas.GetBrush()->SetColor(GetColor());
    TRect Room = GetClientRect();
    Canvas.FillRect(Room);
    const int Margin = std::clamp(FMargin, -MaxExtent, MaxExtent);
    Room.Inflate(-Margin, -Margin);
    ApplyReading();
    DrawHTML(Room, Canvas, FLines.GetText(), FWordWrap, false, CodeOf(FAlignment),
             CodeOf(FVerticalAlignment));
}

} // namespace quill
