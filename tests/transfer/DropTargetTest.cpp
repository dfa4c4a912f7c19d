#include "host/base/Errors.h"
#include "host/base/Events.h"
#include "tests/support/DesktopDrag.h"
#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

using namespace quill;
using namespace quill::testing;

namespace {

class DropTarget : public ::testing::Test {
public:
    DropTarget() {
        Control = std::make_unique<TCustomControl>(nullptr);
        Control->SetName("Tree1");
        Control->SetBounds(0, 0, 100, 100);
        Target = std::make_unique<TOLEDropTarget>(nullptr);
        Target->Register(Control.get());
        const auto Logger = [this](const std::string& Name) {
            return [=, this](TObject*, NV_IDataObject* Data, TShiftState, TPoint Point, int& Effect) {
                EXPECT_NE(Data, nullptr);
                Log += Name + "(" + std::to_string(Point.X) + "," + std::to_string(Effect) + ") ";
                if (Answer >= 0) Effect = Answer;
                FireEvent(Act);
            };
        };
        Target->OnOleDragEnter = Logger("enter");
        Target->OnOleDragOver = Logger("over");
        Target->OnOleDragDrop = Logger("drop");
        Target->OnOleDragLeave = [this](TObject*) { Log += "leave ", FireEvent(Act); };
        Dragger = std::make_unique<TDesktopDrag>(Control->viewport());
        Dragger->Actions = Qt::DropActions(7);
        Dragger->Data.setText("text");
    }
    std::string Take() { return std::exchange(Log, {}); }

