#include "MainWindow.h"

#include <Statistics.h>
#include <EditorCollection/Collection.h>
#include <Settings/FileDialogPaths.h>

#include <QApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <glog/logging.h>

namespace {

// A collection of the editor whose page lives in the main window.
class PageCollection : public EditorCollection::ICollection
{
public:
    PageCollection(const QString& name, MainWindow* window, std::function<bool(const QString&)> holds = {})
        : m_name(name), m_window(window), m_holds(std::move(holds))
    {
    }
    QString name() const override { return m_name; }
    bool holds(const QString& tag) const override { return m_holds && m_holds(tag); }
    void showPage() override
    {
        if (m_window)
            m_window->showCollectionPage(m_name);
    }

private:
    QString m_name;
    QPointer<MainWindow> m_window;
    std::function<bool(const QString&)> m_holds;
};

QWidget* makePage(const QString& objectName, const QString& title, const QString& text)
{
    auto* page = new QWidget;
    page->setObjectName(objectName);
    auto* layout = new QVBoxLayout(page);
    QLabel* heading = MainWindow::makePageTitle(title);
    auto* body = new QLabel(text);
    body->setWordWrap(true);
    layout->addWidget(heading);
    layout->addWidget(body);
    layout->addStretch();
    return page;
}

void logCommand(const char* name, const QString& payload = QString())
{
    if (payload.isEmpty())
        LOG(INFO) << "command: " << name;
    else
        LOG(INFO) << "command: " << name << ' ' << payload.toStdString();
}

} // namespace

struct MainWindow::Subscriptions
{
    explicit Subscriptions(MainWindow* w)
        : addFiles(Command::globalObject(),
                   [w](const Command::AddFiles& m) {
                       logCommand("AddFiles", m.files.join(QLatin1Char(' ')));
                       w->addFiles(m.files);
                   }),
          show(Command::globalObject(),
               [w](const Command::ShowMainWindow&) {
                   logCommand("ShowMainWindow");
                   w->showNormal();
                   w->raise();
                   w->activateWindow();
               }),
          hide(Command::globalObject(),
               [w](const Command::HideMainWindow&) {
                   logCommand("HideMainWindow");
                   w->hide();
               }),
          tools(Command::globalObject(),
                [w](const Command::ShowToolsPage&) {
                    logCommand("ShowToolsPage");
                    w->pages()->setCurrentWidget(w->toolsPage());
                }),
          import(Command::globalObject(),
                 [w](const Command::ShowImportPage&) {
                     logCommand("ShowImportPage");
                     w->pages()->setCurrentWidget(w->importPage());
                 }),
          slideshow(Command::globalObject(), [w](const Command::StartSlideshow&) {
              logCommand("StartSlideshow");
              w->startSlideshow();
          })
    {
    }
    PubSub::Subscription<Command::AddFiles> addFiles;
    PubSub::Subscription<Command::ShowMainWindow> show;
    PubSub::Subscription<Command::HideMainWindow> hide;
    PubSub::Subscription<Command::ShowToolsPage> tools;
    PubSub::Subscription<Command::ShowImportPage> import;
    PubSub::Subscription<Command::StartSlideshow> slideshow;
};

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Klipvane"));
    resize(1000, 640);

    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("pages"));
    m_importPage = makePage(QStringLiteral("importPage"), tr("Import"),
                            tr("Drop media files here, name them on the command line, or launch the editor "
                               "again with files: they appear in the media bin."));
    m_toolsPage = makePage(QStringLiteral("toolsPage"), tr("Tools"), tr("Capture the screen or a camera."));
    m_slideshowPage = makePage(QStringLiteral("slideshowPage"), tr("Slideshow"), tr("Slideshow mode"));
    m_slideLabel = new QLabel;
    m_slideLabel->setObjectName(QStringLiteral("slideLabel"));
    m_slideLabel->setAlignment(Qt::AlignCenter);
    m_slideLabel->setMinimumHeight(200);
    m_slideLabel->setStyleSheet(QStringLiteral("background: #202428; color: white; font-size: 22px;"));
    static_cast<QVBoxLayout*>(m_slideshowPage->layout())->insertWidget(2, m_slideLabel);
    m_pages->addWidget(m_importPage);
    m_pages->addWidget(m_toolsPage);
    m_pages->addWidget(m_slideshowPage);
    setCentralWidget(m_pages);

    m_bin = new QListWidget;
    m_bin->setObjectName(QStringLiteral("mediaBin"));
    auto* dock = new QDockWidget(tr("Media bin"), this);
    dock->setObjectName(QStringLiteral("mediaBinDock"));
    dock->setWidget(m_bin);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    addDockWidget(Qt::LeftDockWidgetArea, dock);

    m_slideTimer = new QTimer(this);
    m_slideTimer->setInterval(2000);
    connect(m_slideTimer, &QTimer::timeout, this, &MainWindow::showSlide);

    buildMenus();
    statusBar()->showMessage(tr("Ready"));
    m_subscriptions = std::make_unique<Subscriptions>(this);
}

