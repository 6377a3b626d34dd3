#include "libmodel/strokes/coverage.h"

#include <QTest>

using namespace Model;

class tst_Coverage : public QObject
{
    Q_OBJECT

private slots:
    void bytesAreThoseOfTheImage_data();
    void bytesAreThoseOfTheImage();
    void bytesOfTheLargestSidesDoNotOverflow();
};

void tst_Coverage::bytesAreThoseOfTheImage_data()
{
    QTest::addColumn<QSize>("size");
    for (const int width : {0, 1, 2, 3, 4, 5, 8, 1919, 1920})
        QTest::addRow("%d wide", width) << QSize(width, 7);
    QTest::newRow("no height") << QSize(5, 0);
    QTest::newRow("negative") << QSize(-5, 7);
    QTest::newRow("a column") << QSize(1, 1 << 20);
}

void tst_Coverage::bytesAreThoseOfTheImage()
{
    QFETCH(QSize, size);
    QCOMPARE(coverageBytes(size), blankCoverage(size).sizeInBytes());
}

void tst_Coverage::bytesOfTheLargestSidesDoNotOverflow()
{
    QCOMPARE(coverageBytes({0x7fffffff, 0x7fffffff}), qint64(0x80000000LL) * 0x7fffffffLL);
}

QTEST_MAIN(tst_Coverage)
#include "tst_coverage.moc"
