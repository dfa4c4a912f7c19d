// Reading forms.
#include "host/base/Filers.h"
#include "host/base/Reflection.h"
#include "host/base/Texts.h"
#include "host/forms/Forms.h"
#include "host/graphics/Colors.h"

#include <deque>
#include <exception>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quill {

namespace {

// One component that takes part in the reading, and whether it is still there.
struct TTaking {
    explicit TTaking(TComponent* AComponent) : Component(AComponent), Guard(AComponent) {}
    TComponent* Component;
    TComponentGuard Guard;
    bool IsGone() const { return Guard.IsGone(); }
};

// What is wrong with a value; where it stands is added on the way up.
class EBadValue : public Exception {
    using Exception::Exception;
};

[[noreturn]] void Bad(std::string_view Pattern, std::initializer_list<std::string_view> Values) {
    throw EBadValue(FormatText(Pattern, Values));
}

[[noreturn]] void BadKind(std::string_view Wanted, const TFormValue& Found) {
    throw EBadValue(FormatTextInFull(SFormUnexpected, {Wanted, Found.Describe()}));
}

std::int64_t DecodeOrdinal(const TPropertyInfo& Property, const TFormValue& Value) {
    std::int64_t Result = 0;
    switch (Property.Kind) {
    case TPropertyKind::Boolean:
        if (Value.Raw != "True" && Value.Raw != "False") BadKind("True or False", Value);
        return Value.Raw == "True" ? 1 : 0;
    case TPropertyKind::Color:
        if (Value.Kind == TFormValue::Integer) {
            if (!DecodeFormInteger(Value.Raw, Result) || Result < 0 || Result > 0xFFFFFFFF)
                BadKind("a colour", Value);
            return Result;
        }
        if (Value.Kind != TFormValue::Identifier) BadKind("a colour", Value);
        return StringToColor(Value.Raw);
    case TPropertyKind::Set: {
        if (Value.Kind != TFormValue::Set) BadKind("a set", Value);
        TFormLexer Lexer(Value.Raw);
        for (TFormToken Token = Lexer.Next(); Token.Kind != TFormToken::End; Token = Lexer.Next()) {
            if (Token.IsSymbol(',')) continue;
            std::int64_t Bit = 0;
            if (!FindValue(Property, Token.Text, Bit)) Bad(SFormNoValue, {Token.Text});
            Result |= std::int64_t{1} << Bit;
        }
        return Result;
    }
    case TPropertyKind::Enumeration:
        if (Value.Kind != TFormValue::Identifier) BadKind("a name", Value);
        if (!FindValue(Property, Value.Raw, Result)) Bad(SFormNoValue, {Value.Raw});
        return Result;
    default:
        if (Value.Kind == TFormValue::Identifier && FindValue(Property, Value.Raw, Result)) return Result;
        if (Value.Kind != TFormValue::Integer || !DecodeFormInteger(Value.Raw, Result))
            BadKind("a number", Value);
        if (Result < Property.Lowest || Result > Property.Highest)
            Bad(SFormOutOfRange,
                {Value.Raw, std::to_string(Property.Lowest), std::to_string(Property.Highest)});
        return Result;
    }
}

// Hands the values of one property to the component that defines it.
class TValueReader : public TReader {
public:
    explicit TValueReader(const TFormValue& Value) : FValue(Value), FLexer(Value.Raw, Value.Line) {}
    void DefineProperty(const std::string&, std::function<void(TReader&)>, std::function<void(TWriter&)>,
                        bool) override {}
    void DefineBinaryProperty(const std::string&, std::function<void(TStream&)>,
                              std::function<void(TStream&)>, bool) override {}
    void ReadListBegin() override {
        if (FValue.Kind != TFormValue::List) BadKind("a list", FValue);
    }
    void ReadListEnd() override {
        if (!EndOfList()) throw EBadValue(std::string(SFormListEnd));
    }
    bool EndOfList() override { return FLexer.Peek().Kind == TFormToken::End; }
    int ReadInteger() override {
        const TFormToken Token = Next();
        std::int64_t Value = 0;
        if (Token.Kind != TFormToken::Integer || !DecodeFormInteger(Token.Text, Value) ||
            Value < std::numeric_limits<int>::min() || Value > std::numeric_limits<int>::max())
            Unexpected("a number", Token);
        return static_cast<int>(Value);
    }
    bool ReadBoolean() override {
        const TFormToken Token = Next();
        if (Token.Text != "True" && Token.Text != "False") Unexpected("True or False", Token);
        return Token.Text == "True";
    }
    std::string ReadString() override {
        if (FValue.Kind == TFormValue::Text) return DecodeFormString(FValue.Raw);
        const TFormToken Token = Next();
        if (Token.Kind != TFormToken::String) Unexpected("a text", Token);
        return DecodeFormString(Token.Text);
    }
    int GetLine() const { return FLine; }

private:
    TFormToken Next() {
        const TFormToken Token = FLexer.Next();
        FLine = Token.Line;
        return Token;
    }
    [[noreturn]] static void Unexpected(std::string_view Wanted, const TFormToken& Found) {
        throw EBadValue(FormatTextInFull(
            SFormUnexpected,
            {Wanted, Found.Kind == TFormToken::End ? std::string("the end of the list") : Found.Describe()}));
    }

