// The machine that a benchmark runs on, for its report.
#pragma once

#include <filesystem>
#include <string>

namespace benchmarks {

// Processor and its cores, memory, kernel, and the file system and device of the folder, in a few
// lines. What the system does not tell is left out.
std::string describeMachine(const std::filesystem::path& folder);

} // namespace benchmarks
