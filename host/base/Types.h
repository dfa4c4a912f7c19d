// Plain values shared by all layers: points, rectangles, sets and colours.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>

namespace quill {

// A point in device-independent pixels. Which system it is measured in (client, cell, screen) is said by its owner.
struct TPoint {
    int X = 0;
    int Y = 0;
    friend constexpr bool operator==(const TPoint&, const TPoint&) = default;
};

struct TSize {
    int cx = 0;
    int cy = 0;
    friend constexpr bool operator==(const TSize&, const TSize&) = default;
};

// A half-open pixel rectangle: Right and Bottom are the first pixel outside.
struct TRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    constexpr int Width() const { return Right - Left; }
    constexpr int Height() const { return Bottom - Top; }
    constexpr bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
    constexpr bool Contains(TPoint P) const {
        return P.X >= Left && P.X < Right && P.Y >= Top && P.Y < Bottom;
    }
    constexpr void Offset(int DX, int DY) {
        Left += DX;
        Right += DX;
        Top += DY;
        Bottom += DY;
    }
    constexpr void Inflate(int DX, int DY) {
        Left -= DX;
        Right += DX;
        Top -= DY;
        Bottom += DY;
    }
    friend constexpr bool operator==(const TRect&, const TRect&) = default;
};

constexpr TPoint Point(int X, int Y) { return {X, Y}; }
constexpr TRect Rect(int Left, int Top, int Right, int Bottom) { return {Left, Top, Right, Bottom}; }
constexpr TRect Bounds(int Left, int Top, int Width, int Height) {
    return {Left, Top, Left + Width, Top + Height};
}

// Stores the common part of A and B in Out (all zeros when there is none); tells whether there is one.
constexpr bool IntersectRect(TRect& Out, const TRect& A, const TRect& B) {
    const TRect R{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
                  std::min(A.Bottom, B.Bottom)};
    Out = R.IsEmpty() ? TRect{} : R;
    return !R.IsEmpty();
}

// Stores the smallest rectangle around A and B in Out; an empty one counts for nothing.
constexpr bool UnionRect(TRect& Out, const TRect& A, const TRect& B) {
    if (A.IsEmpty()) {
        Out = B;
    } else if (B.IsEmpty()) {
        Out = A;
    } else {
        Out = {std::min(A.Left, B.Left), std::min(A.Top, B.Top), std::max(A.Right, B.Right),
               std::max(A.Bottom, B.Bottom)};
    }
    return !Out.IsEmpty();
}

// A set of enumeration values; bit k stands for the value with ordinal k (at most 32 values).
template <class E>
class TSet {
public:
    constexpr TSet() = default;
    constexpr TSet(E Value) : FBits(Bit(Value)) {}
    constexpr TSet(std::initializer_list<E> Values) {
        for (E Value : Values) FBits |= Bit(Value);
    }
    static constexpr TSet FromBits(std::uint32_t Bits) {
        TSet Result;
        Result.FBits = Bits;
        return Result;
    }

    constexpr std::uint32_t Bits() const { return FBits; }
    constexpr bool Contains(E Value) const { return (FBits & Bit(Value)) != 0; }
    constexpr bool IsEmpty() const { return FBits == 0; }
    constexpr void Include(E Value) { FBits |= Bit(Value); }
    constexpr void Exclude(E Value) { FBits &= ~Bit(Value); }

    friend constexpr bool operator==(const TSet&, const TSet&) = default;
    friend constexpr TSet operator+(TSet A, TSet B) { return FromBits(A.FBits | B.FBits); }
    friend constexpr TSet operator-(TSet A, TSet B) { return FromBits(A.FBits & ~B.FBits); }
    friend constexpr TSet operator*(TSet A, TSet B) { return FromBits(A.FBits & B.FBits); }
    constexpr TSet& operator+=(TSet Other) { return *this = *this + Other; }
    constexpr TSet& operator-=(TSet Other) { return *this = *this - Other; }

private:
    static constexpr std::uint32_t Bit(E Value) { return std::uint32_t{1} << static_cast<unsigned>(Value); }
    std::uint32_t FBits = 0;
};

// A colour: 0x00BBGGRR, or a system colour (high bit set, number in the low byte) that is looked up in the
// palette of the control when it paints.
using TColor = std::uint32_t;

