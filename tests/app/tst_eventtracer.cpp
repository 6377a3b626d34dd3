#include "app/eventtracer.h"

#include "app/diagnosticlog.h"

#include <QApplication>
#include <QEvent>
#include <QTest>
#include <QWidget>

namespace {

QStringList printed;

void keepMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    printed << text;
}

} // namespace

class tst_EventTracer : public QObject
{
    Q_OBJECT

private slots:
    void init() { printed.clear(); }
    void listIsParsed_data();
    void listIsParsed();
    void eventOfAWidgetIsPrintedWithItsAncestors();
    void eventOfAPlainObjectIsOneLine();
    void unlistedEventIsNotPrinted();
    void setVariableInstallsATracerOnTheApplication();
};

void tst_EventTracer::listIsParsed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QList<int>>("types");
    QTest::newRow("empty") << QByteArray() << QList<int>();
    QTest::newRow("numbers and a range") << QByteArray("2,3,5-7") << QList<int>{2, 3, 5, 6, 7};
    QTest::newRow("blanks around") << QByteArray(" 2 , 4 - 5 ") << QList<int>{2, 4, 5};
    QTest::newRow("a range of one") << QByteArray("4-4") << QList<int>{4};
    QTest::newRow("duplicates stay") << QByteArray("2,2,1-2") << QList<int>{2, 2, 1, 2};
    QTest::newRow("a negative number is a number") << QByteArray("-3") << QList<int>{-3};
    QTest::newRow("letters, reversed and triple ranges add nothing")
        << QByteArray("abc,9-3,1-2-3,-,x-3,7") << QList<int>{7};
    QList<int> longest;
    for (int type = 65000; type < 65000 + 65536; ++type)
        longest << type;
    QTest::newRow("a range holds no more than there are types") << QByteArray("65000-2000000000") << longest;
}

void tst_EventTracer::listIsParsed()
{
    QFETCH(QByteArray, text);
    QFETCH(QList<int>, types);
    qputenv("MR_TRACE_EVENTS", text);
    QCOMPARE(EventTracer(nullptr).eventTypes(), types);
}

void tst_EventTracer::eventOfAWidgetIsPrintedWithItsAncestors()
{
    qputenv("MR_TRACE_EVENTS", QByteArray::number(QEvent::User));
    EventTracer tracer(nullptr);
    QWidget window;
    window.setObjectName("window");
    QWidget *inner = new QWidget(new QWidget(&window));
    inner->setObjectName("inner");
    QEvent event(QEvent::User);

    const auto previous = qInstallMessageHandler(keepMessage);
    const bool consumed = tracer.eventFilter(inner, &event);
    qInstallMessageHandler(previous);

    QVERIFY(!consumed);
    QCOMPARE(printed.size(), 4);
    QVERIFY(printed[0].contains("->"));
    QVERIFY(printed[1].startsWith("| QWidget(") && printed[1].contains("window"));
    QVERIFY(printed[2].startsWith("| `-QWidget("));
    QVERIFY(printed[3].startsWith("|   `-QWidget(") && printed[3].contains("inner"));
}

void tst_EventTracer::eventOfAPlainObjectIsOneLine()
{
    qputenv("MR_TRACE_EVENTS", QByteArray::number(QEvent::User));
    EventTracer tracer(nullptr);
    QObject object;
    QEvent event(QEvent::User);

    const auto previous = qInstallMessageHandler(keepMessage);
    tracer.eventFilter(&object, &event);
    qInstallMessageHandler(previous);

    QCOMPARE(printed.size(), 1);
}

void tst_EventTracer::unlistedEventIsNotPrinted()
{
    qputenv("MR_TRACE_EVENTS", "1");
    EventTracer tracer(nullptr);
    QObject object;
    QEvent event(QEvent::User);

    const auto previous = qInstallMessageHandler(keepMessage);
    const bool consumed = tracer.eventFilter(&object, &event);
    qInstallMessageHandler(previous);

    QVERIFY(!consumed);
    QVERIFY(printed.isEmpty());
}

void tst_EventTracer::setVariableInstallsATracerOnTheApplication()
{
    qputenv("MR_TRACE_EVENTS", QByteArray::number(QEvent::User));
    const auto previous = qInstallMessageHandler(keepMessage);
    startDiagnosticLog();
    QVERIFY(qApp->findChild<EventTracer *>());
    QObject object;
    QEvent event(QEvent::User);
    printed.clear();
    QCoreApplication::sendEvent(&object, &event);
    qInstallMessageHandler(previous);
    QCOMPARE(printed.size(), 1);
    QVERIFY(printed[0].contains("->"));
}

QTEST_MAIN(tst_EventTracer)
#include "tst_eventtracer.moc"
