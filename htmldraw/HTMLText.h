// A label that shows markup.
#pragma once

#include "host/base/Strings.h"
#include "host/forms/QtProperties.h"
#include "host/windows/Controls.h"

namespace quill {

struct TClassInfo;

enum TNVVerticalAlign { vaTop, vaBottom, vaCenter };

// Shows Lines as markup (htmldraw/HTMLDraw.h). Alignment names sides, which stay where they are when the control reads
// from right to left.
class TNVHTMLText : public TCustomControl {
    Q_OBJECT

public:
    // --- for the platform's designer and form loader -------------------------------------------------------------
    enum class BorderStyle { bsNone, bsSingle };
    Q_ENUM(BorderStyle)
    enum class Alignment { taLeftJustify, taRightJustify, taCenter };
    Q_ENUM(Alignment)
    enum class VerticalAlignment { vaTop, vaBottom, vaCenter };
    Q_ENUM(VerticalAlignment)
    enum class BiDiMode { bdLeftToRight, bdRightToLeft, bdRightToLeftNoAlign, bdRightToLeftReadingOnly };
    Q_ENUM(BiDiMode)
    QUILL_QT_PROPERTY(BorderStyle, BorderStyle)
    QUILL_QT_PROPERTY(bool, AutoSize)
    QUILL_QT_PROPERTY(bool, WordWrap)
    QUILL_QT_PROPERTY(Alignment, Alignment)
    QUILL_QT_PROPERTY(VerticalAlignment, VerticalAlignment)
    QUILL_QT_PROPERTY(QString, Lines)
    QUILL_QT_PROPERTY(int, Margin)
    QUILL_QT_PROPERTY(BiDiMode, BiDiMode)
    QUILL_QT_PROPERTY(int, BorderWidth)
    QUILL_QT_PROPERTY(QColor, Color)
    QUILL_QT_PROPERTY(bool, Ctl3D)

public:
    // 105 x 105 pixels, without a border, in the colour of its parent.
    explicit TNVHTMLText(TComponent* AOwner, QWidget* AParent = nullptr);
    explicit TNVHTMLText(TCustomControl* AOwner) : TNVHTMLText(static_cast<TComponent*>(AOwner)) {}
    explicit TNVHTMLText(QWidget* AParent) : TNVHTMLText(static_cast<TComponent*>(nullptr), AParent) {}
    explicit TNVHTMLText(std::nullptr_t = nullptr) : TNVHTMLText(static_cast<TComponent*>(nullptr)) {}
    ~TNVHTMLText() override;

    // Whether the control takes the size of its text. Off in a new control although a form that does not name it
    // means on: forms that were saved so rely on it.
    bool GetAutoSize() const { return FAutoSize; }
    void SetAutosize(bool Value);
    // Whether lines are broken at spaces to fit the width. With AutoSize the width that the control has counts.
    bool GetWordWrap() const { return FWordWrap; }
    void SetWordWrap(bool Value);
    TAlignment GetAlignment() const { return FAlignment; }
    void SetAlignment(TAlignment Value);
    TNVVerticalAlign GetVerticalAlignment() const { return FVerticalAlignment; }
    void SetVertAlign(TNVVerticalAlign Value);
    // The text. Changing the list in place shows nothing until Changed is called; assigning it with SetStrings does.
    TStrings* GetLines() { return &FLines; }
    void SetStrings(TStrings* Value);
    // Lines as one text, each with its end.
    std::string GetLinesText() const;
    void SetLinesText(const std::string& Value);
    // Pixels around the text, on all sides. Does not resize an auto-sized control.
    int GetMargin() const { return FMargin; }
    void SetMargin(int Value);

    // Takes the text's size, with AutoSize, and repaints.
    void Changed();
    // With AutoSize, and not while loading: the size that the text needs in the control's font: 4 + its width +
    // Margin, 1 + its height + Margin. Otherwise both stay.
    void CalculateSize(int& Width, int& Height);
    void AdjustAutoSize();

    const TClassInfo* GetClassInfo() const override;
    void CreateParams(TCreateParams& Params) override;
    void Paint() override;
    void WMSize(TWMSize& Message) override;
    void CMFontChanged(TMessage& Message) override;
    void CMBorderChanged(TMessage& Message) override;
    void CMCtl3DChanged(TMessage& Message) override;

private:
    void ApplyReading();

    TStringList FLines;
    TAlignment FAlignment = taLeftJustify;
    TNVVerticalAlign FVerticalAlignment = vaCenter;
    int FMargin = 4;
    bool FAutoSize = false;
    bool FWordWrap = false;
    bool FAdjusting = false;
};

} // namespace quill
