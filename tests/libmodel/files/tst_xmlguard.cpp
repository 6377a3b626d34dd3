#include "libmodel/files/xmlguard.h"

#include <QBuffer>
#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

using Model::XmlGuard;

namespace {

/// What comes through a guard in front of a buffer, in helpings of \a helping bytes.
struct Passed
{
    QByteArray bytes;
    QString refusal;
};

Passed passed(QByteArray document, int helping)
{
    QBuffer buffer(&document);
    if (!buffer.open(QIODevice::ReadOnly))
        return {};
    XmlGuard guard(&buffer);
    Passed result;
    for (QByteArray bytes = guard.read(helping); !bytes.isEmpty(); bytes = guard.read(helping))
        result.bytes += bytes;
    result.refusal = guard.refusal();
    return result;
}

QByteArray attributes(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += " a" + QByteArray::number(i) + "='=\"'";
    return text;
}

} // namespace

class tst_XmlGuard : public QObject
{
    Q_OBJECT

private slots:
    void soundDocumentsPassUnchanged_data();
    void soundDocumentsPassUnchanged();
    void documentsEndWhereTheyAreRefused_data();
    void documentsEndWhereTheyAreRefused();
    void parserStandsWhereTheDataEnd();
    void unreadableFileIsToldOf();
    void nothingCanBeWritten();
};

void tst_XmlGuard::soundDocumentsPassUnchanged_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("no markup at all");
    QTest::newRow("plain") << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE mr><mr><a b='1'>text</a><c/></mr>");
    QTest::newRow("document type with a name elsewhere")
        << QByteArray("<!DOCTYPE mr PUBLIC \"a[b\" 'c[>'><mr x='['>[</mr>");
    QTest::newRow("most attributes") << "<a" + attributes(64) + "/>";
    QTest::newRow("most attributes, twice") << "<a" + attributes(64) + "><b" + attributes(64) + "/></a>";
    QTest::newRow("deepest elements") << QByteArray("<a>").repeated(64) + QByteArray("</a>").repeated(64);
    QTest::newRow("many elements beside each other")
        << "<a>" + QByteArray("<b/>").repeated(200) + QByteArray("<b></b >").repeated(200) + "</a>";
    QTest::newRow("tags in a comment") << "<a><!--" + QByteArray("<b - -- >").repeated(100) + "--></a>";
    QTest::newRow("comment that is short") << QByteArray("<a><!----><b/></a>");
    QTest::newRow("tags in character data") << "<a><![CDATA[" + QByteArray("<b> ]] ]>").repeated(100) + "]]]></a>";
    QTest::newRow("tags in an instruction") << "<a><?b " + QByteArray("<b>").repeated(100) + "?" + "?></a>";
    QTest::newRow("tags in a value") << "<a b='" + QByteArray(">/").repeated(100) + "'/>";
    QTest::newRow("longest name") << "<" + QByteArray(256, 'n') + " " + QByteArray(256, 'm') + "='1'/>";
    QTest::newRow("long value") << "<a b='" + QByteArray(5000, 'n') + "'>" + QByteArray(5000, 'n') + "</a>";
}

void tst_XmlGuard::soundDocumentsPassUnchanged()
{
    QFETCH(QByteArray, document);
    for (const int helping : {1, 2, 7, 1 << 20}) {
        const Passed result = passed(document, helping);
        QCOMPARE(result.refusal, QString());
        QCOMPARE(result.bytes, document);
    }
}

void tst_XmlGuard::documentsEndWhereTheyAreRefused_data()
{
    QTest::addColumn<QByteArray>("good"); ///< what passes
    QTest::addColumn<QByteArray>("bad");  ///< what stands behind it and does not
    QTest::addColumn<QString>("refusal");
    QTest::newRow("one attribute too many")
        << "<a" + attributes(64) + " b" << QByteArray("='1'/>") << "An element has more than 64 attributes";
    QTest::newRow("one element too deep")
        << QByteArray("<a>").repeated(64) + "<" << QByteArray("b/>") << "Elements are nested deeper than 64";
    QTest::newRow("one element too deep behind others") << "<a><b/><c></c>" + QByteArray("<a>").repeated(63) + "<"
                                                        << QByteArray("b/>") << "Elements are nested deeper than 64";
    QTest::newRow("deep behind misleading ends")
        << "<a b='/'><!-- </a> --><![CDATA[</a>]]><?x </a>?>" + QByteArray("<a>").repeated(63) + "<"
        << QByteArray("b/>") << "Elements are nested deeper than 64";
    QTest::newRow("declarations of its own") << QByteArray("<!DOCTYPE mr ") << QByteArray("[<!ENTITY a 'b'>]><mr/>")
                                             << "A document type with declarations of its own is not accepted";
    QTest::newRow("declarations behind a name elsewhere")
        << QByteArray("<!DOCTYPE mr SYSTEM \"x>\"") << QByteArray("[]><mr/>")
        << "A document type with declarations of its own is not accepted";
    QTest::newRow("long name") << "<a><" + QByteArray(256, 'n') << QByteArray("n/>")
                               << "A name is longer than 256 bytes";
    QTest::newRow("long name of an attribute")
        << "<a b='1' " + QByteArray(256, 'n') << QByteArray("n='1'/>") << "A name is longer than 256 bytes";
    QTest::newRow("null byte") << QByteArray("<a>text") << QByteArray("\0</a>", 5) << "The file is not in UTF-8";
    QTest::newRow("two bytes a character")
        << QByteArray("<") << QByteArray("\0a\0>\0", 5) << "The file is not in UTF-8";
    QTest::newRow("two bytes a character, the other way round")
        << QByteArray("\xfe\xff") << QByteArray("\0<\0a\0>", 6) << "The file is not in UTF-8";
}

void tst_XmlGuard::documentsEndWhereTheyAreRefused()
{
    QFETCH(QByteArray, good);
    QFETCH(QByteArray, bad);
    QFETCH(QString, refusal);
    for (const int helping : {1, 3, 1 << 20}) {
        const Passed result = passed(good + bad, helping);
        QCOMPARE(result.refusal, refusal);
        QCOMPARE(result.bytes, good);
    }
}

void tst_XmlGuard::parserStandsWhereTheDataEnd()
{
    QByteArray document = "<a>\n<b>\n<c" + attributes(64) + " last='1'/></b></a>";
    QBuffer buffer(&document);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    XmlGuard guard(&buffer);
    QXmlStreamReader xml(&guard);
    while (!xml.atEnd())
        xml.readNext();
    QCOMPARE(xml.error(), QXmlStreamReader::PrematureEndOfDocumentError);
    QCOMPARE(xml.lineNumber(), 3);
    QCOMPARE(xml.columnNumber(), qint64(2 + attributes(64).size() + 5));
}

void tst_XmlGuard::unreadableFileIsToldOf()
{
    QFile folder("/");
    if (!folder.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        // A folder cannot even be opened here; a device that is not open cannot be read either.
        QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QFile, \"/\"): device not open");
    }
    XmlGuard guard(&folder);
    QCOMPARE(guard.readAll(), QByteArray());
    QVERIFY2(guard.refusal().startsWith("The file cannot be read: "), qPrintable(guard.refusal()));
}

void tst_XmlGuard::nothingCanBeWritten()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::ReadWrite));
    XmlGuard guard(&buffer);
    QVERIFY(guard.isSequential());
    QVERIFY(!guard.isWritable());
}

QTEST_GUILESS_MAIN(tst_XmlGuard)
#include "tst_xmlguard.moc"