    const TFormValue& FValue;
    TFormLexer FLexer;
    int FLine = FValue.Line;
};

class TFormReader {
public:
    TFormReader(TComponent* Root, const TFormOptions& Options) : FRoot(Root), FOptions(Options) {}

    void Read(const TFormObject& Form) {
        std::exception_ptr Fault;
        Keep(Fault, [&] { ReadRoot(Form); });
        Keep(Fault, [&] { Connect(); });
        for (TTaking& Taking : FTaking)
            if (!Taking.IsGone()) Taking.Component->EndReading();
        // In the order in which they were read, so that a component finds those around it loaded.
        for (TTaking& Taking : FTaking)
            if (!Taking.IsGone()) Keep(Fault, [&] { Taking.Component->EndLoading(); });
        if (Fault) std::rethrow_exception(Fault);
    }

private:
    struct TPending {
        TTaking* Taking;
        TPersistent* Object;
        const TPropertyInfo* Property;
        const TFormProperty* Source;
        std::string_view Component;
    };

    // Does Step; the first exception is the one that counts.
    template <class TStep>
    static void Keep(std::exception_ptr& Fault, const TStep& Step) {
        try {
            Step();
        } catch (...) {
            if (!Fault) Fault = std::current_exception();
        }
    }

    // Does Step, and tells faults in it with their place. False when the fault was passed over.
    template <class TStep>
    bool Try(int Line, std::string_view Component, std::string_view Property, const TStep& Step) {
        std::string Reason;
        try {
            Step();
            return true;
        } catch (const EFormError&) {
            throw;
        } catch (const std::exception& Error) {
            Reason = Error.what();
        }
        const EFormError Fault(Line, std::string(Component), std::string(Property), Reason);
        if (FOptions.OnError && FOptions.OnError(Fault)) return false;
        throw Fault;
    }

    void ReadRoot(const TFormObject& Form) {
        const std::string Class(Form.ClassName);
        if (!IsA(FRoot, Class))
            throw EFormError(Form.Line, std::string(Form.Name), {},
                             FormatText(SFormOtherClass, {Class, FRoot->ClassName()}));
        if (FRoot->GetName().empty()) FRoot->SetName(std::string(Form.Name));
        for (int I = 0; I < FRoot->GetComponentCount(); ++I) {
            TComponent* const Component = FRoot->GetComponents(I);
            if (!Component->GetName().empty()) FPresent.emplace(Component->GetName(), Component);
        }
        ReadComponent(Form, Take(FRoot));
    }

    static bool IsA(const TComponent* Component, std::string_view Class) {
        if (Class == "TComponent" || Component->ClassName() == Class) return true;
        for (const TClassInfo* Info = Component->GetClassInfo(); Info; Info = Info->Parent)
            if (Info->Name == Class) return true;
        return false;
    }

