// Feeds arbitrary bytes to one decoder (TXS_DECODER).
#include "imaging/decoders.h"
#include "picture/picture.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        (void)TXS_DECODER(std::as_bytes(std::span(data, size)));
    } catch (const picture::DecodeError&) {
        return 0; // what a decoder says of bytes that are no picture
    }
    return 0;
}
