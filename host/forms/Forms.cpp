#include "host/forms/Forms.h"

#include "host/base/Files.h"
#include "host/base/Streams.h"

#include <map>

namespace quill {

namespace {

std::map<std::string, TComponentFactory, std::less<>>& Classes() {
    static std::map<std::string, TComponentFactory, std::less<>> Instance{
        {"TComponent", [](TComponent* Owner) { return new TComponent(Owner); }}};
    return Instance;
}

} // namespace

void RegisterComponentClass(const std::string& Name, TComponentFactory Factory) { Classes()[Name] = Factory; }

TComponentFactory FindComponentClass(const std::string& Name) {
    const auto Found = Classes().find(Name);
    return Found == Classes().end() ? nullptr : Found->second;
}

void SaveForm(TStream& Stream, TComponent* Root, const TFormOptions& Options) {
    const std::string Text = SaveFormToText(Root, Options);
    Stream.WriteBuffer(Text.data(), static_cast<std::int64_t>(Text.size()));
}

void SaveFormToFile(const std::string& FileName, TComponent* Root, const TFormOptions& Options) {
    const std::string Text = SaveFormToText(Root, Options);
    ReplaceFile(FileName, [&Text](TStream& Stream) {
        Stream.WriteBuffer(Text.data(), static_cast<std::int64_t>(Text.size()));
    });
}

void LoadForm(TStream& Stream, TComponent* Root, const TFormOptions& Options) {
    LoadFormFromText(Stream.ReadRest(), Root, Options);
}

void LoadFormFromFile(const std::string& FileName, TComponent* Root, const TFormOptions& Options) {
    TMemoryStream Content;
    Content.LoadFromFile(FileName);
    LoadFormFromText(Content.GetMemory(), Root, Options);
}

} // namespace quill
