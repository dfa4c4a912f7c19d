// Glyphs and advances of one face, learnt from shaped texts, so that further texts of the same characters need no
// shaping: most texts of a list are new, but their pairs of characters are not.
#pragma once

#include <QGlyphRun>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QString>

#include <cstdint>
#include <unordered_map>
#include <vector>

class QFont;

namespace quill::text {

// The glyphs of a text in a row, from the start of the baseline.
struct TPlacement {
    QList<quint32> Glyphs;
    QList<QPointF> Positions;
    // Where the text would end after each glyph.
    std::vector<double> Ends;
};

// Holds for scripts in which a glyph stands for a character or for a few in a row (a ligature) and its advance
// depends on its neighbour at most (kerning): Latin, Greek and Cyrillic without combining marks, read from left to
// right. What was ever shaped otherwise stays unknown, and texts with it are shaped.
class TGlyphTable {
public:
    // False when something in Text is not known.
    bool Place(const QString& Text, TPlacement& Placement) const;
    const QRawFont& Font() const { return FFont; }
    // Takes over what a shaped line shows: its glyphs, positions and width.
    void Learn(const QFont& Font, const QString& Text, const QGlyphRun& Run, double Width);

private:
    // What one glyph stands for: a character, or a ligature with a code of the private use area.
    using TUnit = char16_t;
    struct TGlyph {
        quint32 Index = 0;
        double Advance = 0.0; // at the end of a text
        bool IsFinal = true;  // whether that is known, or only a neighbour's
        bool BeginsLigature = false;
    };
    struct TLigature {
        QString Text;
        TUnit Unit;
    };
    TGlyph* Known(TUnit Unit);
    const TGlyph* Known(TUnit Unit) const;
    TGlyph* Character(const QFont& Font, QChar C);
    TUnit Ligature(const QString& Text, qsizetype At, qsizetype Length, quint32 Index, double Advance);
    // The unit that begins at At and how many characters it covers.
    TUnit UnitAt(const QString& Text, qsizetype At, const TGlyph* First, qsizetype& Length) const;

    QRawFont FFont;
    std::unordered_map<TUnit, TGlyph> FGlyphs;
    std::vector<TLigature> FLigatures; // longest first
    // The advance of the first unit (high half of the key) before the second.
    std::unordered_map<std::uint32_t, double> FPairs;
    TUnit FNextUnit = 0xE000;
};

} // namespace quill::text
