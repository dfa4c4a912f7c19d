// Whole drags inside one program, with the mouse. Needs a platform that has a drag loop.
#include "host/base/Errors.h"
#include "tests/support/QtTest.h"
#include "tests/transfer/TransferTestTools.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWindow>

using namespace quill;
using namespace quill::testing;

namespace {

// Starts a drag when the mouse moves with a button pressed.
class TDragControl : public TCustomControl {
public:
    using TCustomControl::TCustomControl;
    ~TDragControl() override { BeginDestruction(); }
    std::function<void()> OnDrag;
    void MouseMove(TShiftState Shift, int X, int Y) override {
        TCustomControl::MouseMove(Shift, X, Y);
        if (OnDrag && (Shift.Contains(ssLeft) || Shift.Contains(ssRight))) std::exchange(OnDrag, nullptr)();
    }
};

class DragLoop : public ::testing::Test {
public:
    void SetUp() override {
        if (QGuiApplication::platformName() != "minimal") GTEST_SKIP() << "this platform has no drag loop";
        Window.setGeometry(50, 50, 400, 100);
        Control.setGeometry(0, 0, 200, 100);
        Other.setGeometry(200, 0, 200, 100);
        Window.show();
        Target = std::make_unique<TOLEDropTarget>();
        Target->Register(&Other);
        Target->OnOleDragDrop = [this](TObject*, NV_IDataObject*, TShiftState, TPoint, int& Effect) {
            Log += "drop(" + Target->GetDroppedText() + "," + std::to_string(Effect) + ") ";
            if (OnTarget) OnTarget();
        };
        Target->OnOleDragLeave = [this](TObject*) { Log += "leave "; };
        Source = std::make_unique<TOLEDropSource>();
        Source->SetDragTypes({dtCopy, dtMove});
        Source->GetDataWrapper()->SetString("data");
        Source->OnFeedback = [this](TObject*, int Effect, bool&) {
            Log += "effect(" + std::to_string(Effect) + ") ";
            if (OnFeedback) OnFeedback();
        };
        Source->OnDrop = [this](TObject*, TDragType, bool&) { Log += "release "; };
    }

    using TStep = std::function<void(DragLoop&)>;
    void MoveTo(int X) { QTest::mouseMove(Window.windowHandle(), {X, 50}); }
    void Release(Qt::MouseButton Button = Qt::LeftButton, Qt::KeyboardModifiers Modifiers = {}) {
        QTest::mouseRelease(Window.windowHandle(), Button, Modifiers, {Place, 50});
    }
    void Move(int X, Qt::KeyboardModifiers Modifiers = {}) {
        Place = X;
        QMouseEvent Event(QEvent::MouseMove, QPointF(X, 50), QPointF(X + 50, 100), Qt::NoButton,
                          Qt::LeftButton, Modifiers);
        QCoreApplication::sendEvent(Window.windowHandle(), &Event);
    }
    void Key(Qt::Key Which) { QTest::keyClick(Window.windowHandle(), Which); }

    // Presses in the source, then takes the steps from inside the drag.
    TDragResult Drag(std::vector<TStep> Steps) {
        TDragResult Result = drUnknown;
        bool Done = false;
        std::size_t Next = 0;
        QTimer Stepper;
        QObject::connect(&Stepper, &QTimer::timeout, [&] {
            if (Next < Steps.size())
                Steps[Next++](*this);
            else if (++Next > Steps.size() + 20)
                Release(); // never hangs
        });
        Control.OnDrag = [&] {
            Stepper.start(10);
            try {
                Result = Source->Execute(&Control);
            } catch (const Exception& Error) {
                Log += "raised " + Error.GetMessage();
            }
            Stepper.stop();
            Done = true;
        };
        QTest::mousePress(Window.windowHandle(), Qt::LeftButton, {}, {20, 50});
        QTest::mouseMove(Window.windowHandle(), {40, 50});
        QCoreApplication::processEvents();
        EXPECT_TRUE(Done);
        EXPECT_EQ(Next, Steps.size());
        QTest::mouseRelease(Window.windowHandle(), Qt::LeftButton, {}, {20, 50});
        return Result;
    }
    std::string Take() { return std::exchange(Log, {}); }

