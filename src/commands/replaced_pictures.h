// Pictures that others replace go to the trash, from where they can come back.
#pragma once

#include "commands/failure_report.h"
#include "store/picture_trash.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace commands {

enum class KeepReplaced { InTrash, Nowhere };

// Runs `operation`, and, when the trash cannot take what it replaces, asks whether it is to be run
// without. Nothing when it is not.
template <typename Result, typename Operation>
std::optional<Result> keepingReplaced(const Operation& operation, QWidget* owner) {
    try {
        return operation(KeepReplaced::InTrash);
    } catch (const compound::TrashFailure& failure) {
        if (!isReplacingForGoodConfirmed(failure, owner)) {
            return std::nullopt;
        }
    }
    return operation(KeepReplaced::Nowhere);
}

// Whether one of them can come back.
inline bool isAnyKept(const std::vector<store::TrashedPicture>& pictures) {
    return std::any_of(pictures.begin(), pictures.end(),
                       [](const auto& picture) { return !picture.file.empty(); });
}

} // namespace commands
