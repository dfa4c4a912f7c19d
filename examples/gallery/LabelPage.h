// The page of the markup label: the label, its properties, and its text to edit.
#pragma once

#include "GalleryPages.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QPlainTextEdit;
class QSpinBox;

namespace quill {
class TNVHTMLText;
}

namespace quill::examples {

class TLabelPage : public TGalleryPage {
    Q_OBJECT

public:
    TLabelPage();

    TNVHTMLText* GetLabel() const { return FLabel; }

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    QFormLayout* MakeOptions();
    QSpinBox* MakeSpinBox(int Value, int Maximum);
    // Gives the label what the options and the editor say.
    void Apply();
    // All of the stage; an auto-sized label then takes what it needs.
    void PlaceLabel();

    QWidget* FStage;
    TNVHTMLText* FLabel;
    QPlainTextEdit* FEditor;
    QComboBox* FSample = nullptr;
    QComboBox* FAlignment = nullptr;
    QComboBox* FVertical = nullptr;
    QComboBox* FBorder = nullptr;
    QSpinBox* FMargin = nullptr;
    QSpinBox* FBorderWidth = nullptr;
    QCheckBox* FWordWrap = nullptr;
    QCheckBox* FAutoSize = nullptr;
};

} // namespace quill::examples
