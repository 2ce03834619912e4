// Texts that other programs and users write: records, the texts of group files, settings.
#include "fuzz/target.h"
#include "platform/settings_file.h"
#include "store/picture_record.h"
#include "store/text_codec.h"

#include <cmath>

namespace fuzz {
namespace {

void useRecord(std::span<const std::byte> input) {
    const std::u16string text = store::decodeText(input);
    require(text.find(u'\0') == std::u16string::npos && text.size() <= input.size(),
            "a text goes on behind its end");
    if (const auto again = store::encodeText(text)) {
        require(std::equal(again->begin(), again->end(), input.begin()), "a text became another");
    }
    const store::PictureRecord record =
        store::parseRecord({reinterpret_cast<const char*>(input.data()), input.size()});
    require(std::isfinite(record.height) && std::isfinite(record.width), "a size without end");
    if (!record.type.empty()) {
        // Sizes are written with seven digits; from then on they stay.
        const std::string written = store::formatRecord(record, u',');
        require(store::formatRecord(store::parseRecord(written), u',') == written,
                "a record is read as another than was written");
    }
}

void useSettings(std::span<const std::byte> input) {
    const QByteArray bytes(reinterpret_cast<const char*>(input.data()),
                           static_cast<qsizetype>(input.size()));
    auto file = platform::SettingsFile::parse(bytes);
    if (!file) {
        return;
    }
    const QString key = QStringLiteral("Software\\Maker\\Program");
    const auto kept = file->value(key, QStringLiteral("Kept"));
    // A text of the same characters, those that no line can hold included.
    const QString text = QString::fromLatin1(bytes.right(24));
    file->setValue(key, QStringLiteral("Changed"), text);
    const auto again = platform::SettingsFile::parse(file->toBytes());
    require(again && again->toBytes() == file->toBytes(), "what was written is read as another");
    require(again->value(key, QStringLiteral("Changed")) == text, "a value is lost");
    require(again->value(key, QStringLiteral("Kept")) == kept, "another value was changed");
}

Bytes bytesOf(const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::map<std::string, Bytes> recordSeeds() {
    return {{"point", bytesOf("h48w64tGIF")},
            {"comma", bytesOf("h31,5w64,25tBMP")},
            {"small", bytesOf("h1.5E-05w3.402823E+38tJPG")}};
}

std::map<std::string, Bytes> settingsSeeds() {
    return {{"values", bytesOf("# ours\n[Software\\Maker\\Program]\nKept=\" a \"\nPath=/srv/b\n\n"
                               "[software\\maker\\PROGRAM]\nchanged=hex(1):004e0031\n; end\nodd")}};
}

} // namespace

std::vector<Target> textTargets() {
    return {{"record", useRecord, recordSeeds, {"h", "w", "t", "WMF", "JPG", "E+", ",", "."}},
            {"settings", useSettings, settingsSeeds, {"[", "]", "hex(1):", "\"", "Kept=", "\r\n"}}};
}

} // namespace fuzz
