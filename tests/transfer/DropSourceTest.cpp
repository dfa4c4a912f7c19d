#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

using namespace quill;
using namespace quill::testing;

namespace {

TEST(DropSource, AnswersWhetherTheDragGoesOn) {
    const TDragTypes Copy{dtCopy};
    const TDragTypes Both{dtCopy, dtMove};
    // The effect last told, whether Esc is pressed, buttons and keys, OnDrop's answer; what follows and what is asked.
    const std::tuple<TDragTypes, std::uint32_t, bool, std::uint32_t, bool, HResult, const char*> Cases[] = {
        {Copy, 1, false, MK_LBUTTON, true, S_OK, ""},
        {Copy, 1, false, MK_RBUTTON | MK_CONTROL, true, S_OK, ""},
        {Copy, 1, true, MK_LBUTTON, true, DRAGDROP_S_CANCEL, ""},
        {Copy, 1, false, 0, true, DRAGDROP_S_DROP, "copy"},
        {Copy, 1, false, MK_MBUTTON | MK_SHIFT, true, DRAGDROP_S_DROP, "copy"},
        {Copy, 1, false, 0, false, DRAGDROP_S_CANCEL, "copy"},
        {Copy, 0, false, 0, true, DRAGDROP_S_CANCEL, ""},
        {Copy, 2, false, 0, true, DRAGDROP_S_CANCEL, ""},
        {Both, 2, false, 0, true, DRAGDROP_S_DROP, "move"},
        {Both, 6, false, 0, true, DRAGDROP_S_DROP, "move"},
        {Both, 4, false, 0, true, DRAGDROP_S_CANCEL, ""},
        {TDragTypes{dtLink}, 4, false, 0, true, DRAGDROP_S_DROP, "link"},
    };
    for (const auto& [Types, Effect, Escape, Keys, Allow, Expected, Asked] : Cases) {
        std::string Log;
        TOLEDropSource Source;
        Source.SetDragTypes(Types);
        Source.OnDrop = [&, Answer = Allow](TObject*, TDragType Type, bool& ContinueDrop) {
            Log += Type == dtCopy ? "copy" : Type == dtMove ? "move" : "link";
            ContinueDrop = Answer;
        };
        EXPECT_EQ(Source.GiveFeedback(Effect), DRAGDROP_S_USEDEFAULTCURSORS);
        Source.OnFeedback = [](TObject*, int, bool& UseDefaultCursors) { UseDefaultCursors = false; };
        EXPECT_EQ(Source.GiveFeedback(Effect), S_OK);
        EXPECT_EQ(Source.QueryContinueDrag(Escape, Keys), Expected) << Effect << " " << Keys;
        EXPECT_EQ(Log, Asked) << Effect << " " << Keys;
    }
}

TEST(DropSource, OffersItsFormats) {
    TOLEDropSource Source;
    TNVFormatEtc Icon = Format(CF_TEXT);
    Icon.dwAspect = 4;
    const std::pair<TNVFormatEtc, HResult> Queries[] = {{Format(CF_TEXT, TYMED_HGLOBAL), S_OK},
                                                        {Format(CF_BITMAP, TYMED_HGLOBAL), S_OK},
                                                        {Format(CF_BITMAP, TYMED_GDI), DV_E_FORMATETC},
                                                        {Icon, DV_E_FORMATETC},
                                                        {Format(100), DV_E_FORMATETC}};
    for (const auto& [Wanted, Expected] : Queries)
        EXPECT_EQ(Source.QueryGetData(Wanted), Expected) << Wanted.cfFormat;
    for (int I = 5; I < 25; ++I) Source.AddFormatEtc(static_cast<std::uint16_t>(100 + I), nullptr, 1, -1, 1);
    EXPECT_EQ(Source.GetFormatCount(), 20);
    EXPECT_EQ(Source.QueryGetData(Format(119)), S_OK);
    EXPECT_EQ(Source.QueryGetData(Format(120)), DV_E_FORMATETC);

    TInterfaceRef<NV_IEnumFORMATETC> Enum;
    EXPECT_EQ(Source.EnumFormatEtc(2, Enum), E_NOTIMPL);
    ASSERT_EQ(Source.EnumFormatEtc(1, Enum), S_OK);
    TNVFormatEtc Got[30];
    std::uint32_t Count = 0;
    EXPECT_EQ(Enum->Next(3, Got, &Count), S_OK);
    EXPECT_EQ(Got[2].cfFormat, CF_METAFILEPICT);
    TInterfaceRef<NV_IEnumFORMATETC> Clone;
    EXPECT_EQ(Enum->Clone(Clone), S_OK);
    EXPECT_EQ(Enum->Skip(16), S_OK);
    EXPECT_EQ(Enum->Next(30, Got, &Count), S_FALSE);
    EXPECT_EQ(Count, 1u);
    EXPECT_EQ(Enum->Skip(1), S_FALSE);
    EXPECT_EQ(Clone->Next(1, Got, nullptr), S_OK);
    EXPECT_EQ(Got[0].cfFormat, CF_ENHMETAFILE);
    EXPECT_EQ(Enum->Reset(), S_OK);
    EXPECT_EQ(Enum->Next(30, Got, &Count), S_FALSE);
    EXPECT_EQ(Count, 20u);

    std::string Asked;
    Source.OnSetData = [&](NV_IDataObject*, int Number) { Asked += std::to_string(Number) + " "; };
    TScopedMedium Medium;
    EXPECT_EQ(Source.GetData(Format(CF_TEXT), Medium), S_OK);
    EXPECT_EQ(Source.GetData(Format(CF_BITMAP), Medium), DV_E_FORMATETC);
    EXPECT_EQ(Source.GetData(Format(CF_HDROP), Medium), DV_E_FORMATETC);
    EXPECT_EQ(Asked, "2 15 ");
}

TEST(DropSource, ItsPictureFollowsTheRules) {
    TNVDragImageList Images;
    TOLEDropSource Source;
    EXPECT_EQ(Source.GetPoint(1), 16);
    Source.SetPoint(1, 3);
    Source.SetPoint(0, 4);
    EXPECT_EQ(Source.GetPoint(1) * 10 + Source.GetPoint(2), 34);
    Source.SetShowImage(true);
    EXPECT_FALSE(Source.GetShowImage());
    Source.SetImages(&Images);
    EXPECT_TRUE(Source.GetShowImage());
    Source.SetImageIndex(0); // no picture yet
    EXPECT_FALSE(Source.GetShowImage());
    Images.Add(RedBitmap(48, 16));
    Source.SetShowImage(true);
    Source.SetImageIndex(2);
    Source.SetImageIndex(3);
    EXPECT_EQ(Source.GetImageIndex(), 2);
    Source.SetImageIndex(-1);
    EXPECT_EQ(Source.GetImageIndex(), 0);
    EXPECT_FALSE(Source.GetShowImage());
}

TEST(DropSource, LivesAsItsOwnerSays) {
    TComponent Owner;
    auto* const Source = new TOLEDropSource(&Owner);
    void* Found = nullptr;
    ASSERT_EQ(Source->QueryInterface(NV_IDataObject::IID, Found), S_OK);
    EXPECT_EQ(Found, static_cast<NV_IDataObject*>(Source));
    EXPECT_EQ(Source->QueryInterface(NV_IMoniker::IID, Found), E_NOINTERFACE);
    EXPECT_EQ(Found, nullptr);
    TInterfaceRef<NV_IDataObject> Ref(Source);
    while (Source->_Release() > 0) {
    }
    EXPECT_TRUE(Ref); // owned: the count says nothing
    delete Source;
    EXPECT_FALSE(Ref);
    auto* const Free = new TOLEDropSource;
    TInterfaceRef<NV_IDropSource> Last(Free);
    Free->_Release();
    Last.Reset(); // and that was the last one
}

TEST(DropSource, WithoutAButtonADragEndsAtOnce) {
    TCustomControl Window(nullptr);
    TOLEDropSource Source;
    std::string Log;
    Source.SetDragTypes({dtCopy, dtLink});
    Source.OnStartDrag = [&](NV_IDataObject*, int& Allowed) { Log += "start " + std::to_string(Allowed); };
    Source.OnCompleteDrag = [&](int Code) { Log += Code == DRAGDROP_S_CANCEL ? " cancel" : " other"; };
    EXPECT_EQ(Source.Execute(&Window), drCancel);
    EXPECT_EQ(Log, "start 5 cancel");
    auto Doomed = std::make_unique<TOLEDropSource>();
    Doomed->OnStartDrag = [&](NV_IDataObject*, int&) { Doomed.reset(); };
    EXPECT_EQ(Doomed->Execute(&Window), drUnknown);
}

} // namespace