MainWindow::~MainWindow()
{
    for (const QString& name : m_collectionPages.keys())
        EditorCollection::CollectionProvider::remove(name);
}

void MainWindow::buildMenus()
{
    QMenu* view = menuBar()->addMenu(tr("&View"));
    auto showPage = [this](QWidget* page) { return [this, page] { m_pages->setCurrentWidget(page); }; };
    Statistics::setEventKey(view->addAction(tr("&Import"), this, showPage(m_importPage)), QStringLiteral("showImportPage"), QStringLiteral("viewMenu"));
    Statistics::setEventKey(view->addAction(tr("&Tools"), this, showPage(m_toolsPage)), QStringLiteral("showToolsPage"), QStringLiteral("viewMenu"));
    QToolBar* bar = addToolBar(tr("Pages"));
    bar->setObjectName(QStringLiteral("pagesToolBar"));
    bar->setMovable(false);
    Statistics::setEventKey(bar->addAction(tr("Import"), this, showPage(m_importPage)), QStringLiteral("showImportPage"), QStringLiteral("pagesToolBar"));
    Statistics::setEventKey(bar->addAction(tr("Tools"), this, showPage(m_toolsPage)), QStringLiteral("showToolsPage"), QStringLiteral("pagesToolBar"));
}

QLabel* MainWindow::makePageTitle(const QString& title)
{
    auto* heading = new QLabel(title);
    heading->setObjectName(QStringLiteral("pageTitle"));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    heading->setFont(font);
    return heading;
}

void MainWindow::addCollectionPage(const QString& name, const QString& title, const QString& description)
{
    addCollectionPage(name, title, makePage(QStringLiteral("collectionPage_") + name, title, description), {});
}

void MainWindow::addCollectionPage(const QString& name, const QString& title, QWidget* page,
                                   std::function<bool(const QString&)> holds)
{
    LOG(INFO) << "collection page: " << name.toStdString() << " \"" << title.toStdString() << '"';
    m_pages->addWidget(page);
    m_collectionPages.insert(name, page);
    EditorCollection::CollectionProvider::add(std::make_shared<PageCollection>(name, this, std::move(holds)));
    if (auto* bar = findChild<QToolBar*>(QStringLiteral("pagesToolBar"))) {
        QAction* action = bar->addAction(title, this, [this, name] { showCollectionPage(name); });
        Statistics::setEventKey(action, QStringLiteral("showCollectionPage"), QStringLiteral("pagesToolBar"));
        Statistics::addEventParam(action, QStringLiteral("collection"), name);
    }
}

void MainWindow::showCollectionPage(const QString& name)
{
    QWidget* page = m_collectionPages.value(name);
    if (!page)
        return;
    LOG(INFO) << "collection: " << name.toStdString();
    m_pages->setCurrentWidget(page);
}

void MainWindow::addFiles(const QStringList& arrived)
{
    // Projects are opened, not added to the bin.
    QStringList files;
    for (const QString& file : arrived) {
        if (Settings::supportedProjectFileExtensions().contains(QFileInfo(file).suffix().toLower()))
            emit projectOpenRequested(file);
        else
            files << file;
    }
    if (files.isEmpty())
        return;
    for (const QString& file : files) {
        auto* item = new QListWidgetItem(QFileInfo(file).fileName(), m_bin);
        item->setToolTip(file);
        item->setData(Qt::UserRole, file);
    }
    statusBar()->showMessage(tr("%n file(s) added", nullptr, files.size()));
    emit filesAdded(files);
    if (isSlideshowRunning())
        showSlide();
}

void MainWindow::showBatchOutcome(int addedFiles, int failedFiles)
{
    const QString message = failedFiles == 0
        ? tr("%n file(s) added", nullptr, addedFiles)
        : tr("%n file(s) added, %1 could not be opened", nullptr, addedFiles).arg(failedFiles);
    statusBar()->showMessage(message);
    LOG(INFO) << "status: " << message.toStdString();
}

bool MainWindow::isSlideshowRunning() const
{
    return m_slideTimer->isActive();
}

void MainWindow::startSlideshow()
{
    m_pages->setCurrentWidget(m_slideshowPage);
    m_slide = 0;
    m_slideTimer->start();
    showSlide();
}

void MainWindow::showSlide()
{
    if (m_bin->count() == 0) {
        m_slideLabel->setText(tr("Slideshow: waiting for files"));
        return;
    }
    const int index = m_slide++ % m_bin->count();
    m_slideLabel->setText(tr("Slide %1 of %2\n%3").arg(index + 1).arg(m_bin->count()).arg(m_bin->item(index)->text()));
}
