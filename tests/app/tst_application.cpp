#include "app/application.h"

#include <QFileOpenEvent>
#include <QSignalSpy>
#include <QTabletEvent>
#include <QTest>

using PointerType = QPointingDevice::PointerType;

class tst_Application : public QObject
{
    Q_OBJECT

private slots:
    void penAndEraserAreReported_data();
    void penAndEraserAreReported();
    void otherPointersAreSwallowedSilently_data();
    void otherPointersAreSwallowedSilently();
    void proximityWithoutADeviceIsSwallowedSilently();
    void fileOpenBecomesASignal();

private:
    bool send(const QPointingDevice *device);
};

bool tst_Application::send(const QPointingDevice *device)
{
    QTabletEvent event(QEvent::TabletEnterProximity, device, {}, {}, 0, 0, 0, 0, 0, 0, {}, {}, {});
    return QCoreApplication::sendEvent(qApp, &event);
}

void tst_Application::penAndEraserAreReported_data()
{
    QTest::addColumn<PointerType>("type");
    QTest::newRow("pen") << PointerType::Pen;
    QTest::newRow("eraser") << PointerType::Eraser;
}

void tst_Application::penAndEraserAreReported()
{
    QFETCH(PointerType, type);
    const QPointingDevice device("stylus", 7, QInputDevice::DeviceType::Stylus, type,
                                 QInputDevice::Capability::Position, 1, 1);
    QSignalSpy spy(qApp, SIGNAL(tabletPointerTypeChanged(QPointingDevice::PointerType)));
    QVERIFY(send(&device));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].value<PointerType>(), type);
}

void tst_Application::otherPointersAreSwallowedSilently_data()
{
    QTest::addColumn<PointerType>("type");
    QTest::newRow("generic") << PointerType::Generic;
    QTest::newRow("finger") << PointerType::Finger;
    QTest::newRow("cursor") << PointerType::Cursor;
    QTest::newRow("unknown") << PointerType::Unknown;
}

void tst_Application::otherPointersAreSwallowedSilently()
{
    QFETCH(PointerType, type);
    const QPointingDevice device("puck", 8, QInputDevice::DeviceType::Puck, type, QInputDevice::Capability::Position, 1,
                                 1);
    QSignalSpy spy(qApp, SIGNAL(tabletPointerTypeChanged(QPointingDevice::PointerType)));
    QVERIFY(send(&device));
    QCOMPARE(spy.count(), 0);
}

void tst_Application::proximityWithoutADeviceIsSwallowedSilently()
{
    QSignalSpy spy(qApp, SIGNAL(tabletPointerTypeChanged(QPointingDevice::PointerType)));
    QPointerEvent withoutDevice(QEvent::TabletEnterProximity, nullptr);
    QVERIFY(QCoreApplication::sendEvent(qApp, &withoutDevice));
    QEvent plain(QEvent::TabletEnterProximity);
    QVERIFY(QCoreApplication::sendEvent(qApp, &plain));
    QCOMPARE(spy.count(), 0);
}

void tst_Application::fileOpenBecomesASignal()
{
    QSignalSpy spy(qApp, SIGNAL(requestFileOpen(QString)));
    QFileOpenEvent event(QStringLiteral("/some/where/scene.mr"));
    QCoreApplication::sendEvent(qApp, &event);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy[0][0].toString(), QStringLiteral("/some/where/scene.mr"));
}

int main(int argc, char *argv[])
{
    Application application(argc, argv);
    tst_Application test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_application.moc"
