#include "Gui/FileInfoDialog.h"

#include "Util/GeneralButtonsTr.h"
#include "Util/StyleHint.h"
#include "Util/Workaround.h"

#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace Tavrin {
namespace Gui {

struct FileInfoDialog::Impl
{
    Fields fields;
    QLabel* fileNameLabel = nullptr;
    QFormLayout* generalForm = nullptr;
    QFrame* videoFrame = nullptr;
    QFormLayout* videoForm = nullptr;
    QFrame* audioFrame = nullptr;
    QFormLayout* audioForm = nullptr;

    // Sets the row's value, adding the row the first time.
    static void setRow(QFormLayout* form, const QString& rowName, const QString& label, const QString& value)
    {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem* item = form->itemAt(row, QFormLayout::FieldRole);
            auto* field = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
            if (field && field->objectName() == rowName) {
                field->setText(value);
                return;
            }
        }
        auto* field = new QLabel(value);
        field->setObjectName(rowName);
        field->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(label, field);
    }
};

namespace {
QString durationText(const QTime& duration, const QString& format)
{
    return duration.toString(format.isEmpty() ? QStringLiteral("hh:mm:ss") : format);
}

QString bitRateText(qint64 bitsPerSecond)
{
    if (bitsPerSecond <= 0)
        return FileInfoDialog::tr("Unknown");
    return FileInfoDialog::tr("%1 kbps").arg(bitsPerSecond / 1000);
}
} // namespace

FileInfoDialog::FileInfoDialog(const QString& fileName, QWidget* parent)
    : QDialog(parent)
    , d(std::make_unique<Impl>())
{
    setObjectName(QStringLiteral("fileInfoDialog"));
    setWindowTitle(tr("File information"));
    Workaround::Ui::apply(this);
    d->fields.fileName = fileName;

    auto* layout = new QVBoxLayout(this);
    d->fileNameLabel = new QLabel(fileName);
    d->fileNameLabel->setObjectName(QStringLiteral("fileNameLabel"));
    ::Util::applyStyleHint(d->fileNameLabel, QStringLiteral("dialogTitle"));
    layout->addWidget(d->fileNameLabel);

    auto* generalFrame = new QFrame;
    generalFrame->setObjectName(QStringLiteral("generalFrame"));
    d->generalForm = new QFormLayout(generalFrame);
    layout->addWidget(generalFrame);

    const auto section = [layout](const QString& name, const QString& title, QFormLayout*& form) {
        auto* frame = new QFrame;
        frame->setObjectName(name);
        auto* column = new QVBoxLayout(frame);
        column->setContentsMargins(0, 0, 0, 0);
        auto* caption = new QLabel(title);
        caption->setObjectName(QStringLiteral("sectionLabel"));
        column->addWidget(caption);
        form = new QFormLayout;
        column->addLayout(form);
        frame->hide();
        layout->addWidget(frame);
        return frame;
    };
    d->videoFrame = section(QStringLiteral("videoFrame"), tr("Video"), d->videoForm);
    d->audioFrame = section(QStringLiteral("audioFrame"), tr("Audio"), d->audioForm);

    auto* buttonsFrame = new QFrame;
    buttonsFrame->setObjectName(QStringLiteral("buttonsFrame"));
    ::Util::applyStyleHint(buttonsFrame, QStringLiteral("generalButtons"));
    auto* buttons = new QHBoxLayout(buttonsFrame);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addStretch();
    auto* okButton = new QPushButton(GeneralButtonsTr::ok());
    okButton->setObjectName(QStringLiteral("okButton"));
    okButton->setDefault(true);
    ::Util::applyStyleHint(okButton, QStringLiteral("activeButton"));
    connect(okButton, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(okButton);
    layout->addWidget(buttonsFrame);
}

FileInfoDialog::~FileInfoDialog() = default;

void FileInfoDialog::setFormatName(const QString& name)
{
    d->fields.formatName = name;
    Impl::setRow(d->generalForm, QStringLiteral("formatValue"), tr("Format:"), name);
}

void FileInfoDialog::setVideoCodecName(const QString& name)
{
    d->fields.videoCodecName = name;
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("videoCodecValue"), tr("Codec:"), name);
}

void FileInfoDialog::setVideoGeometry(const QSize& frameSize)
{
    d->fields.videoGeometry = frameSize;
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("geometryValue"), tr("Frame size:"),
                 tr("%1 x %2").arg(frameSize.width()).arg(frameSize.height()));
}

void FileInfoDialog::setAspectRatio(int width, int height)
{
    d->fields.aspectRatio = QSize(width, height);
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("aspectRatioValue"), tr("Aspect ratio:"),
                 QStringLiteral("%1:%2").arg(width).arg(height));
}

void FileInfoDialog::setVideoDuration(const QTime& duration, const QString& format)
{
    d->fields.videoDuration = durationText(duration, format);
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("videoDurationValue"), tr("Duration:"), *d->fields.videoDuration);
}

void FileInfoDialog::setFrameRate(double framesPerSecond)
{
    d->fields.frameRate = framesPerSecond;
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("frameRateValue"), tr("Frame rate:"),
                 tr("%1 fps").arg(QLocale().toString(framesPerSecond, 'g', 5)));
}

void FileInfoDialog::setVideoBitRate(qint64 bitsPerSecond)
{
    d->fields.videoBitRate = bitsPerSecond;
    d->videoFrame->show();
    Impl::setRow(d->videoForm, QStringLiteral("videoBitRateValue"), tr("Bit rate:"), bitRateText(bitsPerSecond));
}

void FileInfoDialog::setAudioCodecName(const QString& name)
{
    d->fields.audioCodecName = name;
    d->audioFrame->show();
    Impl::setRow(d->audioForm, QStringLiteral("audioCodecValue"), tr("Codec:"), name);
}

void FileInfoDialog::setAudioDuration(const QTime& duration, const QString& format)
{
    d->fields.audioDuration = durationText(duration, format);
    d->audioFrame->show();
    Impl::setRow(d->audioForm, QStringLiteral("audioDurationValue"), tr("Duration:"), *d->fields.audioDuration);
}

void FileInfoDialog::setSampleRate(int hertz)
{
    d->fields.sampleRate = hertz;
    d->audioFrame->show();
    Impl::setRow(d->audioForm, QStringLiteral("sampleRateValue"), tr("Sample rate:"), tr("%1 Hz").arg(hertz));
}

void FileInfoDialog::setAudioBitRate(qint64 bitsPerSecond)
{
    d->fields.audioBitRate = bitsPerSecond;
    d->audioFrame->show();
    Impl::setRow(d->audioForm, QStringLiteral("audioBitRateValue"), tr("Bit rate:"), bitRateText(bitsPerSecond));
}

void FileInfoDialog::setChannels(int channels)
{
    d->fields.channels = channels;
    d->audioFrame->show();
    Impl::setRow(d->audioForm, QStringLiteral("channelsValue"), tr("Channels:"), QString::number(channels));
}

const FileInfoDialog::Fields& FileInfoDialog::fields() const
{
    return d->fields;
}

} // namespace Gui
} // namespace Tavrin
