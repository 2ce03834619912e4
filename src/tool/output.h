// What commands print: rows of named columns, tab-separated or as JSON (RFC 8259).
//
// Tab-separated: one row a line, no heading; in texts a backslash and every control character are
// written as \\, \t, \n, \r or \xHH, and a missing value as "-". JSON: an array of objects, or one
// object; a missing value is null, a byte that is no UTF-8 the lone surrogate \udcHH.
#pragma once

#include "tool/arguments.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

// Backslashes and control characters as in tab-separated output.
std::string escaped(std::string_view text);

class Cell {
  public:
    static Cell text(std::u16string value) { return {Kind::Text, std::move(value), {}}; }
    static Cell text(std::string_view utf8);
    static Cell number(std::uint64_t value) { return {Kind::Number, {}, std::to_string(value)}; }
    static Cell number(float value);
    static Cell missing() { return {Kind::Missing, {}, {}}; }

    std::string toTabbed() const;
    std::string toJson() const;

  private:
    enum class Kind : std::uint8_t { Text, Number, Missing };
    Cell(Kind kind, std::u16string text, std::string number)
        : kind_(kind), text_(std::move(text)), number_(std::move(number)) {}

    Kind kind_;
    std::u16string text_;
    std::string number_;
};

class Table {
  public:
    explicit Table(std::vector<std::string_view> columns) : columns_(std::move(columns)) {}

    // As many cells as there are columns.
    void addRow(std::vector<Cell> cells) { rows_.push_back(std::move(cells)); }

    // All rows: a line each, or with --json an array.
    void print(std::ostream& out, const Arguments& arguments) const;

    // The one row of a table that has a single one: a line, or with --json an object.
    void printOne(std::ostream& out, const Arguments& arguments) const;

  private:
    std::string tabbed(const std::vector<Cell>& row) const;
    std::string object(const std::vector<Cell>& row) const;

    std::vector<std::string_view> columns_;
    std::vector<std::vector<Cell>> rows_;
};

} // namespace tool
