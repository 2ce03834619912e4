// The words of a command line, told apart into what a command works on and its options.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

// The command line makes no sense; what() says why. Ends in ExitStatus::WrongUsage.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class Option : std::uint8_t {
    Json,
    Library,
    Replace,
    Name,
    Below,
    Width,
    Height,
    Help,
    Version,
};

// The option as typed, with its two hyphens.
std::string textOf(Option option);

struct Arguments {
    std::vector<std::string> words;        // the command's name first; bytes as typed
    std::map<Option, std::string> options; // value of each given option; empty for a plain switch

    bool has(Option option) const { return options.contains(option); }

    // The option's value, or the empty text.
    std::string valueOf(Option option) const;

    // The option's value as a number from 1 to `maximum`; 0 when the option is not given.
    // UsageError for anything else.
    int numberOf(Option option, int maximum) const;
};

// Options may stand anywhere, as "--name VALUE" or "--name=VALUE"; "--" ends them; a lone "-" is a
// plain word. UsageError for unknown, repeated or incomplete options.
Arguments parseArguments(std::span<const std::string> commandLine);

} // namespace tool
