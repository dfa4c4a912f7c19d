// Films the outliner at work: real mouse and key events, a frame after each step, all frames in one picture. Made for
// looking at; scripts/screenshots runs it. The scenes: "mouse" sizes and moves a column and draws a range past the edge
// of the window, "editing" edits texts in place.
//
//   quill_film --scene SCENE --screenshot PICTURE [--dark] [--rtl] [--size WxH] OUTLINE
#include "examples/common/Look.h"
#include "examples/common/ProgramOptions.h"
#include "examples/outliner/OutlinerWindow.h"
#include "examples/outliner/OutlineTree.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QTest>

#include <cstdlib>
#include <vector>

using namespace quill;
using namespace quill::examples;

namespace {

constexpr int FramesPerLine = 3;
constexpr int Border = 8;
constexpr int TitleHeight = 22;

class TFilm {
public:
    explicit TFilm(TOutlinerWindow& Window) : FWindow(Window), FTree(*Window.GetTree()) {}

    // The middle of a caption, or its border, or a point in a row.
    QPoint Caption(int Col) { return Centre(FTree.CellRect(Col, 0)); }
    QPoint BorderOf(int Col) {
        const TRect Cell = FTree.CellRect(Col, 0);
        return {FTree.UseRightToLeftAlignment() ? Cell.Left - 1 : Cell.Right, (Cell.Top + Cell.Bottom) / 2};
    }
    QPoint InRow(int Row) { return Centre(FTree.CellRect(1, FTree.GetTopRow() + Row)); }
    QPoint Towards(QPoint From, int Distance) const {
        return From + QPoint(FTree.UseRightToLeftAlignment() ? -Distance : Distance, 0);
    }

    // Through the window, as the platform does it: the cursor then is where the button is held.
    void Press(QPoint Pos) {
        MoveTo(Pos);
        QTest::mousePress(FWindow.windowHandle(), Qt::LeftButton, {}, InWindow());
    }
    void MoveTo(QPoint Pos) {
        FMouse = Pos;
        QCursor::setPos(FTree.viewport()->mapToGlobal(Pos));
        QTest::mouseMove(FWindow.windowHandle(), InWindow());
    }
    void Key(Qt::Key Key) { QTest::keyClick(FWindow.windowHandle(), Key); }
    void Type(const char* Text) {
        for (; *Text; ++Text) QTest::keyClick(FWindow.windowHandle(), *Text);
    }
    void Release() { QTest::mouseRelease(FWindow.windowHandle(), Qt::LeftButton, {}, InWindow()); }
    void DoubleClick() { QTest::mouseDClick(FWindow.windowHandle(), Qt::LeftButton, {}, InWindow()); }
    void Frame(const QString& Title) {
        QTest::qWait(20);
        QImage Image = FWindow.grab().toImage();
        QPainter Painter(&Image);
        Painter.setRenderHint(QPainter::Antialiasing);
        Painter.translate(InWindow());
        QPainterPath Arrow;
        Arrow.addPolygon(
            QPolygonF({{0, 0}, {0, 15}, {4, 11.5}, {6.5, 17}, {9, 16}, {6.5, 10.5}, {11, 10.5}}));
        Arrow.closeSubpath();
        Painter.fillPath(Arrow, Qt::white);
        Painter.strokePath(Arrow, QPen(Qt::black, 1));
        FFrames.push_back({Title, Image});
    }

    QImage Strip() const {
        const double Scale = FWindow.devicePixelRatioF();
        const int Lines = (static_cast<int>(FFrames.size()) + FramesPerLine - 1) / FramesPerLine;
        const QSize One = FWindow.size();
        QImage Picture(QSize(FramesPerLine * (One.width() + Border) + Border,
                             Lines * (One.height() + TitleHeight + Border) + Border) *
                           Scale,
                       QImage::Format_RGB32);
        Picture.setDevicePixelRatio(Scale);
        Picture.fill(QColor(120, 120, 124));
        QPainter Painter(&Picture);
        Painter.setPen(Qt::white);
        for (std::size_t I = 0; I < FFrames.size(); ++I) {
            const int Index = static_cast<int>(I);
            const QPoint At(Border + Index % FramesPerLine * (One.width() + Border),
                            Border + Index / FramesPerLine * (One.height() + TitleHeight + Border));
            Painter.drawText(QRect(At, QSize(One.width(), TitleHeight)), Qt::AlignVCenter, FFrames[I].Title);
            Painter.drawImage(At + QPoint(0, TitleHeight), FFrames[I].Image);
        }
        return Picture;
    }

private:
    struct TFrame {
        QString Title;
        QImage Image;
    };

