#include "TestSandbox.h"
#include "MediaTestServices.h"

#include <Customization.h>
#include <ErrorDescription.h>

#include <Proc/ProcessingError.h>

#include <QCoreApplication>
#include <QTranslator>
#include <QtTest>

namespace {

// Marks every text with the context it was looked up in, so a test sees both.
class ContextMarkingTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation, int n) const override
    {
        Q_UNUSED(disambiguation)
        Q_UNUSED(n)
        return QLatin1String(context) + QLatin1Char('|') + QString::fromUtf8(sourceText);
    }
    bool isEmpty() const override { return false; }
};

// Counts how often the code is read.
class CountingError : public Tavrin::Proc::ProcessingError
{
public:
    explicit CountingError(int code)
        : ProcessingError(Tavrin::Proc::TranscodingErrors(code), "tst_errordescription.cpp", "test", 1, "test", "")
    {
    }
    int code() const override
    {
        ++reads;
        return ProcessingError::code();
    }
    mutable int reads = 0;
};

QString unknownWithSupport(const char* context)
{
    const QString href = Customization::supportCenterHRef();
    const QString support = QStringLiteral("Common|Please contact us at %1 to get assistance.").arg(href);
    return QLatin1String(context) + QStringLiteral("|An unknown error has occurred. %1").arg(support);
}

} // namespace

class tst_ErrorDescription : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void describe_data();
    void describe();
    void unknownContextDoesNotReadCode();
    void untranslatedTexts();

private:
    ContextMarkingTranslator m_translator;
};

void tst_ErrorDescription::initTestCase()
{
    MediaTestServices::install();
    QCoreApplication::installTranslator(&m_translator);
}

void tst_ErrorDescription::cleanupTestCase()
{
    QCoreApplication::removeTranslator(&m_translator);
}

