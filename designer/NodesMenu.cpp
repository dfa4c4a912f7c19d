#include "designer/NodesMenu.h"

#include "flyedit/FlyEdit.h"
#include "host/base/Errors.h"
#include "quilltree/QuillTree.h"

#include <QAction>
#include <QDesignerFormWindowCursorInterface>
#include <QDesignerFormWindowInterface>
#include <QMessageBox>
#include <QUndoStack>
#include <QVariant>

#include <array>

namespace quill::designer {

namespace {

// What the editor can change, in the order in which it has to be set.
constexpr std::array Changed = {"ColCount", "StructureCol", "Nodes"};

} // namespace

TNodesMenu::TNodesMenu(TQuillTree* Tree, QObject* Parent)
    : QObject(Parent), FTree(Tree), FEdit(new QAction(tr("Edit Nodes..."), this)) {
    FEdit->setObjectName("EditNodes");
    connect(FEdit, &QAction::triggered, this, &TNodesMenu::EditNodesOfTree);
}

void TNodesMenu::EditNodesOfTree() {
    if (!FTree) return;
    std::array<QVariant, Changed.size()> Before;
    for (std::size_t Index = 0; Index < Changed.size(); ++Index)
        Before[Index] = FTree->property(Changed[Index]);
    const QPointer<TNodesMenu> Self(this);
    const QPointer<QWidget> Window(FTree->window());
    try {
        EditNodes(FTree->GetItems(), {}, Window);
    } catch (const Exception& Error) {
        QMessageBox::warning(Window, tr("Nodes"), QString::fromStdString(Error.GetMessage()));
    }
    if (!Self || !FTree) return;
    std::array<QVariant, Changed.size()> After;
    for (std::size_t Index = 0; Index < Changed.size(); ++Index)
        After[Index] = FTree->property(Changed[Index]);
    if (After == Before) return;
    auto* const Form = QDesignerFormWindowInterface::findFormWindow(FTree);
    if (!Form) return;
    // The form notes the old value when it sets a new one.
    for (std::size_t Index = 0; Index < Changed.size(); ++Index)
        FTree->setProperty(Changed[Index], Before[Index]);
    Form->beginCommand(FEdit->text());
    for (std::size_t Index = 0; Index < Changed.size(); ++Index) {
        if (FTree && After[Index] != Before[Index])
            Form->cursor()->setWidgetProperty(FTree, Changed[Index], After[Index]);
    }
    Form->endCommand();
}

QObject* TNodesMenuFactory::createExtension(QObject* Object, const QString& Iid, QObject* Parent) const {
    if (Iid != Q_TYPEID(QDesignerTaskMenuExtension)) return nullptr;
    auto* const Tree = dynamic_cast<TQuillTree*>(Object);
    return Tree ? new TNodesMenu(Tree, Parent) : nullptr;
}

} // namespace quill::designer
