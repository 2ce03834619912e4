// The dispatcher with what belongs to no command: keys that no tool has, indexes without an item.
#include "ui/failing_disk_fixture.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

namespace {

class WatchedView : public ViewInMemory {
  public:
    WatchedView() {
        selected = {
            store::createGroup(library(), std::nullopt, {u"Pumpen"}), {}, "Pumpen", "Pumpen"};
    }
    void VorschauAktiviert() override { ++refreshes; }
    void VorschauDeaktiviert() override { ++refreshes; }
    void Exit() override { ++refreshes; }
};

TEST(CommandKeys, OnlyExactKeysAndExistingIndexesRunACommand) {
    using commands::MenuId;
    WatchedView view;
    commands::Dispatcher dispatcher(view);
    MessageBoxScript boxes({}, app::kAnswerYes);
    int dialogs = 0;
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            ++dialogs;
            dialog->close();
            dialog->deleteLater();
        }
    });
    looking.start(0);
    const auto effects = [&] {
        return std::exchange(dialogs, 0) + std::exchange(view.refreshes, 0) + boxes.take().size();
    };
    for (const char* key : {"", "brename", "BRENAME", "bRename ", "bRenam", "GNew", "bdelete",
                            "Tool14", "gEdit", "Band1", "Men_Datei_0"}) {
        dispatcher.toolClick(QString::fromLatin1(key));
        EXPECT_EQ(effects(), 0) << key;
    }
    const std::vector<std::pair<MenuId, std::vector<int>>> idle{{MenuId::Datei, {-1, 3, 7}},
                                                                {MenuId::Bearbeiten, {-1, 5, 10}},
                                                                {MenuId::Extras, {-1, 2}},
                                                                {MenuId::Hilfe, {-1, 2, 4}}};
    for (const auto& [menu, indexes] : idle) {
        for (const int index : indexes) {
            dispatcher.menuClick(menu, index);
            EXPECT_EQ(effects(), 0) << static_cast<int>(menu) << ", " << index;
        }
    }
    dispatcher.toolClick("bRename"); // what is right is noticed
    EXPECT_EQ(effects(), 1);
    dispatcher.menuClick(MenuId::Datei, 6);
    EXPECT_EQ(effects(), 1);
}

} // namespace
