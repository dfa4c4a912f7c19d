// The page of markup in the cells of a tree, with tooltips.
#pragma once

#include "GalleryPages.h"

namespace quill {
class TQuillTree;
}

namespace quill::examples {

class TCellsPage : public TGalleryPage {
    Q_OBJECT

public:
    TCellsPage();

    // Shows the tooltip of a cell.
    void Pose() override;

private:
    void Fill();
    QWidget* MakeSwitches();

    TQuillTree* FTree;
};

} // namespace quill::examples
