// Telling whether an object survived a call into application code.
#pragma once

#include <unordered_map>

namespace quill {

class TTreeCollection;

// Watches one collection (a node or a container) from the stack. Every call that may run application code is a
// border: a handler may delete the node it is told about, its parent, or the whole control. Whoever goes on using an
// object after such a call holds a watch on it and asks IsAlive first. Watches nest like the calls they guard.
class TLifeWatch {
public:
    explicit TLifeWatch(TTreeCollection* Object);
    ~TLifeWatch();
    TLifeWatch(const TLifeWatch&) = delete;
    TLifeWatch& operator=(const TLifeWatch&) = delete;

    // False from the moment the object's destructor of TTreeCollection begins; always false for a null object.
    bool IsAlive() const { return FObject != nullptr; }
    TTreeCollection* Get() const { return FObject; }
    // Watches another object from now on.
    void Reset(TTreeCollection* Object);

private:
    friend class TTreeCollection;
    // Called when Object is about to go.
    static void Forget(TTreeCollection* Object);

    TTreeCollection* FObject;
    TLifeWatch* FNext;
};

// The same with the type of the watched object.
template <class T>
class TWatch : public TLifeWatch {
public:
    explicit TWatch(T* Object) : TLifeWatch(Object) {}
    T* Get() const { return static_cast<T*>(TLifeWatch::Get()); }
    explicit operator bool() const { return IsAlive(); }
    T* operator->() const { return Get(); }
    operator T*() const { return Get(); }
};

// Remembers every collection that is destroyed while it exists: for work on many objects that may run application
// code in between, such as sorting. Scopes nest.
class TGoneWatch {
public:
    TGoneWatch();
    ~TGoneWatch();
    TGoneWatch(const TGoneWatch&) = delete;
    TGoneWatch& operator=(const TGoneWatch&) = delete;

    // A point in time, to ask from.
    unsigned Now() const { return FCount; }
    // Whether the object that stood at this address at the time Since was destroyed later. (A new object may stand
    // there now: whoever takes a pointer notes the time.)
    bool IsGone(const TTreeCollection* Object, unsigned Since = 0) const {
        return FCount != Since && WentAfter(Object, Since);
    }

private:
    friend class TTreeCollection;
    static void Forget(const TTreeCollection* Object);
    bool WentAfter(const TTreeCollection* Object, unsigned Since) const;

    TGoneWatch* FOuter;
    unsigned FCount = 0;
    std::unordered_map<const TTreeCollection*, unsigned> FGone;
};

} // namespace quill
