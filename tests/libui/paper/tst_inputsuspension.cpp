#include "libui/paper/inputsuspension.h"

#include <QTest>

using UI::InputSuspension;

class tst_InputSuspension : public QObject
{
    Q_OBJECT

private slots:
    void isActiveWhileOneLives();
};

void tst_InputSuspension::isActiveWhileOneLives()
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

QTEST_GUILESS_MAIN(tst_InputSuspension)
#include "tst_inputsuspension.moc"
