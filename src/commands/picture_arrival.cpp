#include "commands/picture_arrival.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "base/picture_units.h"
#include "base/utf8.h"
#include "commands/library_view.h"
#include "commands/name_conflicts.h"
#include "commands/replaced_pictures.h"
#include "commands/skipped_files.h"
#include "commands/undo_steps.h"
#include "commands/vector_size.h"
#include "compound/error.h"
#include "editing/foreign_pictures.h"
#include "imaging/encoding/encoders.h"
#include "picture/picture.h"
#include "store/arriving_pictures.h"
#include "store/fitting_names.h"
#include "store/names.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <system_error>

namespace commands {
namespace {

using compound::Error;
using compound::ErrorCode;

constexpr app::TextPair kLooking{u"Die Dateien werden angesehen", u"The files are being looked at"};
constexpr app::TextPair kAdding{u"Die Bilder werden hinzugefügt", u"The pictures are being added"};
constexpr app::TextPair kImageName{u"Bild", u"Picture"};
constexpr app::TextPair kOneForeign{
    u"Die Bibliothek kennt keine Bilder vom Typ %1. Soll das Bild als BMP mit Transparenz "
    u"aufgenommen werden?",
    u"The library does not know pictures of type %1. Is the picture to be taken as a BMP with "
    u"alpha?"};
constexpr app::TextPair kManyForeign{
    u"%2 Bilder haben Typen, die die Bibliothek nicht kennt (%1). Sollen sie als BMP mit "
    u"Transparenz aufgenommen werden?",
    u"%2 pictures have types that the library does not know (%1). Are they to be taken as BMP "
    u"with alpha?"};
constexpr app::TextPair kSummary{u"%1 von %2 Bildern hinzugefügt.",
                                 u"%1 of %2 pictures were added."};
constexpr app::TextPair kFolder{u"Das ist ein Ordner und kein Bild.",
                                u"This is a folder and no picture."};
constexpr app::TextPair kNoFile{u"Das ist eine Pipe oder ein Gerät und keine Datei.",
                                u"This is a pipe or a device and no file."};
constexpr app::TextPair kRenamed{u"\"%1\" heißt jetzt \"%2\".", u"\"%1\" is called \"%2\" now."};

// What a file turned out to be.
struct Inspected {
    std::string type; // of a picture whose file is named otherwise
    std::optional<editing::ForeignPicture> foreign;
    QString refusal; // the line that tells it, or empty
};

struct Findings {
    std::vector<Inspected> files; // in the order of the files
    std::set<std::u16string, store::ByName> taken;
};

bool isNamedAsPicture(const std::filesystem::path& file) {
    const std::u16string name = base::fromPath(file.filename());
    const auto endsIn = [&](std::string_view ending) {
        std::u16string suffix = base::fromUtf8(ending);
        suffix.insert(suffix.begin(), u'.');
        return store::endsWithIgnoringCase(name, suffix);
    };
    return std::any_of(base::kTypeCodes.begin(), base::kTypeCodes.end(), endsIn) || endsIn("jpeg");
}

std::string codeOf(picture::PictureKind kind) {
    return std::string(base::kTypeCodes.at(static_cast<std::size_t>(kind)));
}

// What opening it would only tell as a failure.
QString refusalOfKind(const std::filesystem::path& file) {
    const auto line = [&](const app::TextPair& what) {
        return QString::fromStdU16String(base::fromPath(file)) + u'\n' + app::text(what);
    };
    std::error_code unknown; // whatever is wrong is told when the file is read
    const auto status = std::filesystem::status(file, unknown);
    if (std::filesystem::is_directory(status)) {
        return line(kFolder);
    }
    if (std::filesystem::is_other(status)) {
        return line(kNoFile);
    }
    return {};
}

Inspected inspect(const store::Library& library, const std::filesystem::path& file) {
    Inspected found;
    if (found.refusal = refusalOfKind(file); !found.refusal.isEmpty()) {
        return found;
    }
    if (isNamedAsPicture(file)) {
        return found; // what is in it is looked at when it is stored
    }
    try {
        const auto bytes = store::readPictureFile(library.disk, file);
        if (const auto kind = picture::sniff(bytes)) {
            found.type = codeOf(*kind);
        } else if (found.foreign = editing::inspectForeign(bytes); !found.foreign) {
            found.refusal = app::errorText(Error(ErrorCode::InvalidPicture, file, {}));
        }
    } catch (const Error& error) {
        found.refusal = app::errorText(error);
    }
    return found;
}

class Arrival {
  public:
    Arrival(LibraryView& view, const ArrivalTarget& target, const IncomingPictures& incoming,
            QWidget* owner)
        : view_(view),
          library_(view.library()),
          target_(target),
          incoming_(incoming),
          owner_(owner) {}

