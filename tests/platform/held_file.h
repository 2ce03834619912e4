// A file whose lock the test holds, as another program would.
#pragma once

#include "platform/native_disk.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

// Takes the exclusive lock of that file and keeps it until the result goes. Waits for whoever has
// it at the moment: a worker thread of the program under test may still be reading a picture.
[[nodiscard]] inline std::unique_ptr<compound::DiskFile>
holdLocked(const std::filesystem::path& path) {
    auto file = platform::nativeDisk().open(path, compound::Access::Read);
    EXPECT_TRUE(file->lock(std::chrono::minutes(1))) << path;
    return file;
}