    QWidget Window;
    TDragControl Control{nullptr, &Window};
    TCustomControl Other{nullptr, &Window};
    std::unique_ptr<TOLEDropSource> Source;
    std::unique_ptr<TOLEDropTarget> Target;
    std::function<void()> OnFeedback;
    std::function<void()> OnTarget;
    std::string Log;
    int Place = 0;
};

TEST_F(DragLoop, DropsEscapesAndRefusals) {
    using T = DragLoop;
    const auto Over = [](T& D) { D.Move(250); };
    const auto Back = [](T& D) { D.Move(30); };
    const auto Shift = [](T& D) { D.Move(260, Qt::ShiftModifier); };
    const auto Release = [](T& D) { D.Release(); };
    const auto ShiftRelease = [](T& D) { D.Release(Qt::LeftButton, Qt::ShiftModifier); };
    const auto Escape = [](T& D) { D.Key(Qt::Key_Escape); };
    const auto Right = [](T& D) {
        QTest::mousePress(D.Window.windowHandle(), Qt::RightButton, {}, {250, 50});
        D.Release(Qt::RightButton); // does not drop
    };
    const std::tuple<std::vector<TStep>, TDragResult, const char*> Cases[] = {
        {{Over, Over, Release}, drDropCopy, "effect(0) effect(1) release drop(data,1) "},
        {{Over, Shift, ShiftRelease}, drDropMove, "effect(0) effect(1) effect(2) release drop(data,2) "},
        {{Over, Escape}, drCancel, "effect(0) effect(1) leave "},
        {{Escape}, drCancel, "effect(0) "},
        {{Over, Back, Release}, drCancel, "effect(0) effect(1) leave effect(0) "},
        {{Over, Right, Over, Release}, drDropCopy, "effect(0) effect(1) release drop(data,1) "},
    };
    for (const auto& [Steps, Result, Expected] : Cases) {
        EXPECT_EQ(Drag(Steps), Result) << Expected;
        EXPECT_EQ(Take(), Expected);
        EXPECT_FALSE(Control.GetMouseCapture());
    }
    Source->SetDragTypes({});
    EXPECT_EQ(Drag({Over, Release}), drCancel);
    EXPECT_EQ(Take(), "effect(0) leave ");
    Source->SetDragTypes({dtCopy});
    Source->OnDrop = [](TObject*, TDragType, bool& ContinueDrop) { ContinueDrop = false; };
    EXPECT_EQ(Drag({Over, Release}), drCancel);
    EXPECT_EQ(Take(), "effect(0) effect(1) leave ");
}

TEST_F(DragLoop, SurvivesHandlersThatDestroyOrRaise) {
    using T = DragLoop;
    const auto Over = [](T& D) { D.Move(250); };
    const auto Release = [](T& D) { D.Release(); };
    OnFeedback = [this] { Target.reset(); };
    EXPECT_EQ(Drag({Over, Over, Release}), drCancel);
    OnFeedback = [] { throw Exception("trouble"); };
    EXPECT_EQ(Drag({Over}), drUnknown);
    EXPECT_NE(Take().find("raised trouble"), std::string::npos);
    EXPECT_FALSE(IsDragRunning());
    OnFeedback = [this] {
        // A drag in a drag is refused.
        TOLEDropSource Second;
        EXPECT_EQ(Second.Execute(&Control), drUnspec);
        Source.reset();
        OnFeedback = nullptr;
    };
    EXPECT_EQ(Drag({Over}), drUnknown);
}

// Qt keeps all input to itself during a drag; a question that a handler asks must be answerable nevertheless.
TEST_F(DragLoop, ADialogInAHandlerGetsItsInput) {
    Source->OnDrop = [](TObject*, TDragType, bool& ContinueDrop) {
        QDialog Dialog;
        QPushButton Button("No", &Dialog);
        QObject::connect(&Button, &QPushButton::clicked, [&] { Dialog.done(7); });
        QTimer::singleShot(50, &Dialog, [&] {
            QTest::mouseClick(Dialog.windowHandle(), Qt::LeftButton, {}, {5, 5});
        });
        QTimer::singleShot(3000, &Dialog, &QDialog::reject); // never hangs
        ContinueDrop = Dialog.exec() != 7;
    };
    EXPECT_EQ(Drag({[](DragLoop& D) { D.Move(250); }, [](DragLoop& D) { D.Release(); }}), drCancel);
    EXPECT_EQ(Take(), "effect(0) effect(1) leave ");
}

TEST_F(DragLoop, ShowsThePicture) {
    TNVDragImageList Images(nullptr, 40, 20);
    Images.Add(RedBitmap(40, 20));
    Source->SetImages(&Images);
    OnFeedback = [&] { EXPECT_TRUE(Images.GetDragging()); };
    EXPECT_EQ(Drag({[](DragLoop& D) { D.Move(250); }, [](DragLoop& D) { D.Release(); }}), drDropCopy);
    EXPECT_FALSE(Images.GetDragging());
}

} // namespace
