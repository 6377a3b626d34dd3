#include "libmodel/strokes/guardedstream.h"

#include <QDataStream>
#include <QtTest>

#include <limits>

using namespace Model;

class tst_GuardedStream : public QObject
{
    Q_OBJECT

private slots:
    void usableNumbersPass();
    void unusableNumbersAreRefused_data();
    void unusableNumbersAreRefused();
    void countBeyondTheStreamIsRefused();
    void pathsComeBackAsWritten();
    void malformedPathsAreRefused_data();
    void malformedPathsAreRefused();
    void firstFailureStands();
};

namespace {

struct Element
{
    qint32 type;
    double x;
    double y;
};

QByteArray pathBytes(qint32 count, const QList<Element> &elements, qint32 start = 0, qint32 rule = 0)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << count;
    for (const Element &element : elements)
        stream << element.type << element.x << element.y;
    stream << start << rule;
    return bytes;
}

} // namespace

void tst_GuardedStream::usableNumbersPass()
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << -12.5 << 0.0 << QRect(-3, 4, 50, 60);
    QDataStream stream(bytes);
    double number = 0;
    double radius = 1;
    QRect rect;
    QVERIFY(readNumber(stream, number) && readRadius(stream, radius) && readRect(stream, rect));
    QCOMPARE(number, -12.5);
    QCOMPARE(radius, 0.0);
    QCOMPARE(rect, QRect(-3, 4, 50, 60));
}

void tst_GuardedStream::unusableNumbersAreRefused_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("asRadius");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << false;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << false;
    QTest::newRow("beyond all paper") << -1e9 << false;
    QTest::newRow("negative radius") << -0.5 << true;
}

void tst_GuardedStream::unusableNumbersAreRefused()
{
    QFETCH(double, value);
    QFETCH(bool, asRadius);
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << value;
    QDataStream stream(bytes);
    double read = 0;
    QVERIFY(!(asRadius ? readRadius(stream, read) : readNumber(stream, read)));
    QCOMPARE(stream.status(), QDataStream::ReadCorruptData);
}

void tst_GuardedStream::countBeyondTheStreamIsRefused()
{
    for (const qint32 count : {-1, 3, std::numeric_limits<qint32>::max()}) {
        QByteArray bytes;
        QDataStream(&bytes, QIODevice::WriteOnly) << count << qint64(1) << qint64(2);
        QDataStream stream(bytes);
        qint32 read = 0;
        QVERIFY(!readCount(stream, read, 8));
        QCOMPARE(read, 0);
    }
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << qint32(2) << qint64(1) << qint64(2);
    QDataStream stream(bytes);
    qint32 read = 0;
    QVERIFY(readCount(stream, read, 8));
    QCOMPARE(read, 2);
}

void tst_GuardedStream::pathsComeBackAsWritten()
{
    QPainterPath path;
    path.addEllipse(10, 20, 30, 40);
    path.moveTo(3, 4);
    path.lineTo(5, 6);
    path.cubicTo(1, 2, 3, 4, 5, 6);
    path.setFillRule(Qt::WindingFill);
    for (const auto precision : {QDataStream::SinglePrecision, QDataStream::DoublePrecision}) {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out.setFloatingPointPrecision(precision);
        out << path << QPainterPath() << qint32(77);
        QDataStream in(bytes);
        in.setFloatingPointPrecision(precision);
        QPainterPath read;
        QPainterPath empty;
        qint32 after = 0;
        QVERIFY(readPath(in, read) && readPath(in, empty));
        in >> after;
        QCOMPARE(after, 77);
        QVERIFY(empty.isEmpty());
        QByteArray again;
        QDataStream outAgain(&again, QIODevice::WriteOnly);
        outAgain.setFloatingPointPrecision(precision);
        outAgain << read << empty << qint32(77);
        QCOMPARE(again, bytes);
    }
}

void tst_GuardedStream::malformedPathsAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const Element move{0, 1, 1};
    const Element line{1, 2, 2};
    const Element curve{2, 3, 3};
    const Element data{3, 4, 4};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("more elements than bytes") << pathBytes(1000000, {move, line});
    QTest::newRow("negative count") << pathBytes(-2, {move, line});
    QTest::newRow("begins with a line") << pathBytes(2, {line, line});
    QTest::newRow("curve cut short") << pathBytes(3, {move, curve, data});
    QTest::newRow("curve interrupted") << pathBytes(4, {move, curve, data, line});
    QTest::newRow("data without curve") << pathBytes(2, {move, data});
    QTest::newRow("unknown element") << pathBytes(2, {move, {9, 1, 1}});
    QTest::newRow("not a number") << pathBytes(2, {move, {1, nan, 1}});
    QTest::newRow("subpath beyond the end") << pathBytes(2, {move, line}, 2);
    QTest::newRow("negative subpath") << pathBytes(2, {move, line}, -1);
    QTest::newRow("unknown fill rule") << pathBytes(2, {move, line}, 0, 5);
    QTest::newRow("ends early") << pathBytes(2, {move, line}).chopped(5);
}

void tst_GuardedStream::malformedPathsAreRefused()
{
    QFETCH(QByteArray, bytes);
    QDataStream stream(bytes);
    QPainterPath path;
    QVERIFY(!readPath(stream, path));
    QVERIFY(path.isEmpty());
    QVERIFY(stream.status() != QDataStream::Ok);
}

void tst_GuardedStream::firstFailureStands()
{
    QDataStream stream(QByteArray{});
    double value = 0;
    QVERIFY(!readNumber(stream, value));
    QCOMPARE(stream.status(), QDataStream::ReadPastEnd);
    refuse(stream);
    QCOMPARE(stream.status(), QDataStream::ReadPastEnd);
}

QTEST_APPLESS_MAIN(tst_GuardedStream)
#include "tst_guardedstream.moc"
