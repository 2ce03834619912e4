#include "scratch.h"

#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace benchmarks {
namespace {

void require(bool good, const std::filesystem::path& path) {
    if (!good) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}

class Descriptor {
  public:
    Descriptor(const std::filesystem::path& path, int flags)
        : descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {
        require(descriptor_ >= 0, path);
    }
    ~Descriptor() { close(descriptor_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return descriptor_; }

  private:
    int descriptor_;
};

void put(std::vector<std::byte>& bytes, std::size_t at, std::uint32_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        bytes[at + i] = static_cast<std::byte>((value >> (8U * i)) & 0xFFU);
    }
}

} // namespace

std::vector<std::byte> noiseBitmap(int width, int height, unsigned seed) {
    constexpr std::size_t kHeader = 54;
    std::vector<std::byte> bytes(kHeader + 3 * static_cast<std::size_t>(width) *
                                               static_cast<std::size_t>(height));
    put(bytes, 0, 0x4D42, 2);
    put(bytes, 2, static_cast<std::uint32_t>(bytes.size()), 4);
    put(bytes, 10, kHeader, 4);
    put(bytes, 14, 40, 4);
    put(bytes, 18, static_cast<std::uint32_t>(width), 4);
    put(bytes, 22, static_cast<std::uint32_t>(height), 4);
    put(bytes, 26, 1, 2);
    put(bytes, 28, 24, 2);
    std::mt19937 noise(seed);
    for (std::size_t i = kHeader; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(noise() & 0xFFU);
    }
    return bytes;
}

void writeFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
               Durable durable) {
    const Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC);
    const ssize_t written = write(file.get(), bytes.data(), bytes.size());
    require(written == static_cast<ssize_t>(bytes.size()), path);
    require(durable == Durable::No || fsync(file.get()) == 0, path);
}

void readFile(const std::filesystem::path& path, std::vector<std::byte>& into) {
    const Descriptor file(path, O_RDONLY);
    struct stat status = {};
    require(fstat(file.get(), &status) == 0, path);
    into.resize(static_cast<std::size_t>(status.st_size));
    require(read(file.get(), into.data(), into.size()) == status.st_size, path);
}

void syncFolder(const std::filesystem::path& folder) {
    const Descriptor descriptor(folder, O_RDONLY | O_DIRECTORY);
    require(fsync(descriptor.get()) == 0, folder);
}

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::current_path() / "txs-benchmark-XXXXXX").string();
    require(mkdtemp(pattern.data()) != nullptr, pattern);
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace benchmarks
