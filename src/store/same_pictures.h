// Which pictures the library has twice, byte for byte.
#pragma once

#include "compound/error.h"
#include "store/library.h"
#include "store/progress.h"

#include <functional>
#include <span>
#include <vector>

namespace store {

struct PictureAddress {
    GroupAddress group;
    PictureName name;

    auto operator<=>(const PictureAddress&) const = default;
};

struct SamePictures {
    PictureAddress picture;
    std::vector<PictureAddress> others; // with its bytes: in the library's order, at least one
};

// Those of the pictures that the library has elsewhere as well, in their order. Sizes are compared
// first, so that of a library without duplicates hardly a picture is read. A picture that is not
// there, and files and groups that cannot be read, are taken for having none: nobody must be kept
// from working by them. `unread` is told each of them once. No file is held between two pictures.
//
// Reports group files; Cancelled when `progress` wants to stop.
std::vector<SamePictures>
findSamePictures(const Library& library, std::span<const PictureAddress> pictures,
                 Progress& progress = noProgress(),
                 const std::function<void(const compound::Error&)>& unread = {});

// All pictures of the group, or without one of the library.
std::vector<PictureAddress> allPictures(const Library& library,
                                        const std::optional<GroupAddress>& group = {});

} // namespace store
