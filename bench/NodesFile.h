// The nodes file of the load workload, and how a program without our tree reads it.
#pragma once

#include "bench/Data.h"

#include <array>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace quill::bench {

// A line a node, depth as leading tabs, then whether it is expanded and its texts, quoted since there are spaces.
inline void WriteNodesFile(const std::string& FileName, const TShape& Shape) {
    std::ofstream File(FileName, std::ios::binary);
    File << "SaveOptions:24\r\n";
    int Number = 0;
    const auto Line = [&](const char* Tabs) {
        const TTexts Texts = TextsOf(Number++);
        File << Tabs << "0,\"" << Texts[0] << "\",\"" << Texts[1] << "\",\"" << Texts[2] << "\"\r\n";
    };
    for (int Top = 0; Top < Shape.Tops; ++Top) {
        Line("");
        for (int Group = 0; Group < Shape.Groups; ++Group) {
            Line("\t");
            for (int Leaf = 0; Leaf < TShape::Leaves; ++Leaf) Line("\t\t");
        }
    }
}

using TTextViews = std::array<std::string_view, Columns>;

// Calls Node(Level, Texts) for each line: the whole file in memory, no copies, and no more of the format than this file
// needs (no doubled quotes).
template <class TNodeFunction>
void ReadNodesFile(const std::string& FileName, TNodeFunction Node) {
    std::ifstream File(FileName, std::ios::binary);
    std::string Buffer;
    File.seekg(0, std::ios::end);
    Buffer.resize(static_cast<std::size_t>(File.tellg()));
    File.seekg(0);
    File.read(Buffer.data(), static_cast<std::streamsize>(Buffer.size()));
    const std::string_view Text = Buffer;
    std::size_t Pos = Text.find('\n') + 1; // behind the header
    while (Pos < Text.size()) {
        const std::size_t End = std::min(Text.find('\r', Pos), Text.size());
        std::string_view Line = Text.substr(Pos, End - Pos);
        Pos = End + 2;
        const std::size_t Level = Line.find_first_not_of('\t');
        Line.remove_prefix(Level + 2); // the mark and its comma
        TTextViews Texts;
        for (std::string_view& Item : Texts) {
            const std::size_t Quote = Line.find('"', 1);
            Item = Line.substr(1, Quote - 1);
            Line.remove_prefix(std::min(Quote + 2, Line.size()));
        }
        Node(static_cast<int>(Level), Texts);
    }
}

} // namespace quill::bench