    TTaking& Take(TComponent* Component) {
        Component->BeginLoading();
        TTaking& Taking = FTaking.emplace_back(Component);
        if (!Component->GetName().empty()) FNamed.emplace(Component->GetName(), &Taking);
        return Taking;
    }

    static void CheckAlive(const TTaking& Taking) {
        if (Taking.IsGone()) throw EBadValue(std::string(SFormGone));
    }

    void ReadComponent(const TFormObject& Object, TTaking& Taking) {
        TComponent& Component = *Taking.Component;
        FLeft.clear();
        std::unordered_map<std::string_view, int> Named;
        for (const TFormProperty& Property : Object.Properties) {
            const auto [Before, IsNew] = Named.emplace(Property.Name, Property.Line);
            if (IsNew) continue;
            const std::string Reason = FormatText(SFormTwice, {std::to_string(Before->second)});
            Try(Property.Line, Object.Name, Property.Name, [&] { throw EBadValue(Reason); });
        }
        const auto Restore = [&](bool Last) {
            if (Object.Inherited) return;
            Try(Object.Line, Object.Name, {}, [&] { RestoreDefaults(Taking, {}, Component, Named, Last); });
        };
        // Before, so that the named ones find what they would find in a new component.
        Restore(false);
        for (const TFormProperty& Property : Object.Properties) {
            Try(Property.Line, Object.Name, Property.Name, [&] {
                CheckAlive(Taking);
                ReadPublished(Taking, Object.Name, Property);
            });
        }
        Restore(true);
        ReadDefined(Object, Taking);
        for (const TFormObject& Child : Object.Children) {
            TTaking* Made = nullptr;
            Try(Child.Line, Child.Name, {}, [&] {
                CheckAlive(Taking);
                Made = &MakeChild(Child, Component);
            });
            if (Made) ReadComponent(Child, *Made);
        }
    }

    TTaking& MakeChild(const TFormObject& Object, TComponent& Parent) {
        const std::string Class(Object.ClassName);
        const std::string Name(Object.Name);
        if (FTaking.front().IsGone()) throw EBadValue(std::string(SFormGone));
        if (FNamed.contains(Object.Name)) Bad(SFormNameTaken, {Name});
        const auto Present = Name.empty() ? FPresent.end() : FPresent.find(Name);
        TComponent* Component = Present == FPresent.end() ? nullptr : FRoot->FindComponent(Name);
        if (Component) {
            if (!IsA(Component, Class)) Bad(SFormOtherClass, {Class, Component->ClassName()});
            return Take(Component);
        }
        const TComponentFactory Factory = FindComponentClass(Class);
        if (!Factory) Bad(SFormUnknownClass, {Class});
        Component = Factory(FRoot);
        Component->SetName(Name);
        TTaking& Taking = Take(Component);
        Component->SetParentComponent(&Parent);
        return Taking;
    }

    // --- published properties -----------------------------------------------------------------------------------

    void RestoreDefaults(TTaking& Taking, const std::string& Prefix, TPersistent& Object,
                         const std::unordered_map<std::string_view, int>& Named, bool Last) {
        for (const TClassInfo* const Class : ClassChain(Object.GetClassInfo())) {
            for (const TPropertyInfo& Property : Class->Properties) {
                CheckAlive(Taking);
                const std::string Name = Prefix + std::string(Property.Name);
                if (Property.Kind == TPropertyKind::Object) {
                    TPersistent* const Part = Property.Opaque ? nullptr : Property.GetObject(Object);
                    if (Part) RestoreDefaults(Taking, Name + ".", *Part, Named, Last);
                } else if (Property.DefaultLast != Last || Named.contains(Name)) {
                    continue;
                } else if (Property.SetString && Property.GetString && !Property.Stored) {
                    if (!Property.GetString(Object).empty()) Property.SetString(Object, {});
                } else if (Property.SetOrdinal && Property.GetOrdinal && Property.Default) {
                    if (Property.GetOrdinal(Object) != *Property.Default)
                        Property.SetOrdinal(Object, *Property.Default);
                }
            }
        }
    }

