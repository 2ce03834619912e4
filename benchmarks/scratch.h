// What benchmarks need to make files: noise, durable writing, a folder of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace benchmarks {

// A bitmap file of noise, width x height pixels of 24 bits, so that no layer can profit from its
// content. The width is a multiple of 4, so that no row needs filling up.
std::vector<std::byte> noiseBitmap(int width, int height, unsigned seed);

// Writes a new file, or anew what stands there.
enum class Durable { Yes, No };
void writeFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
               Durable durable);

// The whole content of a file, into memory that serves again.
void readFile(const std::filesystem::path& path, std::vector<std::byte>& into);

void syncFolder(const std::filesystem::path& folder);

// A folder of its own below the working directory's file system, removed at the end.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

} // namespace benchmarks
