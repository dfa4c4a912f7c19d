// What the controls publish: complete, in order, with its defaults; and every property travels through a form.
#include "host/windows/Menus.h"
#include "htmldraw/HTMLText.h"
#include "htmldraw/NVHTMLHintWindow.h"
#include "tests/forms/FormTestTools.h"

#include <functional>
#include <map>
#include <memory>
#include <set>

namespace quill {
namespace {

// "Name=default", "Name!" for one that is always written, "Name" for events; "Name:" for objects and references.
std::string Interface(const TPersistent& Object) {
    std::string Text;
    for (const TPropertyInfo& Property : Object.GetClassInfo()->Properties) {
        Text += Text.empty() ? "" : " ";
        Text += Property.Name;
        if (Property.Kind == TPropertyKind::Object || Property.Kind == TPropertyKind::Reference) {
            Text += Property.Kind == TPropertyKind::Reference && !Property.Default ? ":!" : ":";
        } else if (Property.Kind != TPropertyKind::Event) {
            Text += Property.Default ? "=" + ValueText(Property, *Property.Default) : "!";
        }
    }
    return Text;
}

TEST(Published, TheTreeHasItsInterfaceInOrder) {
    TQuillTree Tree;
    EXPECT_EQ(
        Interface(Tree),
        "ButtonSize=11 SmoothExpandCollapse=True ScrollBarsStyle=sbsRegular ScrollBarsColor=0xFFFFFF "
        "FitColumnToClientWidth=False UniqueTags=False NodeSelectionStyle=tnsCell HotTrackColor=0xFF0000 "
        "OutlineColor=0x808080 OutlineStyle=olsStandardTree FitToHeight! RightClickSelect=False "
        "DoubleBuffered=True "
        "FixedRowAsButton=True FixedColAsButton=True LineColor=0xC0C0C0 FixedLineColor=0x000000 "
        "TransparentMode! "
        "Indent=20 HideSelection! Items: Showlines! ShowRoot! ShowButtons! ShowImages! ShowLogic! "
        "StructureCol=0 "
        "HotTrack=False Images:! SortType! WordWrap! AutoMove! ToolTips! AutoExpand! TooltipColor! "
        "ToolTipPause! "
        "StatesDrawed! HTMLDrawing=False DragType=dtStandard TabStop=True Align=alNone Ctl3D! "
        "Anchors=[akLeft akTop] Constraints: BiDiMode! DragKind=dkDrag Canvas: ParentBiDiMode=True "
        "BorderStyle=bsSingle Color=0x80000005 ColCount=1 DefaultColWidth=75 DefaultRowHeight=24 "
        "DragCursor=-12 "
        "DragMode=dmManual Enabled=True FixedColor=0x8000000F FixedCols=0 RowCount=2 FixedRows! Font: "
        "GridLineWidth=1 Options=[goFixedVertLine goFixedHorzLine goVertLine goHorzLine goRangeSelect] "
        "ParentColor=False ParentCtl3D=True ParentFont=True ParentShowHint=True PopupMenu: ScrollBars=ssBoth "
        "ShowHint! TabOrder=-1 Visible=True OnEndDock OnMouseWheelDown OnMouseWheelUp OnMouseWheel "
        "OnStartDock "
        "OnStartDrag OnClick OnColumnMoved OnDblClick OnDragDrop OnDragOver OnDrawCell OnEndDrag OnEnter "
        "OnExit "
        "OnGetEditMask OnGetEditText OnKeyDown OnKeyPress OnKeyUp OnMouseDown OnMouseMove OnMouseUp "
        "OnRowMoved "
        "OnSelectCell OnSetEditText OnTopLeftChanged OnEditing OnEdited OnExpanding OnExpanded OnCollapsing "
        "OnCollapsed OnChanging OnChange OnCompare OnDeletion OnGetImageIndex OnGetSelectedIndex "
        "OnColumnWidthChanged OnRowHeightChanged OnColumnWidthChanging OnRowHeightChanging OnPasteSelection "
        "OnCopySelection OnCutSelection OnAppendRow OnOLEDragOver OnOLEDragDrop OnOLEGiveFeedback "
        "OnOLECompleteDrag OnOLEStartDrag OnOLESetData");
}

TEST(Published, TheLabelHasItsInterfaceInOrder) {
    TNVHTMLText Label;
    EXPECT_EQ(
        Interface(Label),
        "BorderStyle=bsNone AutoSize=True WordWrap=False Alignment=taLeftJustify VerticalAlignment=vaCenter "
        "Lines! Margin=4 Align=alNone Anchors=[akLeft akTop] BiDiMode! BorderWidth=0 Color! Constraints: "
        "Ctl3D! UseDockManager=True DockSite=False DragCursor=-12 DragKind=dkDrag DragMode=dmManual "
        "Enabled=True Font: ParentBiDiMode=True ParentColor=True ParentCtl3D=True ParentFont=True "
        "ParentShowHint=True PopupMenu: ShowHint! TabOrder=-1 TabStop=False Visible=True OnCanResize OnClick "
        "OnConstrainedResize OnDockDrop OnDockOver OnDblClick OnDragDrop OnDragOver OnEndDock OnEndDrag "
        "OnEnter OnExit OnGetSiteInfo OnMouseDown OnMouseMove OnMouseUp OnKeyDown OnKeyUp OnKeyPress "
        "OnResize "
        "OnStartDock OnStartDrag OnUnDock");
}

TEST(Published, TheHintWindowSaysWhetherItShowsMarkup) {
    EXPECT_EQ(Interface(TNVHTMLHintWindow()), "HTMLDrawing! Wordwrap!");
}

template <class... TEvents>
void AddAll(TNamedHandlers& Handlers) {
    (Handlers.Add<TEvents>("Handle", [](auto&&...) {}), ...);
}

// One component with what it can refer to, and a handler for every type of event.
template <class T>
struct TForm {
    QWidget Holder;
    TComponent Root{nullptr};
    T* Control = new T(&Root);
    TNamedHandlers Handlers;

