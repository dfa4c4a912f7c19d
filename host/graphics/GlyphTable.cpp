#include "host/graphics/GlyphTable.h"

#include <QFontMetricsF>

namespace quill::text {
namespace {

// More pairs than any alphabet uses; beyond, nothing more is learnt.
constexpr std::size_t MaxPairs = 20000;
constexpr std::size_t MaxLigatures = 64;
constexpr qsizetype LongestLigature = 3;

bool IsSimple(char16_t C) {
    if (C < 0x20 || C > 0x52F) return false;
    if (C >= 0x7F && C < 0xA0) return false;                           // controls
    if (C == 0xAD) return false;                                       // soft hyphen
    return !(C >= 0x300 && C <= 0x36F) && !(C >= 0x483 && C <= 0x489); // combining marks
}

std::uint32_t PairKey(char16_t First, char16_t Second) { return std::uint32_t{First} << 16 | Second; }

} // namespace

const TGlyphTable::TGlyph* TGlyphTable::Known(TUnit Unit) const {
    const auto Found = FGlyphs.find(Unit);
    return Found != FGlyphs.end() ? &Found->second : nullptr;
}

TGlyphTable::TGlyph* TGlyphTable::Known(TUnit Unit) {
    const auto Found = FGlyphs.find(Unit);
    return Found != FGlyphs.end() ? &Found->second : nullptr;
}

TGlyphTable::TUnit TGlyphTable::UnitAt(const QString& Text, qsizetype At, const TGlyph* First,
                                       qsizetype& Length) const {
    Length = 1;
    if (First->BeginsLigature) {
        for (const TLigature& Ligature : FLigatures) {
            if (QStringView(Text).mid(At, Ligature.Text.size()) != Ligature.Text) continue;
            Length = Ligature.Text.size();
            return Ligature.Unit;
        }
    }
    return Text[At].unicode();
}

bool TGlyphTable::Place(const QString& Text, TPlacement& Placement) const {
    if (FPairs.empty() || Text.isEmpty()) return false;
    Placement.Glyphs.reserve(Text.size());
    Placement.Positions.reserve(Text.size());
    Placement.Ends.reserve(static_cast<std::size_t>(Text.size()));
    double X = 0.0;
    TUnit Before = 0;
    const TGlyph* Glyph = nullptr;
    for (qsizetype At = 0, Length = 0; At < Text.size(); At += Length) {
        if (!IsSimple(Text[At].unicode())) return false;
        Glyph = Known(Text[At].unicode());
        if (Glyph == nullptr) return false;
        const TUnit Unit = UnitAt(Text, At, Glyph, Length);
        if (Length > 1) Glyph = Known(Unit);
        if (At > 0) {
            const auto Pair = FPairs.find(PairKey(Before, Unit));
            if (Pair == FPairs.end()) return false;
            X += Pair->second;
        }
        Placement.Glyphs.append(Glyph->Index);
        Placement.Positions.append(QPointF(X, 0.0));
        Placement.Ends.push_back(X + Glyph->Advance);
        Before = Unit;
    }
    return Glyph->IsFinal;
}

TGlyphTable::TGlyph* TGlyphTable::Character(const QFont& Font, QChar C) {
    if (TGlyph* Glyph = Known(C.unicode())) return Glyph;
    if (!IsSimple(C.unicode())) return nullptr;
    const QList<quint32> Nominal = FFont.glyphIndexesForString(QString(C));
    if (Nominal.size() != 1 || Nominal[0] == 0) return nullptr;
    const TGlyph Glyph{Nominal[0], QFontMetricsF(Font).horizontalAdvance(C), true, false};
    return &FGlyphs.emplace(C.unicode(), Glyph).first->second;
}

TGlyphTable::TUnit TGlyphTable::Ligature(const QString& Text, qsizetype At, qsizetype Length, quint32 Index,
                                         double Advance) {
    const QString Covered = Text.mid(At, Length);
    for (const TLigature& Ligature : FLigatures)
        if (Ligature.Text == Covered) return Known(Ligature.Unit)->Index == Index ? Ligature.Unit : u'\0';
    if (FLigatures.size() >= MaxLigatures) return u'\0';
    auto Place = FLigatures.begin();
    while (Place != FLigatures.end() && Place->Text.size() >= Length) ++Place;
    FLigatures.insert(Place, {Covered, FNextUnit});
    FGlyphs.emplace(FNextUnit, TGlyph{Index, Advance, false, false});
    Known(Text[At].unicode())->BeginsLigature = true;
    return FNextUnit++;
}

void TGlyphTable::Learn(const QFont& Font, const QString& Text, const QGlyphRun& Run, double Width) {
    const QList<quint32> Glyphs = Run.glyphIndexes();
    const QList<QPointF> Positions = Run.positions();
    if (Glyphs.isEmpty() || Glyphs.size() > Text.size() || Positions.size() != Glyphs.size() ||
        FPairs.size() >= MaxPairs)
        return;
    if (!FFont.isValid()) FFont = Run.rawFont();
    if (Run.rawFont() != FFont) return;
    // Characters and glyphs are walked side by side. A glyph that is not its character's own stands for as many
    // characters as it takes for the next ones to agree again; when they do not, nothing more is learnt.
    TUnit Before = 0;
    qsizetype At = 0;
    for (qsizetype I = 0; I < Glyphs.size(); ++I) {
        if (At >= Text.size() || Positions[I].y() != Positions[0].y()) return;
        const double End = I + 1 < Glyphs.size() ? Positions[I + 1].x() : Width;
        const double Advance = End - Positions[I].x();
        TGlyph* Glyph = Character(Font, Text[At]);
        if (Glyph == nullptr) return;
        TUnit Unit = Text[At].unicode();
        qsizetype Length = 1;
        if (Glyph->Index != Glyphs[I]) {
            const auto Agrees = [&](qsizetype Next) {
                if (I + 1 == Glyphs.size()) return Next == Text.size();
                const TGlyph* Following = Next < Text.size() ? Character(Font, Text[Next]) : nullptr;
                return Following != nullptr && Following->Index == Glyphs[I + 1];
            };
            do ++Length;
            while (Length <= LongestLigature && !Agrees(At + Length));
            if (Length > LongestLigature) return;
            for (qsizetype J = 1; J < Length; ++J)
                if (Character(Font, Text[At + J]) == nullptr) return;
            Unit = Ligature(Text, At, Length, Glyphs[I], Advance);
            if (Unit == 0) return;
            Glyph = Known(Unit);
        }
        if (I > 0) FPairs.emplace(PairKey(Before, Unit), Positions[I].x() - Positions[I - 1].x());
        At += Length;
        if (At == Text.size() && !Glyph->IsFinal) {
            Glyph->Advance = Advance;
            Glyph->IsFinal = true;
        }
        Before = Unit;
    }
}

} // namespace quill::text
