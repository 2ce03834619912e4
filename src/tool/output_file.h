// Files that a command writes for the user, as platform/output_file.h does, with --replace.
#pragma once

#include "compound/error.h"
#include "platform/output_file.h"
#include "tool/command.h"

#include <cstddef>
#include <filesystem>
#include <span>

namespace tool {

// Has `write` write the file, told by --replace what to do with one that is there.
template <typename Write>
auto writeOutput(const std::filesystem::path& path, const Invocation& invocation, Write write) {
    if (invocation.arguments.has(Option::Replace)) {
        return write(platform::IfFileExists::Replace);
    }
    try {
        return write(platform::IfFileExists::Refuse);
    } catch (const compound::Error& error) {
        if (error.code() == compound::ErrorCode::Exists && error.file() == path) {
            throw compound::Error(error.code(), path, error.cause() + " (see --replace)");
        }
        throw;
    }
}

inline void writeOutputFile(const std::filesystem::path& path, const Invocation& invocation,
                            std::span<const std::byte> bytes) {
    writeOutput(path, invocation, [&](platform::IfFileExists taken) {
        platform::writeOutputFile(path, taken, bytes);
    });
}

} // namespace tool
