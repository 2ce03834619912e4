#include "browser/damaged_report.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "compound/error.h"
#include "store/damaged_groups.h"

namespace browser {
namespace {

constexpr int kFoundOne = 1400;
constexpr int kFoundSeveral = 1401;
constexpr int kDeleteOne = 1402;
constexpr int kDeleteSeveral = 1403;
constexpr int kAttention = 1404;
constexpr int kDeletedBegin = 1405;
constexpr int kDeletedEnd = 1406; // for every count
constexpr app::TextPair kDeleting{u"Beschädigte Dateien werden gelöscht",
                                  u"Damaged files are being deleted"};

QString questionFor(std::size_t count) {
    const bool one = count == 1;
    return app::text(one ? kFoundOne : kFoundSeveral) + QString::number(count) +
           app::text(one ? kDeleteOne : kDeleteSeveral);
}

} // namespace

void reportDamagedFiles(const store::Library& library, QWidget* owner) {
    std::size_t count = 0;
    try {
        count = app::resultOfReading(owner, [&] { return store::damagedFiles(library).size(); });
    } catch (const compound::Error&) {
        return; // an unreachable library is shown as an empty one
    }
    if (count == 0) {
        return;
    }
    const int answer =
        app::msgBox(questionFor(count), app::Buttons::OkCancel, app::text(kAttention), owner);
    if (answer == app::kAnswerNo) {
        return;
    }
    try {
        const std::size_t removed =
            app::resultOfLong<std::size_t>({app::text(kDeleting)}, owner, [&](store::Progress&) {
                return store::removeDamagedFiles(library);
            });
        app::msgBox(app::text(kDeletedBegin) + QString::number(removed) + app::text(kDeletedEnd),
                    app::Buttons::Ok, app::kProgramTitle, owner);
    } catch (const compound::Error& error) {
        app::msgBox(app::errorText(error), app::Buttons::Ok, app::kProgramTitle, owner);
    }
}

} // namespace browser
