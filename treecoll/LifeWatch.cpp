#include "treecoll/LifeWatch.h"

#include "treecoll/Treecoll.h"

namespace quill {

namespace {

// The watches of this thread, the innermost first.
thread_local TLifeWatch* FirstWatch = nullptr;
thread_local TGoneWatch* FirstGoneWatch = nullptr;

} // namespace

TLifeWatch::TLifeWatch(TTreeCollection* Object) : FObject(Object), FNext(FirstWatch) {
    FirstWatch = this;
    if (Object) Object->SetFlag(TTreeCollection::FlagWatched, true);
}

TLifeWatch::~TLifeWatch() {
    // Nearly always the innermost one; a watch that lives elsewhere than on the stack may not be.
    TLifeWatch** Link = &FirstWatch;
    while (*Link != this) Link = &(*Link)->FNext;
    *Link = FNext;
}

void TLifeWatch::Reset(TTreeCollection* Object) {
    FObject = Object;
    if (Object) Object->SetFlag(TTreeCollection::FlagWatched, true);
}

void TLifeWatch::Forget(TTreeCollection* Object) {
    for (TLifeWatch* Watch = FirstWatch; Watch; Watch = Watch->FNext) {
        if (Watch->FObject == Object) Watch->FObject = nullptr;
    }
}

TGoneWatch::TGoneWatch() : FOuter(FirstGoneWatch) { FirstGoneWatch = this; }
TGoneWatch::~TGoneWatch() { FirstGoneWatch = FOuter; }

void TGoneWatch::Forget(const TTreeCollection* Object) {
    for (TGoneWatch* Watch = FirstGoneWatch; Watch; Watch = Watch->FOuter)
        Watch->FGone[Object] = ++Watch->FCount;
}

bool TGoneWatch::WentAfter(const TTreeCollection* Object, unsigned Since) const {
    const auto Found = FGone.find(Object);
    return Found != FGone.end() && Found->second > Since;
}

} // namespace quill