    void ReadPublished(TTaking& Taking, std::string_view Component, const TFormProperty& Source) {
        TPersistent* Object = Taking.Component;
        std::string_view Name = Source.Name;
        const TPropertyInfo* Property = nullptr;
        // "Font.Name" is the property Name of the object in Font.
        for (;;) {
            const std::size_t Dot = Name.find('.');
            Property = FindProperty(Object->GetClassInfo(), Name.substr(0, Dot));
            if (!Property || Dot == std::string_view::npos) break;
            Object = Property->Kind == TPropertyKind::Object && !Property->Opaque
                         ? Property->GetObject(*Object)
                         : nullptr;
            Name.remove_prefix(Dot + 1);
            if (!Object) Bad(SFormUnknownProperty, {Taking.Component->ClassName()});
        }
        if (!Property) {
            FLeft.push_back(&Source);
            return;
        }
        const TFormValue& Value = Source.Value;
        switch (Property->Kind) {
        case TPropertyKind::String:
            if (!Property->SetString) break;
            if (Value.Kind != TFormValue::Text) BadKind("a text", Value);
            Property->SetString(*Object, DecodeFormString(Value.Raw));
            return;
        case TPropertyKind::Object:
            break;
        case TPropertyKind::Reference:
        case TPropertyKind::Event: {
            if (Value.Kind != TFormValue::Identifier) BadKind("a name", Value);
            const TPending Pending{&Taking, Object, Property, &Source, Component};
            if (Property->Kind == TPropertyKind::Event || !Refer(Pending, false)) FPending.push_back(Pending);
            return;
        }
        default: {
            if (!Property->SetOrdinal) break;
            Property->SetOrdinal(*Object, DecodeOrdinal(*Property, Value));
            return;
        }
        }
        throw EBadValue(std::string(SFormReadOnly));
    }

    // --- references and events ----------------------------------------------------------------------------------

    // Everything has been made and the components' own properties are set: what refers to others is connected.
    void Connect() {
        for (const TPending& Pending : FPending) {
            if (Pending.Taking->IsGone()) continue;
            Try(Pending.Source->Line, Pending.Component, Pending.Source->Name, [&] {
                if (Pending.Property->Kind == TPropertyKind::Event)
                    ConnectEvent(Pending);
                else
                    Refer(Pending, true);
            });
        }
    }

    // False when the component is not there yet and need not be.
    bool Refer(const TPending& Pending, bool Must) {
        const std::string Name(Pending.Source->Value.Raw);
        TComponent* Target = nullptr;
        if (Name != "nil") {
            const auto Found = FNamed.find(Name);
            if (Found != FNamed.end() && !Found->second->IsGone()) Target = Found->second->Component;
            if (!Target && !Must) return false;
            if (!Target && !FTaking.front().IsGone()) {
                Target = FRoot->FindComponent(Name);
                if (!Target && FRoot->GetOwner()) Target = FRoot->GetOwner()->FindComponent(Name);
            }
            if (!Target && FOptions.FindComponent) Target = FOptions.FindComponent(Name);
            if (!Target) Bad(SFormNoComponent, {Name});
            if (Pending.Taking->IsGone()) return true;
        }
        if (!Pending.Property->SetObject) throw EBadValue(std::string(SFormReadOnly));
        if (!Pending.Property->SetObject(*Pending.Object, Target))
            Bad(SFormWrongComponent, {Name, Target ? Target->ClassName() : "nil"});
        return true;
    }

    void ConnectEvent(const TPending& Pending) {
        const std::string_view Name = Pending.Source->Value.Raw;
        if (!Pending.Property->SetEvent) throw EBadValue(std::string(SFormReadOnly));
        if (Name == "nil") {
            Pending.Property->SetEvent(*Pending.Object, {});
            return;
        }
        if (FOptions.Handlers)
            for (const std::any& Handler : FOptions.Handlers->Find(Name))
                if (Pending.Property->SetEvent(*Pending.Object, Handler)) return;
        Bad(SFormNoHandler, {Name});
    }

