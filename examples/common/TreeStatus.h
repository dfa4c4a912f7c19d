// The status bar of a window that shows one tree.
#pragma once

#include <QObject>

#include <functional>

class QLabel;
class QStatusBar;
class QTimer;

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// Shows counts of nodes, rows and selected nodes, and a text of the program. Everything that is shown costs O(1), and
// however much happens in one go, the labels are set once afterwards.
class TTreeStatus : public QObject {
    Q_OBJECT

public:
    TTreeStatus(QStatusBar* Bar, TCustomQuillTree* Tree);

    std::function<int()> NodeCount;
    std::function<QString()> Text;

    // Something changed that the tree does not report.
    void Touch();

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    void Show();

    TCustomQuillTree* FTree;
    QTimer* FTimer;
    QLabel* FText;
    QLabel* FNodes;
    QLabel* FRows;
    QLabel* FSelected;
};

} // namespace quill::examples
