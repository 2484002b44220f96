#include "Dialog/NoticeDialogs.h"

#include "Customization.h"

#include <ExternalResourceInfo.h>
#include <FileUtil/FileUtil.h>
#include <Gui/AnypointWidgetDrag.h>
#include <Timeline/PasteFXResult.h>
#include <Util/GeneralButtonsTr.h>
#include <Util/HTML.h>
#include <Util/StyleHint.h>
#include <Util/Workaround.h>

#include <QDialogButtonBox>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {
template <class Widget>
Widget* make(QWidget* parent, const char* name)
{
    auto* widget = new Widget(parent);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

template <class Layout>
Layout* tightLayout(QWidget* owner)
{
    auto* layout = new Layout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

QLabel* richLabel(QWidget* parent, const char* name, QString const& text)
{
    QLabel* label = make<QLabel>(parent, name);
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    label->setText(text);
    // Links go through the application's links manager (http and https only, with the
    // product's parameters), not straight to the desktop.
    label->setOpenExternalLinks(false);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    QObject::connect(label, &QLabel::linkActivated, label, [](QString const& url) { Customization::openUrl(url); });
    return label;
}

// A frame with the style hint "generalButtons" holding one "Got It" button that accepts.
QFrame* gotItButtons(QDialog* dialog)
{
    QFrame* frame = make<QFrame>(dialog, "buttonsFrame");
    Util::applyStyleHint(frame, QStringLiteral("generalButtons"));
    auto* row = tightLayout<QHBoxLayout>(frame);
    row->addStretch();
    QPushButton* button = make<QPushButton>(frame, "gotItButton");
    button->setText(GeneralButtonsTr::gotIt());
    button->setDefault(true);
    Util::applyStyleHint(button, QStringLiteral("activeButton"));
    QObject::connect(button, &QPushButton::clicked, dialog, &QDialog::accept);
    row->addWidget(button);
    return frame;
}

// Two frames of different shape, the wider one around the narrower: a picture of a
// project that does not match its media.
class AspectPicture : public QWidget
{
public:
    explicit AspectPicture(QWidget* parent)
        : QWidget(parent)
    {
        setFixedSize(96, 72);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor accent(0x2f, 0x6f, 0xed);
        painter.setPen(QPen(palette().color(QPalette::Mid), 2));
        painter.setBrush(palette().color(QPalette::Base));
        painter.drawRoundedRect(QRectF(4, 14, 88, 48), 4, 4);
        painter.setPen(QPen(accent, 2, Qt::DashLine));
        painter.setBrush(QColor(accent.red(), accent.green(), accent.blue(), 40));
        painter.drawRoundedRect(QRectF(30, 4, 36, 64), 4, 4);
    }
};
} // namespace

// --- AdjustProjectAspectDialog ----------------------------------------------

AdjustProjectAspectDialog::AdjustProjectAspectDialog(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("AdjustProjectAspectDialog"));
    Workaround::Ui::apply(this);
    setWindowTitle(tr("Adding files"));
    auto* layout = tightLayout<QVBoxLayout>(this);

    QFrame* contentFrame = make<QFrame>(this, "contentFrame");
    auto* content = tightLayout<QHBoxLayout>(contentFrame);
    auto* imageWidget = new AspectPicture(contentFrame);
    imageWidget->setObjectName(QStringLiteral("imageWidget"));
    content->addWidget(imageWidget, 0, Qt::AlignTop);

    QFrame* messageFrame = make<QFrame>(contentFrame, "messageFrame");
    auto* message = tightLayout<QVBoxLayout>(messageFrame);
    QLabel* titleLabel = make<QLabel>(messageFrame, "titleLabel");
    titleLabel->setWordWrap(true);
    titleLabel->setText(tr("The aspect ratio of your files doesn't match the project"));
    Util::applyStyleHint(titleLabel, QStringLiteral("dialogTitle"));
    message->addWidget(titleLabel);
    QLabel* infoLabel = make<QLabel>(messageFrame, "infoLabel");
    infoLabel->setWordWrap(true);
    infoLabel->setText(tr("Change the project settings to match the files?"));
    message->addWidget(infoLabel);
    message->addStretch();
    content->addWidget(messageFrame, 1);
    layout->addWidget(contentFrame);

    auto* buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    QPushButton* change = buttonBox->button(QDialogButtonBox::Ok);
    change->setText(tr("Change"));
    Util::applyStyleHint(change, QStringLiteral("activeButton"));
    buttonBox->button(QDialogButtonBox::Cancel)->setText(tr("Don't Change"));
    connect(buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttonBox);
}

