// Writes the seeds of every target into FOLDER/TARGET and its words into FOLDER/TARGET.words, as
// libFuzzer takes them, and prints the targets' names.
// usage: fuzz_seeds FOLDER
#include "fuzz/target.h"

#include <QGuiApplication>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

std::string quoted(const std::string& word) {
    std::string text = "\"";
    for (const char character : word) {
        char code[5];
        std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(character));
        text += code;
    }
    return text + "\"\n";
}

void write(const fuzz::Target& target, const fs::path& folder) {
    fs::create_directories(folder / target.name);
    for (const auto& [name, bytes] : target.seeds()) {
        std::ofstream(folder / target.name / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
    std::ofstream words(folder / (target.name + ".words"));
    for (const std::string& word : target.words) {
        words << quoted(word);
    }
    std::puts(target.name.c_str());
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: fuzz_seeds FOLDER\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    for (const fuzz::Target& target : fuzz::allTargets()) {
        write(target, arguments[1]);
    }
}