    TForm() {
        Control->SetName("Control");
        if constexpr (std::is_base_of_v<QWidget, T>) Control->setParent(&Holder);
        (new TImageList(&Root))->SetName("Pictures");
        (new TPopupMenu(&Root))->SetName("Menu");
        AddAll<TNotifyEvent, TMouseEvent, TMouseMoveEvent, TKeyEvent, TKeyPressEvent, TMouseWheelEvent,
               TMouseWheelUpDownEvent, TStartDockEvent, TEndDockEvent, TDockDropEvent, TDockOverEvent,
               TGetSiteInfoEvent, TUnDockEvent, TCanResizeEvent, TConstrainedResizeEvent,
               TControlStartDragEvent, TDragOverEvent, TDragDropEvent, TEndDragEvent, TMovedEvent,
               TDrawCellEvent, TGetEditEvent, TSetEditEvent, TSelectCellEvent, TSizedEvent, TSizingEvent,
               TFTVEditingEvent, TFTVEditedEvent, TFTVExpandingEvent, TFTVExpandedEvent, TFTVCompareEvent,
               TDropTargetEvent, TFeedbackEvent, TCompleteDragEvent, TStartDragEvent, TSetDataEvent>(
            Handlers);
    }
    TFormOptions Options() {
        TFormOptions Result;
        Result.Handlers = &Handlers;
        return Result;
    }
};

// Values that the general rule would not choose well.
const std::map<std::string, std::int64_t> SpecialValues{
    {"ButtonSize", 31}, {"Indent", 41},   {"StructureCol", 2}, {"FixedCols", 1}, {"DragCursor", crHandPoint},
    {"Cursor", -3},     {"FixedRows", 2}, {"ColCount", 4},     {"RowCount", 2}};

template <class T>
bool Change(TForm<T>& Form, const std::string& Name, const TPropertyInfo& P, TPersistent& Holder) {
    if (P.GetEvent) {
        for (const std::any& Handler : Form.Handlers.Find("Handle"))
            if (P.SetEvent(Holder, Handler)) return true;
        ADD_FAILURE() << "no handler for " << Name;
    } else if (P.Kind == TPropertyKind::Reference) {
        return P.SetObject(Holder, Form.Root.FindComponent("Pictures")) ||
               P.SetObject(Holder, Form.Root.FindComponent("Menu"));
    } else if (P.SetString) {
        P.SetString(Holder, Name == "ShortCut" ? "Ctrl+K" : "one \"two\"\t\\\r\n\xC3\xA9\xFFthree\r\n");
        return true;
    } else if (P.SetOrdinal) {
        std::int64_t Value = P.GetOrdinal(Holder);
        const auto Special = SpecialValues.find(Name);
        if (Special != SpecialValues.end()) {
            Value = Special->second;
        } else if (P.Kind == TPropertyKind::Boolean || P.Kind == TPropertyKind::Set) {
            Value ^= 1;
        } else if (P.Kind == TPropertyKind::Enumeration) {
            Value = (Value + 1) % static_cast<std::int64_t>(P.Names.size());
        } else {
            Value = P.Kind == TPropertyKind::Color ? 0x123456 : Value + 7;
        }
        P.SetOrdinal(Holder, Value);
        return true;
    }
    return false;
}

template <class T>
void SaveAndCompare(TForm<T>& Saved, const std::string& What) {
    const std::string Text = SaveFormToText(&Saved.Root, Saved.Options());
    TForm<T> Loaded;
    LoadFormFromText(Text, &Loaded.Root, Loaded.Options());
    EXPECT_EQ(Differences(*Loaded.Control, *Saved.Control), "") << What << "\n" << Text;
    EXPECT_EQ(SaveFormToText(&Loaded.Root, Loaded.Options()), Text) << What;
    // Into a component that is used already: what the form leaves out gets its default.
    TForm<T> Used;
    VisitPublished(*Used.Control, [&](const std::string& Name, const TPropertyInfo& P, TPersistent& Holder) {
        if (P.SetOrdinal && P.Default && !P.Stored && Name != "Align") Change(Used, Name, P, Holder);
    });
    LoadFormFromText(Text, &Used.Root, Used.Options());
    EXPECT_EQ(Differences(*Used.Control, *Saved.Control), "") << What << ", read into a used component";
}

template <class T>
void EveryPropertyTravels(const std::set<std::string>& Fixed) {
    TForm<T> All;
    std::vector<std::string> Names;
    VisitPublished(*All.Control, [&](const std::string& Name, const TPropertyInfo& P, TPersistent& Holder) {
        if (Change(All, Name, P, Holder)) Names.push_back(Name);
    });
    SaveAndCompare(All, "all properties");
    for (const std::string& Name : Names) {
        TForm<T> One;
        const std::string Before = Dump(*One.Control);
        VisitPublished(*One.Control,
                       [&](const std::string& Each, const TPropertyInfo& P, TPersistent& Holder) {
                           if (Each == Name) Change(One, Each, P, Holder);
                       });
        EXPECT_EQ(Dump(*One.Control) == Before, Fixed.contains(Name)) << Name;
        SaveAndCompare(One, Name);
    }
}

// RowCount is what the nodes say as soon as a form is loaded; ButtonSize alone cannot exceed Indent.
TEST(Published, EveryPropertyOfTheTreeTravels) {
    EveryPropertyTravels<TQuillTree>({"ButtonSize", "RowCount"});
}

TEST(Published, EveryPropertyOfTheLabelTravels) { EveryPropertyTravels<TNVHTMLText>({}); }

TEST(Published, EveryPropertyOfMenusTravels) { EveryPropertyTravels<TMenuItem>({}); }

} // namespace
} // namespace quill
