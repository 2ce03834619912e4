// Read by moc before each header. Without it moc meets the standard library's C++20 headers before
// the macro that marks `namespace std`, and stops with a parse error.
#pragma once

#include <QtGlobal>
