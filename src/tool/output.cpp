#include "tool/output.h"

#include "base/utf8.h"
#include "store/address.h"
#include "store/picture_record.h"

#include <ostream>

namespace tool {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUnit(std::string& json, char16_t unit) {
    json += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        json += kHexDigits[(static_cast<unsigned>(unit) >> static_cast<unsigned>(shift)) & 0xFU];
    }
}

std::string jsonText(std::u16string_view text) {
    std::string json = "\"";
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (unit == u'"' || unit == u'\\') {
            json += '\\';
            json += static_cast<char>(unit);
        } else if (isHighSurrogate(unit) && at + 1 < text.size() && isLowSurrogate(text[at + 1])) {
            json += base::toUtf8(text.substr(at++, 2));
        } else if (unit < 0x20 || unit == 0x7F || isHighSurrogate(unit) || isLowSurrogate(unit)) {
            appendUnit(json, unit);
        } else {
            json += base::toUtf8(text.substr(at, 1));
        }
    }
    return json + '"';
}

} // namespace

std::string escaped(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        switch (character) {
        case '\\':
            result += "\\\\";
            break;
        case '\t':
            result += "\\t";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        default:
            if (byte >= 0x20 && byte != 0x7F) {
                result += character;
            } else {
                result += "\\x";
                result += kHexDigits[byte >> 4U];
                result += kHexDigits[byte & 0xFU];
            }
        }
    }
    return result;
}

Cell Cell::text(std::string_view utf8) {
    return text(base::fromUtf8(utf8));
}

Cell Cell::number(float value) {
    return {Kind::Number, {}, store::numberText(value, u'.')};
}

std::string Cell::toTabbed() const {
    switch (kind_) {
    case Kind::Text:
        return escaped(base::toUtf8(text_));
    case Kind::Number:
        return number_;
    case Kind::Missing:
        break;
    }
    return "-";
}

std::string Cell::toJson() const {
    switch (kind_) {
    case Kind::Text:
        return jsonText(text_);
    case Kind::Number:
        return number_;
    case Kind::Missing:
        break;
    }
    return "null";
}

std::string Table::tabbed(const std::vector<Cell>& row) const {
    std::string line;
    for (const Cell& cell : row) {
        line.append(&cell == row.data() ? "" : "\t").append(cell.toTabbed());
    }
    return line;
}

std::string Table::object(const std::vector<Cell>& row) const {
    std::string text = "{";
    for (std::size_t i = 0; i < row.size(); ++i) {
        text += i == 0 ? "\"" : ", \"";
        text += std::string(columns_[i]) + "\": " + row[i].toJson();
    }
    return text + "}";
}

void Table::print(std::ostream& out, const Arguments& arguments) const {
    if (!arguments.has(Option::Json)) {
        for (const std::vector<Cell>& row : rows_) {
            out << tabbed(row) << '\n';
        }
        return;
    }
    out << '[';
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        out << (i == 0 ? "\n  " : ",\n  ") << object(rows_[i]);
    }
    out << (rows_.empty() ? "]\n" : "\n]\n");
}

void Table::printOne(std::ostream& out, const Arguments& arguments) const {
    out << (arguments.has(Option::Json) ? object(rows_.front()) : tabbed(rows_.front())) << '\n';
}

} // namespace tool
