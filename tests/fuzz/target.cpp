#include "fuzz/target.h"

#include <iterator>
#include <stdexcept>

namespace fuzz {

std::vector<Target> allTargets() {
    std::vector<Target> all;
    for (const auto& part : {storageTargets(), pictureTargets(), textTargets()}) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

void require(bool condition, const std::string& what) {
    if (!condition) {
        throw std::logic_error(what);
    }
}

} // namespace fuzz
