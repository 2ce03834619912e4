// EMF+ records: the data of an EMF file's comments -> checked records.
// Source: [MS-EMFPLUS] 2.3.
#pragma once

#include "metafile/plus/plus_records.h"

#include <functional>
#include <map>
#include <span>

namespace metafile {

class PlusReader {
  public:
    using Sink = std::function<void(const PlusRecord&)>;

    // One comment's data. Objects that are told in several records, maybe in several comments, are
    // put together. A record that cannot be read is left out, which `leaveOut` is told: it may have
    // taken long. Throws what the two throw and nothing else.
    void read(std::span<const std::byte> comment, const Sink& sink,
              const std::function<void()>& leaveOut);

  private:
    void readRecord(std::uint16_t type, std::uint16_t flags, std::span<const std::byte> data,
                    const Sink& sink);
    void readObject(std::uint16_t flags, std::span<const std::byte> data, const Sink& sink);

    // An object told in parts.
    struct Unfinished {
        unsigned flags = 0; // kind and number
        std::size_t size = 0;
        std::vector<std::byte> bytes;
    };
    std::optional<Unfinished> unfinished_;
};

// A comment's records, one after the other: type, flags, data. Returns false when the data cannot
// be followed to its end.
bool forEachPlusRecord(
    std::span<const std::byte> comment,
    const std::function<void(std::uint16_t, std::uint16_t, std::span<const std::byte>)>& take);

} // namespace metafile
