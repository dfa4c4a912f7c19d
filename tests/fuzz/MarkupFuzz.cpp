// The markup renderer: any bytes, any rectangle, any codes. What is checked besides the sanitizers: nothing is painted
// outside the rectangle, the canvas comes back as it was, and measuring does not depend on what was drawn before.
#include "tests/fuzz/Fuzz.h"

#include "host/graphics/Canvas.h"
#include "host/graphics/Graphics.h"
#include "htmldraw/HTMLDraw.h"

#include <QApplication>
#include <QImage>

using namespace quill;

namespace {

constexpr int Width = 160;
constexpr int Height = 80;

// The first bytes choose the rectangle and the codes, the rest is the text.
void Run(std::string_view Input) {
    unsigned char Numbers[8] = {};
    for (std::size_t I = 0; I < std::size(Numbers) && I < Input.size(); ++I)
        Numbers[I] = static_cast<unsigned char>(Input[I]);
    const std::string_view Text =
        Input.size() > std::size(Numbers) ? Input.substr(std::size(Numbers)) : Input;
    const int Left = Numbers[0] - 40;
    const int Top = Numbers[1] / 2 - 20;
    const TRect Room{Left, Top, Left + Numbers[2] - 30, Top + Numbers[3] / 2 - 10};
    const bool Wrap = (Numbers[4] & 1) != 0;
    const double Scale = (Numbers[4] & 2) != 0 ? 1.5 : 1.0;

    QImage Image(static_cast<int>(Width * Scale), static_cast<int>(Height * Scale), QImage::Format_RGB32);
    Image.fill(Qt::white);
    TCanvas Canvas;
    Canvas.Bind(&Image, Scale);
    Canvas.GetFont()->SetHeight(-12);
    Canvas.GetBrush()->SetColor(clYellow);
    const bool Mirrored = (Numbers[4] & 4) != 0;
    if (Mirrored) Canvas.SetMirrored(true, Width);

    TRect First = Room;
    DrawHTML(First, Canvas, Text, Wrap, true, 0, 0);
    TRect Drawn = Room;
    DrawHTML(Drawn, Canvas, Text, Wrap, false, Numbers[5] % 4, Numbers[6] % 3 * 4);
    fuzz::Check(Drawn == Room, "drawing changed the rectangle");
    TRect Second = Room;
    DrawHTML(Second, Canvas, Text, Wrap, true, 0, 0);
    fuzz::Check(First == Second, "the text measures differently after it was drawn");
    fuzz::Check(Canvas.GetFont()->GetHeight() == -12 && Canvas.GetBrush()->GetColor() == clYellow,
                "the canvas changed");
    fuzz::Check((Canvas.GetCanvasOrientation() == coRightToLeft) == Mirrored, "the mapping changed");
    const QRect Inside = Canvas.ToDeviceRect(
        {Room.Left, Room.Top, Room.Left + std::abs(Room.Right - Room.Left), std::max(Room.Top, Room.Bottom)});
    Canvas.EndPainting();
    for (int Y = 0; Y < Image.height(); ++Y) {
        for (int X = 0; X < Image.width(); ++X) {
            if (!Inside.contains(X, Y))
                fuzz::Check(Image.pixel(X, Y) == 0xFFFFFFFFu, "painted outside the rectangle");
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication Application(argc, argv);
    // Which fonts lack a script is told once for each of them.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return fuzz::Main(argc, argv,
                      {"markup",
                       Run,
                       {"<",
                        ">",
                        "<B>",
                        "</B>",
                        "<i>",
                        "<FONT ",
                        "</FONT>",
                        " FACE=",
                        " SIZE=",
                        " COLOR=",
                        "\"",
                        "<BGCOLOR=",
                        "</BGCOLOR>",
                        "<COLOR=",
                        "</COLOR>",
                        "#FF0000",
                        "$0000FF",
                        "clRed",
                        "clNone",
                        "-1",
                        "0",
                        "7",
                        "2147483648",
                        "99999999999",
                        "\n",
                        "\r\n",
                        " ",
                        "word",
                        "longer words here",
                        "\xC3\xA9",
                        "\xD7\xA9\xD7\x9C",
                        "e\xCC\x81",
                        "\xF0\x9F\x98\x80",
                        "\xFF\xFE",
                        std::string(1, '\0'),
                        "=",
                        "/",
                        "<<<<",
                        "\xE2\x80\xAE",
                        "Arial"}});
}
