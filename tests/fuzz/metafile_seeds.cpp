// Writes metafiles with records of every family into a folder, for the fuzz targets to begin with.
// usage: metafile_seeds FOLDER
#include "metafile/metafile_bytes.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

using metafile::testing::Bytes;
using metafile::testing::EmfFile;
using metafile::testing::WmfFile;

void write(const std::string& folder, const std::string& name, const Bytes& bytes) {
    std::ofstream file(folder + "/" + name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (!file) {
        std::fprintf(stderr, "%s/%s: cannot be written\n", folder.c_str(), name.c_str());
    }
}

Bytes shapes() {
    EmfFile file(40, 40);
    file.pen(1, 2, 3, 255).brush(2, 255).rectangle(0, 0, 20, 20).add(42, {0, 0, 20, 20});
    file.add(44, {0, 0, 20, 20, 5, 5}).add(47, {0, 0, 20, 20, 20, 0, 0, 20});
    file.add(41, {10, 10, 5, 0, 0x42B40000}).add(27, {0, 0}).add(54, {20, 20});
    file.add(3, {0, 0, -1, -1, 3, 0, 0, 9, 9, 0, 9}).add(59).add(54, {3, 3}).add(61).add(60);
    file.add(67, {1}).add(33).add(30, {0, 0, 9, 9}).add(34, {-1});
    return file.bytes();
}

Bytes texts() {
    EmfFile file(40, 40);
    file.font(1, -12, 450, u"Symbol", 2).text(5, 5, u"abc", {5, 5, 5}).font(2, 12, 0, u"Arial");
    return file.add(22, {30}).text(5, 5, u"xyz", {}, 2).bytes();
}

Bytes windows() {
    WmfFile file;
    file.window(0, 0, 40, 40).add(0x02FA, {0, 2, 0, 255, 0}).add(0x012D, {0});
    file.add(0x0538, {2, 3, 3, 0, 0, 9, 0, 9, 9, 20, 20, 30, 20, 30, 30});
    file.add(0x0A32, {5, 5, 2, 2, 0, 0, 9, 9, 0x4241, 5, 5}).add(0x0817, {0, 9, 9, 0, 9, 9, 0, 0});
    file.add(0x06FF, {0, 6, 0, 0, 0, 1, 2, 5, 5, 25, 15, 2, 5, 15, 5, 25, 2}).add(0x0228, {1, 0});
    return file.placeable(0, 0, 40, 40, 96);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: metafile_seeds FOLDER\n");
        return 2;
    }
    write(argv[1], "shapes.emf", shapes());
    write(argv[1], "texts.emf", texts());
    write(argv[1], "windows.wmf", windows());
    return 0;
}
