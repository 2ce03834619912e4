#pragma once

#include <QImage>
#include <QSize>

namespace samples {

/// When the photograph was taken.
enum class Daylight { Morning, Noon, Evening };

/// A "photograph" of a process plant: sky, haze, a hall, tanks and a pipe bridge, with the grain of
/// a camera. The same picture every time; Format_RGB32.
QImage plantScene(QSize pixels, Daylight daylight);

} // namespace samples
