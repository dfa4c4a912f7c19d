// A component with reference-counted interfaces.
#pragma once

#include "host/transfer/Com.h"

#include <atomic>

namespace quill {

// Frees itself when the last reference goes and it has no owner; an owned one lives until its owner frees it.
// References (TInterfaceRef) to one that its owner has freed are null.
class TInterfacedComponent : public TComponent {
public:
    using TComponent::TComponent;

    // Answers from the table of the class, E_NOINTERFACE for what is not in it.
    HResult QueryInterface(const TGUID& Id, void*& Obj);
    int _AddRef() { return ++FRefCount; }
    int _Release();

protected:
    // The interface table: descendants store the interface with that identity, with a reference, or return false.
    virtual bool GetInterface(const TGUID& Id, void*& Obj) = 0;

private:
    std::atomic<int> FRefCount{0};
};

} // namespace quill
