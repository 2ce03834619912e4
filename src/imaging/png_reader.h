// PNG pictures inside other files, through libpng.
#pragma once

#include <QImage>

#include <cstddef>
#include <span>

namespace imaging {

bool isPng(std::span<const std::byte> bytes);

// From the header; DecodeError when it cannot be read.
QSize measurePng(std::span<const std::byte> bytes);

// The whole picture as ARGB32; DecodeError when a part of it cannot be read, or when it is too
// large.
QImage readPng(std::span<const std::byte> bytes);

} // namespace imaging
