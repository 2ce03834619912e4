// JPG through libjpeg-turbo: its top quality, and colours in the full resolution.
#include "imaging/encoding/formats.h"

#include <QColorSpace>

#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio> // the library's header takes it for granted
#include <jpeglib.h>
#include <new>

namespace imaging {

namespace {

// What the library works on. It knows no exceptions: its error exit jumps back to compress(), past
// functions of its own and those below that own nothing.
struct Compressor {
    jpeg_compress_struct library{};
    jpeg_error_mgr errors{};
    jpeg_destination_mgr destination{};
    std::jmp_buf whereToReturn{};
    std::array<char, JMSG_LENGTH_MAX> message{};
    std::vector<std::byte>* out = nullptr;
    std::array<JOCTET, 1U << 16U> buffer{};
    bool isOutOfMemory = false;
};

struct Source {
    const QImage& image; // 32 bits, or 8 of grey
    bool isGrey;
    const QByteArray& profile;
};

Compressor& compressorOf(j_compress_ptr library) {
    return *static_cast<Compressor*>(library->client_data);
}

[[noreturn]] void leave(j_common_ptr library) {
    auto* compressor = static_cast<Compressor*>(library->client_data);
    library->err->format_message(library, compressor->message.data());
    std::longjmp(compressor->whereToReturn, 1);
}

void keepQuiet(j_common_ptr) {}

// False where there is no memory; no exception may pass through the library.
bool append(Compressor& compressor, std::size_t count) noexcept {
    try {
        const auto bytes = std::as_bytes(std::span(compressor.buffer).first(count));
        compressor.out->insert(compressor.out->end(), bytes.begin(), bytes.end());
        return true;
    } catch (const std::bad_alloc&) {
        compressor.isOutOfMemory = true;
        return false;
    }
}

void startBuffer(j_compress_ptr library) {
    Compressor& compressor = compressorOf(library);
    library->dest->next_output_byte = compressor.buffer.data();
    library->dest->free_in_buffer = compressor.buffer.size();
}

boolean emptyBuffer(j_compress_ptr library) {
    Compressor& compressor = compressorOf(library);
    if (!append(compressor, compressor.buffer.size())) {
        leave(reinterpret_cast<j_common_ptr>(library));
    }
    startBuffer(library);
    return TRUE;
}

void endBuffer(j_compress_ptr library) {
    Compressor& compressor = compressorOf(library);
    if (!append(compressor, compressor.buffer.size() - library->dest->free_in_buffer)) {
        leave(reinterpret_cast<j_common_ptr>(library));
    }
}

void setUp(Compressor& compressor) {
    jpeg_compress_struct& library = compressor.library;
    library.err = jpeg_std_error(&compressor.errors);
    compressor.errors.error_exit = leave;
    compressor.errors.output_message = keepQuiet;
    library.client_data = &compressor;
    compressor.destination.init_destination = startBuffer;
    compressor.destination.empty_output_buffer = emptyBuffer;
    compressor.destination.term_destination = endBuffer;
}

UINT16 dotsPerInch(int dotsPerMetre) {
    constexpr double kMetresPerInch = 0.0254;
    const double dots = std::clamp(dotsPerMetre * kMetresPerInch, 1.0, 65535.0);
    return static_cast<UINT16>(std::lround(dots));
}

void setParameters(jpeg_compress_struct& library, const Source& source) {
    constexpr int kTopQuality = 100;
    constexpr UINT8 kDotsPerInch = 1;
    library.image_width = static_cast<JDIMENSION>(source.image.width());
    library.image_height = static_cast<JDIMENSION>(source.image.height());
    library.input_components = source.isGrey ? 1 : 4;
    if (source.isGrey) {
        library.in_color_space = JCS_GRAYSCALE;
    } else {
        library.in_color_space =
            QSysInfo::ByteOrder == QSysInfo::LittleEndian ? JCS_EXT_BGRX : JCS_EXT_XRGB;
    }
    jpeg_set_defaults(&library);
    jpeg_set_quality(&library, kTopQuality, TRUE);
    library.dct_method = JDCT_ISLOW;
    for (int i = 0; i < library.num_components; ++i) {
        library.comp_info[i].h_samp_factor = library.comp_info[i].v_samp_factor = 1;
    }
    library.density_unit = kDotsPerInch;
    library.X_density = dotsPerInch(source.image.dotsPerMeterX());
    library.Y_density = dotsPerInch(source.image.dotsPerMeterY());
}

void writeRows(jpeg_compress_struct& library, const QImage& image) {
    while (library.next_scanline < library.image_height) {
        // The library only reads them; its interface is older than const.
        auto* row =
            const_cast<JSAMPROW>(image.constScanLine(static_cast<int>(library.next_scanline)));
        jpeg_write_scanlines(&library, &row, 1);
    }
}

// Whether all went well. Owns nothing and calls nothing that does, so that a jump leaks nothing.
bool compress(Compressor& compressor, const Source& source) {
    setUp(compressor);
    if (setjmp(compressor.whereToReturn) != 0) {
        jpeg_destroy_compress(&compressor.library);
        return false;
    }
    jpeg_create_compress(&compressor.library);
    compressor.library.client_data = &compressor;
    compressor.library.dest = &compressor.destination;
    setParameters(compressor.library, source);
    jpeg_start_compress(&compressor.library, TRUE);
    if (!source.profile.isEmpty()) {
        jpeg_write_icc_profile(&compressor.library,
                               reinterpret_cast<const JOCTET*>(source.profile.constData()),
                               static_cast<unsigned>(source.profile.size()));
    }
    writeRows(compressor.library, source.image);
    jpeg_finish_compress(&compressor.library);
    jpeg_destroy_compress(&compressor.library);
    return true;
}

// Empty for the colours that everybody supposes anyway.
QByteArray profileOf(const QImage& image) {
    const QColorSpace colours = image.colorSpace();
    if (!colours.isValid() || colours == QColorSpace(QColorSpace::SRgb)) {
        return {};
    }
    return colours.iccProfile();
}

} // namespace

std::vector<std::byte> encodeJpg(const QImage& image) {
    const QByteArray profile = profileOf(image);
    const bool hasAlpha = transparencyOf(image) != Transparency::None;
    QImage shown = hasAlpha ? onWhite(image) : image;
    const bool isGrey = profile.isEmpty() && shown.isGrayscale();
    if (isGrey) {
        shown = shown.convertToFormat(QImage::Format_Grayscale8);
    }
    if (shown.isNull()) {
        throw std::bad_alloc();
    }
    shown.setDotsPerMeterX(image.dotsPerMeterX());
    shown.setDotsPerMeterY(image.dotsPerMeterY());
    std::vector<std::byte> bytes;
    const auto compressor = std::make_unique<Compressor>();
    compressor->out = &bytes;
    if (compress(*compressor, {shown, isGrey, profile})) {
        return bytes;
    }
    if (compressor->isOutOfMemory) {
        throw std::bad_alloc();
    }
    throw EncodeError(std::string("the JPG picture cannot be written: ") +
                      compressor->message.data());
}

} // namespace imaging
