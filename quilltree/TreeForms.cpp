// The tree in forms: what it publishes, and what it defines itself.
#include "host/base/Filers.h"
#include "host/base/Texts.h"
#include "host/forms/Forms.h"
#include "host/windows/FlagScope.h"
#include "host/windows/Menus.h"
#include "host/windows/PublishedNames.h"
#include "htmldraw/HTMLText.h"
#include "quilltree/QuillTree.h"

#include <algorithm>
#include <utility>

namespace quill {

QUILL_ENUM_NAMES(TScrollBarStyle, "sbsRegular", "sbsEncarta", "sbsFlat");
QUILL_ENUM_NAMES(TNodeSelectionStyle, "tnsCell", "tnsTextOnly");
QUILL_ENUM_NAMES(TOutlineStyle, "olsStandardTree", "olsExplorer", "olsExcel");
QUILL_ENUM_NAMES(TNVDragType, "dtStandard", "dtOLE");
QUILL_ENUM_NAMES(TGridOption, "goFixedVertLine", "goFixedHorzLine", "goVertLine", "goHorzLine",
                 "goRangeSelect", "goDrawFocusSelected", "goRowSizing", "goColSizing", "goRowMoving",
                 "goColMoving", "goEditing", "goTabs", "goRowSelect", "goAlwaysShowEditor",
                 "goThumbTracking");

namespace {

// A column costs some memory of its own, a row none.
constexpr int MostColumns = 1'000'000;

const bool FormClassesKnown = [] {
    RegisterFormClasses();
    return true;
}();

} // namespace

void RegisterFormClasses() {
    RegisterComponentClass<TQuillTree>("TQuillTree");
    RegisterComponentClass<TNVHTMLText>("TNVHTMLText");
    RegisterComponentClass<TImageList>("TImageList");
    RegisterComponentClass<TPopupMenu>("TPopupMenu");
    RegisterComponentClass<TMenuItem>("TMenuItem");
}

// --- published properties ------------------------------------------------------------------------------------------

// The order is the one in which a form names them and designers show them.
const TClassInfo* TQuillTree::GetClassInfo() const {
    using C = TCustomControl;
    using G = TCustomExGrid;
    using T = TCustomQuillTree;
    static const TPropertyInfo Properties[] = {
        InRange(Published<&T::GetButtonSize, &T::SetButtonSize>("ButtonSize", 11), 1, MaxFormLength),
        Published<&T::GetSmoothExpandCollapse, &T::SetSmoothExpandCollapse>("SmoothExpandCollapse", true),
        Published<&G::GetScrollBarsStyle, &G::SetScrollBarsStyle>("ScrollBarsStyle", sbsRegular),
        Published<&G::GetScrollBarsColor, &G::SetScrollBarsColor>("ScrollBarsColor", clWhite),
        Published<&T::GetFitColumnToClientWidth, &T::SetFitColumnToClientWidth>("FitColumnToClientWidth",
                                                                                false),
        Published<&T::GetUniqueTags, &T::SetUniqueTags>("UniqueTags", false),
        Published<&T::GetNodeSelectionStyle, &T::SetNodeSelectionStyle>("NodeSelectionStyle", tnsCell),
        Published<&T::GetHotTrackColor, &T::SetHotTrackColor>("HotTrackColor", clBlue),
        Published<&T::GetOutlineColor, &T::SetOutlineColor>("OutlineColor", clGray),
        Published<&T::GetOutlineStyle, &T::SetOutlineStyle>("OutlineStyle", olsStandardTree),
        Published<&T::GetFitToHeight, &T::SetFitToHeight>("FitToHeight"),
        Published<&T::GetRightClickSelect, &T::SetRightClickSelect>("RightClickSelect", false),
        Published<&C::GetDoubleBuffered, &C::SetDoubleBuffered>("DoubleBuffered", true),
        Published<&G::GetFixedRowAsButton, &G::SetFixedRowAsButton>("FixedRowAsButton", true),
        Published<&G::GetFixedColAsButton, &G::SetFixedColAsButton>("FixedColAsButton", true),
        Published<&G::GetLineColor, &G::SetLineColor>("LineColor", clSilver),
        Published<&G::GetFixedLineColor, &G::SetFixedLineColor>("FixedLineColor", clBlack),
        Published<&T::GetTransparentMode, &T::SetTransparentMode>("TransparentMode"),
        InRange(Published<&T::GetIndent, &T::SetIndent>("Indent", 20), 1, MaxFormLength),
        Published<&T::GetHideSelection, &T::SetHideSelection>("HideSelection"),
        Opaque(PublishedObject<&T::GetItems>("Items")),
        Published<&T::GetShowlines, &T::SetShowlines>("Showlines"),
        Published<&T::GetShowRoot, &T::SetShowRoot>("ShowRoot"),
        Published<&T::GetShowButtons, &T::SetShowButtons>("ShowButtons"),
        Published<&T::GetShowImages, &T::SetShowImages>("ShowImages"),
        Published<&T::GetShowLogic, &T::SetShowLogic>("ShowLogic"),
        InRange(Published<&T::GetStructureCol, &T::SetStructureCol>("StructureCol", 0), 0, MostColumns - 1),
        Published<&T::GetHotTrack, &T::SetHotTrack>("HotTrack", false),
        PublishedReference<&T::GetImages, &T::SetImages>("Images", true),
        Published<&T::GetSortType, &T::SetSortType>("SortType"),
        Published<&T::GetWordWrap, &T::SetWordWrap>("WordWrap"),
        Published<&T::GetAutoMove, &T::SetAutoMove>("AutoMove"),
        Published<&T::GetToolTips, &T::SetToolTips>("ToolTips"),
        Published<&T::GetAutoExpand, &T::SetAutoExpand>("AutoExpand"),
        Published<&T::GetTooltipColor, &T::SetTooltipColor>("TooltipColor"),
        InRange(Published<&T::GetToolTipPause, &T::SetToolTipPause>("ToolTipPause"), 0, 0x7FFFFFFF),
        Published<&T::GetStatesDrawed, &T::SetStatesDrawed>("StatesDrawed"),
        Published<&T::GetHTMLDrawing, &T::SetHTMLDrawing>("HTMLDrawing", false),
        Published<&T::GetDragType, &T::SetDragType>("DragType", dtStandard),
        // The grid's and the host's.
        Published<&C::GetTabStop, &C::SetTabStop>("TabStop", true),
        Published<&C::GetAlign, &C::SetAlign>("Align", alNone),
        Published<&C::GetCtl3D, &C::SetCtl3D>("Ctl3D"),
        Published<&C::GetAnchors, &C::SetAnchors>("Anchors", SetDefault(TAnchors{akLeft, akTop})),
        PublishedObject<&C::GetConstraints>("Constraints"),
        StoredIf(Published<&C::GetBiDiMode, &C::SetBiDiMode>("BiDiMode"), IsFalse<&C::GetParentBiDiMode>),
        Published<&C::GetDragKind, &C::SetDragKind>("DragKind", dkDrag),
        Opaque(PublishedObject<&C::GetCanvas>("Canvas")),
        DefaultLast(Published<&C::GetParentBiDiMode, &C::SetParentBiDiMode>("ParentBiDiMode", true)),
        Published<&C::GetBorderStyle, &C::SetBorderStyle>("BorderStyle", bsSingle),
        Published<&C::GetColor, &C::SetColor>("Color", clWindow),
        // A structure column that was deleted is still named, and its setter adds columns.
        DefaultLast(InRange(Published<&G::GetColCount, &G::SetColCount>("ColCount", 1), 1, MostColumns)),
        AsLength(Published<&G::GetDefaultColWidth, &G::SetDefaultColWidth>("DefaultColWidth", 75)),
        AsLength(Published<&G::GetDefaultRowHeight, &G::SetDefaultRowHeight>("DefaultRowHeight", 24)),
        AsCursor(Published<&C::GetDragCursor, &C::SetDragCursor>("DragCursor", crDrag)),
        Published<&C::GetDragMode, &C::SetDragMode>("DragMode", dmManual),
        Published<&C::GetEnabled, &C::SetEnabled>("Enabled", true),
        Published<&G::GetFixedColor, &G::SetFixedColor>("FixedColor", clBtnFace),
        InRange(Published<&G::GetFixedCols, &G::SetFixedCols>("FixedCols", 0), 0, MostColumns - 1),
        InRange(Published<&G::GetRowCount, &G::SetRowCount>("RowCount", 2), 0, 0x7FFFFFFE),
        InRange(Published<&T::GetFixedRows, &T::SetFixedRows>("FixedRows"), 0, MostColumns),
        StoredIf(PublishedObject<&C::GetFont>("Font"), IsFontStored),
        AsLength(Published<&G::GetGridLineWidth, &G::SetGridLineWidth>("GridLineWidth", 1)),
        Published<&G::GetOptions, &G::SetOptions>(
            "Options", SetDefault(TGridOptions{goFixedVertLine, goFixedHorzLine, goVertLine, goHorzLine,
                                               goRangeSelect})),
        Published<&C::GetParentColor, &C::SetParentColor>("ParentColor", false),
        DefaultLast(Published<&C::GetParentCtl3D, &C::SetParentCtl3D>("ParentCtl3D", true)),
        DefaultLast(Published<&C::GetParentFont, &C::SetParentFont>("ParentFont", true)),
        DefaultLast(Published<&C::GetParentShowHint, &C::SetParentShowHint>("ParentShowHint", true)),
        PublishedReference<&C::GetPopupMenu, &C::SetPopupMenu>("PopupMenu"),
        Published<&G::GetScrollBars, &G::SetScrollBars>("ScrollBars", ssBoth),
        StoredIf(Published<&C::GetShowHint, &C::SetShowHint>("ShowHint"), IsFalse<&C::GetParentShowHint>),
        InRange(Published<&C::GetTabOrder, &C::SetTabOrder>("TabOrder", -1), -1, 0x7FFFFFFF),
        Published<&C::GetVisible, &C::SetVisible>("Visible", true),
        PublishedEvent<&C::OnEndDock>("OnEndDock"),
        PublishedEvent<&C::OnMouseWheelDown>("OnMouseWheelDown"),
        PublishedEvent<&C::OnMouseWheelUp>("OnMouseWheelUp"),
        PublishedEvent<&C::OnMouseWheel>("OnMouseWheel"),
        PublishedEvent<&C::OnStartDock>("OnStartDock"),
        PublishedEvent<&C::OnStartDrag>("OnStartDrag"),
        PublishedEvent<&C::OnClick>("OnClick"),
        PublishedEvent<&G::OnColumnMoved>("OnColumnMoved"),
        PublishedEvent<&C::OnDblClick>("OnDblClick"),
        PublishedEvent<&C::OnDragDrop>("OnDragDrop"),
        PublishedEvent<&C::OnDragOver>("OnDragOver"),
        PublishedEvent<&G::OnDrawCell>("OnDrawCell"),
        PublishedEvent<&C::OnEndDrag>("OnEndDrag"),
        PublishedEvent<&C::OnEnter>("OnEnter"),
        PublishedEvent<&C::OnExit>("OnExit"),
        PublishedEvent<&G::OnGetEditMask>("OnGetEditMask"),
        PublishedEvent<&G::OnGetEditText>("OnGetEditText"),
        PublishedEvent<&C::OnKeyDown>("OnKeyDown"),
        PublishedEvent<&C::OnKeyPress>("OnKeyPress"),
        PublishedEvent<&C::OnKeyUp>("OnKeyUp"),
        PublishedEvent<&C::OnMouseDown>("OnMouseDown"),
        PublishedEvent<&C::OnMouseMove>("OnMouseMove"),
        PublishedEvent<&C::OnMouseUp>("OnMouseUp"),
        PublishedEvent<&G::OnRowMoved>("OnRowMoved"),
        PublishedEvent<&G::OnSelectCell>("OnSelectCell"),
        PublishedEvent<&G::OnSetEditText>("OnSetEditText"),
        PublishedEvent<&G::OnTopLeftChanged>("OnTopLeftChanged"),
        PublishedEvent<&T::OnEditing>("OnEditing"),
        PublishedEvent<&T::OnEdited>("OnEdited"),
        PublishedEvent<&T::OnExpanding>("OnExpanding"),
        PublishedEvent<&T::OnExpanded>("OnExpanded"),
        PublishedEvent<&T::OnCollapsing>("OnCollapsing"),
        PublishedEvent<&T::OnCollapsed>("OnCollapsed"),
        PublishedEvent<&T::OnChanging>("OnChanging"),
        PublishedEvent<&T::OnChange>("OnChange"),
        PublishedEvent<&T::OnCompare>("OnCompare"),
        PublishedEvent<&T::OnDeletion>("OnDeletion"),
        PublishedEvent<&T::OnGetImageIndex>("OnGetImageIndex"),
        PublishedEvent<&T::OnGetSelectedIndex>("OnGetSelectedIndex"),
        PublishedEvent<&G::OnColumnWidthChanged>("OnColumnWidthChanged"),
        PublishedEvent<&G::OnRowHeightChanged>("OnRowHeightChanged"),
        PublishedEvent<&G::OnColumnWidthChanging>("OnColumnWidthChanging"),
        PublishedEvent<&G::OnRowHeightChanging>("OnRowHeightChanging"),
        PublishedEvent<&T::OnPasteSelection>("OnPasteSelection"),
        PublishedEvent<&T::OnCopySelection>("OnCopySelection"),
        PublishedEvent<&T::OnCutSelection>("OnCutSelection"),
        PublishedEvent<&G::OnAppendRow>("OnAppendRow"),
        PublishedEvent<&T::OnOLEDragOver>("OnOLEDragOver"),
        PublishedEvent<&T::OnOLEDragDrop>("OnOLEDragDrop"),
        PublishedEvent<&T::OnOLEGiveFeedback>("OnOLEGiveFeedback"),
        PublishedEvent<&T::OnOLECompleteDrag>("OnOLECompleteDrag"),
        PublishedEvent<&T::OnOLEStartDrag>("OnOLEStartDrag"),
        PublishedEvent<&T::OnOLESetData>("OnOLESetData"),
    };
    static const TClassInfo Info{"TQuillTree", TCustomQuillTree::GetClassInfo(), Properties};
    return &Info;
}

// --- defined properties --------------------------------------------------------------------------------------------

void TCustomQuillTree::DefineProperties(TFiler& Filer) {
    const TControlGuard Guard(this);
    {
        // Rows are not measured to be written: a row for each of a million nodes would be.
        const TValueScope Measuring(this, FLoading, FLoading || FFitToHeight);
        TCustomExGrid::DefineProperties(Filer);
    }
    if (!Guard) return;
    const TFlagScope Loading(this, FLoading);
    if (SaveNodes()) {
        Filer.DefineBinaryProperty(
            "Data", [this](TStream& Stream) { ReadData(Stream); },
            [this](TStream& Stream) { WriteData(Stream); }, true);
        if (!Guard) return;
    }
    Filer.DefineProperty(
        "Captions", [this](TReader& Reader) { ReadCaptions(Reader); },
        [this](TWriter& Writer) { WriteCaptions(Writer); }, CountFormCaptions() > 0);
    if (!Guard) return;
    Filer.DefineProperty(
        "ColumnOrder", [this](TReader& Reader) { ReadColumnOrder(Reader); },
        [this](TWriter& Writer) { WriteColumnOrder(Writer); },
        !std::is_sorted(FColumnsMap.begin(), FColumnsMap.end()));
}

void TCustomQuillTree::ReadData(TStream& Stream) { ReadCollectionFromStream(Stream, FItems.get()); }

void TCustomQuillTree::WriteData(TStream& Stream) { WriteCollectionToStream(Stream, FItems.get()); }

void TCustomQuillTree::ReadCaptions(TReader& Reader) {
    Reader.ReadListBegin();
    std::vector<std::string> Captions;
    while (!Reader.EndOfList() && Captions.size() < static_cast<std::size_t>(GetColCount()))
        Captions.push_back(Reader.ReadString());
    Reader.ReadListEnd();
    FCaptions = std::move(Captions);
    Invalidate();
}

// How many a form holds: up to the last one that says something, of the columns that there are.
std::size_t TCustomQuillTree::CountFormCaptions() const {
    std::size_t Count = std::min(FCaptions.size(), static_cast<std::size_t>(GetColCount()));
    while (Count > 0 && FCaptions[Count - 1].empty()) --Count;
    return Count;
}

void TCustomQuillTree::WriteCaptions(TWriter& Writer) {
    Writer.WriteListBegin();
    for (std::size_t Col = 0; Col < CountFormCaptions(); ++Col) Writer.WriteString(FCaptions[Col]);
    Writer.WriteListEnd();
}

// The data column of each display position.
void TCustomQuillTree::ReadColumnOrder(TReader& Reader) {
    Reader.ReadListBegin();
    std::vector<int> Order;
    std::vector<bool> Taken(static_cast<std::size_t>(GetColCount()));
    for (int Col = 0; Col < GetColCount(); ++Col) {
        const int DataCol = Reader.ReadInteger();
        if (DataCol < 0 || DataCol >= GetColCount() || Taken[static_cast<std::size_t>(DataCol)])
            throw EReadError(FormatText(SIndexOutOfRange, {std::to_string(DataCol)}));
        Taken[static_cast<std::size_t>(DataCol)] = true;
        Order.push_back(DataCol);
    }
    Reader.ReadListEnd();
    FLoadedColumns = std::move(Order);
}

void TCustomQuillTree::WriteColumnOrder(TWriter& Writer) {
    Writer.WriteListBegin();
    for (const int DataCol : FColumnsMap) Writer.WriteInteger(DataCol);
    Writer.WriteListEnd();
}

void TCustomQuillTree::TakeLoadedColumns() {
    const std::vector<int> Loaded = std::exchange(FLoadedColumns, {});
    if (Loaded.size() == FColumnsMap.size()) FColumnsMap = Loaded;
}

} // namespace quill
