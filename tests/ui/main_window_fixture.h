// The real main window on a small real library in a throw-away home.
#pragma once

#include "app/message_box_script.h"
#include "browser/frm_main.h"
#include "platform/own_home.h"
#include "store/group_operations.h"

#include <QColor>
#include <QDialog>
#include <QSize>

#include <functional>
#include <gtest/gtest.h>
#include <memory>

class QTreeWidget;
class QTreeWidgetItem;

class MainWindowTest : public testing::Test {
  protected:
    MainWindowTest();
    ~MainWindowTest() override;

    // --- The library, behind the window's back
    const store::Library& library() const { return *library_; }
    store::GroupAddress makeGroup(const QString& name,
                                  const std::optional<store::GroupAddress>& parent = {});
    void addPicture(const store::GroupAddress& group, const QString& name,
                    const QColor& colour = Qt::red, const QString& type = "bmp");
    void addUndecodable(const store::GroupAddress& group, const QString& name);
    void writeGroupFile(const QString& fileName, const QByteArray& bytes) const;
    QStringList storagesFolder() const; // names of the files

    // --- The window
    // Creates and shows it and waits until it has settled.
    void start(browser::StartMode mode = browser::StartMode::Standalone);
    void restart();
    void settle();
    // The same for the picture and the lists that a dialog shows.
    static void settle(const QDialog& dialog);
    browser::frmMain& window() { return *window_; }

    template <typename Control>
    Control* find(const QString& name) {
        auto* control = window_->findChild<Control*>(name);
        if (control == nullptr) {
            ADD_FAILURE() << "no control " << name.toStdString();
        }
        return control;
    }

    QTreeWidget* tree();
    QTreeWidgetItem* node(const QString& path); // "Pumpen/Kreisel"
    void clickNode(const QString& path);
    void clickFreeArea(Qt::MouseButton button);
    void trigger(const QString& actionName);

    QString label();
    QString selectedNode();   // the node's text, empty for none
    QStringList thumbnails(); // names in the cells that show a picture
    QWidget* thumbnail(const QString& name);
    QStringList rows(); // names in the list

    // Runs `steps` in the modal dialog that `open` opens.
    void inDialog(const std::function<void()>& open, const std::function<void(QDialog&)>& steps);

    OwnHome home_;
    MessageBoxScript boxes_;

  private:
    std::optional<store::Library> library_;
    std::unique_ptr<browser::frmMain> window_;
};
