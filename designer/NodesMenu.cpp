#include "designer/NodesMenu.h"

#include "flyedit/FlyEdit.h"
#include "host/base/Errors.h"
#include "quilltree/QuillTree.h"

#include <QAction>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowInterface>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerPropertySheetExtension>
#include <QExtensionManager>
#include <QMessageBox>
#include <QUndoCommand>
#include <QUndoStack>
#include <QVariant>

#include <array>
#include <utility>

namespace quill::designer {

namespace {

// What the editor can change, in the order in which it has to be set.
constexpr std::array Changed = {"ColCount", "StructureCol", "Nodes"};

using TValues = std::array<QVariant, Changed.size()>;

TValues ValuesOf(const TQuillTree& Tree) {
    TValues Values;
    for (std::size_t Index = 0; Index < Changed.size(); ++Index)
        Values[Index] = Tree.property(Changed[Index]);
    return Values;
}

// One visit to the editor. The form's own command for a property would mark the nodes to be translated, as it takes
// every text for one that users read; set like this they keep the mark that they have.
class TNodesCommand : public QUndoCommand {
public:
    TNodesCommand(const QString& Name, TQuillTree* Tree, QDesignerFormEditorInterface* Core, TValues Before,
                  TValues After)
        : QUndoCommand(Name), FTree(Tree), FCore(Core), FBefore(std::move(Before)), FAfter(std::move(After)) {
        const QDesignerPropertySheetExtension* const Sheet = GetSheet();
        for (std::size_t Index = 0; Sheet && Index < Changed.size(); ++Index)
            FMarkedBefore[Index] = Sheet->isChanged(Sheet->indexOf(Changed[Index]));
    }

    void undo() override { Set(FBefore, true); }
    void redo() override { Set(FAfter, false); }

private:
    QDesignerPropertySheetExtension* GetSheet() const {
        if (!FTree || !FCore) return nullptr;
        return qt_extension<QDesignerPropertySheetExtension*>(FCore->extensionManager(), FTree.data());
    }

    // Only what is marked as changed is saved.
    void Set(const TValues& Values, bool Back) {
        QDesignerPropertySheetExtension* const Sheet = GetSheet();
        if (!Sheet) return;
        for (std::size_t Index = 0; Index < Changed.size(); ++Index) {
            if (FBefore[Index] == FAfter[Index]) continue;
            FTree->setProperty(Changed[Index], Values[Index]);
            Sheet->setChanged(Sheet->indexOf(Changed[Index]), Back ? FMarkedBefore[Index] : true);
        }
        QDesignerPropertyEditorInterface* const Editor = FCore->propertyEditor();
        if (Editor && Editor->object() == FTree) Editor->setObject(FTree);
    }

    QPointer<TQuillTree> FTree;
    QPointer<QDesignerFormEditorInterface> FCore;
    TValues FBefore;
    TValues FAfter;
    std::array<bool, Changed.size()> FMarkedBefore{};
};

} // namespace

TNodesMenu::TNodesMenu(TQuillTree* Tree, QObject* Parent)
    : QObject(Parent), FTree(Tree), FEdit(new QAction(tr("Edit Nodes..."), this)) {
    FEdit->setObjectName("EditNodes");
    connect(FEdit, &QAction::triggered, this, &TNodesMenu::EditNodesOfTree);
}

void TNodesMenu::EditNodesOfTree() {
    if (!FTree) return;
    TValues Before = ValuesOf(*FTree);
    const QPointer<TNodesMenu> Self(this);
    const QPointer<QWidget> Window(FTree->window());
    try {
        EditNodes(FTree->GetItems(), {}, Window);
    } catch (const Exception& Error) {
        QMessageBox::warning(Window, tr("Nodes"), QString::fromStdString(Error.GetMessage()));
    }
    if (!Self || !FTree) return;
    TValues After = ValuesOf(*FTree);
    if (After == Before) return;
    if (auto* const Form = QDesignerFormWindowInterface::findFormWindow(FTree)) {
        Form->commandHistory()->push(
            new TNodesCommand(FEdit->text(), FTree, Form->core(), std::move(Before), std::move(After)));
    }
}

QObject* TNodesMenuFactory::createExtension(QObject* Object, const QString& Iid, QObject* Parent) const {
    if (Iid != Q_TYPEID(QDesignerTaskMenuExtension)) return nullptr;
    auto* const Tree = dynamic_cast<TQuillTree*>(Object);
    return Tree ? new TNodesMenu(Tree, Parent) : nullptr;
}

} // namespace quill::designer