    std::string Log;
    int Answer = -1;
    std::function<void()> Act;
    std::unique_ptr<TCustomControl> Control;
    std::unique_ptr<TOLEDropTarget> Target;
    std::unique_ptr<TDesktopDrag> Dragger;
};

// All drag types, offers and modifiers: what a move and a drop say, by what source and target both allow.
TEST_F(DropTarget, EffectFollowsTypesOffersAndModifiers) {
    const struct {
        Qt::KeyboardModifiers Modifiers;
        int Effects[8]; // by the allowed bits: copy 1, move 2, link 4
    } Table[] = {
        {Qt::NoModifier, {0, 1, 2, 1, 4, 1, 2, 1}},
        {Qt::ControlModifier, {0, 1, 2, 1, 4, 1, 2, 1}},
        {Qt::AltModifier, {0, 1, 2, 1, 4, 1, 2, 1}},
        {Qt::ShiftModifier, {0, 1, 2, 2, 4, 1, 2, 2}},
        {Qt::ShiftModifier | Qt::ControlModifier, {0, 1, 2, 1, 4, 4, 4, 4}},
    };
    for (const auto& Row : Table) {
        for (unsigned Types = 0; Types < 8; ++Types) {
            for (unsigned Offer = 0; Offer < 8; ++Offer) {
                Target->SetDragTypes(TDragTypes::FromBits(Types));
                Dragger->Actions = Qt::DropActions(static_cast<int>(Offer));
                Dragger->Modifiers = Row.Modifiers;
                const int Expected = Row.Effects[Types & Offer];
                Dragger->Enter();
                EXPECT_TRUE(Dragger->Accepted) << "always entered: moves decide";
                EXPECT_EQ(Dragger->Move(), Expected) << Types << " " << Offer;
                Dragger->Modifiers = Qt::NoModifier; // released too early: what was shown happens
                EXPECT_EQ(Dragger->Release(), Expected) << Types << " " << Offer;
                const std::string E = std::to_string(Expected);
                EXPECT_EQ(Take(), "enter(5," + E + ") over(6," + E + ") drop(7," + E + ") ");
            }
        }
    }
}

TEST_F(DropTarget, HandlersDecide) {
    Answer = 2;
    Dragger->Enter();
    EXPECT_EQ(Dragger->Move(), 2);
    Answer = 0;
    EXPECT_EQ(Dragger->Move(), 0);
    Answer = 6; // one of several
    EXPECT_EQ(Dragger->Move(), 2);
    Dragger->Actions = Qt::CopyAction;
    EXPECT_EQ(Dragger->Move(), 0); // not what the source allows
    Answer = -1;
    Target->OnGetDropEffect = [](TObject*, TShiftState Shift, TPoint, int& Effect) {
        Effect = Shift.Contains(ssLeft) && Effect == 1 ? 1 : 0;
    };
    EXPECT_EQ(Dragger->Move(), 1);
    Dragger->Leave();
    EXPECT_EQ(Target->GetDataObject(), nullptr);
    EXPECT_EQ(Target->GetDataWrapper(), nullptr);
    EXPECT_EQ(Dragger->Move(), 0);
}

TEST_F(DropTarget, TakesTextAndFilesOnly) {
    Dragger->Data.clear();
    Dragger->Data.setData("image/png", "x");
    Dragger->Enter();
    EXPECT_EQ(Dragger->Move(), 0);
    EXPECT_EQ(Dragger->Release(), 0);
    EXPECT_EQ(Take(), "");
    Dragger->Data.clear();
    Dragger->Data.setData("text/uri-list", "file:///a%20b\r\nfile:///c\r\n");
    Dragger->Enter();
    EXPECT_EQ(Dragger->Release(), 1);
    EXPECT_EQ(Take(), "enter(5,1) drop(7,1) ");
    EXPECT_EQ(Target->GetDroppedText(), "/a b\r\n/c\r\n");
    // Promised, but not there: refused at the drop.
    Dragger->Data.clear();
    Dragger->Data.setData("text/plain", "");
    Dragger->Enter();
    EXPECT_EQ(Dragger->Move(), 1);
    EXPECT_EQ(Dragger->Release(), 0);
    EXPECT_EQ(Take(), "enter(5,1) over(6,1) ");
    // The same from inside the program, where a source of a picture offers text and files as well.
    TOLEDropSource Source;
    const TBitmap Bitmap = RedBitmap(2, 2);
    Source.GetDataWrapper()->SetBitmap(&Bitmap);
    std::uint32_t Effect = 1;
    EXPECT_EQ(Target->DragEnter(&Source, MK_LBUTTON, {1, 1}, Effect), S_OK);
    EXPECT_EQ(Effect, 1u);
    EXPECT_EQ(Target->Drop(&Source, 0, {1, 1}, Effect), S_OK);
    EXPECT_EQ(Effect, 0u);
}

TEST_F(DropTarget, RegistersOneControlAtATime) {
    TOLEDropTarget Second;
    try {
        Second.Register(Control.get());
        ADD_FAILURE() << "registered twice";
    } catch (const Exception& Error) {
        EXPECT_EQ(Error.GetMessage(), "Failed to Register Tree1");
    }
    EXPECT_FALSE(Second.GetRegistered());
    Target->Register(Control.get()); // again: nothing
    TCustomControl Other(nullptr);
    Target->Register(&Other);
    Second.Register(Control.get());
    EXPECT_TRUE(Target->GetRegistered() && Second.GetRegistered());
    EXPECT_EQ(RevokeDragDrop(Control.get()), S_OK);
    EXPECT_THROW(Second.Unregister(), Exception);
    Second.Unregister(); // forgotten
    Second.Register(Control.get());
    RevokeDragDrop(Control.get()); // and its destructor does not raise
    EXPECT_EQ(RegisterDragDrop(nullptr, Target.get()), DRAGDROP_E_INVALIDHWND);
    EXPECT_EQ(RevokeDragDrop(Control.get()), DRAGDROP_E_NOTREGISTERED);
}

// A handler that destroys something, in every callback.
TEST_F(DropTarget, SurvivesHandlersThatDestroy) {
    const std::function<void(DropTarget&)> Deeds[] = {
        [](DropTarget& T) { T.Control.reset(); },
        [](DropTarget& T) { T.Target.reset(); },
        [](DropTarget& T) { T.Target.reset(), T.Control.reset(); },
        [](DropTarget& T) { T.Target->Unregister(); },
        [](DropTarget& T) { T.Dragger->Data.clear(); },
        [](DropTarget& T) { T.Dragger->Leave(); },
    };
    for (const auto& Deed : Deeds) {
        for (int Moment = 0; Moment < 4; ++Moment) {
            struct TCase : DropTarget {
                void TestBody() override {}
            } Case;
            const auto Arm = [&](int Now) {
                if (Now == Moment) Case.Act = [&Case, &Deed] { Case.Act = nullptr, Deed(Case); };
            };
            Arm(0);
            Case.Dragger->Enter();
            Arm(1);
            Case.Dragger->Move();
            Case.Dragger->Move();
            Arm(2);
            Arm(3);
            Moment == 3 ? Case.Dragger->Leave() : void(Case.Dragger->Release());
            EXPECT_FALSE(Case.Act) << Moment;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}

TEST_F(DropTarget, WhatAHandlerRaisesIsARefusal) {
    const TExpectQtWarning Warning("A drop target failed: no");
    Act = [] { throw Exception("no"); };
    Dragger->Enter();
    EXPECT_EQ(Dragger->Move(), 0);
    EXPECT_EQ(Dragger->Release(), 0);
    Act = nullptr;
    Dragger->Enter();
    EXPECT_EQ(Dragger->Release(), 1);
}

} // namespace