    std::vector<store::PictureName> run() {
        findings_ = look();
        if (!askForForeign()) {
            return {};
        }
        collect();
        if (!askForNames()) {
            return {};
        }
        const std::optional<store::PicturesArrived> arrived = storeAll();
        if (!arrived) {
            return {};
        }
        if (isAnyKept(arrived->replaced)) {
            view_.history().add(picturesReplaced(target_.group, arrived->replaced));
        }
        summarise(*arrived);
        std::vector<store::PictureName> names;
        for (const store::PassedPicture& picture : arrived->names) {
            names.push_back(picture.to);
        }
        return names;
    }

  private:
    using Stopping = app::LongOperation::Stopping;
    using Counting = app::LongOperation::Counting;

    Findings look() const {
        return app::resultOfLong<Findings>(
            {app::text(kLooking), Stopping::Offered, Counting::Pieces}, owner_,
            [&](store::Progress& progress) {
                Findings findings;
                for (std::size_t i = 0; i < incoming_.files.size(); ++i) {
                    progress.report(i, incoming_.files.size());
                    if (progress.isStopWanted()) {
                        throw Error(ErrorCode::Cancelled, incoming_.files[i], "stopped");
                    }
                    findings.files.push_back(inspect(library_, incoming_.files[i]));
                }
                for (auto& name : store::listPictureNames(library_, target_.group).names) {
                    findings.taken.insert(std::move(name.text));
                }
                return findings;
            });
    }

    // False when the user wants nothing of it; without a yes those pictures stay away.
    bool askForForeign() {
        QStringList types;
        int count = 0;
        QSize vector;
        for (const Inspected& file : findings_.files) {
            if (file.foreign) {
                ++count;
                types.append(file.foreign->type);
                vector = file.foreign->isVector && vector.isEmpty() ? file.foreign->pixels : vector;
            }
        }
        types.removeDuplicates();
        if (count == 0) {
            return true;
        }
        const QString kinds = types.join(QStringLiteral(", "));
        const QString question = count == 1
                                     ? app::text(kOneForeign).arg(kinds)
                                     : app::text(kManyForeign).arg(kinds, QString::number(count));
        takesForeign_ = app::msgBox(question, app::Buttons::YesNo, app::kProgramTitle, owner_) ==
                        app::kAnswerYes;
        if (!takesForeign_ || vector.isEmpty()) {
            return true;
        }
        const auto side = askForLongerSide(std::max(vector.width(), vector.height()), owner_);
        longerSide_ = side.value_or(0);
        return side.has_value();
    }

    void collect() {
        for (std::size_t i = 0; i < incoming_.files.size(); ++i) {
            const Inspected& found = findings_.files[i];
            const std::filesystem::path& file = incoming_.files[i];
            if (!found.refusal.isEmpty()) {
                lines_.append(found.refusal);
            } else if (!found.foreign) {
                add({file, {}, {}, found.type, {}}, base::fromPath(file.stem()));
            } else if (takesForeign_) {
                const auto convert = [&disk = library_.disk, file, side = longerSide_] {
                    return editing::foreignAsBmp(store::readPictureFile(disk, file), side);
                };
                add({file, {}, {}, codeOf(picture::PictureKind::Bmp), convert},
                    base::fromPath(file.stem()));
            }
        }
        if (incoming_.files.empty() && !incoming_.image.isNull()) {
            const auto encode = [image = incoming_.image] {
                return imaging::encode(image, picture::PictureKind::Bmp);
            };
            add({base::toPath(app::text(kImageName).toStdU16String()),
                 {},
                 {},
                 codeOf(picture::PictureKind::Bmp),
                 encode},
                app::text(kImageName).toStdU16String());
        }
    }

