#include "host/base/Errors.h"
#include "host/base/Objects.h"
#include "host/base/Reflection.h"
#include "host/base/Strings.h"

#include <gtest/gtest.h>

#include <functional>

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
    EXPECT_THROW(A->InsertComponent(&Second), EInvalidOperation);
    EXPECT_THROW(A->InsertComponent(A), EInvalidOperation);
}

TEST_F(Components, FreeNotificationReachesTheWatcherOnceAndEndsWithIt) {
    auto* Watched = new TProbe(nullptr, "watched");
    TProbe Watcher(nullptr, "watcher");
    auto* Gone = new TProbe(nullptr, "gone");
    auto* Former = new TProbe(nullptr, "former");
    Watcher.FreeNotification(Watched);
    Watcher.FreeNotification(Watched);
    Gone->FreeNotification(Watched);
    Former->FreeNotification(Watched);
    Watched->FreeNotification(Watcher.GetOwner()); // null is ignored
    Former->RemoveFreeNotification(Watched);
    delete Gone;
    delete Watched;
    EXPECT_EQ(Log, "~gone watched:-gone ~watched watcher:-watched ");
    delete Former;
}

TEST_F(Components, MutualFreeNotificationsSurviveBothOrders) {
    for (const bool FirstFirst : {true, false}) {
        auto* A = new TProbe(nullptr, "a");
        auto* B = new TProbe(nullptr, "b");
        A->FreeNotification(B);
        B->FreeNotification(A);
        delete (FirstFirst ? A : B);
        delete (FirstFirst ? B : A);
    }
    EXPECT_EQ(Log, "~a b:-a ~b ~b a:-b ~a ");
}

TEST_F(Components, NotificationMayDestroyWatchersOwnersAndItself) {
    struct TCase {
        const char* What;
        std::function<void(TProbe& Watched, TProbe*& Owner, TProbe*& Watcher, TProbe*& Other)> Arrange;
    };
    const TCase Cases[] = {
        {"another watcher",
         [](TProbe&, TProbe*&, TProbe*& Watcher, TProbe*& Other) {
             Watcher->OnRemove = [&](TComponent*) { delete std::exchange(Other, nullptr); };
         }},
        {"itself",
         [](TProbe&, TProbe*&, TProbe*& Watcher, TProbe*&) {
             Watcher->OnRemove = [&](TComponent*) { delete std::exchange(Watcher, nullptr); };
         }},
        {"the owner of the one that goes",
         [](TProbe&, TProbe*& Owner, TProbe*& Watcher, TProbe*&) {
             Watcher->OnRemove = [&](TComponent*) { delete std::exchange(Owner, nullptr); };
         }},
        {"itself as the owner",
         [](TProbe&, TProbe*& Owner, TProbe*&, TProbe*&) {
             Owner->OnRemove = [&](TComponent*) { delete std::exchange(Owner, nullptr); };
         }},
        {"the owner, from a sibling",
         [](TProbe&, TProbe*& Owner, TProbe*&, TProbe*&) {
             auto* Sibling = new TProbe(Owner, "sibling");
             new TProbe(Owner, "sibling2");
             Sibling->OnRemove = [&](TComponent*) { delete std::exchange(Owner, nullptr); };
         }},
    };
    for (const TCase& Case : Cases) {
        SCOPED_TRACE(Case.What);
        auto* Owner = new TProbe(nullptr, "owner");
        auto* Watched = new TProbe(Owner, "watched");
        auto* Watcher = new TProbe(nullptr, "watcher");
        auto* Other = new TProbe(nullptr, "other");
        Other->FreeNotification(Watched);
        Watcher->FreeNotification(Watched);
        Case.Arrange(*Watched, Owner, Watcher, Other);
        Log.clear();
        delete Watched;
        EXPECT_EQ(Log.find("~watched "), 0u);
        EXPECT_EQ(Log.find("~watched", 1), std::string::npos) << Log;
        delete Owner;
        delete Watcher;
        delete Other;
    }
}

TEST_F(Components, GuardKnowsWhetherTheComponentSurvived) {
    auto* Probe = new TProbe(nullptr, "probe");
    {
        const TComponentGuard Inner(Probe);
        EXPECT_FALSE(Inner.IsGone());
    }
    const TComponentGuard First(Probe);
    const TComponentGuard Second(Probe);
    const TComponentGuard None(nullptr);
    EXPECT_FALSE(First.IsGone() || Second.IsGone());
    delete Probe;
    EXPECT_TRUE(First.IsGone() && Second.IsGone() && None.IsGone());
}

TEST_F(Components, LoadingAndDesigningStates) {
    struct TLoading : TComponent {
        void Loaded() override {
            WasReading = HasState(csReading);
            WasLoading = HasState(csLoading);
            TComponent::Loaded();
        }
        bool WasReading = true, WasLoading = false;
    };
    TLoading Component;
    Component.BeginLoading();
    EXPECT_TRUE(Component.HasState(csLoading) && Component.HasState(csReading));
    Component.EndLoading();
    EXPECT_TRUE(Component.WasLoading);
    EXPECT_FALSE(Component.WasReading || Component.HasState(csLoading));

    Component.SetDesigning(true);
    const auto* Child = new TComponent(&Component);
    EXPECT_TRUE(Child->HasState(csDesigning));
    Component.SetDesigning(false);
    EXPECT_FALSE(Child->HasState(csDesigning));
}

TEST(Persistent, AssignNamesBothClassesWhenItCannotBeDone) {
    TStringList List;
    TComponent Component;
    const auto MessageOf = [&](TPersistent* Source) {
        try {
            List.Assign(Source);
        } catch (const EConvertError& Error) {
            return Error.GetMessage();
        }
        return std::string("no error");
    };
    EXPECT_EQ(MessageOf(&Component), "Cannot assign a TComponent to a TStringList");
    EXPECT_EQ(MessageOf(nullptr), "Cannot assign a null to a TStringList");
}

TEST(Reflection, PropertiesAreFoundInTheClassBeforeItsParents) {
    static constexpr TPropertyInfo Inherited[] = {{.Name = "Color", .Default = 1}, {.Name = "Tag"}};
    static constexpr TPropertyInfo Own[] = {{.Name = "Color", .Default = 2}};
    static constexpr TClassInfo Parent{"TParent", nullptr, Inherited};
    static constexpr TClassInfo Child{"TChild", &Parent, Own};
    EXPECT_EQ(FindProperty(&Child, "Color")->Default, 2);
    EXPECT_EQ(FindProperty(&Child, "Tag"), &Inherited[1]);
    EXPECT_EQ(FindProperty(&Child, "tag"), nullptr);
    EXPECT_EQ(FindProperty(nullptr, "Tag"), nullptr);
}

} // namespace
} // namespace quill