void tst_ErrorDescription::describe_data()
{
    QTest::addColumn<int>("context");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("expected");

    const QString commonUnknown = QStringLiteral("Common|An unknown error has occurred");
    const QString codec = QStringLiteral("The chosen codec is not supported.");
    const QString disk = QStringLiteral("No more space left on device");
    const QString copy = QStringLiteral("Sorry, this file is copyright protected and cannot be converted.");
    const QString output = QStringLiteral("Can not create output file");
    const QString memory = QStringLiteral("Out of memory");
    const QString input = QStringLiteral("The input file is corrupted or missing from the specified location.");
    const QString frame = QStringLiteral("The frame size is not supported by selected codec encoding implementation.");
    auto in = [](const char* context, const QString& text) { return QLatin1String(context) + QLatin1Char('|') + text; };

    // Export: four texts live under the generic object context; unknown codes say nothing.
    QTest::newRow("Export 6") << 0 << 6
        << in("QObject", QStringLiteral("Conversion error. Invalid preset settings: unsupported codec for specified format."));
    QTest::newRow("Export 8") << 0 << 8 << commonUnknown;
    for (int code : {10, 11, 14})
        QTest::newRow(qPrintable(QStringLiteral("Export %1").arg(code))) << 0 << code << in("Export", codec);
    QTest::newRow("Export 12") << 0 << 12
        << in("Export", QStringLiteral("Can't export project because of problem with the Intel graphics chip. Try "
                                       "disabling Intel hardware acceleration in the Preferences."));
    QTest::newRow("Export 15") << 0 << 15 << in("Export", frame);
    QTest::newRow("Export 22") << 0 << 22 << in("QObject", disk);
    QTest::newRow("Export 26") << 0 << 26 << in("QObject", copy);
    QTest::newRow("Export 33") << 0 << 33 << in("Export", output);
    const QString exportMemory =
        QStringLiteral("Conversion error. Out of memory. Try reducing the width and height for the output file.");
    QTest::newRow("Export 34") << 0 << 34 << in("QObject", exportMemory);
    QTest::newRow("Export 35") << 0 << 35 << in("QObject", exportMemory);
    QTest::newRow("Export 36") << 0 << 36 << in("Export", input);
    for (int code : {0, 7, 9, 19, 40, 43, -1})
        QTest::newRow(qPrintable(QStringLiteral("Export %1 is empty").arg(code))) << 0 << code << QString();

    // Capture: 35 is not out of memory here, and the fallback keeps its catalogued spelling.
    for (int code : {10, 11, 14, 19})
        QTest::newRow(qPrintable(QStringLiteral("Capture %1").arg(code))) << 1 << code << commonUnknown;
    QTest::newRow("Capture 22") << 1 << 22 << in("Capture", disk);
    QTest::newRow("Capture 33") << 1 << 33 << in("Capture", output);
    QTest::newRow("Capture 34") << 1 << 34 << in("Capture", memory);
    const QString captureUnknown = in("Capture", QStringLiteral("An unknown error has occured"));
    QTest::newRow("Capture 35") << 1 << 35 << captureUnknown;
    QTest::newRow("Capture 36") << 1 << 36 << captureUnknown;
    QTest::newRow("Capture 43") << 1 << 43 << captureUnknown;

    // Analyze: what users see when a file does not open.
    QTest::newRow("Analyze 11") << 2 << 11 << in("Analyze", codec);
    QTest::newRow("Analyze 22") << 2 << 22 << in("Analyze", disk);
    QTest::newRow("Analyze 26") << 2 << 26 << in("Analyze", copy);
    QTest::newRow("Analyze 34") << 2 << 34 << in("Analyze", memory);
    QTest::newRow("Analyze 35") << 2 << 35 << in("Analyze", memory);
    QTest::newRow("Analyze 36") << 2 << 36 << in("Analyze", input);
    for (int code : {8, 10, 14, 33, 43})
        QTest::newRow(qPrintable(QStringLiteral("Analyze %1").arg(code))) << 2 << code << unknownWithSupport("Analyze");

    // Stabilization.
    for (int code : {10, 11, 14})
        QTest::newRow(qPrintable(QStringLiteral("Stabilization %1").arg(code))) << 3 << code << commonUnknown;
    QTest::newRow("Stabilization 15") << 3 << 15 << in("Stabilization", frame);
    QTest::newRow("Stabilization 22") << 3 << 22 << in("Stabilization", disk);
    QTest::newRow("Stabilization 26") << 3 << 26 << in("Stabilization", copy);
    QTest::newRow("Stabilization 33") << 3 << 33 << in("Stabilization", output);
    QTest::newRow("Stabilization 34") << 3 << 34 << in("Stabilization", memory);
    QTest::newRow("Stabilization 35") << 3 << 35 << in("Stabilization", memory);
    QTest::newRow("Stabilization 36") << 3 << 36 << in("Stabilization", input);
    QTest::newRow("Stabilization 43") << 3 << 43
        << in("Stabilization", QStringLiteral("Path to stabilized files could not be used. Please select a different "
                                              "directory in Preferences."));
    QTest::newRow("Stabilization 19") << 3 << 19 << unknownWithSupport("Stabilization");

    // FreezeFrame.
    for (int code : {10, 11, 14, 19})
        QTest::newRow(qPrintable(QStringLiteral("FreezeFrame %1").arg(code))) << 4 << code << commonUnknown;
    QTest::newRow("FreezeFrame 22") << 4 << 22 << in("FreezeFrame", disk);
    QTest::newRow("FreezeFrame 33") << 4 << 33 << in("FreezeFrame", output);
    QTest::newRow("FreezeFrame 34") << 4 << 34 << in("FreezeFrame", memory);
    QTest::newRow("FreezeFrame 35") << 4 << 35 << in("FreezeFrame", memory);
    for (int code : {26, 36, 43})
        QTest::newRow(qPrintable(QStringLiteral("FreezeFrame %1").arg(code))) << 4 << code << unknownWithSupport("FreezeFrame");

    // A context that is none of ours.
    QTest::newRow("context 5") << 5 << 36 << commonUnknown;
    QTest::newRow("context -1") << -1 << 11 << commonUnknown;
}

void tst_ErrorDescription::describe()
{
    QFETCH(int, context);
    QFETCH(int, code);
    QFETCH(QString, expected);
    const CountingError error(code);
    QCOMPARE(Error::describeTranscodingError(error, Error::Context(context)), expected);
}

void tst_ErrorDescription::unknownContextDoesNotReadCode()
{
    const CountingError error(36);
    QCOMPARE(Error::describeTranscodingError(error, Error::Context(7)), QStringLiteral("Common|An unknown error has occurred"));
    QCOMPARE(error.reads, 0);
    Error::describeTranscodingError(error, Error::Analyze);
    QCOMPARE(error.reads, 1);
}

void tst_ErrorDescription::untranslatedTexts()
{
    // Without a translator the source texts come through, with the support link filled in.
    QCoreApplication::removeTranslator(&m_translator);
    const CountingError unknown(10);
    const QString text = Error::describeTranscodingError(unknown, Error::Analyze);
    QCoreApplication::installTranslator(&m_translator);
    QVERIFY(text.startsWith(QLatin1String("An unknown error has occurred. Please contact us at <a")));
    QVERIFY(text.contains(MediaTestServices::faqUrl()));
    QVERIFY(text.endsWith(QLatin1String(" to get assistance.")));
}

QTEST_GUILESS_MAIN(tst_ErrorDescription)
#include "tst_errordescription.moc"
