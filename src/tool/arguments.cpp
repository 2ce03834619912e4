#include "tool/arguments.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace tool {
namespace {

enum class Takes : std::uint8_t { Nothing, Value };

enum class Given : std::uint8_t { Once, AnyTimes };

struct OptionForm {
    std::string_view text;
    Option option;
    Takes takes;
    Given given = Given::Once;
};

constexpr std::array kOptions{
    OptionForm{"--json", Option::Json, Takes::Nothing},
    OptionForm{"--library", Option::Library, Takes::Value},
    OptionForm{"--replace", Option::Replace, Takes::Nothing},
    OptionForm{"--name", Option::Name, Takes::Value},
    OptionForm{"--below", Option::Below, Takes::Value},
    OptionForm{"--folder", Option::Folder, Takes::Value},
    OptionForm{"--width", Option::Width, Takes::Value},
    OptionForm{"--height", Option::Height, Takes::Value},
    OptionForm{"--flip", Option::Flip, Takes::Nothing, Given::AnyTimes},
    OptionForm{"--reverse", Option::Reverse, Takes::Nothing, Given::AnyTimes},
    OptionForm{"--rotate", Option::Rotate, Takes::Value, Given::AnyTimes},
    OptionForm{"--grow", Option::Grow, Takes::Nothing, Given::AnyTimes},
    OptionForm{"--fill", Option::Fill, Takes::Value, Given::AnyTimes},
    OptionForm{"--hue", Option::Hue, Takes::Value, Given::AnyTimes},
    OptionForm{"--saturation", Option::Saturation, Takes::Value, Given::AnyTimes},
    OptionForm{"--contrast", Option::Contrast, Takes::Value, Given::AnyTimes},
    OptionForm{"--intensity", Option::Intensity, Takes::Value, Given::AnyTimes},
    OptionForm{"--invert", Option::Invert, Takes::Nothing, Given::AnyTimes},
    OptionForm{"--paper", Option::Paper, Takes::Value},
    OptionForm{"--sub-groups", Option::SubGroups, Takes::Nothing},
    OptionForm{"--help", Option::Help, Takes::Nothing},
    OptionForm{"--version", Option::Version, Takes::Nothing},
};

const OptionForm& formOf(std::string_view text) {
    const auto found = std::find_if(kOptions.begin(), kOptions.end(),
                                    [&](const OptionForm& form) { return form.text == text; });
    if (found == kOptions.end()) {
        throw UsageError("unknown option " + std::string(text));
    }
    return *found;
}

bool isOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

} // namespace

std::string textOf(Option option) {
    const auto found = std::find_if(kOptions.begin(), kOptions.end(),
                                    [&](const OptionForm& form) { return form.option == option; });
    return std::string(found->text);
}

bool Arguments::has(Option option) const {
    return std::any_of(options.begin(), options.end(),
                       [&](const GivenOption& given) { return given.option == option; });
}

std::string Arguments::valueOf(Option option) const {
    const auto found = std::find_if(options.begin(), options.end(), [&](const GivenOption& given) {
        return given.option == option;
    });
    return found == options.end() ? std::string() : found->value;
}

int Arguments::numberOf(Option option, int maximum) const {
    return has(option) ? wholeNumber(option, valueOf(option), 1, maximum) : 0;
}

int wholeNumber(Option option, const std::string& text, int least, int most) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least ||
        number > most) {
        throw UsageError(textOf(option) + " wants a whole number from " + std::to_string(least) +
                         " to " + std::to_string(most) + ", not \"" + text + "\"");
    }
    return number;
}

Arguments parseArguments(std::span<const std::string> commandLine) {
    Arguments arguments;
    for (std::size_t at = 0; at < commandLine.size(); ++at) {
        const std::string& word = commandLine[at];
        if (word == "--") {
            arguments.words.insert(arguments.words.end(),
                                   commandLine.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                   commandLine.end());
            break;
        }
        if (!isOption(word)) {
            arguments.words.push_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const OptionForm& form = formOf(std::string_view(word).substr(0, equals));
        std::string value;
        if (form.takes == Takes::Nothing) {
            if (equals != std::string::npos) {
                throw UsageError(std::string(form.text) + " takes no value");
            }
        } else if (equals != std::string::npos) {
            value = word.substr(equals + 1);
        } else if (++at < commandLine.size()) {
            value = commandLine[at];
        } else {
            throw UsageError(std::string(form.text) + " wants a value");
        }
        if (form.given == Given::Once && arguments.has(form.option)) {
            throw UsageError(std::string(form.text) + " is given twice");
        }
        arguments.options.push_back({form.option, std::move(value)});
    }
    return arguments;
}

} // namespace tool
