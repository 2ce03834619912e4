#include "tool/tool_fixture.h"

#include "platform/paths.h"

#include <fstream>
#include <iterator>
#include <sstream>

namespace tool::testing {
namespace {

void appendNumber(std::string& bytes, std::uint32_t number, int size) {
    for (int i = 0; i < size; ++i) {
        bytes.push_back(static_cast<char>((number >> (8 * i)) & 0xFFU));
    }
}

} // namespace

std::string bmpFile(int width, int height, unsigned char shade) {
    const auto rowSize = static_cast<std::uint32_t>((width * 3 + 3) / 4 * 4);
    const std::uint32_t imageSize = rowSize * static_cast<std::uint32_t>(height);
    constexpr std::uint32_t kHeaders = 54;
    std::string bytes = "BM";
    appendNumber(bytes, kHeaders + imageSize, 4);
    appendNumber(bytes, 0, 4);
    appendNumber(bytes, kHeaders, 4);
    appendNumber(bytes, 40, 4);
    appendNumber(bytes, static_cast<std::uint32_t>(width), 4);
    appendNumber(bytes, static_cast<std::uint32_t>(height), 4);
    appendNumber(bytes, 1, 2);
    appendNumber(bytes, 24, 2);
    bytes.append(24, '\0');
    bytes.append(imageSize, static_cast<char>(shade));
    return bytes;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

ToolTest::ToolTest() {
    std::filesystem::create_directory(libraryFolder());
    qputenv(platform::kHomeVariable, QByteArray::fromStdString((folder() / "home").string()));
}

ToolTest::~ToolTest() {
    qunsetenv(platform::kHomeVariable);
}

Result ToolTest::run(std::vector<std::string> words) {
    words.push_back("--library=" + libraryFolder().string());
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err};
    const ExitStatus status = tool::run(words, console);
    return {status, out.str(), err.str()};
}

std::string ToolTest::succeed(const std::vector<std::string>& words) {
    Result result = run(words);
    EXPECT_EQ(result.status, ExitStatus::Done) << words.front() << ": " << result.err;
    if (!result.out.empty() && result.out.back() == '\n') {
        result.out.pop_back();
    }
    return result.out;
}

void ToolTest::fail(const std::vector<std::string>& words, const std::string& expected) {
    const Result result = run(words);
    EXPECT_EQ(result.status, ExitStatus::Failed) << words.front();
    EXPECT_EQ(result.out, "") << words.front();
    EXPECT_NE(result.err.find(expected), std::string::npos) << result.err;
}

std::string ToolTest::picture(const std::string& fileName, int width, int height,
                              unsigned char shade) {
    const std::filesystem::path path = folder() / fileName;
    writeFile(path, bmpFile(width, height, shade));
    return path.string();
}

} // namespace tool::testing
