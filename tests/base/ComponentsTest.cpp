#include "host/base/Errors.h"
#include "host/base/Objects.h"
#include "host/base/Strings.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace quill {

// Outside the anonymous namespace: its ClassName is tested.
template <class T>
struct TBoxOf : TObject {};

namespace {

std::string Log;

struct TProbe : TComponent {
    TProbe(TComponent* AOwner, const std::string& Name) : TComponent(AOwner) { SetName(Name); }
    ~TProbe() override {
        Destroying();
        Log += "~" + GetName() + " ";
    }
    void Notification(TComponent* AComponent, TOperation Operation) override {
        TComponent::Notification(AComponent, Operation);
        if (Operation == opInsert) return;
        Log += GetName() + ":-" + AComponent->GetName() + " ";
        if (!OnRemove) return;
        const auto Handler = OnRemove; // it may destroy this object
        Handler(AComponent);
    }
    std::function<void(TComponent*)> OnRemove;
};

class Components : public testing::Test {
protected:
    void SetUp() override { Log.clear(); }
};

TEST_F(Components, ClassNameIsThatOfTheMostDerivedClassWithoutNamespace) {
    const TStringList List;
    const TBoxOf<TStringList> Box;
    const TObject& Object = List;
    EXPECT_EQ(Object.ClassName(), "TStringList");
    EXPECT_EQ(Box.ClassName(), "TBoxOf<quill::TStringList>");
    EXPECT_EQ(TProbe(nullptr, "p").ClassName(), "TProbe");
}

TEST_F(Components, OwnerDestroysLastFirstAndAnEarlierEndUnlinks) {
    {
        TProbe Owner(nullptr, "owner");
        new TProbe(&Owner, "a");
        auto* B = new TProbe(&Owner, "b");
        new TProbe(&Owner, "c");
        delete B;
        EXPECT_EQ(Owner.GetComponentCount(), 2);
        EXPECT_EQ(Owner.FindComponent("c"), Owner.GetComponents(1));
        EXPECT_THROW(Owner.GetComponents(2), EListError);
    }
    // What goes with its owner is announced to nobody but those who asked.
    EXPECT_EQ(Log, "~b owner:-b c:-b a:-b ~owner ~c ~a ");
}

TEST_F(Components, MovingToAnotherOwnerLeavesTheFirst) {
    TProbe First(nullptr, "first");
    TProbe Second(nullptr, "second");
    auto* A = new TProbe(&First, "a");
    Second.InsertComponent(A);
    EXPECT_EQ(First.GetComponentCount(), 0);
    EXPECT_EQ(A->GetOwner(), &Second);
    for (TComponent* Loop : {&Second, A}) EXPECT_THROW(A->InsertComponent(Loop), EInvalidOperation);
}

TEST_F(Components, FreeNotificationReachesTheWatcherOnceAndEndsWithIt) {
    auto* Watched = new TProbe(nullptr, "watched");
    auto* Gone = new TProbe(nullptr, "gone");
    TProbe Watcher(nullptr, "watcher");
    TProbe Former(nullptr, "former");
    for (TProbe* Each : {&Watcher, &Watcher, Gone, &Former}) Each->FreeNotification(Watched);
    Watched->FreeNotification(&Watcher); // mutual
    Watched->FreeNotification(nullptr);
    Former.RemoveFreeNotification(Watched);
    delete Gone;
    delete Watched;
    EXPECT_EQ(Log, "~gone watched:-gone ~watched watcher:-watched ");
}

TEST_F(Components, NotificationMayDestroyWatchersOwnersAndItself) {
    struct TScene {
        TProbe* Owner = new TProbe(nullptr, "owner");
        TProbe* Watched = new TProbe(Owner, "watched");
        TProbe* Sibling = new TProbe(Owner, "sibling");
        TProbe* Watcher = new TProbe(nullptr, "watcher");
        TProbe* Other = new TProbe(nullptr, "other");
    };
    using TMember = TProbe* TScene::*;
    // Who is told, and what it destroys.
    const std::tuple<const char*, TMember, TMember> Cases[] = {
        {"another watcher", &TScene::Watcher, &TScene::Other},
        {"itself", &TScene::Watcher, &TScene::Watcher},
        {"the owner of the one that goes", &TScene::Watcher, &TScene::Owner},
        {"itself as the owner", &TScene::Owner, &TScene::Owner},
        {"the owner, from a sibling", &TScene::Sibling, &TScene::Owner},
    };
    for (const auto& [What, Handler, Victim] : Cases) {
        SCOPED_TRACE(What);
        TScene Scene;
        Scene.Other->FreeNotification(Scene.Watched);
        Scene.Watcher->FreeNotification(Scene.Watched);
        (Scene.*Handler)->OnRemove = [&Gone = Scene.*Victim](TComponent*) {
            delete std::exchange(Gone, nullptr);
        };
        Log.clear();
        delete Scene.Watched;
        EXPECT_EQ(Log.find("~watched "), 0u);
        EXPECT_EQ(Log.find("~watched", 1), std::string::npos) << Log;
        for (TProbe* Left : {Scene.Owner, Scene.Watcher, Scene.Other}) delete Left;
    }
}

TEST(Persistent, AssignNamesBothClassesWhenItCannotBeDone) {
    TStringList List;
    TComponent Component;
    try {
        List.Assign(&Component);
        ADD_FAILURE();
    } catch (const EConvertError& Error) {
        EXPECT_EQ(Error.GetMessage(), "Cannot assign a TComponent to a TStringList");
    }
    EXPECT_THROW(List.Assign(nullptr), EConvertError);
}

} // namespace
} // namespace quill
