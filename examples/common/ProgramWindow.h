// What the windows of the example programs have in common.
#pragma once

#include "ProgramOptions.h"

#include "host/graphics/ImageLists.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QToolBar;

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// A main window around one tree. Whoever derives from it calls SetTree first.
class TProgramWindow : public QMainWindow {
    Q_OBJECT

public:
    TProgramWindow();
    ~TProgramWindow() override;

    // Does what the command line asks for: opens, and then either works without a user and ends, or shows the window
    // until the user closes it. Open may raise Exception; Title stands above the message. Returns the exit code.
    int Run(const TProgramOptions& Options, const QString& Title, const std::function<void()>& Open);
    virtual void SaveFile(const std::string& FileName) = 0;

protected:
    void showEvent(QShowEvent* Event) override;

    // Puts the tree into the middle of the window and gives it its pictures. Samples as in FitColumns.
    void SetTree(TCustomQuillTree* Tree, const std::vector<std::string>& Samples = {});
    QToolBar* MakeToolBar();
    // Columns can be fitted only when the layout has given the tree its place.
    void FitColumnsWhenShown();
    // Gives the columns their widths.
    virtual void FitColumns();
    // Whether Work went through; tells the user when it raised Exception.
    bool Attempt(const QString& Title, const std::function<void()>& Work);
    void ShowAbout(const QString& Name, const QString& Text);

private:
    void RunBatch(const TProgramOptions& Options);

    std::unique_ptr<TImageList> FPictures;
    TCustomQuillTree* FTree = nullptr;
    std::vector<std::string> FSamples;
    bool FFitPending = true;
};

} // namespace quill::examples
