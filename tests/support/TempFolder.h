// Files for tests, in a folder that is removed, with its content, when the object goes. Names are relative to it.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace quill::testing {

class TTempFolder {
public:
    TTempFolder() {
        std::random_device Random;
        do FPath = std::filesystem::temp_directory_path() / ("quill-test-" + std::to_string(Random()));
        while (!std::filesystem::create_directory(FPath));
    }
    ~TTempFolder() {
        std::error_code Ignored;
        std::filesystem::remove_all(FPath, Ignored);
    }
    TTempFolder(const TTempFolder&) = delete;
    TTempFolder& operator=(const TTempFolder&) = delete;

    std::string File(const std::string& Name) const { return FPath.string() + "/" + Name; }
    // Folders on the way are made.
    void Put(const std::string& Name, const std::string& Text) const {
        std::filesystem::create_directories((FPath / Name).parent_path());
        std::ofstream(FPath / Name, std::ios::binary) << Text;
    }
    std::string Content(const std::string& Name) const {
        std::ifstream Stream(FPath / Name, std::ios::binary);
        return {std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
    }
    // The names in a folder, sorted, each with a space behind it.
    std::string Names(const std::string& Folder = {}) const {
        std::vector<std::string> Found;
        for (const auto& Entry : std::filesystem::directory_iterator(FPath / Folder))
            Found.push_back(Entry.path().filename().string() + " ");
        std::sort(Found.begin(), Found.end());
        std::string Text;
        for (const std::string& Name : Found) Text += Name;
        return Text;
    }

private:
    std::filesystem::path FPath;
};

} // namespace quill::testing
