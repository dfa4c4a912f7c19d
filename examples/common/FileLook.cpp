#include "FileLook.h"

#include "host/base/Utf8.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <unordered_map>

namespace quill::examples {

namespace {

constexpr TFileType PlainFile{"File", picDocument};

// The types that have a picture, by the ending of the name.
const std::unordered_map<std::string_view, TFileType>& FileTypes() {
    static const auto Types = [] {
        std::unordered_map<std::string_view, TFileType> Map;
        const auto Add = [&Map](TFileType Type, std::initializer_list<std::string_view> Endings) {
            for (const std::string_view Ending : Endings) Map.emplace(Ending, Type);
        };
        Add({"Picture", picPicture}, {"png", "jpg", "jpeg", "gif", "bmp", "svg", "svgz", "xpm", "ico", "webp",
                                      "tif", "tiff", "pcx", "ppm", "avif", "heic"});
        Add({"Archive", picArchive}, {"zip", "gz", "bz2", "xz", "zst", "tar", "tgz", "7z", "rar", "deb",
                                      "rpm", "jar", "lz", "lzma", "iso"});
        Add({"Program text", picCode},
            {"c",    "cc",  "cpp", "cxx", "h",    "hpp",   "py",   "js",  "ts",  "java", "rs",  "go",
             "rb",   "pl",  "pm",  "sh",  "bash", "cmake", "html", "css", "xml", "json", "yml", "yaml",
             "toml", "sql", "lua", "tcl", "el",   "vim",   "awk",  "m4",  "php", "qml"});
        Add({"Sound", picMusic}, {"mp3", "ogg", "oga", "wav", "flac", "m4a", "opus", "mid", "midi"});
        Add({"Text", picNote}, {"txt", "md", "rst", "log", "readme", "nodes", "csv", "tex", "ini", "conf"});
        return Map;
    }();
    return Types;
}

} // namespace

TFileType FileTypeOf(const std::string& Name) {
    const std::size_t Dot = Name.rfind('.');
    if (Dot == std::string::npos || Dot == 0) return PlainFile;
    std::string Ending = Name.substr(Dot + 1);
    std::transform(Ending.begin(), Ending.end(), Ending.begin(),
                   [](unsigned char Char) { return static_cast<char>(std::tolower(Char)); });
    const auto Found = FileTypes().find(Ending);
    return Found == FileTypes().end() ? PlainFile : Found->second;
}

std::string ShownName(const std::string& Name) {
    constexpr char32_t ControlPictures = 0x2400;
    constexpr char32_t PictureOfDelete = 0x2421;
    if (std::none_of(Name.begin(), Name.end(), [](unsigned char Char) { return Char < 32 || Char == 127; })) {
        return Name;
    }
    std::string Shown;
    for (const char Char : Name) {
        const auto Code = static_cast<unsigned char>(Char);
        if (Code < 32) {
            AppendUtf8(Shown, ControlPictures + Code);
        } else if (Code == 127) {
            AppendUtf8(Shown, PictureOfDelete);
        } else {
            Shown += Char;
        }
    }
    return Shown;
}

std::string SizeText(std::int64_t Bytes) {
    static const QLocale Locale;
    return Locale.formattedDataSize(Bytes, Bytes < 1024 ? 0 : 1, QLocale::DataSizeTraditionalFormat)
        .toStdString();
}

std::string DateText(std::time_t Time) {
    std::tm Parts{};
    std::array<char, 40> Text{};
    if (!::localtime_r(&Time, &Parts)) return {};
    return std::string(Text.data(), std::strftime(Text.data(), Text.size(), "%Y-%m-%d %H:%M", &Parts));
}

} // namespace quill::examples