    void add(store::ArrivingPicture picture, const std::u16string& wanted) {
        picture.name = store::fittingPictureName(wanted);
        if (picture.name.text == app::text(app::kTextNoPicture).toStdU16String()) {
            picture.name = store::fittingPictureName(picture.name.text + u'_');
        }
        wanted_.push_back(wanted);
        pictures_.push_back(std::move(picture));
    }

    // An image has no name of its own that the user could want to keep.
    bool askForNames() {
        std::vector<store::PictureName> conflicts;
        std::vector<std::size_t> positions;
        for (std::size_t i = 0; i < pictures_.size() && !incoming_.files.empty(); ++i) {
            if (findings_.taken.contains(pictures_[i].name.text)) {
                conflicts.push_back(pictures_[i].name);
                positions.push_back(i);
            }
        }
        const auto answers = askForTakenNames(conflicts, target_.name, owner_);
        for (std::size_t i = 0; answers && i < positions.size(); ++i) {
            pictures_[positions[i]].ifTaken = (*answers)[i];
        }
        return answers.has_value();
    }

    // Nothing when the user does not want it without the trash.
    std::optional<store::PicturesArrived> storeAll() {
        std::vector<store::ArrivingPicture> coming;
        for (const store::ArrivingPicture& picture : pictures_) {
            if (picture.ifTaken != store::IfNameTaken::Skip) {
                coming.push_back(picture);
            }
        }
        if (coming.empty()) {
            return store::PicturesArrived();
        }
        const auto run = [&](KeepReplaced keep) {
            return app::resultOfLong<store::PicturesArrived>(
                {app::text(kAdding), Stopping::Offered, Counting::Pieces}, owner_,
                [&](store::Progress& progress) {
                    const auto trash = keep == KeepReplaced::InTrash ? view_.makeTrash() : nullptr;
                    return store::addArriving(library_, target_.group, coming, progress,
                                              trash.get());
                });
        };
        return keepingReplaced<store::PicturesArrived>(run, owner_);
    }

    // What is called otherwise than its file, unless the user has just chosen that.
    void summarise(const store::PicturesArrived& arrived) {
        for (const store::SkippedFile& file : arrived.skipped) {
            lines_.append(app::errorText(file.failure));
        }
        lines_ += incoming_.refused;
        const auto textOf = [](const std::u16string& text) {
            return QString::fromStdU16String(text);
        };
        std::multimap<std::u16string, std::u16string> called; // by the names that were asked for
        for (const store::PassedPicture& picture : arrived.names) {
            called.emplace(picture.from.text, picture.to.text);
        }
        for (std::size_t i = 0; i < pictures_.size(); ++i) {
            const std::u16string& asked = pictures_[i].name.text;
            const auto found = called.find(asked);
            if (found == called.end()) {
                continue;
            }
            const bool isExpected = found->second == asked || findings_.taken.contains(asked);
            if (wanted_[i] != asked || !isExpected) {
                lines_.append(app::text(kRenamed).arg(textOf(wanted_[i]), textOf(found->second)));
            }
            called.erase(found);
        }
        const std::size_t all = std::max(incoming_.files.size(), pictures_.size()) +
                                static_cast<std::size_t>(incoming_.refused.size());
        showSummary(app::text(kSummary).arg(arrived.names.size()).arg(all), lines_, owner_);
    }

    LibraryView& view_;
    const store::Library& library_;
    const ArrivalTarget& target_;
    const IncomingPictures& incoming_;
    QWidget* owner_;
    Findings findings_;
    bool takesForeign_ = false;
    int longerSide_ = 0;
    std::vector<store::ArrivingPicture> pictures_;
    std::vector<std::u16string> wanted_; // what they would be called
    QStringList lines_;
};

} // namespace

std::vector<store::PictureName> takeIncoming(LibraryView& view, const ArrivalTarget& target,
                                             const IncomingPictures& incoming, QWidget* owner) {
    try {
        return Arrival(view, target, incoming, owner).run();
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Cancelled) {
            throw;
        }
        return {};
    }
}

void tellArrived(LibraryView& view, const store::GroupAddress& group,
                 const std::vector<store::PictureName>& names) {
    view.PicturesArrived([group, names] {
        std::vector<store::PictureAddress> pictures;
        pictures.reserve(names.size());
        for (const store::PictureName& name : names) {
            pictures.push_back({group, name});
        }
        return pictures;
    });
}

} // namespace commands
