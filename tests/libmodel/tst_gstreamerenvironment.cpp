#include "libmodel/gstreamerenvironment.h"

#include <QTemporaryDir>
#include <QTest>

using Environment = QList<std::pair<QByteArray, QByteArray>>;

class tst_GstreamerEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void withoutABundleNothingIsSet();
    void bundleIsNamedByAllThreeVariables();
    void missingPartsLeaveTheExecutablesFolder();
};

void tst_GstreamerEnvironment::withoutABundleNothingIsSet()
{
    const QTemporaryDir folder;
    QCOMPARE(Model::bundledGstreamerEnvironment(QDir(folder.path())), Environment());
}

void tst_GstreamerEnvironment::bundleIsNamedByAllThreeVariables()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath("gstreamer/lib/gstreamer-1.0"));
    QVERIFY(QDir(folder.path()).mkpath("gstreamer/libexec/gstreamer-1.0"));
    const QByteArray root = folder.path().toLocal8Bit();
    const Environment expected = {
        {"GST_PLUGIN_SYSTEM_PATH", root + "/gstreamer/lib/gstreamer-1.0"},
        {"GST_PLUGIN_SCANNER", root + "/gstreamer/libexec/gstreamer-1.0/gst-plugin-scanner"},
        {"GTK_PATH", root + "/gstreamer"},
    };
    QCOMPARE(Model::bundledGstreamerEnvironment(QDir(folder.path())), expected);
}

void tst_GstreamerEnvironment::missingPartsLeaveTheExecutablesFolder()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath("gstreamer"));
    const QByteArray root = folder.path().toLocal8Bit();
    const Environment expected = {
        {"GST_PLUGIN_SYSTEM_PATH", root},
        {"GST_PLUGIN_SCANNER", root + "/gst-plugin-scanner"},
        {"GTK_PATH", root + "/gstreamer"},
    };
    QCOMPARE(Model::bundledGstreamerEnvironment(QDir(folder.path())), expected);
}

QTEST_APPLESS_MAIN(tst_GstreamerEnvironment)
#include "tst_gstreamerenvironment.moc"
