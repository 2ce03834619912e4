// render: a picture file of any of the seven types as PNG.
#include "compound/error.h"
#include "tool/command.h"
#include "tool/output_file.h"
#include "tool/picture_input.h"

#include <QBuffer>
#include <QImage>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

QByteArray toPng(const QImage& image, const std::filesystem::path& path) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        throw Error(ErrorCode::Failed, path, "the picture cannot be written as PNG");
    }
    return bytes;
}

} // namespace

ExitStatus renderPicture(const Invocation& invocation) {
    const std::filesystem::path source = invocation.argument(0);
    const std::filesystem::path target = invocation.argument(1);
    const QByteArray png = toPng(readPicture(source, target, invocation).image, target);
    writeOutputFile(target, std::as_bytes(std::span(png.constData(), std::size_t(png.size()))),
                    invocation.arguments.has(Option::Replace) ? IfFileExists::Replace
                                                              : IfFileExists::Refuse);
    return ExitStatus::Done;
}

} // namespace tool
