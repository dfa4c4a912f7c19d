#include "host/transfer/ClipboardFormats.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace quill {

namespace {

constexpr std::size_t FirstRegistered = 0xC000;
constexpr std::size_t MostRegistered = 0x4000;
// How Qt names the registered formats of a platform that has them, so that its programs understand ours.
constexpr std::string_view PrivatePrefix = "application/x-qt-windows-mime;value=\"";

std::string Folded(std::string_view Name) {
    std::string Result(Name);
    for (char& C : Result)
        if (C >= 'A' && C <= 'Z') C = static_cast<char>(C - 'A' + 'a');
    return Result;
}

struct TNames {
    std::vector<std::string> Names;
    std::unordered_map<std::string, std::uint16_t> Numbers; // by folded name
};

TNames& Names() {
    static TNames* const Result = new TNames; // formats are registered by objects with static life, too
    return *Result;
}

} // namespace

std::uint16_t RegisterClipboardFormatA(std::string_view Name) {
    if (Name.empty()) return 0;
    TNames& All = Names();
    const std::string Key = Folded(Name);
    if (const auto Place = All.Numbers.find(Key); Place != All.Numbers.end()) return Place->second;
    if (All.Names.size() >= MostRegistered) return 0;
    const auto Number = static_cast<std::uint16_t>(FirstRegistered + All.Names.size());
    All.Names.emplace_back(Name);
    All.Numbers.emplace(Key, Number);
    return Number;
}

std::string GetClipboardFormatName(std::uint16_t Format) {
    const TNames& All = Names();
    if (Format < FirstRegistered || Format - FirstRegistered >= All.Names.size()) return {};
    return All.Names[Format - FirstRegistered];
}

std::string MimeTypeOfFormat(std::uint16_t Format) {
    std::string Name = GetClipboardFormatName(Format);
    if (Name.empty() || Name.find('/') != std::string::npos) return Name;
    return std::string(PrivatePrefix) + Name + '"';
}

std::uint16_t FormatOfMimeType(std::string_view MimeType) {
    if (MimeType.starts_with(PrivatePrefix) && MimeType.ends_with('"') &&
        MimeType.size() > PrivatePrefix.size() + 1)
        MimeType = MimeType.substr(PrivatePrefix.size(), MimeType.size() - PrivatePrefix.size() - 1);
    return RegisterClipboardFormatA(MimeType);
}

} // namespace quill
