// The menu with what a tree offers to its user's eye.
#pragma once

#include <QObject>

#include <vector>

class QAction;
class QMenu;

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// Adds the outline styles and the switches of the tree's look to a menu. The tree is the only keeper of the state:
// the menu asks it each time it opens.
class TViewMenu : public QObject {
    Q_OBJECT

public:
    TViewMenu(QMenu* Menu, TCustomQuillTree* Tree);

Q_SIGNALS:
    // The user changed something.
    void switched();

private:
    void AddStyles(QMenu* Menu);
    void AddSwitches(QMenu* Menu);
    void ShowState();

    TCustomQuillTree* FTree;
    std::vector<QAction*> FStyles;
    std::vector<QAction*> FSwitches;
};

} // namespace quill::examples
