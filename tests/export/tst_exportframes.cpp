#include "exportscenes.h"
#include "exporttool.h"

#include <QDir>
#include <QImage>
#include <QTest>

using namespace TestSupport;

/// `mirelle-export frames`: which files come of which options, and what is in them.
class tst_ExportFrames : public QObject
{
    Q_OBJECT

private slots:
    void optionsChooseTheFiles_data();
    void optionsChooseTheFiles();
    void groundAndLinesAreAsAsked_data();
    void groundAndLinesAreAsAsked();
    void combinedLayersShowThrough();
    void exrFilesAreRead();
    void folderIsMadeWithAllAboveIt();
    void whatStoodThereIsReplaced();
    void folderThatCannotBeMadeIsAnError_data();
    void folderThatCannotBeMadeIsAnError();
    void folderThatTakesNoFilesIsAnError();
    void folderMadeForNothingIsRemoved_data();
    void folderMadeForNothingIsRemoved();
    void folderThatWasThereStays();
    void linkToNothingStays();
    void fileBeyondTheLimitLeavesTheOldOne_data();
    void fileBeyondTheLimitLeavesTheOldOne();
    void fileThatCannotBeWrittenDoesNotStopTheOthers();
    void nothingToWriteIsAWarning();
    void equalNamesAreAWarning_data();
    void equalNamesAreAWarning();
    void layerNameCannotLeaveTheFolder();
    void damagedDrawingIsExportedWithAWarning();
    void brokenSceneMakesNoFolder();
    void filesAreNamedAfterTheScene_data();
    void filesAreNamedAfterTheScene();
    void strokesAreRenderedOnADisplay();
    void strokesWithoutOpenGLAreAnError();
    void onlyStrokesThatAreDrawnNeedOpenGL_data();
    void onlyStrokesThatAreDrawnNeedOpenGL();
    void pipeSeesNoProgress();

private:
    const Workplace m_place;
};

void tst_ExportFrames::optionsChooseTheFiles_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("files");
    const auto row = [](const char *name, const QStringList &options, QStringList files) {
        files.sort();
        QTest::newRow(name) << options << files;
    };
    const QStringList originals{"walk.Ink.0001.png", "walk.Ink.0003.png", "walk.Fill.0001.png", "walk.Photo.0001.png"};
    const QStringList sequence = originals + QStringList{"walk.Ink.0002.png", "walk.Ink.0004.png"};
    const QStringList combined{"walk.0001.png", "walk.0002.png", "walk.0003.png", "walk.0004.png"};
    const QStringList ink{"walk.Ink.0001.png", "walk.Ink.0003.png"};
    row("none", {}, originals);
    row("all defaults by name", {"--format", "png", "--layers=all", "--frames", "all", "--clones=exclude"}, originals);
    row("name", {"--name", "two words"},
        {"two words.Ink.0001.png", "two words.Ink.0003.png", "two words.Fill.0001.png", "two words.Photo.0001.png"});
    row("format", {"--format", "exr", "--layers", "active"}, {"walk.Ink.0001.exr", "walk.Ink.0003.exr"});
    row("visible layers", {"--layers", "visible"}, ink + QStringList{"walk.Photo.0001.png"});
    row("active layer", {"--layers", "active"}, ink);
    row("range", {"--frames", "range"}, {"walk.Ink.0003.png"});
    row("clones by name", {"--clones", "hold"},
        originals + QStringList{"walk.Ink.0002.hold.png", "walk.Ink.0004.clone.Ink.0001.png"});
    row("clones in sequence", {"--clones", "sequence"}, sequence);
    row("black", {"--black"}, originals);
    row("no alpha", {"--no-alpha"}, originals);
    // Frame 2 is new since Fill and Photo end before it, frame 4 since a distant clone begins there.
    row("combined", {"--combine"}, combined);
    row("combined range", {"--combine", "--frames", "range"}, {"walk.0002.png", "walk.0003.png"});
    row("combined, one layer", {"--combine", "--layers", "active"}, ink + QStringList{"walk.Ink.0004.png"});
    row("combined, one layer, clones by name", {"--combine", "--layers", "active", "--clones", "hold"},
        ink + QStringList{"walk.Ink.0002.hold.png", "walk.Ink.0004.png"});
    row("combined, one layer, clones in sequence", {"--combine", "--layers", "active", "--clones", "sequence"},
        ink + QStringList{"walk.Ink.0002.png", "walk.Ink.0004.png"});
}

