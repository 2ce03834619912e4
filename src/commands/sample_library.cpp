#include "commands/sample_library.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/library_view.h"
#include "compound/error.h"
#include "platform/paths.h"
#include "store/group_import.h"

#include <QCoreApplication>
#include <QDir>

#include <exception>
#include <optional>

namespace commands {
namespace {

constexpr app::TextPair kOpening{u"Die Beispielbibliothek wird geöffnet",
                                 u"Opening the sample library"};
constexpr app::TextPair kAllThere{u"Alle Gruppen der Beispielbibliothek sind schon da.",
                                  u"All groups of the sample library are there already."};

QString& chosenFolder() {
    static QString folder;
    return folder;
}

QFileInfoList sampleFiles() {
    const QString program = QCoreApplication::applicationDirPath();
    const QStringList folders = chosenFolder().isEmpty()
                                    ? QStringList{program + "/../share/txsgraphicslib/samples",
                                                  program + "/../sample-library"}
                                    : QStringList{chosenFolder()};
    for (const QString& folder : folders) {
        QFileInfoList files =
            QDir(folder).entryInfoList({QStringLiteral("*.stg")}, QDir::Files, QDir::Name);
        if (!files.isEmpty()) {
            return files;
        }
    }
    return {};
}

struct Imported {
    std::optional<store::GroupAddress> first;
    std::exception_ptr failure; // of the one after which no other was tried
};

Imported importSamples(const store::Library& library, store::Progress& progress) {
    Imported imported;
    for (const QFileInfo& file : sampleFiles()) {
        try {
            const auto group = store::importGroupFile(
                library, platform::toFilePath(file.canonicalFilePath()), progress);
            imported.first = imported.first.value_or(group);
        } catch (const compound::Error& error) {
            if (error.code() != compound::ErrorCode::Exists) {
                imported.failure = std::current_exception();
                return imported;
            }
        }
    }
    return imported;
}

} // namespace

bool hasSamples() {
    return !sampleFiles().isEmpty();
}

void useSamplesFolder(const QString& folder) {
    chosenFolder() = folder;
}

void openSamples(CommandCall& call) {
    LibraryView& view = call.view;
    const auto imported = app::resultOfLong<Imported>(
        {app::text(kOpening)}, view.owner(),
        [&](store::Progress& progress) { return importSamples(view.library(), progress); });
    if (imported.first) {
        view.FillTreeView();
        view.TreeViewSelectNode(*imported.first);
        view.MiniVorschau(0);
    }
    if (imported.failure) {
        std::rethrow_exception(imported.failure);
    }
    if (!imported.first) {
        app::msgBox(app::text(kAllThere), app::Buttons::Ok, app::kProgramTitle, view.owner());
    }
}

} // namespace commands
