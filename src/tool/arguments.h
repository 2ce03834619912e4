// The words of a command line, told apart into what a command works on and its options.
#pragma once

#include <cstdint>
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
    Folder,
    Width,
    Height,
    Flip,
    Reverse,
    Rotate,
    Grow,
    Fill,
    Hue,
    Saturation,
    Contrast,
    Intensity,
    Invert,
    Paper,
    SubGroups,
    Help,
    Version,
};

// The option as typed, with its two hyphens.
std::string textOf(Option option);

struct GivenOption {
    Option option = Option::Help;
    std::string value; // empty for a plain switch
};

struct Arguments {
    std::vector<std::string> words;   // the command's name first; bytes as typed
    std::vector<GivenOption> options; // in the order given

    bool has(Option option) const;

    // The option's value, or the empty text.
    std::string valueOf(Option option) const;

    // The option's value as a number from 1 to `maximum`; 0 when the option is not given.
    // UsageError for anything else.
    int numberOf(Option option, int maximum) const;
};

// `text`, the option's value, as a whole number from `least` to `most`; UsageError for anything
// else.
int wholeNumber(Option option, const std::string& text, int least, int most);

// Options may stand anywhere, as "--name VALUE" or "--name=VALUE"; "--" ends them; a lone "-" is a
// plain word. UsageError for unknown or incomplete options, and for
// repeated ones that are no operations on a picture.
Arguments parseArguments(std::span<const std::string> commandLine);

} // namespace tool