    // --- what components define ---------------------------------------------------------------------------------

    // Asks the component for its definitions and gives each one its value.
    class TDefinitions : public TValueReader {
    public:
        TDefinitions(TFormReader& AReader, TTaking& ATaking, std::string_view AComponent)
            : TValueReader(Nothing()), FReader(AReader), FTaking(ATaking), FComponent(AComponent) {}
        void DefineProperty(const std::string& Name, std::function<void(TReader&)> ReadData,
                            std::function<void(TWriter&)>, bool) override {
            const TFormProperty* const Source = TakeLeft(Name);
            if (!Source || !ReadData) return;
            TValueReader Reader(Source->Value);
            Guarded(
                *Source, [&] { ReadData(Reader); }, [&] { return Reader.GetLine(); });
        }
        void DefineBinaryProperty(const std::string& Name, std::function<void(TStream&)> ReadData,
                                  std::function<void(TStream&)>, bool) override {
            const TFormProperty* const Source = TakeLeft(Name);
            if (!Source || !ReadData) return;
            const auto Read = [&] {
                if (Source->Value.Kind != TFormValue::Binary) BadKind("binary data", Source->Value);
                std::string Bytes;
                if (!DecodeBase64(Source->Value.Raw, Bytes)) throw EBadValue(std::string(SFormBase64));
                TMemoryStream Stream(std::move(Bytes));
                ReadData(Stream);
            };
            Guarded(*Source, Read, [&] { return Source->Line; });
        }

    private:
        static const TFormValue& Nothing() {
            static const TFormValue Value;
            return Value;
        }
        const TFormProperty* TakeLeft(const std::string& Name) {
            for (auto Left = FReader.FLeft.begin(); Left != FReader.FLeft.end(); ++Left) {
                if ((*Left)->Name != Name) continue;
                const TFormProperty* const Source = *Left;
                FReader.FLeft.erase(Left);
                return FTaking.IsGone() ? nullptr : Source;
            }
            return nullptr;
        }
        // Exceptions of the reading function get their place here, while it is known.
        template <class TStep, class TLine>
        void Guarded(const TFormProperty& Source, const TStep& Step, const TLine& Line) {
            std::string Reason;
            try {
                Step();
                return;
            } catch (const std::exception& Error) {
                Reason = Error.what();
            }
            FReader.Try(Line(), FComponent, Source.Name, [&] { throw EBadValue(Reason); });
        }

        TFormReader& FReader;
        TTaking& FTaking;
        std::string_view FComponent;
    };

    void ReadDefined(const TFormObject& Object, TTaking& Taking) {
        TDefinitions Definitions(*this, Taking, Object.Name);
        Try(Object.Line, Object.Name, {}, [&] {
            CheckAlive(Taking);
            Taking.Component->DefineProperties(Definitions);
        });
        for (const TFormProperty* const Unknown : std::exchange(FLeft, {})) {
            Try(Unknown->Line, Object.Name, Unknown->Name,
                [&] { Bad(SFormUnknownProperty, {Object.ClassName}); });
        }
    }

    TComponent* FRoot;
    const TFormOptions& FOptions;
    std::deque<TTaking> FTaking;
    // By name: what takes part so far; what the root owned before.
    std::map<std::string, TTaking*, std::less<>> FNamed;
    std::unordered_map<std::string, TComponent*> FPresent;
    std::vector<TPending> FPending;
    // The properties of the present component that it does not publish.
    std::vector<const TFormProperty*> FLeft;
};

} // namespace

void LoadFormFromText(const std::string& Text, TComponent* Root, const TFormOptions& Options) {
    const TFormObject Form = ParseForm(Text);
    TFormReader(Root, Options).Read(Form);
}

} // namespace quill