inline constexpr TColor clBlack = 0x000000;
inline constexpr TColor clMaroon = 0x000080;
inline constexpr TColor clGreen = 0x008000;
inline constexpr TColor clOlive = 0x008080;
inline constexpr TColor clNavy = 0x800000;
inline constexpr TColor clPurple = 0x800080;
inline constexpr TColor clTeal = 0x808000;
inline constexpr TColor clGray = 0x808080;
inline constexpr TColor clSilver = 0xC0C0C0;
inline constexpr TColor clRed = 0x0000FF;
inline constexpr TColor clLime = 0x00FF00;
inline constexpr TColor clYellow = 0x00FFFF;
inline constexpr TColor clBlue = 0xFF0000;
inline constexpr TColor clFuchsia = 0xFF00FF;
inline constexpr TColor clAqua = 0xFFFF00;
inline constexpr TColor clWhite = 0xFFFFFF;
inline constexpr TColor clNone = 0x1FFFFFFF;
inline constexpr TColor clDefault = 0x20000000;

inline constexpr TColor clScrollBar = 0x80000000;
inline constexpr TColor clBackground = 0x80000001;
inline constexpr TColor clActiveCaption = 0x80000002;
inline constexpr TColor clInactiveCaption = 0x80000003;
inline constexpr TColor clMenu = 0x80000004;
inline constexpr TColor clWindow = 0x80000005;
inline constexpr TColor clWindowFrame = 0x80000006;
inline constexpr TColor clMenuText = 0x80000007;
inline constexpr TColor clWindowText = 0x80000008;
inline constexpr TColor clCaptionText = 0x80000009;
inline constexpr TColor clActiveBorder = 0x8000000A;
inline constexpr TColor clInactiveBorder = 0x8000000B;
inline constexpr TColor clAppWorkSpace = 0x8000000C;
inline constexpr TColor clHighlight = 0x8000000D;
inline constexpr TColor clHighlightText = 0x8000000E;
inline constexpr TColor clBtnFace = 0x8000000F;
inline constexpr TColor clBtnShadow = 0x80000010;
inline constexpr TColor clGrayText = 0x80000011;
inline constexpr TColor clBtnText = 0x80000012;
inline constexpr TColor clInactiveCaptionText = 0x80000013;
inline constexpr TColor clBtnHighlight = 0x80000014;
inline constexpr TColor cl3DDkShadow = 0x80000015;
inline constexpr TColor cl3DLight = 0x80000016;
inline constexpr TColor clInfoText = 0x80000017;
inline constexpr TColor clInfoBk = 0x80000018;

constexpr bool IsSystemColor(TColor Color) { return (Color & 0x80000000u) != 0; }

// The toolkit's own enumerations that the node model and the controls share.
enum TAddMode { taAddFirst, taAdd, taInsert };
enum TNodeAttachMode { naAdd, naAddFirst, naAddChild, naAddChildFirst, naInsert };
enum TNodeState { nsCut, nsDropHilited, nsFocused, nsSelected, nsExpanded };
enum TSortType { stNone, stData, stText, stBoth };
enum TAlignment { taLeftJustify, taRightJustify, taCenter };
enum TMouseButton { mbLeft, mbRight, mbMiddle };
enum TShiftStateValue { ssShift, ssAlt, ssCtrl, ssLeft, ssRight, ssMiddle, ssDouble };
using TShiftState = TSet<TShiftStateValue>;

enum THitTest {
    htAbove,
    htBelow,
    htNowhere,
    htOnItem,
    htOnButton,
    htOnIcon,
    htOnIndent,
    htOnLabel,
    htOnRight,
    htOnStateIcon,
    htToLeft,
    htToRight
};
using THitTests = TSet<THitTest>;

// A * B / C rounded to the nearest integer, halves away from zero; -1 when C is 0. The product is exact.
constexpr int MulDiv(int A, int B, int C) {
    if (C == 0) return -1;
    const std::int64_t Product = std::int64_t{A} * B;
    const std::int64_t Divisor = C;
    const std::int64_t Half = (Divisor < 0 ? -Divisor : Divisor) / 2;
    const bool Negative = (Product < 0) != (Divisor < 0);
    const std::int64_t Magnitude =
        ((Product < 0 ? -Product : Product) + Half) / (Divisor < 0 ? -Divisor : Divisor);
    return static_cast<int>(Negative ? -Magnitude : Magnitude);
}

} // namespace quill