void tst_ExportFrames::optionsChooseTheFiles()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, files);
    const QString folder = QString("options ") + QTest::currentDataTag();
    const ToolRun run = runTool(QStringList{"frames"} + options +
                                QStringList{m_place.put("walk.mr", sceneOfAllKinds()), m_place.path(folder)});
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(m_place.filesIn(folder), files);
    for (const QString &file : files)
        QVERIFY(file.endsWith(".exr") || QImage(m_place.path(folder + '/' + file)).size() == QSize(16, 8));
}

void tst_ExportFrames::groundAndLinesAreAsAsked_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("line");
    QTest::newRow("nothing") << QStringList{} << QColor(0, 0, 0, 0) << QColor(inkColor);
    QTest::newRow("no alpha") << QStringList{"--no-alpha"} << QColor(Qt::white) << QColor(inkColor);
    QTest::newRow("black") << QStringList{"--black"} << QColor(0, 0, 0, 0) << QColor(Qt::black);
    QTest::newRow("both") << QStringList{"--black", "--no-alpha"} << QColor(Qt::white) << QColor(Qt::black);
}

void tst_ExportFrames::groundAndLinesAreAsAsked()
{
    QFETCH(QStringList, options);
    QFETCH(QColor, ground);
    QFETCH(QColor, line);
    const QString folder = QString("colours ") + QTest::currentDataTag();
    const QString scene = m_place.put("walk.mr", sceneOfAllKinds());
    QCOMPARE(runTool(QStringList{"frames"} + options + QStringList{scene, m_place.path(folder)}).exitCode, 0);
    const QImage first(m_place.path(folder + "/walk.Ink.0001.png"));
    const QRect drawn(1, 1, 2, 2);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 16; ++x)
            QCOMPARE(first.pixelColor(x, y), drawn.contains(x, y) ? line : ground);
    }
}

void tst_ExportFrames::combinedLayersShowThrough()
{
    const QString scene = m_place.put("walk.mr", sceneOfAllKinds());
    QCOMPARE(runTool({"frames", "--combine", "--no-alpha", scene, m_place.path("combined")}).exitCode, 0);
    const QImage first(m_place.path("combined/walk.0001.png"));
    // A quarter of green on white, for a reference layer knows its opacity itself; half of blue on that; and Ink covers
    // both. Bytes may be rounded either way.
    const auto isNear = [](QColor color, int red, int green, int blue) {
        return std::abs(color.red() - red) <= 2 && std::abs(color.green() - green) <= 2 &&
               std::abs(color.blue() - blue) <= 2 && color.alpha() == 255;
    };
    QVERIFY(isNear(first.pixelColor(8, 6), 191, 255, 191));
    QVERIFY(isNear(first.pixelColor(8, 1), 96, 127, 223));
    QCOMPARE(first.pixelColor(1, 1), QColor(inkColor));
    const QImage third(m_place.path("combined/walk.0003.png"));
    QCOMPARE(third.pixelColor(5, 2), QColor(inkColor));
    QCOMPARE(third.pixelColor(8, 6), QColor(Qt::white));
}

void tst_ExportFrames::exrFilesAreRead()
{
    const QString scene = m_place.put("walk.mr", sceneOfAllKinds());
    QCOMPARE(runTool({"frames", "--format=exr", "--layers=active", scene, m_place.path("exr")}).exitCode, 0);
    QProcess header;
    header.start("exrheader", {m_place.path("exr/walk.Ink.0001.exr")});
    QVERIFY(header.waitForFinished());
    const QByteArray text = header.readAllStandardOutput();
    QVERIFY2(text.contains("dataWindow (type box2i): (0 0) - (15 7)"), text);
    for (const char channel : {'A', 'B', 'G', 'R'})
        QVERIFY2(text.contains(QByteArray("    ") + channel + ", 16-bit floating-point"), text);
}

void tst_ExportFrames::folderIsMadeWithAllAboveIt()
{
    const QString scene = m_place.put("walk.mr", sceneOfAllKinds());
    QCOMPARE(runTool({"frames", scene, m_place.path("made/with/all above")}).exitCode, 0);
    QCOMPARE(m_place.filesIn("made/with/all above").size(), 4);
}

void tst_ExportFrames::whatStoodThereIsReplaced()
{
    const QString scene = m_place.put("walk.mr", sceneOfAllKinds());
    QDir().mkpath(m_place.path("again"));
    m_place.put("again/walk.Ink.0001.png", "an old picture");
    m_place.put("again/keep.txt", "something else");
    QCOMPARE(runTool({"frames", "--layers=active", scene, m_place.path("again")}).exitCode, 0);
    QVERIFY(isWholePng(m_place.path("again/walk.Ink.0001.png")));
    QCOMPARE(m_place.filesIn("again"), (QStringList{"keep.txt", "walk.Ink.0001.png", "walk.Ink.0003.png"}));
}

