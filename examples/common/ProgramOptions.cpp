#include "ProgramOptions.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace quill::examples {

namespace {

std::string ReadFileName(const QCommandLineParser& Parser, const char* Option) {
    const std::string Name = Parser.value(Option).toStdString();
    if (Parser.isSet(Option) && Name.empty())
        std::exit(ReportError(std::string("--") + Option + " needs a file name"));
    return Name;
}

} // namespace

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

void AddWindowOptions(QCommandLineParser& Parser) {
    Parser.addHelpOption();
    Parser.addOptions({
        {"screenshot", "Write a picture of the window to FILE (PNG) and end.", "FILE"},
        {"size", "Size of the window in pixels, 1000x700 if not given.", "WxH"},
        {"dark", "Use dark colours."},
        {"rtl", "Lay everything out from right to left."},
    });
}

void AddCommonOptions(QCommandLineParser& Parser) {
    AddWindowOptions(Parser);
    Parser.addOption({"save-as", "Save the nodes to FILE and end.", "FILE"});
}

TProgramOptions ReadWindowOptions(const QCommandLineParser& Parser) {
    TProgramOptions Options;
    Options.Screenshot = ReadFileName(Parser, "screenshot");
    Options.Dark = Parser.isSet("dark");
    Options.RightToLeft = Parser.isSet("rtl");
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

TProgramOptions ReadCommonOptions(const QCommandLineParser& Parser) {
    TProgramOptions Options = ReadWindowOptions(Parser);
    Options.SaveAs = ReadFileName(Parser, "save-as");
    return Options;
}

int ReportError(const std::string& Message) {
    std::fprintf(stderr, "%s: %s\n", qPrintable(QCoreApplication::applicationName()), Message.c_str());
    return EXIT_FAILURE;
}

} // namespace quill::examples
