// String lists with their text and comma-text forms.
#pragma once

#include "host/base/Objects.h"

#include <string>
#include <string_view>
#include <vector>

namespace quill {

class TStream;

// An ordered list of strings (UTF-8), each with an optional object pointer that the list does not own.
class TStrings : public TPersistent {
public:
    virtual int GetCount() const = 0;
    // An Index outside 0 .. Count - 1 raises EStringListError, here and below.
    virtual const std::string& Get(int Index) const = 0;
    virtual void Put(int Index, const std::string& S) = 0;
    virtual void* GetObjects(int Index) const = 0;
    virtual void PutObject(int Index, void* AObject) = 0;
    // Inserts before Index (0 .. Count).
    virtual void Insert(int Index, const std::string& S) = 0;
    virtual void Delete(int Index) = 0;
    virtual void Clear() = 0;

    const std::string& GetStrings(int Index) const { return Get(Index); }
    void SetStrings(int Index, const std::string& S) { Put(Index, S); }
    const std::string& operator[](int Index) const { return Get(Index); }

    // Returns the index of the new string.
    virtual int Add(const std::string& S);
    int AddObject(const std::string& S, void* AObject);
    void AddStrings(const TStrings& Source);
    void Append(const std::string& S) { Add(S); }
    // First index of S (exact match), -1 when missing.
    virtual int IndexOf(const std::string& S) const;
    void Exchange(int Index1, int Index2);
    void Move(int CurIndex, int NewIndex);

    // Every string followed by carriage return and line feed.
    std::string GetText() const;
    // Splits at line feed, carriage return or the pair; a last line without an end counts, an empty one does not.
    void SetText(std::string_view Value);
    // Strings joined by ","; one that is empty and alone, or holds a space, a character below it, a comma or a
    // double quote, stands in double quotes with inner quotes doubled.
    std::string GetCommaText() const;
    // The inverse; outside quotes commas and characters up to the space separate. A quoted item ends at its closing
    // quote, or at the end of the text; a comma that ends the text is followed by an empty item.
    void SetCommaText(std::string_view Value);

    // Reads the rest of the stream as text; a UTF-8 byte-order mark at its start is no part of it.
    void LoadFromStream(TStream& Stream);
    void SaveToStream(TStream& Stream) const;
    void LoadFromFile(const std::string& FileName);
    // Replaces the file safely (host/base/Files.h).
    void SaveToFile(const std::string& FileName) const;

    void BeginUpdate();
    void EndUpdate();

    void Assign(TPersistent* Source) override;
    bool Equals(const TStrings& Other) const;

protected:
    TStrings() = default;
    TStrings(const TStrings& Other) : TPersistent(Other) {}
    TStrings& operator=(const TStrings&) = delete;
    virtual void SetUpdateState(bool Updating);
    int GetUpdateCount() const { return FUpdateCount; }

private:
    int FUpdateCount = 0; // not copied: an update bracket is the business of one list
};

class TStringList : public TStrings {
public:
    TStringList() = default;
    TStringList(const TStringList& Other) : TStrings(Other), FItems(Other.FItems) {}
    TStringList& operator=(const TStringList&) = delete;

    int GetCount() const override { return static_cast<int>(FItems.size()); }
    const std::string& Get(int Index) const override;
    void Put(int Index, const std::string& S) override;
    void* GetObjects(int Index) const override;
    void PutObject(int Index, void* AObject) override;
    void Insert(int Index, const std::string& S) override;
    void Delete(int Index) override;
    void Clear() override;
    int Add(const std::string& S) override;
    void Reserve(int Capacity) { FItems.reserve(static_cast<std::size_t>(Capacity)); }
    // Sorts by bytes (code point order).
    void Sort();

    // After every change, or once at the end of an update bracket.
    TNotifyEvent OnChange;
    TNotifyEvent OnChanging;

protected:
    void SetUpdateState(bool Updating) override;

private:
    struct TItem {
        std::string Text;
        void* Object = nullptr;
    };
    TItem& Item(int Index);
    const TItem& Item(int Index) const;
    void Changing();
    void Changed();

    std::vector<TItem> FItems;
};

// The rules of text and comma text on their own, for parsers that want no list.
// Appends one item in comma-text form to Out. IsOnly tells that it is the only item of its record.
void AppendCommaTextItem(std::string& Out, std::string_view Item, bool IsOnly);
// Reads the item at Pos and moves Pos behind it and its separator; false at the end of the text. Pos starts at 0,
// or behind an indentation, and belongs to this function afterwards: at the end it may lie one past the text.
// Unquoted items are views into Text; quoted ones with doubled quotes are unfolded into Buffer.
bool NextCommaTextItem(std::string_view Text, std::size_t& Pos, std::string& Buffer, std::string_view& Item);
// Reads the line at Pos without its end and moves Pos behind the end; false when nothing is left.
bool NextTextLine(std::string_view Text, std::size_t& Pos, std::string_view& Line);

} // namespace quill
