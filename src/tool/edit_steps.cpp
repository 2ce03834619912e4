#include "tool/edit_steps.h"

#include "imaging/operations/colour_operations.h"
#include "imaging/operations/mirroring.h"
#include "imaging/operations/rotation.h"

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

EditStep& lastRotation(std::vector<EditStep>& steps, Option option) {
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        if (step->option == Option::Rotate) {
            return *step;
        }
    }
    throw UsageError(textOf(option) + " wants a --rotate before it");
}

void addStep(std::vector<EditStep>& steps, const GivenOption& given) {
    const auto amountWithin = [&](int most) {
        return wholeNumber(given.option, given.value, -most, most);
    };
    switch (given.option) {
    case Option::Flip:
    case Option::Reverse:
    case Option::Invert:
        steps.push_back({given.option});
        break;
    case Option::Rotate:
        steps.push_back({given.option, degreesFrom(given.value)});
        break;
    case Option::Grow:
        lastRotation(steps, given.option).grows = true;
        break;
    case Option::Fill:
        lastRotation(steps, given.option).fill = colourFrom(given.value);
        break;
    case Option::Hue:
        steps.push_back({given.option, amountWithin(operations::kMostHueAmount)});
        break;
    case Option::Saturation:
    case Option::Contrast:
    case Option::Intensity:
        steps.push_back({given.option, amountWithin(operations::kMostAmount)});
        break;
    default:
        break; // an option of another kind
    }
}

void rotate(const EditStep& step, EditedPicture& picture) {
    const operations::Rotation rotation{
        step.amount, step.grows ? operations::Canvas::Grow : operations::Canvas::Keep, step.fill};
    picture.hotSpot = operations::rotatedPoint(picture.hotSpot, picture.image.size(), rotation);
    operations::rotate(picture.image, rotation);
}

} // namespace

std::vector<EditStep> editSteps(const Arguments& arguments) {
    std::vector<EditStep> steps;
    for (const GivenOption& given : arguments.options) {
        addStep(steps, given);
    }
    return steps;
}

void apply(const EditStep& step, EditedPicture& picture) {
    switch (step.option) {
    case Option::Flip:
        picture.hotSpot = operations::flippedPoint(picture.hotSpot, picture.image.size());
        operations::flip(picture.image);
        break;
    case Option::Reverse:
        picture.hotSpot = operations::reversedPoint(picture.hotSpot, picture.image.size());
        operations::reverse(picture.image);
        break;
    case Option::Rotate:
        rotate(step, picture);
        break;
    case Option::Hue:
        operations::changeHue(picture.image, step.amount);
        break;
    case Option::Saturation:
        operations::changeSaturation(picture.image, step.amount);
        break;
    case Option::Contrast:
        operations::changeContrast(picture.image, step.amount);
        break;
    case Option::Intensity:
        operations::changeIntensity(picture.image, step.amount);
        break;
    default:
        operations::invert(picture.image);
        break;
    }
}

} // namespace tool
