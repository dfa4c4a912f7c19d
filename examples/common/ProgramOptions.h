// The command line that the example programs have in common.
#pragma once

#include <QCommandLineParser>
#include <QSize>
#include <QString>

#include <string>

namespace quill::examples {

struct TProgramOptions {
    std::string Screenshot; // PNG file to write, empty for none
    std::string SaveAs;     // nodes file to write, empty for none
    QSize Size{1000, 700};  // of the window
    bool Dark = false;
    bool RightToLeft = false;

    // Whether the program does its work and ends, without a user.
    bool IsBatch() const { return !Screenshot.empty() || !SaveAs.empty(); }
};

// To be called before the application object is made: without a display, work that needs no user goes on without one.
void ChoosePlatform(int ArgCount, char** Args);

// The options of a window, and those together with the ones of a program that saves nodes.
void AddWindowOptions(QCommandLineParser& Parser);
void AddCommonOptions(QCommandLineParser& Parser);
// Both end the program with a message when an option has a value that makes no sense.
TProgramOptions ReadWindowOptions(const QCommandLineParser& Parser);
TProgramOptions ReadCommonOptions(const QCommandLineParser& Parser);

// "PROGRAM: MESSAGE" on the error channel; returns the exit code of a failure.
int ReportError(const std::string& Message);

} // namespace quill::examples
