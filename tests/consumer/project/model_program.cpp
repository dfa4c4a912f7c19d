// A command-line program with nodes: builds a tree, saves it to the file of its argument, loads it and prints it.
#include "quilltree/FlyNodes.h"
#include "quilltree/HeadlessHost.h"

#include <iostream>

int main(int, char* argv[]) {
    quill::THeadlessHost Saved;
    quill::TFlyNode* Fruit = Saved.GetItems()->Add(nullptr, "Fruit");
    Saved.GetItems()->AddChild(Fruit, "Apple");
    Saved.GetItems()->AddChild(Fruit, "Pear");
    Saved.GetItems()->SaveNodesToFile(argv[1], {});

    quill::THeadlessHost Loaded;
    Loaded.GetItems()->LoadNodesFromFile(argv[1]);
    Fruit = Loaded.GetItems()->GetFirstNode();
    std::cout << Fruit->GetText() << " [" << Fruit->GetItem(0)->GetText() << ", "
              << Fruit->GetItem(1)->GetText() << "]\n";
}