    QPoint InWindow() const { return FTree.viewport()->mapTo(&FWindow, FMouse); }
    static QPoint Centre(const TRect& R) { return {(R.Left + R.Right) / 2, (R.Top + R.Bottom) / 2}; }

    TOutlinerWindow& FWindow;
    TOutlineTree& FTree;
    std::vector<TFrame> FFrames;
    QPoint FMouse;
};

void PlayMouse(TFilm& Film, TOutlineTree& Tree) {
    Film.MoveTo(Film.BorderOf(0));
    Film.Frame("1  Over the border of a caption");
    Film.Press(Film.BorderOf(0));
    Film.MoveTo(Film.Towards(Film.BorderOf(0), -90));
    Film.Frame("2  The column follows the mouse");
    Film.Release();
    Film.DoubleClick();
    Film.Frame("3  A double click fits it to its texts");
    Film.Press(Film.Caption(1));
    Film.Frame("4  A caption held down");
    Film.MoveTo(Film.Towards(Film.Caption(2), 0));
    Film.MoveTo(Film.Towards(Film.Caption(2), 25));
    Film.Frame("5  Moved: picture and insert mark");
    Film.Release();
    Film.Frame("6  Dropped");
    Film.Press(Film.Caption(0));
    Film.Release();
    Film.Frame("7  A click sorts");
    Film.Press(Film.InRow(3));
    Film.MoveTo(Film.InRow(7));
    Film.Frame("8  A range");
    const int Bottom = Tree.GetClientHeight();
    Film.MoveTo({Film.InRow(7).x(), Bottom + 30});
    QTest::qWait(TCustomExGrid::ScrollTimerInterval * 12);
    Film.MoveTo({Film.InRow(7).x(), Bottom - 4});
    Film.Frame("9  Held below the window it scrolls");
    Film.Release();
}

void PlayEditing(TFilm& Film, TOutlineTree& Tree) {
    for (int I = 0; I < 2; ++I) Film.Key(Qt::Key_Down);
    Film.MoveTo(Film.InRow(9));
    Film.Key(Qt::Key_F2);
    Film.Frame("1  F2: the editor, all selected");
    Film.Key(Qt::Key_End);
    Film.Type(", typed now");
    Film.Frame("2  Typed");
    Film.Key(Qt::Key_Return);
    Film.Frame("3  Enter stores");
    for (const Qt::Key Key :
         {Qt::Key_Down, Qt::Key_Down, Tree.UseRightToLeftAlignment() ? Qt::Key_Left : Qt::Key_Right})
        Film.Key(Key);
    Film.Type("abc");
    Film.Frame("4  Typing opens the editor of a cell");
    Film.Key(Qt::Key_Down);
    Film.Frame("5  Down stores and goes on");
    Film.Key(Qt::Key_Home);
    Film.Key(Qt::Key_F2);
    Film.Key(Qt::Key_F2);
    Film.Frame("6  F2 again: nothing selected");
}

} // namespace

int main(int Count, char** Values) {
    ChoosePlatform(Count, Values);
    QApplication Program(Count, Values);
    QCommandLineParser Parser;
    AddCommonOptions(Parser);
    Parser.addOption({"scene", "What to film: mouse or editing.", "SCENE", "mouse"});
    Parser.addPositionalArgument("FILE", "The outline to open.");
    Parser.process(Program);
    const TProgramOptions Options = ReadCommonOptions(Parser);
    SetUpLook(Options.Dark, Options.RightToLeft);
    try {
        TOutlinerWindow Window;
        TOutlineTree& Tree = *Window.GetTree();
        Window.resize(Options.Size);
        if (Options.RightToLeft) SetRightToLeft(Tree, true);
        Tree.SetSmoothExpandCollapse(false);
        Window.OpenFile(Parser.positionalArguments().value(0).toStdString());
        Window.ExpandAll();
        Window.show();
        QTest::qWait(50);
        TFilm Film(Window);
        Parser.value("scene") == "editing" ? PlayEditing(Film, Tree) : PlayMouse(Film, Tree);
        Film.Strip().save(QString::fromStdString(Options.Screenshot));
    } catch (const Exception& Error) {
        return ReportError(Error.GetMessage());
    }
    return EXIT_SUCCESS;
}
