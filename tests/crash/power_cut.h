// What a medium holds after a power cut.
//
// Model: a change of a file's bytes or length is safe once that file was synced after it, a change
// of a name once its folder was. Of the changes that are not safe yet any may have reached the
// medium, those of bytes and lengths in any order, and a write may have reached it in parts: each
// 512-byte sector by itself is old or new. Moving a file to the trash is safe when the call
// returns.
#pragma once

#include "crash/recording_disk.h"

#include <functional>
#include <map>
#include <random>
#include <vector>

namespace crash {

// What becomes of one change that is not safe yet.
enum class Fate : std::uint8_t { Reached, Lost, Torn };

// Decides the fate of the event with this index.
using ChooseFate = std::function<Fate(std::size_t event)>;

// Decides for each sector of a torn write whether it reached the medium.
using ChooseSector = std::function<bool()>;

struct Medium {
    std::map<std::filesystem::path, std::vector<std::byte>> files;
    std::map<std::filesystem::path, std::vector<std::byte>> trashed; // under their old paths
};

// The medium when the power goes after the first `count` events of `disk`. What is not safe happens
// in the order of the calls.
Medium cutPower(const RecordingDisk& disk, std::size_t count, const ChooseFate& fateOf,
                const ChooseSector& sectorReached);

// Any part of what is not safe has happened, in any order.
Medium cutPower(const RecordingDisk& disk, std::size_t count, std::mt19937& random);

} // namespace crash
