#include "Look.h"

#include "host/base/Errors.h"
#include "host/base/Streams.h"
#include "host/graphics/Canvas.h"
#include "host/windows/HintWindow.h"
#include "quilltree/QuillTree.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyle>

#include <algorithm>

namespace quill::examples {

namespace {

constexpr int PictureSize = 16;
constexpr int RowPadding = 6; // around the text of a row, both sides together

QImage Picture(const QString& Name, int Size) {
    return QImage(QStringLiteral(":/icons/%1-%2.png").arg(Name).arg(Size));
}

} // namespace

TColor ColorOf(const QColor& Color) {
    return static_cast<TColor>(Color.blue() << 16 | Color.green() << 8 | Color.red());
}

void SetUpLook(bool Dark, bool RightToLeft) {
    // The style of last resort is drawn as it was decades ago.
    if (Dark || QApplication::style()->name().compare("windows", Qt::CaseInsensitive) == 0) {
        QApplication::setStyle("Fusion");
    }
    if (Dark) {
        QPalette Palette(QColor(56, 56, 60), QColor(42, 42, 46));
        Palette.setColor(QPalette::Base, QColor(30, 30, 33));
        Palette.setColor(QPalette::Text, QColor(225, 225, 228));
        Palette.setColor(QPalette::WindowText, QColor(225, 225, 228));
        Palette.setColor(QPalette::ButtonText, QColor(225, 225, 228));
        Palette.setColor(QPalette::Highlight, QColor(38, 90, 150));
        Palette.setColor(QPalette::HighlightedText, Qt::white);
        Palette.setColor(QPalette::ToolTipBase, QColor(66, 66, 72));
        Palette.setColor(QPalette::ToolTipText, QColor(235, 235, 238));
        Palette.setColor(QPalette::Link, QColor(110, 170, 255));
        for (const auto Role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
            Palette.setColor(QPalette::Disabled, Role, QColor(130, 130, 136));
        QApplication::setPalette(Palette);
    }
    if (RightToLeft) QApplication::setLayoutDirection(Qt::RightToLeft);
    QApplication::setWindowIcon(ProgramIcon());
}

QIcon ProgramIcon() {
    QIcon Icon;
    Icon.addPixmap(QPixmap::fromImage(Picture("quill", 64)));
    Icon.addPixmap(QPixmap::fromImage(Picture("quill", 128)));
    return Icon;
}

std::unique_ptr<TImageList> LoadPictures() {
    auto Pictures = std::make_unique<TImageList>(nullptr, PictureSize, PictureSize);
    QFile Order(":/icons/order.txt");
    if (!Order.open(QIODevice::ReadOnly | QIODevice::Text)) return Pictures;
    for (const QString& Name : QString::fromUtf8(Order.readAll()).split('\n', Qt::SkipEmptyParts)) {
        TBitmap Bitmap;
        Bitmap.SetImage(Picture(Name, PictureSize), 1.0);
        Bitmap.AddImage(Picture(Name, 2 * PictureSize), 2.0);
        Pictures->Add(Bitmap);
    }
    return Pictures;
}

void SetUpTree(TCustomQuillTree& Tree) {
    Tree.GetCanvas()->SetFont(Tree.GetFont());
    Tree.SetDefaultRowHeight(std::max(PictureSize + 4, Tree.GetCanvas()->TextHeight("Ag") + RowPadding));
    Tree.SetFixedCols(0);
    Tree.SetFixedRows(1);
    Tree.SetFixedRowAsButton(true);
    Tree.SetFixedLineColor(clBtnShadow);
    Tree.SetLineColor(clBtnFace);
    // Without vertical lines a selected row is coloured in one piece; the captions are told apart by their frames.
    Tree.SetOptions({goFixedHorzLine, goRangeSelect, goColSizing, goColMoving, goRowSelect, goThumbTracking});
    Tree.SetFitColumnToClientWidth(true);
    Tree.SetToolTips(true);
    Tree.SetToolTipPause(5000);
    Tree.SetHotTrackColor(ColorOf(Tree.palette().color(QPalette::Link)));
    Tree.SetBorderStyle(bsNone);
}

void DrawCaptionEdge(TCustomQuillTree& Tree, TCanvas& Canvas, const TRect& Rect, int ARow) {
    if (ARow >= Tree.GetFixedRows()) return;
    Canvas.GetBrush()->SetColor(clBtnShadow);
    Canvas.FillRect({Rect.Right - 1, Rect.Top + 4, Rect.Right, Rect.Bottom - 4});
    Canvas.GetBrush()->SetColor(Tree.GetFixedColor());
}

void SetRightToLeft(TCustomQuillTree& Tree, bool RightToLeft) {
    QApplication::setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    Tree.SetBiDiMode(RightToLeft ? bdRightToLeft : bdLeftToRight);
}

void SaveScreenshot(QWidget& Window, const std::string& FileName) {
    // Showing sets texts, texts ask for room, and room moves other things.
    for (int Round = 0; Round < 3; ++Round) QApplication::processEvents();
    QPixmap Picture = Window.grab();
    for (QWidget* Other : QApplication::topLevelWidgets()) {
        if (!Other->isVisible() || !dynamic_cast<THintWindow*>(Other)) continue;
        QPainter(&Picture).drawPixmap(Window.mapFromGlobal(Other->pos()), Other->grab());
    }
    QBuffer Png;
    if (!Picture.save(&Png, "PNG")) throw Exception("The window gave no picture");
    TMemoryStream(Png.data().toStdString()).SaveToFile(FileName);
}

} // namespace quill::examples
