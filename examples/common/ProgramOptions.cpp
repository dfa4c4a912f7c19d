#include "ProgramOptions.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace quill::examples {

void ChoosePlatform(int ArgCount, char** Args) {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        return;
    }
    for (int Index = 1; Index < ArgCount; ++Index) {
        const std::string_view Arg = Args[Index];
        for (const std::string_view Batch : {"--screenshot", "--save-as", "--roundtrip", "--help", "-h"}) {
            if (Arg.substr(0, Arg.find('=')) == Batch) qputenv("QT_QPA_PLATFORM", "offscreen");
        }
    }
}

void AddCommonOptions(QCommandLineParser& Parser) {
    Parser.addHelpOption();
    Parser.addOptions({
        {"screenshot", "Write a picture of the window to FILE (PNG) and end.", "FILE"},
        {"save-as", "Save the nodes to FILE and end.", "FILE"},
        {"size", "Size of the window in pixels, 1000x700 if not given.", "WxH"},
        {"dark", "Use dark colours."},
        {"rtl", "Lay everything out from right to left."},
    });
}

TProgramOptions ReadCommonOptions(const QCommandLineParser& Parser) {
    TProgramOptions Options;
    Options.Screenshot = Parser.value("screenshot").toStdString();
    Options.SaveAs = Parser.value("save-as").toStdString();
    Options.Dark = Parser.isSet("dark");
    Options.RightToLeft = Parser.isSet("rtl");
    for (const char* Name : {"screenshot", "save-as"}) {
        if (Parser.isSet(Name) && Parser.value(Name).isEmpty()) {
            std::exit(ReportError(std::string("--") + Name + " needs a file name"));
        }
    }
    if (Parser.isSet("size")) {
        static const QRegularExpression Pattern("^([1-9]\\d{1,3})x([1-9]\\d{1,3})$");
        const QRegularExpressionMatch Match = Pattern.match(Parser.value("size"));
        if (!Match.hasMatch()) {
            std::exit(ReportError("--size needs width and height, as in 1000x700, not \"" +
                                  Parser.value("size").toStdString() + "\""));
        }
        Options.Size = QSize(Match.captured(1).toInt(), Match.captured(2).toInt());
    }
    return Options;
}

int ReportError(const std::string& Message) {
    std::fprintf(stderr, "%s: %s\n", qPrintable(QCoreApplication::applicationName()), Message.c_str());
    return EXIT_FAILURE;
}

} // namespace quill::examples
