// Shows a tree and saves its picture in the file of its argument.
#include "quilltree/QuillTree.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    QApplication Application(argc, argv);
    quill::TQuillTree Tree;
    Tree.SetColCount(2);
    Tree.GetItems()->Clear();
    quill::TFlyNode* Fruit = Tree.GetItems()->Add(nullptr, "Fruit");
    Tree.GetItems()->AddChild(Fruit, "Apple")->SetCell(1, "Sweet and red");
    Tree.GetItems()->AddChild(Fruit, "Pear");
    Fruit->Expand(false);
    Tree.resize(300, 120);
    Tree.show();
    return Tree.grab().save(argc > 1 ? argv[1] : "tree.png") ? 0 : 1;
}
