#include "TestSandbox.h"
#include <Conf/Codecs.h>
#include <Conf/FormatConfiguration.h>
#include <Proc/ProcessingError.h>
#include <Settings/Settings.h>

#include <QTemporaryDir>
#include <QtTest>

using namespace Tavrin::Conf;

class tst_Codecs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void translate_data();
    void translate();
    void h265DeclaredUnsupportedUntilSwitchedOn();
    void processingErrorCodeIsSecondVirtual();

private:
    QTemporaryDir m_config;
};

void tst_Codecs::initTestCase()
{
    Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
}

void tst_Codecs::translate_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("known");
    QTest::addColumn<QString>("name");
    QTest::newRow("h265") << QString(IFormatCodecVideo::CODEC_ID_H265) << true << "H.265/HEVC";
    QTest::newRow("h264") << QString(IFormatCodecVideo::CODEC_ID_H264) << true << "H.264/AVC";
    QTest::newRow("aac") << QString(IFormatCodecAudio::CODEC_ID_AAC) << true << "AAC";
    QTest::newRow("case matters") << "H265" << false << "untouched";
    QTest::newRow("unknown") << "cavs" << false << "untouched";
}

void tst_Codecs::translate()
{
    QFETCH(QString, id);
    QFETCH(bool, known);
    QFETCH(QString, name);
    QString result = QStringLiteral("untouched");
    QCOMPARE(TranslateCodecId(id, result), known);
    QCOMPARE(result, name);
}

void tst_Codecs::h265DeclaredUnsupportedUntilSwitchedOn()
{
    QVERIFY(FormatConfiguration::instance().declaredUnsupportedCodecs().contains(IFormatCodecVideo::CODEC_ID_H265));
    QVERIFY(isCodecDeclaredUnsupported(IFormatCodecVideo::CODEC_ID_H265));
    QVERIFY(!isCodecDeclaredUnsupported(IFormatCodecVideo::CODEC_ID_H264));
    Settings::setValue(H265DecodingSettingKey, true);
    QVERIFY(!isCodecDeclaredUnsupported(IFormatCodecVideo::CODEC_ID_H265));
    Settings::remove(H265DecodingSettingKey);
    QCOMPARE(codecIdFromEngineName(QStringLiteral("hevc")), QString(IFormatCodecVideo::CODEC_ID_H265));
}

namespace {
// Code built elsewhere reaches the code through the virtual table: slot 0 and 1 belong to
// the destructor (complete and deleting), the next slot is code().
int codeThroughVtable(const Tavrin::Proc::ProcessingError& error)
{
    using Accessor = int (*)(const void*);
    auto vtable = *reinterpret_cast<void* const* const*>(&error);
    return reinterpret_cast<Accessor>(vtable[2])(&error);
}
} // namespace

void tst_Codecs::processingErrorCodeIsSecondVirtual()
{
    const Tavrin::Proc::ProcessingError error(Tavrin::Proc::InputCorruptedOrMissing, "file.cpp", "open", 12,
                                              "Invalid data", "/tmp/x.mp4");
    QCOMPARE(codeThroughVtable(error), 36);
    QCOMPARE(error.subject(), std::string("/tmp/x.mp4"));
    QVERIFY(QString::fromStdString(error.toString()).contains(QLatin1String("code 36")));
}

QTEST_GUILESS_MAIN(tst_Codecs)
#include "tst_codecs.moc"
