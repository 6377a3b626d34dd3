#include "libmodel/startup.h"

#include "libmodel/base/settings.h"
#include "libmodel/tools/toolmanager.h"
#include "support/isolatedstore.h"

#include <QFile>
#include <QTest>

#include <gst/gst.h>

class tst_Startup : public QObject
{
    Q_OBJECT

private slots:
    void startsResourcesGstreamerAndSettings();
    void secondCallDoesNothing();
    void startsAgainAfterShutDown();

private:
    IsolatedStore m_store;
};

void tst_Startup::startsResourcesGstreamerAndSettings()
{
    QVERIFY(!gst_is_initialized());
    QSettings().setValue("Preferences/DefaultFrameRate", 25.0);
    Model::startUp();
    QVERIFY(QFile::exists(":/pointers/pointer-hand.svg"));
    QVERIFY(gst_is_initialized());
    QCOMPARE(Model::Settings::instance()->defaultFrameRate(), 25.0);
    QVERIFY(Model::ToolManager::instance()->tool(Model::Tool::Type::Hand));
}

void tst_Startup::secondCallDoesNothing()
{
    QSettings().setValue("Preferences/DefaultFrameRate", 30.0);
    Model::startUp();
    QCOMPARE(Model::Settings::instance()->defaultFrameRate(), 25.0);
}

void tst_Startup::startsAgainAfterShutDown()
{
    Model::shutDown();
    Model::startUp();
    QCOMPARE(Model::Settings::instance()->defaultFrameRate(), 30.0);
}

QTEST_MAIN(tst_Startup)
#include "tst_startup.moc"
