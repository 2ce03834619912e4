#include "metafile/plus_bytes.h"

#include <bit>

namespace metafile::testing {

Data& Data::word(std::uint32_t value) {
    put32(bytes, value);
    return *this;
}

Data& Data::words(const std::vector<std::uint32_t>& values) {
    for (const std::uint32_t value : values) {
        put32(bytes, value);
    }
    return *this;
}

Data& Data::shorts(const std::vector<int>& values) {
    for (const int value : values) {
        put16(bytes, static_cast<unsigned>(value) & 0xFFFFU);
    }
    return *this;
}

Data& Data::reals(const std::vector<float>& values) {
    for (const float value : values) {
        put32(bytes, std::bit_cast<std::uint32_t>(value));
    }
    return *this;
}

Data& Data::text(std::u16string_view characters) {
    for (const char16_t unit : characters) {
        put16(bytes, unit);
    }
    return *this;
}

Data& Data::append(const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
}

PlusFile::PlusFile(Half half) {
    add(0x4001, half == Half::Dual ? 1 : 0, Data().word(kVersion).words({0, 96, 96}));
}

PlusFile& PlusFile::add(unsigned type, unsigned flags, const Data& data) {
    put16(records_, type);
    put16(records_, flags);
    put32(records_, static_cast<std::uint32_t>(data.bytes.size() + 12));
    put32(records_, static_cast<std::uint32_t>(data.bytes.size()));
    records_.insert(records_.end(), data.bytes.begin(), data.bytes.end());
    return *this;
}

PlusFile& PlusFile::object(unsigned type, unsigned id, const Data& data) {
    return add(0x4008, type << 8U | id, data);
}

PlusFile& PlusFile::fill(const std::vector<float>& rectangle, std::uint32_t colour) {
    return add(0x400A, kColourFlag, Data().word(colour).word(1).reals(rectangle));
}

PlusFile& PlusFile::fillWith(unsigned brush, const std::vector<float>& rectangle) {
    return add(0x400A, 0, Data().word(brush).word(1).reals(rectangle));
}

EmfFile& PlusFile::into(EmfFile& file) const {
    Data comment;
    comment.word(static_cast<std::uint32_t>(records_.size() + 4)).word(0x2B464D45);
    return file.addBytes(70, comment.append(records_).bytes);
}

QImage PlusFile::drawn() const {
    EmfFile file(40, 40);
    return into(file).drawn();
}

Data solidBrush(std::uint32_t colour) {
    return Data().word(kVersion).word(0).word(colour);
}

Data pen(float width, std::uint32_t colour) {
    return penWith(0, width, colour, {});
}

Data penWith(std::uint32_t flags, float width, std::uint32_t colour, const Data& options) {
    Data data = Data().word(kVersion).words({0, flags, 0}).reals({width});
    return data.append(options.bytes).append(solidBrush(colour).bytes);
}

Data font(float size, std::u16string_view family) {
    Data data = Data().word(kVersion).reals({size}).words({2, 0, 0});
    return data.word(static_cast<std::uint32_t>(family.size())).text(family);
}

Data bitmapImage(std::uint32_t format, int width, int stride) {
    Data data = Data().word(kVersion).word(1).word(static_cast<std::uint32_t>(width)).word(1);
    return data.word(static_cast<std::uint32_t>(stride)).word(format).word(0);
}

Data metafileImage(std::uint32_t type, const Bytes& file) {
    Data data = Data().word(kVersion).word(2).word(type);
    return data.word(static_cast<std::uint32_t>(file.size())).append(file);
}

Data wholeImage(const std::vector<float>& destination, float width) {
    return Data().word(0).word(2).reals({0, 0, width, 1}).reals(destination);
}

} // namespace metafile::testing