void tst_ExportFrames::folderThatCannotBeMadeIsAnError_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("reason");
    const QString file = m_place.put("file", "text");
    QTest::newRow("file") << file << "is not a folder";
    QTest::newRow("below a file") << file + "/images"
                                  << "the folder cannot be made: Not a directory";
    QTest::newRow("no name") << QString("") << "a folder name cannot be empty";
    const QString link = m_place.path("link");
    QFile::link(m_place.path("nowhere"), link);
    QTest::newRow("link to nothing") << link << "is a link to nothing";
    QTest::newRow("name too long") << m_place.path(QString(300, 'x'))
                                   << "the folder cannot be made: File name too long";
}

void tst_ExportFrames::folderThatCannotBeMadeIsAnError()
{
    QFETCH(QString, folder);
    QFETCH(QString, reason);
    const ToolRun run = runTool({"frames", m_place.put("walk.mr", sceneOfAllKinds()), folder});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(QString::fromUtf8(run.errors), QString("mirelle-export: %1: %2\n").arg(folder, reason));
}

void tst_ExportFrames::folderThatTakesNoFilesIsAnError()
{
    // A folder that takes no files of anybody's, root's included.
    const ToolRun run = runTool({"frames", "--layers=active", m_place.put("walk.mr", sceneOfAllKinds()), "/proc"});
    QCOMPARE(run.exitCode, 1);
    const QList<QByteArray> lines = run.errors.trimmed().split('\n');
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].startsWith("mirelle-export: /proc/walk.Ink.0001.png: "), lines[0]);
    QVERIFY2(lines[1].startsWith("mirelle-export: /proc/walk.Ink.0003.png: "), lines[1]);
}

void tst_ExportFrames::folderMadeForNothingIsRemoved_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("limit");
    // Images of noise are far larger than one kilobyte.
    QTest::newRow("one") << "futile"
                         << "ulimit -f 1";
    QTest::newRow("with all above it") << "futile/with/all above"
                                       << "ulimit -f 1";
    QTest::newRow("with a slash at its end") << "futile/with/"
                                             << "ulimit -f 1";
    QTest::newRow("half made") << "futile/" + QString(300, 'x') << ":";
}

void tst_ExportFrames::folderMadeForNothingIsRemoved()
{
    QFETCH(QString, folder);
    QFETCH(QString, limit);
    const QString scene = m_place.put("long.mr", longScene(2));
    const ToolRun run =
        runShell(limit + "; exec \"$0\" frames --clones sequence \"$1\" \"$2\"", {scene, m_place.path(folder)});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(!QDir(m_place.path("futile")).exists());
}

void tst_ExportFrames::folderThatWasThereStays()
{
    QDir().mkpath(m_place.path("there"));
    const QString scene = m_place.put("long.mr", longScene(2));
    const ToolRun run = runShell("ulimit -f 1; exec \"$0\" frames \"$1\" \"$2/new\"", {scene, m_place.path("there")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY(QDir(m_place.path("there")).exists());
    QCOMPARE(m_place.filesIn("there"), QStringList());
}

void tst_ExportFrames::linkToNothingStays()
{
    QDir().mkpath(m_place.path("links"));
    const QString link = m_place.path("links/link");
    QVERIFY(QFile::link(m_place.path("nowhere"), link));
    QCOMPARE(runTool({"frames", m_place.put("walk.mr", sceneOfAllKinds()), link + "/below"}).exitCode, 1);
    QVERIFY(QFileInfo(link).isSymLink());
    QVERIFY(!QFile::exists(m_place.path("nowhere")));
}

void tst_ExportFrames::fileBeyondTheLimitLeavesTheOldOne_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("png") << "png";
    QTest::newRow("exr") << "exr";
}

void tst_ExportFrames::fileBeyondTheLimitLeavesTheOldOne()
{
    QFETCH(QString, format);
    const QString folder = m_place.path("full " + format);
    const QString oldFile = "long.A.0002." + format;
    QDir().mkpath(folder);
    m_place.put("full " + format + '/' + oldFile, "an old picture");
    const QString scene = m_place.put("long.mr", longScene(3));
    const ToolRun run = runShell("ulimit -f 1; exec \"$0\" frames --clones sequence --format \"$3\" \"$1\" \"$2\"",
                                 {scene, folder, format});
    QCOMPARE(run.exitCode, 1);
    QString messages;
    for (const char *number : {"1", "2", "3"})
        messages += QString("mirelle-export: %1/long.A.000%2.%3: File too large\n").arg(folder, number, format);
    QCOMPARE(QString::fromUtf8(run.errors), messages);
    QCOMPARE(m_place.filesIn("full " + format), QStringList{oldFile});
    QFile old(folder + '/' + oldFile);
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("an old picture"));
}

