#include "tool/edit_steps.h"

#include <charconv>
#include <cmath>

namespace tool {
namespace {

namespace operations = imaging::operations;

// In hundredths, from "33.3".
int degreesFrom(const std::string& text) {
    constexpr double kMost = 360;
    double degrees = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, degrees, std::chars_format::fixed);
    if (error != std::errc() || stop != end || !(std::abs(degrees) <= kMost)) {
        throw UsageError("--rotate wants degrees from -360 to 360, such as 33.3, not \"" + text +
                         "\"");
    }
    return static_cast<int>(std::lround(degrees * 100));
}

QRgb colourFrom(const std::string& text) {
    constexpr std::size_t kDigits = 6;
    constexpr int kHexadecimal = 16;
    QRgb colour = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, colour, kHexadecimal);
    if (error != std::errc() || stop != end || text.size() != kDigits) {
        throw UsageError("--fill wants a colour as RRGGBB, not \"" + text + "\"");
    }
    return 0xFF000000U | colour;
}

operations::Rotation& lastRotation(std::vector<operations::Edit>& steps, Option option) {
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (auto* rotation = std::get_if<operations::Rotation>(&*step)) {
            return *rotation;
        }
    }
    throw UsageError(textOf(option) + " wants a --rotate before it");
}

void addStep(std::vector<operations::Edit>& steps, const GivenOption& given) {
    using operations::ColourProperty;
    const auto addChange = [&](ColourProperty property, int most) {
        const int amount = wholeNumber(given.option, given.value, -most, most);
        steps.emplace_back(operations::ColourChange{property, amount});
    };
    switch (given.option) {
    case Option::Flip:
        steps.emplace_back(operations::Flip{});
        break;
    case Option::Reverse:
        steps.emplace_back(operations::Reverse{});
        break;
    case Option::Invert:
        steps.emplace_back(operations::Inversion{});
        break;
    case Option::Rotate:
        steps.emplace_back(operations::Rotation{degreesFrom(given.value)});
        break;
    case Option::Grow:
        lastRotation(steps, given.option).canvas = operations::Canvas::Grow;
        break;
    case Option::Fill:
        lastRotation(steps, given.option).fill = colourFrom(given.value);
        break;
    case Option::Hue:
        addChange(ColourProperty::Hue, operations::kMostHueAmount);
        break;
    case Option::Saturation:
        addChange(ColourProperty::Saturation, operations::kMostAmount);
        break;
    case Option::Contrast:
        addChange(ColourProperty::Contrast, operations::kMostAmount);
        break;
    case Option::Intensity:
        addChange(ColourProperty::Intensity, operations::kMostAmount);
        break;
    default:
        break; // an option of another kind
    }
}

} // namespace

std::vector<operations::Edit> editSteps(const Arguments& arguments) {
    std::vector<operations::Edit> steps;
    for (const GivenOption& given : arguments.options) {
        addStep(steps, given);
    }
    return steps;
}

} // namespace tool
