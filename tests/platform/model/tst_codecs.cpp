#include "TestSandbox.h"
#include <Conf/Codecs.h>

#include <QtTest>

using namespace Tavrin::Conf;

class tst_Codecs : public QObject
{
    Q_OBJECT

private slots:
    void displayNames_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<bool>("known");
        QTest::addColumn<QString>("name");
        QTest::newRow("h265") << QString(IFormatCodecVideo::CODEC_ID_H265) << true << "H.265/HEVC";
        QTest::newRow("case matters") << "H265" << false << "untouched";
        QTest::newRow("unknown") << "cavs" << false << "untouched";
    }

    void displayNames()
    {
        QFETCH(QString, id);
        QString result = QStringLiteral("untouched");
        QTEST(TranslateCodecId(id, result), "known");
        QTEST(result, "name");
    }
};

QTEST_GUILESS_MAIN(tst_Codecs)
#include "tst_codecs.moc"
