// Forms: a component and what it owns as a readable text, and back.
//
//   quill form 1
//   object Tree: TQuillTree
//     Width = 300
//     Options = [goVertLine, goHorzLine, goRangeSelect]
//     Color = clWindow
//     Images = Pictures
//     OnExpanded = TreeExpanded
//     ColWidths = (
//       120
//       80)
//   end
//
// Written are the published properties in their order (host/base/Reflection.h), those with a default only when they
// differ from it, then what the component defines itself (DefineProperties), then the components inside it. A
// component takes part when the form's root owns it and when it has a name: components without one are parts of
// others. Components and handlers are referred to by name; those without a name are left out. A number that a form may
// not hold is written as the nearest that it may.
#pragma once

#include "host/base/NamedHandlers.h"
#include "host/base/Objects.h"
#include "host/forms/FormText.h"

#include <functional>
#include <string>

namespace quill {

class TStream;

// --- classes --------------------------------------------------------------------------------------------------------

// Makes a component that Owner owns.
using TComponentFactory = TComponent* (*)(TComponent* Owner);

// Makes a class known to forms, under the name that its ClassName tells. Registering again replaces.
void RegisterComponentClass(const std::string& Name, TComponentFactory Factory);
template <class T>
void RegisterComponentClass(const std::string& Name) {
    RegisterComponentClass(Name, [](TComponent* Owner) -> TComponent* { return new T(Owner); });
}
// Null when the class is not registered.
TComponentFactory FindComponentClass(const std::string& Name);

// --- forms ----------------------------------------------------------------------------------------------------------

struct TFormOptions {
    // The handlers that events may name.
    const TNamedHandlers* Handlers = nullptr;
    // Finds components that are not part of the form, such as an image list that several windows share. Asked after
    // the form itself and the owner of its root.
    std::function<TComponent*(const std::string& Name)> FindComponent;
    // Told about each fault in what a form says (not in its shape). True: pass over it and go on. Without it the first
    // fault ends the reading.
    std::function<bool(const EFormError& Fault)> OnError;
    // When saving: what the root is compared with; only differences are written, and what a form of that kind does not
    // name is left alone when it is read.
    TComponent* Ancestor = nullptr;
};

// Raises EInvalidOperation for what could not be read back: components that are nested more than MaxFormDepth levels
// deep, more than MaxFormComponents of them, two of the same name, and a name that is no identifier (the root's is then
// left out).
void SaveForm(TStream& Stream, TComponent* Root, const TFormOptions& Options = {});
std::string SaveFormToText(TComponent* Root, const TFormOptions& Options = {});
// Replaces the file safely (host/base/Files.h).
void SaveFormToFile(const std::string& FileName, TComponent* Root, const TFormOptions& Options = {});

// Reads a form into Root, which must be of the saved class or of a descendant. Components that Root owns already are
// found by their names and read into; the others are made and belong to Root. A property that the form does not name
// gets its default; one without a default, an event and a reference keep what they have.
//
// A text that is no form raises EFormError (or EReadError) before anything is changed. A fault in what it says raises
// EFormError when it is reached: what was read before stays, what comes after is not read, and every component is told
// that it is loaded, so that all of them can be used.
void LoadForm(TStream& Stream, TComponent* Root, const TFormOptions& Options = {});
void LoadFormFromText(const std::string& Text, TComponent* Root, const TFormOptions& Options = {});
void LoadFormFromFile(const std::string& FileName, TComponent* Root, const TFormOptions& Options = {});

} // namespace quill
