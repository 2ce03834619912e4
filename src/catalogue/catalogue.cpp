#include "catalogue/catalogue.h"

#include "catalogue/page_painter.h"
#include "catalogue/pdf_file.h"

#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>

#include <exception>
#include <optional>

namespace catalogue {
namespace {

using compound::Error;
using compound::ErrorCode;

std::vector<Page> pagesOf(const std::vector<Section>& contents, QSizeF sheet) {
    std::vector<std::size_t> sizes;
    sizes.reserve(contents.size());
    for (const Section& section : contents) {
        sizes.push_back(section.pictures.size());
    }
    return layOut(sizes, sheet);
}

// Reads the pictures of a catalogue one by one, and remembers which ones it could not.
class Fetcher {
  public:
    Fetcher(const store::Library& library, std::uint64_t bytes, const std::filesystem::path& name,
            store::Progress& progress)
        : library_(library), total_(bytes + 1), name_(name), progress_(progress) {}

    std::optional<picture::Picture> fetch(const Section& section,
                                          const store::PictureEntry& entry) {
        if (progress_.isStopWanted()) {
            throw Error(ErrorCode::Cancelled, name_, "stopped");
        }
        std::optional<picture::Picture> picture;
        try {
            const auto stored = store::readPicture(library_, section.group, entry.name);
            picture = picture::decode(stored.bytes);
        } catch (const Error& error) {
            leaveOut(section, entry, error);
        } catch (const picture::DecodeError& error) {
            leaveOut(section, entry,
                     Error(ErrorCode::InvalidPicture, store::pathOf(library_, section.group.file),
                           error.what()));
        }
        done_ += entry.bytes;
        progress_.report(done_, total_);
        return picture;
    }

    void finish() { progress_.report(total_, total_); }

    std::vector<Unshown> takeUnshown() { return std::move(unshown_); }

  private:
    void leaveOut(const Section& section, const store::PictureEntry& entry, const Error& error) {
        unshown_.push_back({section.path, QString::fromStdU16String(entry.name.text), error});
    }

    const store::Library& library_;
    std::uint64_t done_ = 0;
    std::uint64_t total_; // more than the pictures have: the last page is still to be written
    const std::filesystem::path& name_;
    store::Progress& progress_;
    std::vector<Unshown> unshown_;
};

} // namespace

Paper usualPaper() {
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? Paper::Letter : Paper::A4;
}

Printed print(const store::Library& library, const std::vector<Section>& contents,
              QPagedPaintDevice& device, const std::filesystem::path& name,
              store::Progress& progress) {
    const QSizeF sheet = device.pageLayout().fullRectPoints().size();
    const std::vector<Page> pages = pagesOf(contents, sheet);
    const auto requireTaken = [&name](bool taken) {
        if (!taken) {
            throw Error(ErrorCode::Failed, name, "the pages cannot be printed");
        }
    };
    QPainter painter;
    requireTaken(painter.begin(&device));
    PagePainter pagePainter(painter, device.logicalDpiX() / kPointsPerInch, contents, sheet);
    Fetcher fetcher(library, bytesOf(contents), name, progress);
    const Fetch fetch = [&fetcher](const Section& section, const store::PictureEntry& entry) {
        return fetcher.fetch(section, entry);
    };
    for (std::size_t i = 0; i < pages.size(); ++i) {
        requireTaken(i == 0 || device.newPage());
        pagePainter.paint(pages[i], i, pages.size(), fetch);
    }
    fetcher.finish();
    requireTaken(painter.end());
    return {pages.size(), fetcher.takeUnshown()};
}

Printed writePdf(const store::Library& library, const std::vector<Section>& contents, Paper paper,
                 const std::filesystem::path& file, platform::IfFileExists ifExists,
                 store::Progress& progress) {
    Printed printed;
    platform::writeOutputFile(file, ifExists, [&](compound::DiskFile& target) {
        PdfFile output(target);
        QPdfWriter writer(&output);
        writer.setPageLayout({QPageSize(paper == Paper::A4 ? QPageSize::A4 : QPageSize::Letter),
                              QPageLayout::Portrait, QMarginsF()});
        writer.setTitle(contents.front().path);
        writer.setCreator(QStringLiteral("TXSGraphicsLib"));
        printed = print(library, contents, writer, file, progress);
        output.finish();
    });
    return printed;
}

} // namespace catalogue