AdjustProjectAspectDialog::~AdjustProjectAspectDialog() = default;

// --- CantPasteEffectsDialog -------------------------------------------------

struct CantPasteEffectsDialog::Impl
{
    QListWidget* effectsList = nullptr;
};

namespace {
constexpr int effectNameWidth = 260;
constexpr int effectRowSpacing = 6;

QWidget* effectRow(QString const& name, QIcon const& icon, bool last)
{
    auto* row = new QWidget;
    row->setObjectName(QStringLiteral("effectRow"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, last ? 0 : effectRowSpacing);
    layout->setSpacing(8);
    auto* iconLabel = new QLabel(row);
    iconLabel->setObjectName(QStringLiteral("effectIcon"));
    iconLabel->setPixmap(icon.pixmap(20, 20));
    layout->addWidget(iconLabel, 0, Qt::AlignLeft | Qt::AlignVCenter);
    auto* nameLabel = new QLabel(row);
    nameLabel->setObjectName(QStringLiteral("effectName"));
    nameLabel->setText(nameLabel->fontMetrics().elidedText(name, Qt::ElideRight, effectNameWidth));
    nameLabel->setToolTip(name);
    layout->addWidget(nameLabel, 1, Qt::AlignVCenter);
    return row;
}
} // namespace

CantPasteEffectsDialog::CantPasteEffectsDialog(Timeline::PasteFXResult const& result, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , d(std::make_unique<Impl>())
{
    setObjectName(QStringLiteral("CantPasteEffectsDialog"));
    Workaround::Ui::apply(this);
    setWindowTitle(tr("Effects partially applied"));
    auto* layout = tightLayout<QVBoxLayout>(this);
    QFrame* contentFrame = make<QFrame>(this, "contentFrame");
    auto* content = tightLayout<QVBoxLayout>(contentFrame);

    QFrame* topFrame = make<QFrame>(contentFrame, "topFrame");
    auto* top = tightLayout<QHBoxLayout>(topFrame);
    QFrame* titleFrame = make<QFrame>(topFrame, "titleFrame");
    auto* titles = tightLayout<QVBoxLayout>(titleFrame);
    QLabel* titleLabel = make<QLabel>(titleFrame, "titleLabel");
    titleLabel->setText(tr("Effects partially applied"));
    Util::applyStyleHint(titleLabel, QStringLiteral("dialogTitle"));
    titles->addWidget(titleLabel);
    QLabel* subtitleLabel = make<QLabel>(titleFrame, "subtitleLabel");
    subtitleLabel->setText(tr("Some tools require manual setup"));
    titles->addWidget(subtitleLabel);
    top->addWidget(titleFrame, 1);
    QToolButton* closeButton = make<QToolButton>(topFrame, "closeButton");
    Util::applyStyleHint(closeButton, QStringLiteral("close"));
    connect(closeButton, &QToolButton::clicked, this, &QDialog::reject);
    top->addWidget(closeButton, 0, Qt::AlignTop);
    content->addWidget(topFrame);

    QFrame* effectsFrame = make<QFrame>(contentFrame, "effectsFrame");
    auto* effects = tightLayout<QVBoxLayout>(effectsFrame);
    d->effectsList = make<QListWidget>(effectsFrame, "effectsList");
    d->effectsList->setSelectionMode(QAbstractItemView::NoSelection);
    d->effectsList->setFocusPolicy(Qt::NoFocus);
    d->effectsList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    d->effectsList->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    d->effectsList->setFrameShape(QFrame::NoFrame);
    const QIcon fallbackIcon = style()->standardIcon(QStyle::SP_MessageBoxInformation);
    const auto& list = result.needManualSetup;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const QIcon icon = !list[i].iconPath.isEmpty() && QFile::exists(list[i].iconPath) ? QIcon(list[i].iconPath)
                                                                                           : fallbackIcon;
        auto* item = new QListWidgetItem(d->effectsList);
        item->setData(Qt::UserRole, list[i].name);
        QWidget* row = effectRow(list[i].name, icon, i + 1 == list.size());
        item->setSizeHint(row->sizeHint());
        d->effectsList->setItemWidget(item, row);
    }
    effects->addWidget(d->effectsList);
    content->addWidget(effectsFrame);

    QFrame* buttonsFrame = make<QFrame>(contentFrame, "buttonsFrame");
    auto* buttons = tightLayout<QHBoxLayout>(buttonsFrame);
    buttons->addStretch();
    QPushButton* okButton = make<QPushButton>(buttonsFrame, "okButton");
    okButton->setText(GeneralButtonsTr::ok());
    okButton->setDefault(true);
    Util::applyStyleHint(okButton, QStringLiteral("activeButton"));
    connect(okButton, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(okButton);
    content->addWidget(buttonsFrame);
    layout->addWidget(contentFrame);
    installEventFilter(new Tavrin::Gui::AnypointWidgetDrag(this));
}

CantPasteEffectsDialog::~CantPasteEffectsDialog() = default;

void CantPasteEffectsDialog::showEvent(QShowEvent* event)
{
    // The list shows every row without scrolling; the dialog then takes its laid-out size
    // and keeps it.
    int height = 0;
    for (int row = 0; row < d->effectsList->count(); ++row)
        height += d->effectsList->sizeHintForRow(row);
    d->effectsList->setFixedHeight(height + 2 * d->effectsList->frameWidth());
    if (layout())
        layout()->activate();
    setFixedSize(sizeHint());
    QDialog::showEvent(event);
}

// --- UnsupportedCodecInfoDialog ---------------------------------------------

namespace {
QString link(QString const& text, Tavrin::URLKeys key)
{
    return Util::HTML::textWithLink(text, Customization::appUrl(key), QStringLiteral("text-decoration: none"));
}
} // namespace

UnsupportedCodecInfoDialog::UnsupportedCodecInfoDialog(QStringList const& files, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("UnsupportedCodecInfoDialog"));
    Workaround::Ui::apply(this);
    setWindowTitle(tr("H.265-encoded files are not supported"));

    const QStringList pictures = FileUtil::pictureExtensions();
    const QStringList videos = FileUtil::videoExtensions();
    bool hasImages = false;
    bool hasVideos = false;
    for (QString const& file : files) {
        const QString extension = FS::extensionL(file);
        hasImages = hasImages || pictures.contains(extension);
        hasVideos = hasVideos || videos.contains(extension);
    }

    QStringList remedies;
    remedies << tr("%1 the files to a supported format")
                    .arg(link(tr("converting"), Tavrin::URLKeys::CONVERT_LINK_h265notification));
    const QString videosLink = link(tr("videos"), Tavrin::URLKeys::MS_EXTENSION_VIDEO_h265notification);
    const QString imagesLink = link(tr("images"), Tavrin::URLKeys::MS_EXTENSION_IMAGE_h265notification);
    if (hasVideos && hasImages) {
        remedies << tr("purchasing the H.265 support extension for %1 and %2 in the Microsoft Store")
                        .arg(videosLink, imagesLink);
    } else if (hasVideos || hasImages) {
        remedies << tr("purchasing the H.265 support extension for %1 in the Microsoft Store")
                        .arg(hasVideos ? videosLink : imagesLink);
    }
    QString list;
    for (QString const& remedy : qAsConst(remedies))
        list += QStringLiteral("<br>&bull; ") + remedy;
    m_message = tr("%1 programs cannot correctly display imported files because they do not support the codec. "
                   "This can be resolved by: %2")
                    .arg(Customization::organizationPresentableName(), list);

    auto* layout = tightLayout<QVBoxLayout>(this);
    QFrame* contentFrame = make<QFrame>(this, "contentFrame");
    auto* content = tightLayout<QVBoxLayout>(contentFrame);
    QLabel* titleLabel = make<QLabel>(contentFrame, "titleLabel");
    titleLabel->setText(tr("H.265-encoded files are not supported"));
    Util::applyStyleHint(titleLabel, QStringLiteral("dialogTitle"));
    content->addWidget(titleLabel);
    QLabel* messageLabel = richLabel(contentFrame, "messageLabel", m_message);
    messageLabel->setMinimumWidth(380);
    content->addWidget(messageLabel);
    // One row per path, sorted; a long list scrolls inside a few rows so that the dialog
    // fits a small screen whatever the number of files.
    QStringList paths = files;
    paths.removeDuplicates();
    std::sort(paths.begin(), paths.end(),
              [](QString const& a, QString const& b) { return QString::localeAwareCompare(a, b) < 0; });
    if (!paths.isEmpty()) {
        constexpr int rowsShownAtMost = 8;
        QListWidget* filesList = make<QListWidget>(contentFrame, "filesList");
        filesList->setSelectionMode(QAbstractItemView::NoSelection);
        filesList->setFocusPolicy(Qt::NoFocus);
        filesList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        filesList->setTextElideMode(Qt::ElideMiddle);
        for (QString const& path : qAsConst(paths)) {
            auto* item = new QListWidgetItem(path.section(QLatin1Char('/'), -1), filesList);
            item->setToolTip(path);
        }
        const int rows = std::min(int(paths.size()), rowsShownAtMost);
        filesList->setFixedHeight(rows * filesList->sizeHintForRow(0) + 2 * filesList->frameWidth());
        content->addWidget(filesList);
    }
    layout->addWidget(contentFrame);
    layout->addWidget(gotItButtons(this));
}

UnsupportedCodecInfoDialog::~UnsupportedCodecInfoDialog() = default;

QString UnsupportedCodecInfoDialog::message() const
{
    return m_message;
}

// --- ExternalResourceInfoDialog ---------------------------------------------

namespace {
const char neutralColor[] = "#4b5563";

// "Label ・ value", the value a link when there is an address.
QString linkedOrPlain(QString const& label, QString const& value, QString const& url)
{
    if (!url.isEmpty())
        return QStringLiteral("%1 ・ <a href=\"%3\" style=\"text-decoration:none\">%2</a>")
            .arg(label, value.toHtmlEscaped(), url.toHtmlEscaped());
    return QStringLiteral("%2 ・ <span style='color: %1;'>%3</span>")
        .arg(QLatin1String(neutralColor), label, value.toHtmlEscaped());
}

QString withIcon(QString const& iconPath, int size, QString const& text)
{
    return QStringLiteral("<html>%3 <img src=\"%1\" width=\"%2\" height=\"%2\"/></html>")
        .arg(iconPath, QString::number(size), text);
}
} // namespace

ExternalResourceInfoDialog::ExternalResourceInfoDialog(ExternalResourceInfo const& info, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("ExternalResourceInfoDialog"));
    Workaround::Ui::apply(this);
    setWindowTitle(tr("About this resource"));
    auto* layout = tightLayout<QVBoxLayout>(this);
    QFrame* contentFrame = make<QFrame>(this, "contentFrame");
    auto* content = tightLayout<QVBoxLayout>(contentFrame);
    QLabel* titleLabel = make<QLabel>(contentFrame, "titleLabel");
    titleLabel->setText(info.title.isEmpty() ? tr("About this resource") : info.title);
    Util::applyStyleHint(titleLabel, QStringLiteral("dialogTitle"));
    content->addWidget(titleLabel);

    content->addWidget(richLabel(contentFrame, "artistLabel", linkedOrPlain(tr("Artist"), info.artist, info.artistUrl)));
    content->addWidget(richLabel(contentFrame, "sourceLabel", linkedOrPlain(tr("Source"), info.source, info.sourceUrl)));
    content->addWidget(
        richLabel(contentFrame, "licenseLabel", linkedOrPlain(tr("License"), info.license, info.licenseUrl)));
    const QString allowed = info.commercialUse ? tr("Allowed") : tr("Not allowed");
    const QString color = info.commercialUse ? QStringLiteral("#2ea043") : QStringLiteral("#c62828");
    const QString commercial =
        QStringLiteral("%2 ・ <span style='color: %1;'>%3</span>").arg(color, tr("Commercial use"), allowed);
    const QString icon = info.commercialUse ? QStringLiteral(":/AppUtil/dialogs/allowed.png")
                                            : QStringLiteral(":/AppUtil/dialogs/notallowed.png");
    content->addWidget(richLabel(contentFrame, "commercialUseLabel", withIcon(icon, 14, commercial)));
    layout->addWidget(contentFrame);
    layout->addWidget(gotItButtons(this));
}

ExternalResourceInfoDialog::~ExternalResourceInfoDialog() = default;
