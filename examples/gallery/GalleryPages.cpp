#include "GalleryPages.h"

#include "CellsPage.h"
#include "HintPage.h"
#include "LabelPage.h"
#include "NodesPage.h"

#include <QObject>

namespace quill::examples {

namespace {

template <class TPage>
TGalleryPage* Make() {
    return new TPage;
}

const TPageInfo Pages[] = {
    {"label", QT_TRANSLATE_NOOP("Gallery", "Markup label"),
     QT_TRANSLATE_NOOP("Gallery",
                       "A label that shows short texts in a small markup. Edit the text below it."),
     Make<TLabelPage>},
    {"hint", QT_TRANSLATE_NOOP("Gallery", "Hint window"),
     QT_TRANSLATE_NOOP(
         "Gallery", "Move the mouse over a text that does not fit, or show a hint at an edge of the screen."),
     Make<THintPage>},
    {"cells", QT_TRANSLATE_NOOP("Gallery", "Markup in cells"),
     QT_TRANSLATE_NOOP("Gallery",
                       "Markup in the cells of a tree; what does not fit is shown under the mouse."),
     Make<TCellsPage>},
    {"nodes", QT_TRANSLATE_NOOP("Gallery", "Nodes editor"),
     QT_TRANSLATE_NOOP("Gallery", "The dialog in which the nodes of a tree are edited by hand."),
     Make<TNodesPage>},
};

} // namespace

std::span<const TPageInfo> GalleryPages() { return Pages; }

int FindPage(const QString& Name) {
    for (std::size_t Index = 0; Index < std::size(Pages); ++Index)
        if (Name == Pages[Index].Name) return static_cast<int>(Index);
    return -1;
}

} // namespace quill::examples
