#include "HintCells.h"

#include "htmldraw/HTMLDraw.h"

namespace quill::examples {

namespace {

constexpr int ColCount = 2;
constexpr int FirstColumnPercent = 24;
constexpr int CellPadding = 5; // above and below the text
constexpr int TextInset = 2;   // where the hint begins its text as well

const char* const Texts[][ColCount] = {
    {"<B>Short</B>", "This one fits"},
    {"<B>Quarterly report</B> of the northern branch",
     "Sales went up by <COLOR=#008040><B>12.5 %</B></COLOR> over the "
     "year before, which is more than we had hoped for"},
    {"<I>Draft:</I> agenda of the annual meeting",
     "Points that are <S>open</S> closed: budget, premises, and the "
     "election of a <U>new treasurer</U>"},
    {"Gr\u00fc\u00dfe aus <B>K\u00f6ln</B>, Stra\u00dfe 12",
     "Text outside ASCII is measured like any other: "
     "\u00e4\u00f6\u00fc, \u0395\u03bb\u03bb\u03b7\u03bd"
     "\u03b9\u03ba\u03ac, \u0440\u0443\u0441\u0441\u043a"
     "\u0438\u0439 \u044f\u0437\u044b\u043a"},
    {"<BGCOLOR=#FFE680><COLOR=#000000>Marked</COLOR></BGCOLOR> and then some more",
     "A background is part of the <B>markup</B>, and so are <COLOR=#C06000>colours</COLOR> and <U>lines</U> "
     "in the middle "
     "of a text that is far too long for its cell"},
    {"\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd, \u05d6\u05d4\u05d5 \u05d8\u05e7\u05e1\u05d8 "
     "\u05d0\u05e8\u05d5\u05da",
     "Text that is written from right to left keeps its order: "
     "\u0645\u0631\u062d\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645"},
};
constexpr int RowCount = static_cast<int>(std::size(Texts));

} // namespace

THintCells::THintCells(QWidget* Parent)
    : TCustomControl(nullptr, Parent), FHint(new TNVHTMLHintWindow(this)) {
    SetColor(clWindow);
    SetHTMLDrawing(true);
    setMinimumSize(240, RowCount * RowHeight() + 2 * frameWidth());
}

THintCells::~THintCells() { BeginDestruction(); }

void THintCells::SetHTMLDrawing(bool Value) {
    FHint->SetHTMLDrawing(Value);
    HideHint();
    Invalidate();
}

// --- geometry and painting ----------------------------------------------------------------------------------------

int THintCells::RowHeight() { return GetCanvas()->TextHeight("Ag") + 2 * CellPadding; }

TRect THintCells::CellRect(int ACol, int ARow) {
    const int Width = GetClientWidth();
    const int Border = Width * FirstColumnPercent / 100;
    const int Height = RowHeight();
    TRect Result{ACol == 0 ? 0 : Border, ARow * Height, ACol == 0 ? Border : Width, (ARow + 1) * Height};
    if (UseRightToLeftAlignment())
        Result = {Width - Result.Right, Result.Top, Width - Result.Left, Result.Bottom};
    return Result;
}

std::string THintCells::CellText(int ACol, int ARow) const { return Texts[ARow][ACol]; }

void THintCells::Paint() {
    GetCanvas()->GetPen()->SetColor(clBtnFace);
    for (int Row = 0; Row < RowCount; ++Row) {
        for (int Col = 0; Col < ColCount; ++Col) {
            const TRect Cell = CellRect(Col, Row);
            PaintCell(Cell, CellText(Col, Row));
            GetCanvas()->MoveTo(Cell.Left, Cell.Bottom - 1);
            GetCanvas()->LineTo(Cell.Right, Cell.Bottom - 1);
        }
    }
}

void THintCells::PaintCell(const TRect& Cell, const std::string& Text) {
    TRect Room = Cell;
    Room.Inflate(-TextInset, -CellPadding);
    TCanvas& Canvas = *GetCanvas();
    Canvas.IntersectClip(Cell);
    Canvas.GetBrush()->SetColor(GetColor());
    Canvas.SetBkMode(TRANSPARENT);
    if (FHint->GetHTMLDrawing()) {
        Canvas.SetTextFlags(UseRightToLeftReading() ? ETO_RTLREADING : 0);
        DrawHTML(Room, Canvas, Text, false, false, UseRightToLeftAlignment() ? HTMLRight : HTMLLeft, HTMLTop);
    } else {
        Canvas.DrawText(Text, Room, DrawTextBiDiModeFlags(DT_LEFT | DT_SINGLELINE | DT_NOPREFIX));
    }
    Canvas.RestoreClip();
}

// --- the hint -----------------------------------------------------------------------------------------------------

void THintCells::ShowHintOf(int ACol, int ARow) {
    HideHint();
    const std::string Text = CellText(ACol, ARow);
    TRect Room = CellRect(ACol, ARow);
    Room.Top += CellPadding - TextInset;
    FHint->SetFont(GetFont());
    const TPoint Place = ClientToScreen({Room.Left, Room.Top});
    TRect Rect = FHint->CalcHintRect(THintWindow::MaxHintWidth(Place), Text, nullptr);
    if (Rect.Width() <= Room.Width()) return;
    const int Left = UseRightToLeftAlignment() ? Place.X + Room.Width() - Rect.Width() : Place.X;
    Rect.Offset(Left, Place.Y);
    FHint->ActivateHint(Rect, Text);
}

void THintCells::HideHint() { FHint->HideHint(); }

void THintCells::WMMouseMove(TWMMouse& Message) {
    TPoint Cell{-1, -1};
    for (int Row = 0; Row < RowCount; ++Row)
        for (int Col = 0; Col < ColCount; ++Col)
            if (CellRect(Col, Row).Contains({Message.XPos, Message.YPos})) Cell = {Col, Row};
    if (Cell != FCell) {
        FCell = Cell;
        if (Cell.X >= 0)
            ShowHintOf(Cell.X, Cell.Y);
        else
            HideHint();
    }
    TCustomControl::WMMouseMove(Message);
}

void THintCells::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) {
    HideHint();
    TCustomControl::MouseDown(Button, Shift, X, Y);
}

void THintCells::CMMouseLeave(TMessage& Message) {
    FCell = {-1, -1};
    HideHint();
    TCustomControl::CMMouseLeave(Message);
}

} // namespace quill::examples
