// The page of the nodes editor: a tree, and the button that opens the editor on its nodes.
#pragma once

#include "GalleryPages.h"

#include "flyedit/FlyEdit.h"

#include <memory>

namespace quill {
class TQuillTree;
}

namespace quill::examples {

class TNodesPage : public TGalleryPage {
    Q_OBJECT

public:
    TNodesPage();

    // Opens the editor, which then is the picture of this page.
    void Pose() override;
    QWidget* GetPicture() override;

private:
    void Fill();
    void Edit();

    TQuillTree* FTree;
    std::unique_ptr<TFlyEditor> FPosing;
};

} // namespace quill::examples