void tst_ExportFrames::fileThatCannotBeWrittenDoesNotStopTheOthers()
{
    QDir().mkpath(m_place.path("blocked/walk.Ink.0001.png/here"));
    const ToolRun run = runTool({"frames", m_place.put("walk.mr", sceneOfAllKinds()), m_place.path("blocked")});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors.count('\n'), 1);
    const QByteArray start = "mirelle-export: " + m_place.path("blocked/walk.Ink.0001.png").toUtf8() + ": ";
    QVERIFY2(run.errors.startsWith(start), run.errors);
    QCOMPARE(m_place.filesIn("blocked").size(), 4);
    for (const char *name : {"walk.Ink.0003.png", "walk.Fill.0001.png", "walk.Photo.0001.png"})
        QVERIFY(isWholePng(m_place.path(QString("blocked/") + name)));
}

void tst_ExportFrames::nothingToWriteIsAWarning()
{
    const QByteArray scene = sceneWithLayerName("A").replace("visible=\"yes\"", "visible=\"no\"");
    const QString file = m_place.put("hidden.mr", scene);
    const ToolRun run = runTool({"frames", "--layers", "visible", file, m_place.path("hidden")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors,
             "mirelle-export: " + file.toUtf8() + ": warning: there is nothing to write with these options\n");
}

void tst_ExportFrames::equalNamesAreAWarning_data()
{
    QTest::addColumn<QByteArray>("names");
    QTest::addColumn<QString>("written");
    QTest::newRow("the same") << QByteArray("A|A") << "A";
    QTest::newRow("slash against underscore") << QByteArray("a/b|a_b") << "a_b";
}

void tst_ExportFrames::equalNamesAreAWarning()
{
    QFETCH(QByteArray, names);
    QFETCH(QString, written);
    QByteArray scene = sceneOfLayers(2);
    scene.replace(scene.lastIndexOf("\"A\""), 3, '"' + names.split('|').last() + '"');
    scene.replace(scene.indexOf("\"A\""), 3, '"' + names.split('|').first() + '"');
    const QString file = m_place.put("twins.mr", scene);
    const QString folder = QString("twins ") + QTest::currentDataTag();
    const ToolRun run = runTool({"frames", file, m_place.path(folder)});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.errors),
             QString("mirelle-export: %1: warning: several layers write to twins.%2.0001.png and others like it; only "
                     "the picture of the lowest layer stays\n")
                 .arg(file, written));
    QCOMPARE(m_place.filesIn(folder), QStringList{"twins." + written + ".0001.png"});
}

void tst_ExportFrames::layerNameCannotLeaveTheFolder()
{
    const QString file = m_place.put("evil.mr", sceneWithLayerName("/../../evil"));
    QCOMPARE(runTool({"frames", file, m_place.path("cage/inner")}).exitCode, 0);
    QCOMPARE(m_place.filesIn("cage"), QStringList{"inner"});
    QCOMPARE(m_place.filesIn("cage/inner").size(), 1);
}

