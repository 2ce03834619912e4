#include "ui/main_window_fixture.h"

#include "app/number_text.h"
#include "app/patience.h"
#include "app/settings.h"
#include "app/texts.h"
#include "editing/folder_browser.h"
#include "editing/picture_box.h"
#include "platform/native_disk.h"
#include "platform/temporary_folder.h"
#include "store/picture_operations.h"
#include "ui/modal_dialog_steps.h"

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QScrollBar>
#include <QTest>
#include <QTreeWidget>

MainWindowTest::MainWindowTest() {
    app::setLanguage(app::kGermanLocale);
    app::overrideDecimalSeparator(u',');
    app::settings().readPaths();
    const auto anySize = [](std::span<const std::byte>) { return store::TwipSize{150, 300}; };
    library_.emplace(store::Library{platform::nativeDisk(), app::settings().storagesFolderPath(),
                                    anySize, u','});
}

MainWindowTest::~MainWindowTest() {
    QApplication::setActiveWindow(nullptr);
    window_.reset();
    platform::wipeTemporaryFolder(platform::CopiedPicture::Remove); // it lies in this test's home
    app::overrideDecimalSeparator(std::nullopt);
    app::setLanguage(app::kGermanLocale);
}

store::GroupAddress MainWindowTest::makeGroup(const QString& name,
                                              const std::optional<store::GroupAddress>& parent) {
    return store::createGroup(library(), parent, {name.toStdU16String()});
}

void MainWindowTest::addPicture(const store::GroupAddress& group, const QString& name,
                                const QColor& colour, const QString& type) {
    QImage image(20, 10, QImage::Format_RGB32);
    image.fill(colour);
    const QString file = home_.at("source." + type);
    ASSERT_TRUE(image.save(file, "BMP"));
    store::addPicture(library(), group, {name.toStdU16String()}, platform::toFilePath(file));
}

void MainWindowTest::addUndecodable(const store::GroupAddress& group, const QString& name) {
    home_.write("source.bmp", "this is no picture");
    store::addPicture(library(), group, {name.toStdU16String()},
                      platform::toFilePath(home_.at("source.bmp")));
}

void MainWindowTest::writeGroupFile(const QString& fileName, const QByteArray& bytes) const {
    QFile file(QString::fromStdString((library().folder / fileName.toStdString()).string()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QStringList MainWindowTest::storagesFolder() const {
    return QDir(QString::fromStdString(library().folder.string())).entryList(QDir::Files);
}

void MainWindowTest::start(browser::StartMode mode) {
    window_ = std::make_unique<browser::frmMain>(mode, browser::Noticing::WhenAsked);
    window_->show();
    settle();
}

void MainWindowTest::restart() {
    window_->close();
    window_.reset();
    start();
}

void MainWindowTest::settle(const QDialog& dialog) {
    const auto* preview = dialog.findChild<editing::PictureBox*>();
    const auto* browser = dialog.findChild<editing::FolderBrowser*>();
    const auto isSettled = [&] {
        return (preview == nullptr || !preview->isBusy()) &&
               (browser == nullptr || !browser->isBusy());
    };
    ASSERT_TRUE(until(isSettled));
}

void MainWindowTest::settle() {
    ASSERT_TRUE(until([this] { return window_->isSettled(); }));
}

QTreeWidget* MainWindowTest::tree() {
    return find<QTreeWidget>("tvwGruppen");
}

QTreeWidgetItem* MainWindowTest::node(const QString& path) {
    QTreeWidgetItem* item = tree()->invisibleRootItem();
    for (const QString& name : path.split(u'/')) {
        QTreeWidgetItem* child = nullptr;
        for (int i = 0; i < item->childCount() && child == nullptr; ++i) {
            child = item->child(i)->text(0) == name ? item->child(i) : nullptr;
        }
        if (child == nullptr) {
            return nullptr;
        }
        item = child;
    }
    return item;
}

void MainWindowTest::clickNode(const QString& path) {
    QTreeWidgetItem* item = node(path);
    ASSERT_NE(item, nullptr) << path.toStdString();
    tree()->scrollToItem(item);
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                      tree()->visualItemRect(item).center());
    QTest::qWait(0);
    settle();
}

void MainWindowTest::clickFreeArea(Qt::MouseButton button) {
    QWidget* viewport = tree()->viewport();
    QTest::mouseClick(viewport, button, {}, viewport->rect().bottomRight() - QPoint(3, 3));
}

void MainWindowTest::trigger(const QString& actionName) {
    window_->awaitShown();
    find<QAction>(actionName)->trigger();
    window_->awaitShown();
}

QString MainWindowTest::label() {
    window_->awaitShown();
    return find<QLabel>("lblAktuell")->text();
}

QString MainWindowTest::selectedNode() {
    const auto selected = window_->selectedGroup();
    return selected ? selected->name : QString();
}

QStringList MainWindowTest::thumbnails() {
    window_->awaitShown();
    QStringList names;
    for (int i = 0;; ++i) {
        const auto* cell = window_->findChild<QWidget*>(QStringLiteral("img_%1").arg(i));
        if (cell == nullptr) {
            return names;
        }
        if (!cell->accessibleName().isEmpty() && cell->isVisible()) {
            names.append(cell->accessibleName());
        }
    }
}

QWidget* MainWindowTest::thumbnail(const QString& name) {
    window_->awaitShown();
    for (int i = 0;; ++i) {
        auto* cell = window_->findChild<QWidget*>(QStringLiteral("img_%1").arg(i));
        if (cell == nullptr || cell->accessibleName() == name) {
            EXPECT_NE(cell, nullptr) << name.toStdString();
            return cell;
        }
    }
}

QStringList MainWindowTest::rows() {
    window_->awaitShown();
    QStringList names;
    const auto* list = find<QTreeWidget>("lvwInfo");
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        names.append(list->topLevelItem(i)->text(0));
    }
    return names;
}

void MainWindowTest::inDialog(const std::function<void()>& open,
                              const std::function<void(QDialog&)>& steps) {
    inModalDialog(open, [&](QDialog& dialog) {
        settle(dialog);
        steps(dialog);
    });
    settle();
}
