// What the tests of data transfer share.
#pragma once

#include "host/graphics/Canvas.h"
#include "oledragdrop/OLEDragDrop.h"

#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

#include <string>

namespace quill::testing {

inline std::string Joined(const std::vector<std::string>& Names) {
    std::string Result;
    for (const std::string& Name : Names) Result += "[" + Name + "]";
    return Result;
}

inline TNVFormatEtc Format(int Number, std::uint32_t MediumTypes = TYMED_HGLOBAL | TYMED_GDI) {
    TNVFormatEtc Result;
    Result.cfFormat = static_cast<std::uint16_t>(Number);
    Result.tymed = MediumTypes;
    return Result;
}

inline TBitmap RedBitmap(int Width, int Height) {
    TBitmap Result;
    Result.SetSize(Width, Height);
    Result.GetCanvas()->GetBrush()->SetColor(clRed);
    Result.GetCanvas()->FillRect({0, 0, Width, Height});
    return Result;
}

constexpr const char* SmallSvg = "<svg xmlns='http://www.w3.org/2000/svg' width='30' height='2cm'/>";

// A source whose data and lies the test decides; each format answers what its entry says.
class TTestData : public TReadOnlyDataObject {
public:
    struct TEntry {
        int Format;
        std::string Bytes;
        HResult Result = S_OK;
        std::uint32_t Medium = TYMED_HGLOBAL;
        bool NoHandle = false;
    };
    explicit TTestData(std::vector<TEntry> Entries) : FEntries(std::move(Entries)) {}
    HResult GetData(const FORMATETC& Wanted, STGMEDIUM& Medium) override {
        Medium = {};
        ++Asked;
        for (const TEntry& Entry : FEntries) {
            if (Entry.Format != Wanted.cfFormat) continue;
            if (!Succeeded(Entry.Result)) return Entry.Result;
            Medium.tymed = Entry.Medium;
            if (!Entry.NoHandle) Medium.hGlobal = CopyToGlobal(Entry.Bytes);
            return Entry.Result;
        }
        return DV_E_FORMATETC;
    }
    int Asked = 0;

protected:
    std::vector<FORMATETC> GetFormats() override {
        std::vector<FORMATETC> Result;
        for (const TEntry& Entry : FEntries) Result.push_back(Format(Entry.Format));
        return Result;
    }

private:
    std::vector<TEntry> FEntries;
};

} // namespace quill::testing
