// A window of the outliner with a document, as a user works with it.
#pragma once

#include "examples/outliner/OutlineEditor.h"
#include "examples/outliner/OutlinerWindow.h"
#include "examples/outliner/OutlineTree.h"

#include "tests/examples/OutlineDump.h"
#include "tests/support/Keys.h"
#include "tests/support/QtTest.h"

#include <QApplication>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>

namespace quill::examples {

class TOutlinerTest : public ::testing::Test {
protected:
    explicit TOutlinerTest(const std::string& Text) {
        Tree->SetSmoothExpandCollapse(false);
        Window.resize(600, 500);
        Open(Text);
        Window.show();
        Tree->setFocus();
        QApplication::processEvents();
    }
    void Open(const std::string& Text) {
        Folder.Put("plan.nodes", Text);
        Window.OpenFile(Folder.File("plan.nodes"));
        QApplication::processEvents();
    }
    std::string Dump() { return testing::DumpOutline(*Tree->GetItems()); }
    // Every field of every node that the options name.
    std::string Saved(int Options = 127) { return OutlineText(*Tree->GetItems(), OptionsOf(Options)); }
    TFlyNode* Node(const std::string& Text) {
        TFlyNode* Found = Tree->GetItems()->GetFirstNode();
        while (Found && Found->GetText() != Text) Found = Found->GetNext();
        return Found;
    }
    void Select(const std::vector<std::string>& Texts) {
        Tree->SetSelection(Node(Texts.front()));
        for (const std::string& Text : Texts) Node(Text)->SetSelected(true);
    }
    void Press(const char* Keys) { testing::PressKeys(Window, Keys); }
    std::string UndoText() {
        return Window.menuBar()->actions()[1]->menu()->actions()[0]->text().remove('&').toStdString();
    }

    testing::TTempFolder Folder;
    TOutlinerWindow Window;
    TOutlineTree* Tree = Window.GetTree();
};

} // namespace quill::examples
