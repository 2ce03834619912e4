#include "imaging/operations/colour_operations.h"

#include "imaging/operations/angles.h"
#include "imaging/operations/colour_kernels.h"
#include "imaging/operations/editable_image.h"
#include "imaging/operations/row_bands.h"
#include "imaging/operations/vector_code.h"

#include <algorithm>
#include <utility>

namespace imaging::operations {

namespace {

// Within one image the compiler need not fear that the pixels written are those read next.
template <typename Kernel>
TXS_INLINE_LOOP inline void changeRow(QRgb* row, int width, const Kernel& kernel) {
    for (int x = 0; x < width; ++x) {
        row[x] = kernel(row[x]);
    }
}

template <typename Kernel>
TXS_INLINE_LOOP inline void changeRow(const QRgb* __restrict source, QRgb* __restrict target,
                                      int width, const Kernel& kernel) {
    for (int x = 0; x < width; ++x) {
        target[x] = kernel(source[x]);
    }
}

template <typename Kernel>
void changePixels(QImage& image, const Kernel& kernel) {
    const PixelRows<QRgb> rows = rowsOf(image);
    forRowBands(rows.height, rows.width, [&](int first, int last) {
        runVectorised([=]() TXS_INLINE_LOOP {
            for (int y = first; y < last; ++y) {
                changeRow(rows.row(y), rows.width, kernel);
            }
        });
    });
}

template <typename Kernel>
void copyChanged(const QImage& source, QImage& target, const Kernel& kernel) {
    const PixelRows<const QRgb> from = constRowsOf(source);
    const PixelRows<QRgb> to = rowsOf(target);
    forRowBands(from.height, from.width, [&](int first, int last) {
        runVectorised([=]() TXS_INLINE_LOOP {
            for (int y = first; y < last; ++y) {
                changeRow(from.row(y), to.row(y), from.width, kernel);
            }
        });
    });
}

int effectiveAmount(const ColourChange& change) {
    if (change.property == ColourProperty::Hue) {
        return withinOneTurn(change.amount);
    }
    return std::clamp(change.amount, -kMostAmount, kMostAmount);
}

// Calls work(kernel) with the kernel of the change, whose amount is an effective one.
template <typename Work>
void withKernel(const ColourChange& change, const Work& work) {
    switch (change.property) {
    case ColourProperty::Saturation:
        return work(SaturationKernel(change.amount));
    case ColourProperty::Contrast:
        return work(LinearKernel::contrast(change.amount));
    case ColourProperty::Intensity:
        return work(LinearKernel::intensity(change.amount));
    case ColourProperty::Hue:
        return work(HueKernel(change.amount));
    }
}

bool canTake(const QImage& target, const QImage& source) {
    return target.isDetached() && target.size() == source.size() &&
           target.format() == source.format();
}

} // namespace

void apply(const ColourChange& change, QImage& image) {
    const ColourChange effective{change.property, effectiveAmount(change)};
    if (effective.amount == 0 || image.isNull()) {
        return;
    }
    if (!image.isDetached()) {
        QImage changed;
        apply(effective, image, changed);
        image = std::move(changed);
        return;
    }
    makeEditable(image);
    withKernel(effective, [&](const auto& kernel) { changePixels(image, kernel); });
}

void apply(const ColourChange& change, const QImage& source, QImage& target) {
    const ColourChange effective{change.property, effectiveAmount(change)};
    if (effective.amount == 0 || source.isNull()) {
        target = source;
        return;
    }
    const QImage from = editable(source);
    if (!canTake(target, from)) {
        target = emptyLike(from, from.size());
    }
    withKernel(effective, [&](const auto& kernel) { copyChanged(from, target, kernel); });
}

void changeSaturation(QImage& image, int amount) {
    apply({ColourProperty::Saturation, amount}, image);
}

void changeContrast(QImage& image, int amount) {
    apply({ColourProperty::Contrast, amount}, image);
}

void changeIntensity(QImage& image, int amount) {
    apply({ColourProperty::Intensity, amount}, image);
}

void changeHue(QImage& image, int hundredthsOfDegree) {
    apply({ColourProperty::Hue, hundredthsOfDegree}, image);
}

void invert(QImage& image) {
    if (image.isNull()) {
        return;
    }
    makeEditable(image);
    changePixels(image, InversionKernel());
}

} // namespace imaging::operations
