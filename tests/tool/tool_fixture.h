// Runs stgtool's command lines in this process, on a library in a folder of its own.
#pragma once

#include "tool/command.h"

#include <QTemporaryDir>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tool::testing {

struct Result {
    ExitStatus status = ExitStatus::Done;
    std::string out;
    std::string err;
};

// A 24-bit BMP file in one colour.
std::string bmpFile(int width, int height, unsigned char shade = 0x80);

std::string contentOf(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

class ToolTest : public ::testing::Test {
  protected:
    // TXSGRAPHICSLIB_HOME points into the test's folder, so that the trash does, too.
    ToolTest();
    ~ToolTest() override;

    // Adds "--library DIR" to the words.
    Result run(std::vector<std::string> words);

    // Runs, expects success, and returns what was printed without the last line's end.
    std::string succeed(const std::vector<std::string>& words);

    // Runs, expects failure with `expected` named on stderr and nothing printed.
    void fail(const std::vector<std::string>& words, const std::string& expected);

    // Writes a BMP file outside the library and returns its path.
    std::string picture(const std::string& fileName, int width = 4, int height = 3,
                        unsigned char shade = 0x80);

    std::filesystem::path folder() const { return folder_.path().toStdString(); }
    std::filesystem::path libraryFolder() const { return folder() / "library"; }

  private:
    QTemporaryDir folder_;
};

} // namespace tool::testing
