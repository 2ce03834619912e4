// EMF+ records and objects built field by field, in files whose device pixels are the pixels of the
// pictures drawn of them.
#pragma once

#include "metafile/metafile_bytes.h"

namespace metafile::testing {

inline constexpr std::uint32_t kVersion = 0xDBC01002;
inline constexpr unsigned kColourFlag = 0x8000; // a fill names a colour, not a brush

class Data {
  public:
    Data& word(std::uint32_t value);
    Data& words(const std::vector<std::uint32_t>& values);
    Data& shorts(const std::vector<int>& values);
    Data& reals(const std::vector<float>& values);
    Data& text(std::u16string_view characters);
    Data& append(const Bytes& more);

    Bytes bytes;
};

enum class Half { Only, Dual };

// EMF+ records in one comment of a 40 x 40 file, behind their header.
class PlusFile {
  public:
    explicit PlusFile(Half half = Half::Only);

    PlusFile& add(unsigned type, unsigned flags, const Data& data = {});
    PlusFile& object(unsigned type, unsigned id, const Data& data);
    PlusFile& fill(const std::vector<float>& rectangle, std::uint32_t colour);
    PlusFile& fillWith(unsigned brush, const std::vector<float>& rectangle);

    EmfFile& into(EmfFile& file) const;
    QImage drawn() const;

  private:
    Bytes records_;
};

// Objects.
Data solidBrush(std::uint32_t colour);
Data pen(float width, std::uint32_t colour);
// A pen whose `options` are the fields that `flags` announce.
Data penWith(std::uint32_t flags, float width, std::uint32_t colour, const Data& options);
Data font(float size, std::u16string_view family);
// One row of pixels, to be followed by them.
Data bitmapImage(std::uint32_t format, int width, int stride);
Data metafileImage(std::uint32_t type, const Bytes& file);

// The data of a DrawImage record for a whole one-row image.
Data wholeImage(const std::vector<float>& destination, float width);

} // namespace metafile::testing
