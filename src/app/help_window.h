// The window that shows a help file: contents at the left, the page at the right.
#pragma once

#include "app/help_file.h"

#include <QTextBrowser>
#include <QWidget>

#include <memory>

class QLineEdit;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace app {

// Shows the pages of one help file; links to the web go to the desktop's browser.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT

  public:
    explicit HelpBrowser(QWidget* parent);

    // The file must outlive the browser or the next call. Forgets where one has been.
    void setFile(const HelpFile& file);
    void showPage(const QString& page);
    // The shown page, as HelpFile::read takes it.
    QString page() const;

    QVariant loadResource(int type, const QUrl& name) override;

  protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

  private:
    const HelpFile* file_ = nullptr;
    QUrl loading_; // the page that is shown, from when its pictures and styles are asked for
};

class HelpWindow : public QWidget {
    Q_OBJECT

  public:
    HelpWindow();

    // Shows a page of the file, in front of `owner`, which may be modal. A file shown already keeps
    // the way back to its earlier pages.
    void showPage(std::unique_ptr<HelpFile> file, const QString& page, QWidget* owner);

  private:
    void build();
    void addSearch(QToolBar& bar);
    void findNext();
    void setFile(std::unique_ptr<HelpFile> file);
    void fillContents();
    void pageChanged();
    void standInFrontOf(QWidget* owner);

    std::unique_ptr<HelpFile> file_;
    QTreeWidget* contents_;
    HelpBrowser* browser_;
    QLineEdit* search_;
};

} // namespace app
