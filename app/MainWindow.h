#pragma once

#include <CommandProvider.h>

#include <QMainWindow>
#include <QMap>

#include <functional>
#include <memory>

class QLabel;
class QListWidget;
class QStackedWidget;
class QTimer;

// The reference editor's main window: an import page, a tools page, one page per
// collection and a media bin. It only reacts to commands from the bus; it never decides
// when they come.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Adds a collection page titled `title` (a user text) and registers the collection
    // under `name` (an identifier, as IPC requests name it).
    void addCollectionPage(const QString& name, const QString& title, const QString& description);
    // The same with a page of its own (the window takes it); `holds` tells which item type
    // tags the collection offers (EditorCollection::ICollection::holds).
    void addCollectionPage(const QString& name, const QString& title, QWidget* page,
                           std::function<bool(const QString&)> holds);
    void showCollectionPage(const QString& name);
    // The large title at the top of a page.
    static QLabel* makePageTitle(const QString& title);

    QStackedWidget* pages() const { return m_pages; }
    QListWidget* mediaBin() const { return m_bin; }
    QWidget* toolsPage() const { return m_toolsPage; }
    QWidget* importPage() const { return m_importPage; }
    bool isSlideshowRunning() const;

    void addFiles(const QStringList& files);
    void startSlideshow();
    // Tells in the status bar how a batch of added files ended.
    void showBatchOutcome(int addedFiles, int failedFiles);

signals:
    void filesAdded(const QStringList& files);
    // A project file arrived where media files do (command line, second launch).
    void projectOpenRequested(const QString& path);

private:
    void buildMenus();
    void showSlide();

    QStackedWidget* m_pages = nullptr;
    QWidget* m_importPage = nullptr;
    QWidget* m_toolsPage = nullptr;
    QWidget* m_slideshowPage = nullptr;
    QLabel* m_slideLabel = nullptr;
    QTimer* m_slideTimer = nullptr;
    int m_slide = 0;
    QListWidget* m_bin = nullptr;
    QMap<QString, QWidget*> m_collectionPages;
    struct Subscriptions;
    std::unique_ptr<Subscriptions> m_subscriptions;
};
