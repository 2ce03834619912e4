// What is fed with arbitrary bytes: by libFuzzer for as long as one likes, and by fuzz_tests with
// the seeds and a fixed number of changed seeds.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace fuzz {

using Bytes = std::vector<std::byte>;

struct Target {
    std::string name;
    // Throws, crashes or does not end for a fault of the program alone, whatever the bytes are.
    void (*use)(std::span<const std::byte>);
    // Sound files to begin with, and those that once were found to be too much, by their names.
    std::map<std::string, Bytes> (*seeds)();
    std::vector<std::string> words; // that such files are made of
};

std::vector<Target> storageTargets();
std::vector<Target> pictureTargets();
std::vector<Target> textTargets();

std::vector<Target> allTargets();

// Throws std::logic_error with that text.
void require(bool condition, const std::string& what);

} // namespace fuzz
