// What the tests of forms share: components and all their published values as one text.
#pragma once

#include "host/base/Reflection.h"
#include "host/forms/Forms.h"
#include "quilltree/QuillTree.h"
#include "tests/support/QtTest.h"

#include <cstdio>
#include <sstream>
#include <string>

namespace quill {

inline std::string ValueText(const TPropertyInfo& Property, std::int64_t Value) {
    switch (Property.Kind) {
    case TPropertyKind::Boolean:
        return Value != 0 ? "True" : "False";
    case TPropertyKind::Enumeration:
        return std::string(ValueName(Property, Value));
    case TPropertyKind::Color: {
        char Text[16];
        std::snprintf(Text, sizeof Text, "0x%06X", static_cast<unsigned>(Value));
        return Text;
    }
    case TPropertyKind::Set: {
        std::string Text = "[";
        for (std::size_t Bit = 0; Bit < Property.Names.size(); ++Bit)
            if ((Value >> Bit & 1) != 0)
                Text += (Text.size() > 1 ? " " : "") + std::string(Property.Names[Bit]);
        return Text + "]";
    }
    default:
        return std::to_string(Value);
    }
}

template <class TVisit>
void VisitPublished(TPersistent& Object, const TVisit& Visit, const std::string& Prefix = {}) {
    for (const TClassInfo* const Class : ClassChain(Object.GetClassInfo())) {
        for (const TPropertyInfo& Property : Class->Properties) {
            if (Property.Kind == TPropertyKind::Object && !Property.Opaque)
                VisitPublished(*Property.GetObject(Object), Visit, Prefix + std::string(Property.Name) + ".");
            else
                Visit(Prefix + std::string(Property.Name), Property, Object);
        }
    }
}

// "Name=value" of every published property, a line each.
inline std::string Dump(TPersistent& Object) {
    std::string Text;
    VisitPublished(Object, [&Text](const std::string& Name, const TPropertyInfo& P, TPersistent& Holder) {
        Text += Name + "=";
        if (P.GetOrdinal) Text += ValueText(P, P.GetOrdinal(Holder));
        if (P.GetString) Text += P.GetString(Holder);
        if (P.GetEvent) Text += P.GetEvent(Holder);
        if (P.Kind == TPropertyKind::Reference) {
            const auto* Target = dynamic_cast<TComponent*>(P.GetObject(Holder));
            Text += Target ? Target->GetName() : "nil";
        }
        Text += '\n';
    });
    return Text;
}

// The lines of A's dump that differ, with those of B.
inline std::string Differences(TPersistent& A, TPersistent& B) {
    std::istringstream LinesA(Dump(A)), LinesB(Dump(B));
    std::string Result;
    for (std::string LineA, LineB; std::getline(LinesA, LineA) && std::getline(LinesB, LineB);)
        if (LineA != LineB) Result += LineA + " instead of " + LineB + "; ";
    return Result;
}

// A line for each node: " ~Fruit {1 3 -1 -1 24} (red, sweet)": its level, whether it is hidden, text, indexes of the
// images and the state, tag and height, cells.
inline std::string DumpNodes(TFlyNodes& Nodes) {
    std::string Text;
    for (TFlyNode* Node = Nodes.GetFirstNode(); Node; Node = Node->GetNext()) {
        Text += std::string(static_cast<std::size_t>(Node->GetLevel()), ' ') +
                (Node->GetHidden() ? "~" : "") + Node->GetText() + " {" +
                std::to_string(Node->GetImageIndex()) + " " + std::to_string(Node->GetSelectedIndex()) + " " +
                std::to_string(Node->GetStateIndex()) + " " + std::to_string(Node->GetUniqueTag()) + " " +
                std::to_string(Node->GetHeightField()) + "} (" + Node->GetCell(1) + ", " + Node->GetCell(2) +
                ")\n";
    }
    return Text;
}

} // namespace quill
