#include "libui/paper/inputsuspension.h"

#include <QTest>

using UI::InputSuspension;

class TestInputSuspension : public QObject
{
    Q_OBJECT

private slots:
    void isActiveWhileOneLives();
};

void TestInputSuspension::isActiveWhileOneLives()
{
    QVERIFY(!InputSuspension::isActive());
    {
        const InputSuspension outer;
        QVERIFY(InputSuspension::isActive());
        {
            const InputSuspension inner;
            QVERIFY(InputSuspension::isActive());
        }
        QVERIFY(InputSuspension::isActive());
    }
    QVERIFY(!InputSuspension::isActive());
}

QTEST_GUILESS_MAIN(TestInputSuspension)
#include "tst_inputsuspension.moc"
