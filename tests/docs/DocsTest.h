// Where the examples of the documentation run: a tree in a temporary folder.
#pragma once

#include "quilltree/HeadlessHost.h"
#include "quilltree/QuillTree.h"
#include "tests/support/QtTest.h"

#include <filesystem>

namespace quill::docs {

class Guide : public ::testing::Test {
protected:
    void SetUp() override {
        FBefore = std::filesystem::current_path();
        std::filesystem::current_path(FFolder.File("."));
        Tree.resize(400, 300);
        Tree.show();
    }
    void TearDown() override { std::filesystem::current_path(FBefore); }

    quill::testing::TTempFolder FFolder;
    std::filesystem::path FBefore;
    TQuillTree Tree;
};

} // namespace quill::docs
