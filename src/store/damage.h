// Reading what a picture can do without: damage there must not hide the picture.
#pragma once

#include "compound/error.h"

#include <optional>

namespace store {

// Whether the file's bytes are wrong, and not the way to them.
inline bool isAboutBytes(compound::ErrorCode code) {
    return code == compound::ErrorCode::Damaged || code == compound::ErrorCode::NotCompoundFile;
}

// What `read` returns; nothing when it meets damaged bytes. Every other error goes on.
template <typename Read>
auto unlessDamaged(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const compound::Error& error) {
        if (error.code() != compound::ErrorCode::Damaged) {
            throw;
        }
        return std::nullopt;
    }
}

} // namespace store
