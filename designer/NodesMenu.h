// The nodes editor in the task menu of a tree on a form.
#pragma once

#include <QExtensionFactory>
#include <QPointer>
#include <QtDesigner/QDesignerTaskMenuExtension>

class QAction;

namespace quill {
class TQuillTree;
}

namespace quill::designer {

// The tree's entry in its menu, which also a double click on the tree starts.
class TNodesMenu : public QObject, public QDesignerTaskMenuExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    TNodesMenu(TQuillTree* Tree, QObject* Parent);

    QList<QAction*> taskActions() const override { return {FEdit}; }
    QAction* preferredEditAction() const override { return FEdit; }

private:
    // Shows the editor; what it changes becomes one step of the form's undo list.
    void EditNodesOfTree();

    QPointer<TQuillTree> FTree;
    QAction* FEdit;
};

class TNodesMenuFactory : public QExtensionFactory {
    Q_OBJECT

public:
    using QExtensionFactory::QExtensionFactory;

protected:
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override;
};

} // namespace quill::designer
