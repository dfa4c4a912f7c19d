#include "EditMenu.h"

#include "OutlineEditor.h"
#include "OutlineTree.h"

#include "../common/ToolIcons.h"

#include <QAction>
#include <QMenu>

namespace quill::examples {

namespace {

QIcon IconFor(const QMenu& Menu, TToolIcon Icon) {
    return MakeToolIcon(Icon, Menu.palette().color(QPalette::ButtonText));
}

} // namespace

TEditMenu::TEditMenu(QMenu* Menu, TOutlineTree* Tree, TOutlineEditor* Editor)
    : QObject(Menu), FTree(Tree), FEditor(Editor) {
    FUndo = Menu->addAction(IconFor(*Menu, tiUndo), {}, Editor, &TOutlineEditor::Undo);
    FUndo->setShortcut(QKeySequence::Undo);
    FRedo = Menu->addAction(IconFor(*Menu, tiRedo), {}, Editor, &TOutlineEditor::Redo);
    FRedo->setShortcuts(QKeySequence::Redo);
    Menu->addSeparator();
    AddClipboard(Menu);
    Menu->addSeparator();
    AddNodes(Menu);
    AddMoves(Menu);
    Menu->addSeparator();
    AddRows(Menu);
    connect(Editor, &TOutlineEditor::undoChanged, this, &TEditMenu::ShowUndo);
    ShowUndo();
}

// The tree passes these on to the cell's editor while it shows.
void TEditMenu::AddClipboard(QMenu* Menu) {
    QAction* Cut = Menu->addAction(IconFor(*Menu, tiCut), tr("Cu&t"), FTree, &TOutlineTree::cutSelection);
    Cut->setShortcut(QKeySequence::Cut);
    QAction* Copy = Menu->addAction(IconFor(*Menu, tiCopy), tr("&Copy"), FTree, &TOutlineTree::copySelection);
    Copy->setShortcut(QKeySequence::Copy);
    QAction* Paste =
        Menu->addAction(IconFor(*Menu, tiPaste), tr("&Paste"), FTree, &TOutlineTree::pasteSelection);
    Paste->setShortcut(QKeySequence::Paste);
}

void TEditMenu::AddNodes(QMenu* Menu) {
    QAction* Delete =
        Menu->addAction(IconFor(*Menu, tiDelete), tr("&Delete"), FEditor, &TOutlineEditor::DeleteSelected);
    Delete->setShortcut(QKeySequence::Delete);
    Menu->addSeparator();
    FNewNode = Menu->addAction(IconFor(*Menu, tiAdd), tr("&New Node"), FEditor, &TOutlineEditor::AddNode);
    // These work in a cell's editor too, so that one node after the other can be typed.
    FNewNode->setShortcuts({tr("Ctrl+Return"), tr("Ctrl+Enter"), tr("Ins")});
    QAction* Child = Menu->addAction(tr("New C&hild Node"), FEditor, &TOutlineEditor::AddChild);
    Child->setShortcuts({tr("Ctrl+Shift+Return"), tr("Ctrl+Shift+Enter")});
    QAction* Edit = Menu->addAction(tr("&Edit Cell"), FEditor, &TOutlineEditor::EditCell);
    Edit->setShortcut(tr("F2"));
    QAction* All = Menu->addAction(tr("Edit N&odes..."), FEditor, &TOutlineEditor::EditNodes);
    All->setObjectName("editNodes");
    for (QAction* Action : {FUndo, FRedo, Delete, Edit}) {
        Action->setShortcutContext(Qt::WidgetShortcut);
        FTree->addAction(Action);
    }
}

void TEditMenu::AddMoves(QMenu* Menu) {
    QMenu* const Moves = Menu->addMenu(tr("&Move"));
    const struct {
        QString Text;
        const char* Key;
        void (TOutlineEditor::*Command)();
    } Commands[] = {
        {tr("&Up"), "Alt+Up", &TOutlineEditor::MoveUp},
        {tr("&Down"), "Alt+Down", &TOutlineEditor::MoveDown},
        {tr("&In"), "Alt+Right", &TOutlineEditor::Indent},
        {tr("&Out"), "Alt+Left", &TOutlineEditor::Outdent},
    };
    for (const auto& Command : Commands) {
        QAction* const Action = Moves->addAction(Command.Text, FEditor, Command.Command);
        Action->setShortcut(QKeySequence(Command.Key));
        Action->setShortcutContext(Qt::WidgetShortcut);
        FTree->addAction(Action);
    }
}

void TEditMenu::AddRows(QMenu* Menu) {
    QAction* All = Menu->addAction(tr("Select &All"), FTree, [this] {
        FTree->HideEditor();
        FTree->SelectAll();
        FTree->Invalidate();
    });
    All->setShortcut(QKeySequence::SelectAll);
    All->setShortcutContext(Qt::WidgetShortcut);
    FTree->addAction(All);
    Menu->addSeparator();
    Menu->addAction(tr("Sort A to &Z"), FTree, [this] { FTree->SortBy(0, srtAscending); });
    Menu->addAction(tr("Sort Z to A"), FTree, [this] { FTree->SortBy(0, srtDescending); });
}

void TEditMenu::ShowUndo() {
    const QString Undo = FEditor->UndoName();
    const QString Redo = FEditor->RedoName();
    FUndo->setText(Undo.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(Undo));
    FUndo->setEnabled(!Undo.isEmpty());
    FRedo->setText(Redo.isEmpty() ? tr("&Redo") : tr("&Redo %1").arg(Redo));
    FRedo->setEnabled(!Redo.isEmpty());
}

} // namespace quill::examples
