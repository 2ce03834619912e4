#pragma once

#include "catalogue.h"

namespace samples {

/// A group of more pictures than the window shows at once: machines, valves and vessels in the
/// colours of their states, instruments and tanks from empty to full.
Group states();

} // namespace samples
