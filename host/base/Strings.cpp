#include "host/base/Strings.h"

#include "host/base/Errors.h"
#include "host/base/Events.h"
#include "host/base/Files.h"
#include "host/base/Numbers.h"
#include "host/base/Streams.h"
#include "host/base/Texts.h"

namespace quill {

namespace {

constexpr std::string_view Utf8ByteOrderMark = "\xEF\xBB\xBF";

// Runs Change between BeginUpdate and EndUpdate, also when it raises.
template <class TChange>
void InUpdate(TStrings& List, TChange Change) {
    List.BeginUpdate();
    try {
        Change();
    } catch (...) {
        List.EndUpdate();
        throw;
    }
    List.EndUpdate();
}

[[noreturn]] void IndexError(int Index) {
    throw EStringListError(FormatText(SListIndexError, {IntToStr(Index)}));
}

} // namespace

int TStrings::Add(const std::string& S) {
    const int Index = GetCount();
    Insert(Index, S);
    return Index;
}

int TStrings::AddObject(const std::string& S, void* AObject) {
    const int Index = Add(S);
    PutObject(Index, AObject);
    return Index;
}

void TStrings::AddStrings(const TStrings& Source) {
    InUpdate(*this, [&] {
        const int Count = Source.GetCount(); // Source may be this list
        for (int I = 0; I < Count; ++I) AddObject(Source.Get(I), Source.GetObjects(I));
    });
}

int TStrings::IndexOf(const std::string& S) const {
    const int Count = GetCount();
    for (int I = 0; I < Count; ++I)
        if (Get(I) == S) return I;
    return -1;
}

void TStrings::Exchange(int Index1, int Index2) {
    const std::string S1 = Get(Index1);
    const std::string S2 = Get(Index2);
    void* const Object1 = GetObjects(Index1);
    void* const Object2 = GetObjects(Index2);
    InUpdate(*this, [&] {
        Put(Index1, S2);
        Put(Index2, S1);
        PutObject(Index1, Object2);
        PutObject(Index2, Object1);
    });
}

void TStrings::Move(int CurIndex, int NewIndex) {
    if (CurIndex == NewIndex) return;
    const std::string S = Get(CurIndex);
    void* const Object = GetObjects(CurIndex);
    if (NewIndex < 0 || NewIndex >= GetCount()) IndexError(NewIndex);
    InUpdate(*this, [&] {
        Delete(CurIndex);
        Insert(NewIndex, S);
        PutObject(NewIndex, Object);
    });
}

std::string TStrings::GetText() const {
    const int Count = GetCount();
    std::size_t Size = 0;
    for (int I = 0; I < Count; ++I) Size += Get(I).size() + 2;
    std::string Text;
    Text.reserve(Size);
    for (int I = 0; I < Count; ++I) Text.append(Get(I)).append("\r\n");
    return Text;
}

void TStrings::SetText(std::string_view Value) {
    const std::string Text(Value); // Value may be a view into one of our strings
    InUpdate(*this, [&] {
        Clear();
        std::string_view Line;
        for (std::size_t Pos = 0; NextTextLine(Text, Pos, Line);) Add(std::string(Line));
    });
}

std::string TStrings::GetCommaText() const {
    std::string Text;
    const int Count = GetCount();
    for (int I = 0; I < Count; ++I) {
        if (I > 0) Text += ',';
        AppendCommaTextItem(Text, Get(I), Count == 1);
    }
    return Text;
}

void TStrings::SetCommaText(std::string_view Value) {
    const std::string Text(Value);
    InUpdate(*this, [&] {
        Clear();
        std::string Buffer;
        std::string_view Item;
        for (std::size_t Pos = 0; NextCommaTextItem(Text, Pos, Buffer, Item);) Add(std::string(Item));
    });
}

void TStrings::LoadFromStream(TStream& Stream) {
    const std::string Content = Stream.ReadRest();
    std::string_view Text = Content;
    if (Text.starts_with(Utf8ByteOrderMark)) Text.remove_prefix(Utf8ByteOrderMark.size());
    SetText(Text);
}

void TStrings::SaveToStream(TStream& Stream) const {
    const std::string Text = GetText();
    Stream.WriteBuffer(Text.data(), static_cast<std::int64_t>(Text.size()));
}

void TStrings::LoadFromFile(const std::string& FileName) {
    TFileStream Stream(FileName, fmOpenRead);
    LoadFromStream(Stream);
}

void TStrings::SaveToFile(const std::string& FileName) const {
    ReplaceFile(FileName, [&](TStream& Stream) { SaveToStream(Stream); });
}

void TStrings::BeginUpdate() {
    if (FUpdateCount == 0) SetUpdateState(true);
    ++FUpdateCount;
}

void TStrings::EndUpdate() {
    if (FUpdateCount > 0 && --FUpdateCount == 0) SetUpdateState(false);
}

void TStrings::SetUpdateState(bool) {}

void TStrings::Assign(TPersistent* Source) {
    const auto* Strings = dynamic_cast<TStrings*>(Source);
    if (!Strings) {
        TPersistent::Assign(Source);
        return;
    }
    if (Strings == this) return;
    InUpdate(*this, [&] {
        Clear();
        AddStrings(*Strings);
    });
}

bool TStrings::Equals(const TStrings& Other) const {
    const int Count = GetCount();
    if (Count != Other.GetCount()) return false;
    for (int I = 0; I < Count; ++I)
        if (Get(I) != Other.Get(I)) return false;
    return true;
}

TStringList::TItem& TStringList::Item(int Index) {
    if (Index < 0 || Index >= GetCount()) IndexError(Index);
    return FItems[static_cast<std::size_t>(Index)];
}

const TStringList::TItem& TStringList::Item(int Index) const {
    if (Index < 0 || Index >= GetCount()) IndexError(Index);
    return FItems[static_cast<std::size_t>(Index)];
}

const std::string& TStringList::Get(int Index) const { return Item(Index).Text; }

void TStringList::Put(int Index, const std::string& S) {
    Item(Index);
    Changing();
    Item(Index).Text = S;
    Changed();
}

void* TStringList::GetObjects(int Index) const { return Item(Index).Object; }

void TStringList::PutObject(int Index, void* AObject) {
    if (Item(Index).Object == AObject) return;
    Changing();
    Item(Index).Object = AObject;
    Changed();
}

void TStringList::Insert(int Index, const std::string& S) {
    if (Index < 0 || Index > GetCount()) IndexError(Index);
    TItem NewItem{S, nullptr}; // S may be one of our strings
    Changing();
    if (Index > GetCount()) IndexError(Index);
    FItems.insert(FItems.begin() + Index, std::move(NewItem));
    Changed();
}

void TStringList::Delete(int Index) {
    Item(Index);
    Changing();
    Item(Index);
    FItems.erase(FItems.begin() + Index);
    Changed();
}

void TStringList::Clear() {
    if (FItems.empty()) return;
    Changing();
    FItems.clear();
    Changed();
}

int TStringList::Add(const std::string& S) {
    TItem NewItem{S, nullptr};
    Changing();
    const int Index = GetCount();
    FItems.push_back(std::move(NewItem));
    Changed();
    return Index;
}

void TStringList::Sort() {
    Changing();
    std::stable_sort(FItems.begin(), FItems.end(),
                     [](const TItem& A, const TItem& B) { return A.Text < B.Text; });
    Changed();
}

void TStringList::SetUpdateState(bool Updating) {
    if (Updating) {
        Changing();
    } else {
        Changed();
    }
}

void TStringList::Changing() {
    if (GetUpdateCount() == 0) FireEvent(OnChanging, this);
}

void TStringList::Changed() {
    if (GetUpdateCount() == 0) FireEvent(OnChange, this);
}

} // namespace quill
