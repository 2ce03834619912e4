// Feeds arbitrary bytes to one metafile reader, or to readers and player together (TXS_READER).
#include "imaging/byte_reader.h"
#include "metafile/emf/emf_reader.h"
#include "metafile/metafile.h"
#include "metafile/plus/plus_reader.h"
#include "metafile/wmf/wmf_reader.h"

#include <QGuiApplication>

#include <cstdint>

namespace {

using Bytes = std::span<const std::byte>;

class Nothing : public metafile::RecordSink {
  public:
    void take(const metafile::Record&) override {}
    void takePlus(Bytes comment) override {
        plus_.read(
            comment, [](const metafile::PlusRecord&) {}, [] {});
    }
    void leaveOut() override {}

  private:
    metafile::PlusReader plus_;
};

[[maybe_unused]] void readEmf(Bytes bytes) {
    Nothing sink;
    metafile::readEmf(bytes, sink);
    metafile::readEmfLayout(bytes);
}

[[maybe_unused]] void readWmf(Bytes bytes) {
    Nothing sink;
    metafile::readWmf(bytes, sink);
    metafile::readWmfLayout(bytes);
}

[[maybe_unused]] void readPlus(Bytes bytes) {
    Nothing sink;
    sink.takePlus(bytes);
}

[[maybe_unused]] void draw(Bytes bytes) {
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(count, arguments);
    metafile::draw(bytes, {48, 48});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        TXS_READER(std::as_bytes(std::span(data, size)));
    } catch (const picture::DecodeError&) {
        return 0; // what a reader says of bytes that are no metafile
    }
    return 0;
}
