#include "metafile/text/character_sets.h"

#include "base/windows_1252.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace metafile {

namespace {

enum class Width { OneByte, OneOrTwoBytes };

struct CodePage {
    std::uint8_t characterSet;
    Width width;
    const char* decoder;
};

// JOHAB (130) is missing: ICU, which decodes for Qt, does not know it.
constexpr std::array kCodePages{
    CodePage{77, Width::OneByte, "macintosh"},
    CodePage{128, Width::OneOrTwoBytes, "windows-932"},
    CodePage{129, Width::OneOrTwoBytes, "windows-949"},
    CodePage{134, Width::OneOrTwoBytes, "windows-936"},
    CodePage{136, Width::OneOrTwoBytes, "windows-950"},
    CodePage{161, Width::OneByte, "windows-1253"},
    CodePage{162, Width::OneByte, "windows-1254"},
    CodePage{163, Width::OneByte, "windows-1258"},
    CodePage{177, Width::OneByte, "windows-1255"},
    CodePage{178, Width::OneByte, "windows-1256"},
    CodePage{186, Width::OneByte, "windows-1257"},
    CodePage{204, Width::OneByte, "windows-1251"},
    CodePage{222, Width::OneByte, "windows-874"},
    CodePage{238, Width::OneByte, "windows-1250"},
    CodePage{255, Width::OneByte, "ibm-437"},
};
constexpr std::uint8_t kShiftJis = 128;

const CodePage* codePageOf(std::uint8_t characterSet) {
    const auto* found = std::ranges::find(kCodePages, characterSet, &CodePage::characterSet);
    return found == kCodePages.end() ? nullptr : found;
}

bool isLeadByte(const CodePage& page, std::uint8_t byte) {
    if (page.width == Width::OneByte) {
        return false;
    }
    if (page.characterSet == kShiftJis) { // between the two ranges stand half-width katakana
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    }
    return byte >= 0x81 && byte <= 0xFE;
}

// Turns the bytes of one character at a time into Unicode.
class CharacterDecoder {
  public:
    explicit CharacterDecoder(const CodePage& page) : name_(page.decoder), decoder_(name_) {}

    bool isValid() const { return decoder_.isValid(); }

    // Empty when the code page has no such character.
    QString decode(std::span<const std::byte> character) {
        QString text =
            decoder_.decode(QByteArrayView(character.data(), qsizetype(character.size())));
        // ICU's own replacement in some double-byte pages is the control character SUBSTITUTE.
        const bool isWrong = decoder_.hasError() || text.isEmpty() ||
                             text.contains(QChar::ReplacementCharacter) ||
                             text.contains(QChar(0x1A));
        if (!isWrong) {
            return text;
        }
        decoder_ = QStringDecoder(name_); // one of ICU's does not survive resetState()
        return {};
    }

  private:
    const char* name_;
    QStringDecoder decoder_;
};

class TextBuilder {
  public:
    explicit TextBuilder(std::size_t size) {
        decoded_.text.reserve(qsizetype(size));
        decoded_.byteOfUnit.reserve(size);
    }

    void append(const QString& text, std::size_t byte) {
        decoded_.text += text;
        decoded_.byteOfUnit.insert(decoded_.byteOfUnit.end(), std::size_t(text.size()), int(byte));
    }
    void append(QChar unit, std::size_t byte) {
        decoded_.text += unit;
        decoded_.byteOfUnit.push_back(int(byte));
    }
    DecodedText take() { return std::move(decoded_); }

  private:
    DecodedText decoded_;
};

DecodedText symbolText(std::span<const std::byte> bytes) {
    TextBuilder builder(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        builder.append(QChar(char16_t(0xF000 + std::to_integer<unsigned>(bytes[at]))), at);
    }
    return builder.take();
}

DecodedText windows1252Text(std::span<const std::byte> bytes) {
    TextBuilder builder(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        builder.append(base::fromWindows1252(std::to_integer<std::uint8_t>(bytes[at])), at);
    }
    return builder.take();
}

DecodedText codePageText(std::span<const std::byte> bytes, const CodePage& page,
                         CharacterDecoder& decoder) {
    TextBuilder builder(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const auto byte = std::to_integer<std::uint8_t>(bytes[at]);
        if (byte < 0x80) { // ASCII in all of them
            builder.append(QChar(char16_t(byte)), at++);
            continue;
        }
        const std::size_t length = isLeadByte(page, byte) ? 2 : 1;
        const QString text =
            length <= bytes.size() - at ? decoder.decode(bytes.subspan(at, length)) : QString();
        if (text.isEmpty()) { // the second byte, if any, may well be a character by itself
            builder.append(base::fromWindows1252(byte), at++);
        } else {
            builder.append(text, at);
            at += length;
        }
    }
    return builder.take();
}

} // namespace

DecodedText textOf(std::span<const std::byte> bytes, std::uint8_t characterSet) {
    if (characterSet == kSymbolCharacterSet) {
        return symbolText(bytes);
    }
    if (const CodePage* page = codePageOf(characterSet)) {
        CharacterDecoder decoder(*page);
        if (decoder.isValid()) {
            return codePageText(bytes, *page, decoder);
        }
    }
    return windows1252Text(bytes);
}

} // namespace metafile
