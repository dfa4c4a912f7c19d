// Writing forms.
#include "host/base/Filers.h"
#include "host/base/Reflection.h"
#include "host/base/Texts.h"
#include "host/forms/Forms.h"
#include "host/graphics/Colors.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <vector>

namespace quill {

namespace {

class TFormWriter : public TWriter {
public:
    TFormWriter(TComponent* Root, TComponent* Ancestor) : FRoot(Root), FRootAncestor(Ancestor) {
        FNames.insert(Root->GetName());
        for (int I = 0; I < Root->GetComponentCount(); ++I) {
            TComponent* const Component = Root->GetComponents(I);
            if (Component->GetName().empty()) continue;
            CheckName(Component->GetName());
            TComponent* Parent = Component->GetParentComponent();
            // Shown inside something that is no part of the form.
            if (!Parent || Parent->GetOwner() != Root || Parent->GetName().empty()) Parent = Root;
            FChildren[Parent].push_back(Component);
        }
    }

    std::string Write() {
        FOut = "quill form 1\n";
        WriteComponent(FRoot, FRootAncestor);
        return std::move(FOut);
    }

    // --- what components define -------------------------------------------------------------------------------
    void DefineProperty(const std::string& Name, std::function<void(TReader&)>,
                        std::function<void(TWriter&)> WriteData, bool HasData) override {
        if (!HasData || !WriteData) return;
        Begin(Name);
        WriteData(*this);
        FOut += '\n';
    }
    void DefineBinaryProperty(const std::string& Name, std::function<void(TStream&)>,
                              std::function<void(TStream&)> WriteData, bool HasData) override {
        if (!HasData || !WriteData) return;
        TMemoryStream Bytes;
        WriteData(Bytes);
        Begin(Name);
        FOut += '{';
        AppendBase64(FOut, Bytes.GetMemory(), Indent(1));
        FOut += "}\n";
    }
    void WriteListBegin() override {
        FOut += '(';
        FInList = true;
    }
    void WriteListEnd() override {
        FOut += ')';
        FInList = false;
    }
    void WriteInteger(int Value) override { PutItem(std::to_string(Value)); }
    void WriteBoolean(bool Value) override { PutItem(Value ? "True" : "False"); }
    void WriteString(const std::string& Value) override {
        PutItem({});
        // A list keeps its items apart by their lines, so that each is one piece.
        std::string Text;
        AppendFormString(Text, Value, {});
        if (FInList) std::erase(Text, '\n');
        FOut += Text;
    }

private:
    std::string Indent(int More = 0) const {
        return std::string(static_cast<std::size_t>(FDepth + More) * 2, ' ');
    }
    void Begin(std::string_view Name) { FOut.append(Indent()).append(Name).append(" = "); }
    void PutItem(std::string_view Item) {
        if (FInList) FOut.append("\n").append(Indent(1));
        FOut += Item;
    }

    void WriteComponent(TComponent* Component, TComponent* Ancestor) {
        if (FDepth >= MaxFormDepth)
            throw EInvalidOperation(FormatText(SFormTooDeep, {std::to_string(MaxFormDepth)}));
        FOut.append(Indent()).append(Ancestor ? "inherited " : "object ");
        if (IsFormIdentifier(Component->GetName())) FOut.append(Component->GetName()).append(": ");
        FOut.append(ClassOf(Component)).append("\n");
        ++FDepth;
        WritePublished({}, *Component, Ancestor);
        SetAncestor(Ancestor);
        Component->DefineProperties(*this);
        SetAncestor(nullptr);
        if (const auto Found = FChildren.find(Component); Found != FChildren.end())
            for (TComponent* const Child : Found->second) WriteComponent(Child, nullptr);
        --FDepth;
        FOut.append(Indent()).append("end\n");
    }

    void CheckName(const std::string& Name) {
        if (!IsFormIdentifier(Name) || Name == "nil")
            throw EInvalidOperation(FormatText(SFormBadName, {Name}));
        if (!FNames.insert(Name).second) throw EInvalidOperation(FormatText(SFormNameTaken, {Name}));
        if (FNames.size() > MaxFormComponents) // with the root
            throw EInvalidOperation(FormatText(SFormTooMany, {std::to_string(MaxFormComponents)}));
    }

