// How the example programs look: style, colours, pictures, and a tree that is set up for the user's font.
#pragma once

#include "host/graphics/ImageLists.h"

#include <memory>
#include <string>

class QColor;
class QIcon;
class QWidget;

namespace quill {
class TCustomQuillTree;
}

namespace quill::examples {

// The pictures of the image list, in the order of order.txt beside them.
enum TPicture {
    picFolder,
    picFolderOpen,
    picDocument,
    picPicture,
    picArchive,
    picCode,
    picLink,
    picStar,
    picUser,
    picNote,
    picGlobe,
    picLeaf,
    picMusic,
    picHeart
};

TColor ColorOf(const QColor& Color);
// The toolkit's own style where the platform brings none, and always for dark colours.
void SetUpLook(bool Dark, bool RightToLeft);
QIcon ProgramIcon();

// 16 x 16 pixels, sharp at twice the scale.
std::unique_ptr<TImageList> LoadPictures();

// Rows as high as the font needs, a row of captions, whole rows selected, lines and colours of the palette.
void SetUpTree(TCustomQuillTree& Tree);
// Tells captions apart where no line does; to be called after the frame of a fixed cell was drawn.
void DrawCaptionEdge(TCustomQuillTree& Tree, TCanvas& Canvas, const TRect& Rect, int ARow);
void SetRightToLeft(TCustomQuillTree& Tree, bool RightToLeft);

// Writes the window as it is shown, hints over it included, in PNG. Raises EStreamError.
void SaveScreenshot(QWidget& Window, const std::string& FileName);

} // namespace quill::examples
