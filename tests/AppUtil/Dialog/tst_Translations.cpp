// Translation contexts of the dialogs: the shipped German catalogue changes the dialogs'
// texts, and a translator for one context changes exactly the texts of that context.
#include "TestSandbox.h"
#include "ModalAnswer.h"

#include <Customization.h>
#include <Dialog/DialogStrategy.h>
#include <Dialog/NoticeDialogs.h>

#include <App/ProductServices.h>
#include <Settings/Settings.h>
#include <Util/GeneralButtonsTr.h>

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {
// Marks every text of one context, and only those.
class ContextTranslator : public QTranslator
{
public:
    explicit ContextTranslator(const QByteArray& context) : m_context(context) {}
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (m_context != context)
            return QString();
        return QStringLiteral("[") + QString::fromUtf8(source) + QStringLiteral("]");
    }

private:
    QByteArray m_context;
};

bool marked(const QString& text)
{
    return text.contains(QLatin1Char('['));
}

// The title of the save question, which the strategy translates in "DialogStrategy".
QString saveQuestionTitle()
{
    QString title;
    answerModal([&](QWidget* modal) {
        title = modal->windowTitle();
        qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Cancel)->click();
    });
    bool save = false;
    Dialog::alertModifiedProject(save);
    return title;
}
} // namespace

class tst_Translations : public QObject
{
    Q_OBJECT

    QTemporaryDir m_config;

private slots:
    void initTestCase()
    {
        Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
        Tavrin::App::registerProductServices(QString::fromLocal8Bit(qgetenv("KLIPVANE_SOURCE_DIR"))
                                             + QStringLiteral("/app/product.json"));
    }

    void cleanup()
    {
        Dialog::initialize({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void cleanupTestCase() { Tavrin::App::unregisterProductServices(); }

    void germanCatalogueTranslatesTheDialogs()
    {
        QTranslator german;
        const QString directory = QString::fromLocal8Bit(qgetenv("KLIPVANE_TEST_BIN_DIR")) + QStringLiteral("/translations");
        QVERIFY2(german.load(QStringLiteral("klipvane_de_DE"), directory), qPrintable(directory));
        QCoreApplication::installTranslator(&german);

        QCOMPARE(saveQuestionTitle(), QStringLiteral("Projekt speichern"));
        {
            AdjustProjectAspectDialog dialog;
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Dateien hinzufügen"));
            QCOMPARE(buttonWithText(&dialog, QStringLiteral("Ändern")) != nullptr, true);
        }
        QCOMPARE(GeneralButtonsTr::gotIt(), QStringLiteral("Verstanden"));
        QVERIFY(Customization::supportCenterHRef().contains(QStringLiteral(">Support-Center</a>")));
        QCOMPARE(QCoreApplication::translate("QObject", "No more space left on device"),
                 QStringLiteral("Kein Speicherplatz mehr auf dem Gerät"));
        QCOMPARE(QCoreApplication::translate("RestartDialog", "Restart"), QStringLiteral("Neu starten"));
        // Catalogued under "QObject" on purpose: the "Export" context has no such entry.
        QCOMPARE(QCoreApplication::translate("Export", "No more space left on device"),
                 QStringLiteral("No more space left on device"));

        QCoreApplication::removeTranslator(&german);
        QCOMPARE(saveQuestionTitle(), QStringLiteral("Save project"));
    }

    void oneContextChangesOnlyItsTexts_data()
    {
        QTest::addColumn<QByteArray>("context");
        for (const char* context : {"DialogStrategy", "AdjustProjectAspectDialog", "UnsupportedCodecInfoDialog",
                                    "GeneralButtonsTr", "Customization", "Nothing"})
            QTest::newRow(context) << QByteArray(context);
    }

    void oneContextChangesOnlyItsTexts()
    {
        QFETCH(QByteArray, context);
        ContextTranslator translator(context);
        QCoreApplication::installTranslator(&translator);

        const QString strategyTitle = saveQuestionTitle();
        QString aspectTitle;
        QString aspectInfo;
        {
            AdjustProjectAspectDialog dialog;
            aspectTitle = dialog.windowTitle();
            aspectInfo = dialog.findChild<QLabel*>(QStringLiteral("infoLabel"))->text();
        }
        QString codecTitle;
        QString gotIt;
        {
            UnsupportedCodecInfoDialog dialog({QStringLiteral("/v/a.mp4")});
            codecTitle = dialog.windowTitle();
            gotIt = dialog.findChild<QPushButton*>(QStringLiteral("gotItButton"))->text();
        }
        const QString support = Customization::supportCenterHRef();
        QCoreApplication::removeTranslator(&translator);

        QCOMPARE(marked(strategyTitle), context == "DialogStrategy");
        QCOMPARE(marked(aspectTitle), context == "AdjustProjectAspectDialog");
        QCOMPARE(marked(aspectInfo), context == "AdjustProjectAspectDialog");
        QCOMPARE(marked(codecTitle), context == "UnsupportedCodecInfoDialog");
        QCOMPARE(marked(gotIt), context == "GeneralButtonsTr");
        QCOMPARE(marked(support), context == "Customization");
    }
};

QTEST_MAIN(tst_Translations)
#include "tst_Translations.moc"
