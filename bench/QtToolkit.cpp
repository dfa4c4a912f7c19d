// The contenders on Qt: one font and one style for all of them, on the offscreen platform.
#include "bench/adapters/Adapters.h"

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

namespace quill::bench {

std::vector<TContenderEntry> StartToolkit(int& ArgCount, char** Args) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Lives to the end of the process.
    static QApplication Application(ArgCount, Args);
    // The style that draws lines between the nodes.
    QApplication::setStyle(QStyleFactory::create("Windows"));
    QFont Font(TContender::FontName);
    Font.setPixelSize(TContender::FontPixels);
    QApplication::setFont(Font);
    return {{"ours", MakeOurTree},
            {"compact", MakeCompactTree},
            {"standard", MakeStandardTree},
            {"widget", MakeWidgetTree}};
}

} // namespace quill::bench
