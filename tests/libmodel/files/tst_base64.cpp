#include "libmodel/files/base64.h"

#include <QTest>

using namespace Model;

/// Text that ought to be base64.
class tst_Base64 : public QObject
{
    Q_OBJECT

private slots:
    void goodTextIsDecoded_data();
    void goodTextIsDecoded();
    void badTextEndsWhereItIsBad_data();
    void badTextEndsWhereItIsBad();
    void badTextCanBePassedOver();
};

void tst_Base64::goodTextIsDecoded_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("one byte") << QByteArray("UQ==") << QByteArray("Q");
    QTest::newRow("two bytes") << QByteArray("UVI=") << QByteArray("QR");
    QTest::newRow("three bytes") << QByteArray("UVJT") << QByteArray("QRS");
    QTest::newRow("without padding") << QByteArray("UVI") << QByteArray("QR");
    QTest::newRow("white space") << QByteArray("\n  UV\tJT\r\n ") << QByteArray("QRS");
    QTest::newRow("white space in the padding") << QByteArray("UQ=\n=\n") << QByteArray("Q");
    QTest::newRow("white space only") << QByteArray(" \n ") << QByteArray();
    QTest::newRow("last digits") << QByteArray("+/+/") << QByteArray::fromHex("fbffbf");
}

void tst_Base64::goodTextIsDecoded()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, bytes);
    const DecodedBase64 decoded = decodeBase64(text);
    QCOMPARE(decoded.bytes, bytes);
    QVERIFY(!decoded.isDamaged);
}

void tst_Base64::badTextEndsWhereItIsBad_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("bad in front") << QByteArray("!UVJT") << QByteArray();
    QTest::newRow("bad in the middle") << QByteArray("UVJT!UVJT") << QByteArray("QRS");
    QTest::newRow("bad at the end") << QByteArray("UVJT?") << QByteArray("QRS");
    QTest::newRow("other alphabet") << QByteArray("UVJTUVJ-") << QByteArray("QRSQR");
    QTest::newRow("padding in the middle") << QByteArray("UQ==UVJT") << QByteArray("Q");
    QTest::newRow("padding alone") << QByteArray("=====") << QByteArray();
    QTest::newRow("too much padding") << QByteArray("UVJT=") << QByteArray("QRS");
    QTest::newRow("single digit at the end") << QByteArray("UVJTU") << QByteArray("QRS");
    QTest::newRow("null byte") << QByteArray("UVJT\0UVJT", 9) << QByteArray("QRS");
}

void tst_Base64::badTextEndsWhereItIsBad()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, bytes);
    const DecodedBase64 decoded = decodeBase64(text);
    QVERIFY(decoded.isDamaged);
    QCOMPARE(decoded.bytes, bytes);
}

void tst_Base64::badTextCanBePassedOver()
{
    const DecodedBase64 decoded = decodeBase64("UV!JT UV\xe4J?T", BadBase64::PassedOver);
    QVERIFY(decoded.isDamaged);
    QCOMPARE(decoded.bytes, QByteArray("QRSQRS"));
}

QTEST_APPLESS_MAIN(tst_Base64)
#include "tst_base64.moc"
