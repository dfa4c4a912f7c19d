// The page of the hint window: cells with hints in their places, and hints at the edges of the screen.
#pragma once

#include "GalleryPages.h"
#include "HintCells.h"

class QCheckBox;
class QGroupBox;
class QPlainTextEdit;
class QSpinBox;
class QTimer;

namespace quill::examples {

class THintPage : public TGalleryPage {
    Q_OBJECT

public:
    THintPage();

    // Shows the hint of a cell.
    void Pose() override;

private:
    QGroupBox* MakeEdges();
    QWidget* MakeOptions();
    // Column and Row of the button, 0 to 2: which edge of the screen the hint is asked to stick out of.
    void ShowAtEdge(int Column, int Row);

    THintCells* FCells;
    TNVHTMLHintWindow* FHint; // owned by the cells
    QPlainTextEdit* FText;
    QCheckBox* FMarkup;
    QCheckBox* FWordWrap;
    QSpinBox* FMaxWidth;
    QTimer* FTimer;
};

} // namespace quill::examples