    // A class that forms cannot make is written as the one that it publishes its properties as.
    static std::string ClassOf(const TComponent* Component) {
        const std::string Name = Component->ClassName();
        if (FindComponentClass(Name)) return Name;
        if (const TClassInfo* const Info = Component->GetClassInfo()) return std::string(Info->Name);
        return "TComponent";
    }

    void WritePublished(const std::string& Prefix, const TPersistent& Object, const TPersistent* Ancestor) {
        const TClassInfo* const Info = Object.GetClassInfo();
        if (Ancestor && Ancestor->GetClassInfo() != Info) Ancestor = nullptr;
        for (const TClassInfo* const Class : ClassChain(Info)) {
            for (const TPropertyInfo& Property : Class->Properties) {
                if (!Property.Stored || Property.Stored(Object))
                    WriteProperty(Prefix, Property, Object, Ancestor);
            }
        }
    }

    void WriteProperty(const std::string& Prefix, const TPropertyInfo& Property, const TPersistent& Object,
                       const TPersistent* Ancestor) {
        const std::string Name = Prefix + std::string(Property.Name);
        switch (Property.Kind) {
        case TPropertyKind::String: {
            if (!Property.GetString || !Property.SetString) return;
            const std::string Value = Property.GetString(Object);
            if (Ancestor ? Value == Property.GetString(*Ancestor) : Value.empty()) return;
            Begin(Name);
            AppendFormString(FOut, Value, Indent(1));
            break;
        }
        case TPropertyKind::Object: {
            const TPersistent* const Part = Property.Opaque ? nullptr : Property.GetObject(Object);
            if (Part) WritePublished(Name + ".", *Part, Ancestor ? Property.GetObject(*Ancestor) : nullptr);
            return;
        }
        case TPropertyKind::Reference: {
            const TPersistent* const Target = Property.GetObject(Object);
            if (Ancestor ? Target == Property.GetObject(*Ancestor) : !Target && Property.Default) return;
            const auto* const Component = dynamic_cast<const TComponent*>(Target);
            if (Target && !(Component && IsFormIdentifier(Component->GetName()))) return;
            Begin(Name);
            FOut += Target ? Component->GetName() : "nil";
            break;
        }
        case TPropertyKind::Event: {
            const std::string Handler = Property.GetEvent ? Property.GetEvent(Object) : std::string();
            if (!IsFormIdentifier(Handler) || (Ancestor && Handler == Property.GetEvent(*Ancestor))) return;
            Begin(Name);
            FOut += Handler;
            break;
        }
        default: {
            if (!Property.GetOrdinal || !Property.SetOrdinal) return;
            const std::int64_t Value = Property.GetOrdinal(Object);
            if (Ancestor ? Value == Property.GetOrdinal(*Ancestor) : Property.Default == Value) return;
            const bool IsNumber = Property.Kind == TPropertyKind::Integer;
            const std::string Text = OrdinalText(
                Property, IsNumber ? std::clamp(Value, Property.Lowest, Property.Highest) : Value);
            if (Text.empty()) return;
            Begin(Name);
            FOut += Text;
        }
        }
        FOut += '\n';
    }

    // Empty for a value that an enumeration does not have.
    static std::string OrdinalText(const TPropertyInfo& Property, std::int64_t Value) {
        switch (Property.Kind) {
        case TPropertyKind::Boolean:
            return Value != 0 ? "True" : "False";
        case TPropertyKind::Color:
            return ColorToString(static_cast<TColor>(Value));
        case TPropertyKind::Enumeration:
            return std::string(ValueName(Property, Value));
        case TPropertyKind::Set: {
            std::string Text = "[";
            for (std::size_t Bit = 0; Bit < Property.Names.size() && Bit < 32; ++Bit) {
                if ((Value >> Bit & 1) == 0) continue;
                if (Text.size() > 1) Text += ", ";
                Text += Property.Names[Bit];
            }
            return Text + "]";
        }
        default: {
            const std::string_view Name = ValueName(Property, Value);
            return Name.empty() ? std::to_string(Value) : std::string(Name);
        }
        }
    }

    TComponent* FRoot;
    TComponent* FRootAncestor;
    std::unordered_map<const TComponent*, std::vector<TComponent*>> FChildren;
    std::set<std::string> FNames;
    std::string FOut;
    int FDepth = 0;
    bool FInList = false;
};

} // namespace

std::string SaveFormToText(TComponent* Root, const TFormOptions& Options) {
    return TFormWriter(Root, Options.Ancestor).Write();
}

} // namespace quill
