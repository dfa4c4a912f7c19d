#include "htmldraw/HTMLText.h"

#include "host/windows/FlagScope.h"
#include "host/windows/Menus.h"
#include "host/windows/PublishedNames.h"
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

} // namespace

// --- published properties -----------------------------------------------------------------------------------------

QUILL_ENUM_NAMES(TNVVerticalAlign, "vaTop", "vaBottom", "vaCenter");

std::string TNVHTMLText::GetLinesText() const { return FLines.GetText(); }

void TNVHTMLText::SetLinesText(const std::string& Value) {
    TStringList Lines;
    Lines.SetText(Value);
    SetStrings(&Lines);
}

const TClassInfo* TNVHTMLText::GetClassInfo() const {
    using C = TCustomControl;
    using T = TNVHTMLText;
    static const TPropertyInfo Properties[] = {
        Published<&C::GetBorderStyle, &C::SetBorderStyle>("BorderStyle", bsNone),
        Published<&T::GetAutoSize, &T::SetAutosize>("AutoSize", true),
        Published<&T::GetWordWrap, &T::SetWordWrap>("WordWrap", false),
        Published<&T::GetAlignment, &T::SetAlignment>("Alignment", taLeftJustify),
        Published<&T::GetVerticalAlignment, &T::SetVertAlign>("VerticalAlignment", vaCenter),
        Published<&T::GetLinesText, &T::SetLinesText>("Lines"),
        Published<&T::GetMargin, &T::SetMargin>("Margin", 4),
        // The host's.
        Published<&C::GetAlign, &C::SetAlign>("Align", alNone),
        Published<&C::GetAnchors, &C::SetAnchors>("Anchors", SetDefault(TAnchors{akLeft, akTop})),
        StoredIf(Published<&C::GetBiDiMode, &C::SetBiDiMode>("BiDiMode"), IsFalse<&C::GetParentBiDiMode>),
        AsLength(Published<&C::GetBorderWidth, &C::SetBorderWidth>("BorderWidth", 0)),
        StoredIf(Published<&C::GetColor, &C::SetColor>("Color"), IsFalse<&C::GetParentColor>),
        PublishedObject<&C::GetConstraints>("Constraints"),
        StoredIf(Published<&C::GetCtl3D, &C::SetCtl3D>("Ctl3D"), IsFalse<&C::GetParentCtl3D>),
        Published<&C::GetUseDockManager, &C::SetUseDockManager>("UseDockManager", true),
        Published<&C::GetDockSite, &C::SetDockSite>("DockSite", false),
        AsCursor(Published<&C::GetDragCursor, &C::SetDragCursor>("DragCursor", crDrag)),
        Published<&C::GetDragKind, &C::SetDragKind>("DragKind", dkDrag),
        Published<&C::GetDragMode, &C::SetDragMode>("DragMode", dmManual),
        Published<&C::GetEnabled, &C::SetEnabled>("Enabled", true),
        StoredIf(PublishedObject<&C::GetFont>("Font"), IsFontStored),
        DefaultLast(Published<&C::GetParentBiDiMode, &C::SetParentBiDiMode>("ParentBiDiMode", true)),
        DefaultLast(Published<&C::GetParentColor, &C::SetParentColor>("ParentColor", true)),
        DefaultLast(Published<&C::GetParentCtl3D, &C::SetParentCtl3D>("ParentCtl3D", true)),
        DefaultLast(Published<&C::GetParentFont, &C::SetParentFont>("ParentFont", true)),
        DefaultLast(Published<&C::GetParentShowHint, &C::SetParentShowHint>("ParentShowHint", true)),
        PublishedReference<&C::GetPopupMenu, &C::SetPopupMenu>("PopupMenu"),
        StoredIf(Published<&C::GetShowHint, &C::SetShowHint>("ShowHint"), IsFalse<&C::GetParentShowHint>),
        InRange(Published<&C::GetTabOrder, &C::SetTabOrder>("TabOrder", -1), -1, 0x7FFFFFFF),
        Published<&C::GetTabStop, &C::SetTabStop>("TabStop", false),
        Published<&C::GetVisible, &C::SetVisible>("Visible", true),
        PublishedEvent<&C::OnCanResize>("OnCanResize"),
        PublishedEvent<&C::OnClick>("OnClick"),
        PublishedEvent<&C::OnConstrainedResize>("OnConstrainedResize"),
        PublishedEvent<&C::OnDockDrop>("OnDockDrop"),
        PublishedEvent<&C::OnDockOver>("OnDockOver"),
        PublishedEvent<&C::OnDblClick>("OnDblClick"),
        PublishedEvent<&C::OnDragDrop>("OnDragDrop"),
        PublishedEvent<&C::OnDragOver>("OnDragOver"),
        PublishedEvent<&C::OnEndDock>("OnEndDock"),
        PublishedEvent<&C::OnEndDrag>("OnEndDrag"),
        PublishedEvent<&C::OnEnter>("OnEnter"),
        PublishedEvent<&C::OnExit>("OnExit"),
        PublishedEvent<&C::OnGetSiteInfo>("OnGetSiteInfo"),
        PublishedEvent<&C::OnMouseDown>("OnMouseDown"),
        PublishedEvent<&C::OnMouseMove>("OnMouseMove"),
        PublishedEvent<&C::OnMouseUp>("OnMouseUp"),
        PublishedEvent<&C::OnKeyDown>("OnKeyDown"),
        PublishedEvent<&C::OnKeyUp>("OnKeyUp"),
        PublishedEvent<&C::OnKeyPress>("OnKeyPress"),
        PublishedEvent<&C::OnResize>("OnResize"),
        PublishedEvent<&C::OnStartDock>("OnStartDock"),
        PublishedEvent<&C::OnStartDrag>("OnStartDrag"),
        PublishedEvent<&C::OnUnDock>("OnUnDock"),
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
