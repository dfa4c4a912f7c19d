// Bitmaps with their representations and sharing, resources, and image lists.
#include "host/base/Errors.h"
#include "host/graphics/ImageLists.h"
#include "tests/graphics/Pictures.h"
#include "tests/support/QtTest.h"

#include <map>
#include <optional>

namespace quill {
namespace {

using testing::Art;
using testing::InkBounds;
using testing::Show;
using testing::TPictureCanvas;
using testing::TTempFolder;

QImage Solid(int Width, int Height, QRgb Color) {
    QImage Image(Width, Height, QImage::Format_ARGB32);
    Image.fill(Color);
    return Image;
}

// A bitmap of one colour, with a red pixel at the bottom left and, when Fine, a blue representation for scale 2.
TBitmap Sample(bool Fine = false) {
    TBitmap Bitmap;
    Bitmap.SetSize(4, 4);
    Bitmap.GetCanvas()->GetBrush()->SetColor(clGreen);
    Bitmap.GetCanvas()->FillRect({0, 0, 4, 4});
    Bitmap.GetCanvas()->SetPixel(0, 3, clRed);
    if (Fine) Bitmap.AddImage(Solid(8, 8, 0xFF0000FF), 2.0);
    return Bitmap;
}

TEST(Bitmap, CopiesShareUntilOneIsDrawnOn) {
    TBitmap A = Sample();
    TBitmap B(A);
    TBitmap C;
    C = B;
    EXPECT_EQ(&A.GetImage(1.0), &C.GetImage(1.0)) << "one record for all";
    B.GetCanvas()->SetPixel(1, 1, clWhite);
    A.GetCanvas()->SetPixel(2, 2, clBlack);
    // Also while their canvases are open.
    TBitmap D(B);
    B.GetCanvas()->SetPixel(0, 0, clBlue);
    D.GetCanvas()->SetPixel(3, 3, clYellow);
    const auto Pixels = [](TBitmap& Bitmap) {
        const std::map<TColor, char> Letters{
            {clGreen, 'g'}, {clWhite, 'w'}, {clBlack, 'k'}, {clBlue, 'b'}, {clYellow, 'y'}};
        std::string Result;
        for (int I = 0; I < 4; ++I) Result += Letters.at(Bitmap.GetCanvas()->GetPixel(I, I));
        return Result;
    };
    EXPECT_EQ(Pixels(A), "ggkg");
    EXPECT_EQ(Pixels(B), "bwgg");
    EXPECT_EQ(Pixels(C), "gggg");
    EXPECT_EQ(Pixels(D), "gwgy");
    B = A;
    EXPECT_EQ(Pixels(B), "ggkg") << "the canvas follows an assignment";
    B = TBitmap();
    EXPECT_TRUE(B.GetEmpty());
    EXPECT_EQ(B.GetCanvas()->GetPixel(0, 0), clNone);
}

TEST(Bitmap, DrawsTheRepresentationOfTheScale) {
    TBitmap Bitmap = Sample(true);
    for (const double Scale : {1.0, 1.5, 2.0, 3.0}) {
        TPictureCanvas Canvas(10, 10, Scale);
        Canvas.Draw(1, 1, &Bitmap);
        EXPECT_EQ(Canvas.GetPixel(2, 2), Scale > 1.0 ? clBlue : clGreen) << Scale;
        EXPECT_EQ(InkBounds(Canvas.Image), Canvas.ToDeviceRect({1, 1, 5, 5})) << Scale;
    }
    // Drawing on it keeps the finest one alone, in the same size.
    Bitmap.GetCanvas()->SetPixel(0, 0, clWhite);
    EXPECT_EQ(Bitmap.GetWidth(), 4);
    TPictureCanvas Canvas(10, 10);
    Canvas.Draw(1, 1, &Bitmap);
    EXPECT_EQ(Canvas.GetPixel(3, 3), clBlue);
}

TEST(Bitmap, IsDrawnSharpWhereSizesMatch) {
    TBitmap Bitmap = Sample();
    TPictureCanvas Canvas(20, 20);
    Canvas.StretchDraw({2, 2, 6, 6}, &Bitmap);
    EXPECT_TRUE(Canvas.Image.copy(2, 2, 4, 4) == Bitmap.GetImage(1.0));
    Canvas.StretchDraw({8, 8, 16, 16}, &Bitmap);
    EXPECT_EQ(Show(InkBounds(Canvas.Image)), "(2,2,16,16)");
    // Mirrored, it is moved but not flipped: the red corner stays at the left.
    Canvas.SetMirrored(true, 20);
    Canvas.Draw(2, 2, &Bitmap);
    EXPECT_EQ(Canvas.Image.pixel(14, 5), 0xFFFF0000);
    // At fractional scales a snapshot of that scale is not blurred.
    TPictureCanvas Fraction(20, 20, 1.5);
    const auto Snapshot = TBitmap::CreateCompatible(Fraction, 5, 5);
    for (int I = 0; I < 5; ++I) Snapshot->GetCanvas()->SetPixel(I, I, clRed);
    for (int Left = 0; Left < 4; ++Left) Fraction.Draw(Left, 1, Snapshot.get());
    for (int Pixel = 0; Pixel < 30 * 30; ++Pixel)
        EXPECT_EQ(Fraction.Image.pixel(Pixel % 30, Pixel / 30) | 0xFFFF, 0xFFFFFFFF);
}

TEST(Bitmap, LeavesOutItsTransparentColour) {
    TBitmap Bitmap = Sample();
    const auto Paint = [&] {
        TPictureCanvas Canvas(4, 4);
        Canvas.Draw(0, 0, &Bitmap);
        return Art(Canvas.Image);
    };
    const char* const WithoutRed = "##.#\n####\n####\n.###\n";
    Bitmap.SetTransparent(true);
    EXPECT_EQ(Paint(), "####\n####\n####\n.###\n") << "that of the pixel at the bottom left";
    Bitmap.GetCanvas()->SetPixel(2, 0, clRed);
    EXPECT_EQ(Paint(), WithoutRed) << "drawing renews what was prepared";
    Bitmap.SetTransparentColor(clGreen);
    EXPECT_EQ(Paint(), "..#.\n....\n....\n#...\n");
    Bitmap.SetTransparentColor(clDefault);
    EXPECT_EQ(Paint(), WithoutRed);
    Bitmap.SetTransparent(false);
    EXPECT_EQ(Paint(), "####\n####\n####\n####\n");
    Bitmap.MakeTransparent(clRed);
    EXPECT_EQ(Paint(), WithoutRed);
    Bitmap.SetTransparent(true);
    EXPECT_EQ(Paint(), WithoutRed) << "alpha alone decides";
}

TEST(Bitmap, KeepsPixelsWhenResized) {
    TBitmap Bitmap = Sample();
    Bitmap.SetSize(6, 5);
    TCanvas& Canvas = *Bitmap.GetCanvas();
    EXPECT_EQ(Canvas.GetPixel(0, 3), clRed);
    EXPECT_EQ(Canvas.GetPixel(5, 4), clWhite);
    Bitmap.SetSize(2, 2);
    EXPECT_EQ(Canvas.GetPixel(1, 1), clGreen);
    EXPECT_EQ(Canvas.GetPixel(2, 2), clNone);
    Bitmap.SetSize(-1, 0);
    EXPECT_TRUE(Bitmap.GetEmpty());
    Bitmap.SetWidth(3);
    Bitmap.SetHeight(3);
    EXPECT_EQ(Canvas.GetPixel(2, 2), clWhite);
}

TEST(Bitmap, GrowsFromNothingInItsScale) {
    const auto Line = TBitmap::CreateCompatible(TPictureCanvas(10, 10, 2.0), 0, 8);
    EXPECT_TRUE(Line->GetEmpty());
    EXPECT_EQ(Line->GetCanvas()->GetScale(), 2.0) << "texts are measured as they will be drawn";
    Line->SetWidth(5);
    EXPECT_EQ(Line->GetImage(1.0).size(), QSize(10, 16));
    Line->SetSize(0, 0);
    Line->SetSize(1, 1);
    EXPECT_EQ(Line->GetImage(1.0).size(), QSize(2, 2));
    const auto Clear = TBitmap::CreateTransparent(0, 0, 1.5);
    Clear->SetSize(4, 4);
    EXPECT_TRUE(Clear->HasAlpha());
    EXPECT_EQ(Clear->GetImage(1.0).pixel(0, 0), 0u);
}

TEST(Bitmap, LoadsAndSavesFiles) {
    const TTempFolder Folder;
    TBitmap Bitmap = Sample();
    Bitmap.SaveToFile(Folder.File("p.png"));
    Solid(8, 8, 0xFF0000FF).save(QString::fromStdString(Folder.File("p@2x.png")));
    TBitmap Loaded;
    Loaded.LoadFromFile(Folder.File("p.png"));
    EXPECT_EQ(Loaded.GetWidth(), 4);
    EXPECT_TRUE(Loaded.GetImage(1.0) == Bitmap.GetImage(1.0));
    EXPECT_EQ(Loaded.GetImage(2.0).width(), 8);
    EXPECT_THROW(Loaded.LoadFromFile(Folder.File("missing.png")), EFOpenError);
    Folder.Put("text.png", "no picture");
    EXPECT_THROW(Loaded.LoadFromFile(Folder.File("text.png")), EReadError);
    EXPECT_THROW(Bitmap.SaveToFile(Folder.File("missing/p.png")), EFCreateError);
    EXPECT_EQ(Loaded.GetWidth(), 4) << "a failed load changes nothing";
}

TEST(Bitmap, ResourcesHaveBothRepresentations) {
    for (const std::string Name :
         {"EXPANDED", "COLLAPSED", "FOPEN", "FCLOSED", "EMPTY", "CHECKED", "UNCHECKED", "GRAYED", "OPTIONED",
          "UNOPTIONED", "GRAYEDUNCHECKED", "GRAYEDOPTIONED", "GRAYEDUNOPTIONED", "DOUBLECHECKED",
          "GRAYEDDOUBLECHECKED", "DCIMG", "GDCIMG"}) {
        SCOPED_TRACE(Name);
        const int Side = Name[0] == 'F' ? 16 : Name.ends_with("DCIMG") ? 9 : 15;
        TBitmap Bitmap;
        ASSERT_TRUE(Bitmap.LoadFromResourceName(Name));
        EXPECT_EQ(Bitmap.GetImage(1.0).size(), QSize(Side, Side));
        EXPECT_EQ(Bitmap.GetImage(2.0).size(), QSize(2 * Side, 2 * Side));
        // Qt's own ratio must not shrink what is drawn.
        Bitmap.SetTransparentColor(clBlack);
        Bitmap.SetTransparent(true);
        TPictureCanvas Fine(20, 20, 2.0, 0xFF00FF00);
        Fine.Draw(0, 0, &Bitmap);
        EXPECT_EQ(InkBounds(Fine.Image, 0xFF00FF00), QRect(0, 0, 2 * Side, 2 * Side));
    }
    EXPECT_FALSE(TBitmap().LoadFromResourceName("NOSUCH"));
}

TEST(ImageList, CutsWidePicturesAndMasks) {
    TCustomImageList List(nullptr, 4, 4);
    TBitmap Wide = Sample(), Mask, Small;
    Wide.SetSize(9, 4);
    Mask.SetSize(4, 4);
    Mask.GetCanvas()->GetBrush()->SetColor(clBlack);
    Mask.GetCanvas()->FillRect({0, 0, 4, 2});
    Small.SetSize(2, 2);
    Small.GetCanvas()->InvertRect({0, 0, 2, 2});
    EXPECT_EQ(List.Add(TBitmap()), -1);
    EXPECT_EQ(List.Add(Sample(true)), 0);
    EXPECT_EQ(List.Add(Wide), 1);
    EXPECT_EQ(List.AddMasked(Sample(), clRed), 3);
    EXPECT_EQ(List.Add(Sample(), &Mask), 4);
    EXPECT_EQ(List.Add(Small), 5);
    EXPECT_EQ(List.AddMasked(Sample(), clDefault), 6);

    const auto Paint = [&](int Index, int Overlay = -1) {
        TPictureCanvas Canvas(4, 4);
        List.Draw(Canvas, 0, 0, Index, Overlay);
        return Art(Canvas.Image);
    };
    const std::string Nothing = "....\n....\n....\n....\n";
    const std::string WithoutCorner = "####\n####\n####\n.###\n";
    const std::string Corner = "##..\n##..\n....\n....\n";
    const std::string Pictures[] = {"####\n####\n####\n####\n",
                                    Nothing,
                                    WithoutCorner,
                                    "####\n####\n....\n....\n",
                                    Corner,
                                    WithoutCorner,
                                    Nothing};
    for (int Index = 1; Index < 8; ++Index) EXPECT_EQ(Paint(Index), Pictures[Index - 1]) << Index;
    EXPECT_EQ(Paint(5, 3), WithoutCorner) << "with an overlay";

    TBitmap Bitmap;
    EXPECT_TRUE(List.GetBitmap(0, Bitmap));
    EXPECT_EQ(Bitmap.GetImage(2.0).width(), 8);
    EXPECT_FALSE(List.GetBitmap(7, Bitmap));
    List.Delete(0);
    EXPECT_EQ(Paint(2), WithoutCorner);
    EXPECT_THROW(List.Delete(6), EListError);
    EXPECT_THROW(List.Replace(-1, Sample()), EListError);
    List.Replace(0, Small);
    EXPECT_EQ(Paint(0), Corner);
    List.SetSize(8, 8);
    EXPECT_EQ(List.GetCount(), 0);
}

TEST(ImageList, TellsItsLinks) {
    int Changes = 0;
    TChangeLink Link;
    Link.OnChange = [&](TObject*) { ++Changes; };
    auto List = std::make_unique<TCustomImageList>(nullptr, 4, 4);
    TCustomImageList Other;
    for (TCustomImageList* Each : {&Other, List.get(), List.get()}) Each->RegisterChanges(&Link);
    Other.Add(Sample());
    EXPECT_EQ(Changes, 0) << "a link belongs to one list";
    List->Add(Sample());
    EXPECT_EQ(Changes, 1);
    List->BeginUpdate();
    List->Add(Sample());
    List->Clear();
    EXPECT_EQ(Changes, 1);
    List->EndUpdate();
    EXPECT_EQ(Changes, 2);
    List.reset();
    EXPECT_EQ(Link.GetSender(), nullptr);
}

TEST(ImageList, SurvivesHandlersThatDestroy) {
    auto List = std::make_unique<TCustomImageList>(nullptr, 4, 4);
    std::optional<TChangeLink> First(std::in_place), Second(std::in_place);
    List->RegisterChanges(&*First);
    List->RegisterChanges(&*Second);
    First->OnChange = [&](TObject*) { Second.reset(); };
    List->Add(Sample());
    EXPECT_FALSE(Second.has_value());
    TChangeLink Third;
    int Calls = 0;
    Third.OnChange = [&](TObject*) { ++Calls; };
    List->RegisterChanges(&Third);
    First->OnChange = [&](TObject*) { List.reset(); };
    List->Clear();
    EXPECT_EQ(Calls, 0);
    EXPECT_EQ(Third.GetSender(), nullptr);
}

} // namespace
} // namespace quill