void tst_ExportFrames::damagedDrawingIsExportedWithAWarning()
{
    const QString file = m_place.put("damaged.mr", damagedScene());
    const ToolRun run = runTool({"frames", "--layers=active", file, m_place.path("damaged")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(run.errors.contains(": warning: Line "), run.errors);
    QCOMPARE(m_place.filesIn("damaged"), QStringList{"damaged.A.0001.png"});
}

void tst_ExportFrames::brokenSceneMakesNoFolder()
{
    const QString file = m_place.put("broken.mr", sceneOfAllKinds().chopped(20));
    QCOMPARE(runTool({"frames", file, m_place.path("not made")}).exitCode, 1);
    QVERIFY(!QDir(m_place.path("not made")).exists());
}

void tst_ExportFrames::filesAreNamedAfterTheScene_data()
{
    QTest::addColumn<QString>("scene");
    QTest::addColumn<QString>("name");
    QTest::newRow("usual") << "walk.mr"
                           << "walk";
    QTest::newRow("capitals") << "walk.MR"
                              << "walk";
    QTest::newRow("another ending") << "walk.v2"
                                    << "walk.v2";
    QTest::newRow("two endings") << "walk.v2.mr"
                                 << "walk.v2";
    QTest::newRow("the ending twice") << "walk.mr.mr"
                                      << "walk.mr";
    QTest::newRow("no ending") << "walk"
                               << "walk";
    QTest::newRow("nothing but the ending") << ".mr"
                                            << "Untitled";
}

void tst_ExportFrames::filesAreNamedAfterTheScene()
{
    QFETCH(QString, scene);
    QFETCH(QString, name);
    QDir().mkpath(m_place.path("scenes"));
    const QString file = m_place.put("scenes/" + scene, sceneWithLayerName("A"));
    const QString folder = QString("named ") + QTest::currentDataTag();
    QCOMPARE(runTool({"frames", file, m_place.path(folder)}).exitCode, 0);
    QCOMPARE(m_place.filesIn(folder), QStringList{name + ".A.0001.png"});
}

void tst_ExportFrames::strokesAreRenderedOnADisplay()
{
    const QString file = m_place.put("line.mr", sceneToRender());
    const ToolRun run = runTool({"frames", file, m_place.path("rendered")}, QProcessEnvironment::systemEnvironment());
    QCOMPARE(run.errors, QByteArray());
    QCOMPARE(run.exitCode, 0);
    const QImage image(m_place.path("rendered/line.A.0001.png"));
    QVERIFY(qAlpha(image.pixel(8, 4)) > 100);
    QCOMPARE(qAlpha(image.pixel(8, 0)), 0);
}

void tst_ExportFrames::strokesWithoutOpenGLAreAnError()
{
    const QString file = m_place.put("line.mr", sceneToRender());
    const ToolRun run = runTool({"frames", file, m_place.path("not rendered")});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors, "mirelle-export: " + file.toUtf8() +
                             ": its strokes carry no flattened images, and there is no OpenGL to render them\n");
    QVERIFY(!QDir(m_place.path("not rendered")).exists());
}

void tst_ExportFrames::onlyStrokesThatAreDrawnNeedOpenGL_data()
{
    QTest::addColumn<QByteArray>("beyond");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    const auto row = [](const char *name, const QByteArray &beyond, const QStringList &options, int exitCode) {
        QTest::newRow(name) << beyond << options << exitCode;
    };
    // Frames 1 and 2 of the hidden layer must be rendered; frame 2, where the range begins, repeats frame 1.
    row("all", "showNothing", {}, 1);
    row("visible layers", "showNothing", {"--layers", "visible"}, 0);
    row("active layer", "showNothing", {"--layers", "active"}, 0);
    row("range without clones", "showNothing", {"--frames", "range"}, 0);
    row("range with clones", "showNothing", {"--frames", "range", "--clones", "sequence"}, 1);
    row("combined", "showNothing", {"--combine"}, 1);
    row("combined visible layers", "showNothing", {"--combine", "--layers", "visible"}, 0);
    row("combined range", "showNothing", {"--combine", "--frames", "range"}, 1);
    // A range of frame 5 alone: in a cycle of three drawings it shows the second.
    row("beyond the end", "showNothing", {"--combine", "--frames", "range", "5"}, 0);
    row("beyond a last drawing that is empty", "freezeLast", {"--combine", "--frames", "range", "5"}, 0);
    row("beyond the end in a cycle", "cycleDrawings", {"--combine", "--frames", "range", "5"}, 1);
    row("beyond the end in a cycle, layer by layer", "cycleDrawings", {"--frames", "range", "5"}, 0);
}

void tst_ExportFrames::onlyStrokesThatAreDrawnNeedOpenGL()
{
    QFETCH(QByteArray, beyond);
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    QByteArray scene = sceneToRenderInPart(beyond);
    if (options.removeAll("5") > 0)
        scene.replace("\"2;3\"", "\"5;5\"");
    const QString file = m_place.put("part.mr", scene);
    const QString folder = QString("part ") + QTest::currentDataTag();
    const ToolRun run = runTool(QStringList{"frames"} + options + QStringList{file, m_place.path(folder)});
    QCOMPARE(run.exitCode, exitCode);
    QCOMPARE(QDir(m_place.path(folder)).exists(), exitCode == 0);
    QCOMPARE(run.errors.contains("OpenGL"), exitCode != 0);
}

void tst_ExportFrames::pipeSeesNoProgress()
{
    const QString file = m_place.put("long.mr", longScene(40, QSize(64, 48)));
    const ToolRun run = runTool({"frames", "--clones", "sequence", file, m_place.path("long")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output + run.errors, QByteArray());
    QCOMPARE(m_place.filesIn("long").size(), 40);
}

QTEST_MAIN(tst_ExportFrames)
#include "tst_exportframes.moc"
