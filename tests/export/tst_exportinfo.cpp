#include "exportscenes.h"
#include "exporttool.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace TestSupport;

/// `mirelle-export info`.
class tst_ExportInfo : public QObject
{
    Q_OBJECT

private slots:
    void jsonTellsAllThereIs();
    void jsonTellsOfDamages();
    void jsonOfNamesIsWellFormed();
    void tableTellsAllThereIs();
    void noLineOfTheTableEndsInBlanks();
    void namesCannotSteerTheTerminal();
    void controlCharactersOfJsonAreEscaped();
    void renderingIsNeededWhereThereIsNoOpenGL();
    void renderingIsNotNeededWhereThereIsOpenGL();

private:
    QJsonObject jsonOf(const QByteArray &scene) const;

    const Workplace m_place;
};

QJsonObject tst_ExportInfo::jsonOf(const QByteArray &scene) const
{
    const ToolRun run = runTool({"info", "--json", m_place.put("a.mr", scene)});
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(run.output, &error);
    if (run.exitCode != 0 || error.error != QJsonParseError::NoError)
        qWarning("%d: %s %s", run.exitCode, qPrintable(error.errorString()), run.errors.constData());
    return document.object();
}

void tst_ExportInfo::jsonTellsAllThereIs()
{
    const QByteArray expected = R"({
        "file": "FILE",
        "frameSize": {"width": 16, "height": 8},
        "frameRate": 12,
        "frames": 4,
        "range": {"first": 2, "last": 3},
        "active": {"frame": 3, "layer": 0},
        "layers": [
            {"kind": "stroke", "name": "Ink", "linked": true, "frames": 4, "visible": true, "opacity": 1,
             "color": "#ff0000", "beyond": "freezeLast", "originals": 2, "clones": 1, "distantClones": 1},
            {"kind": "stroke", "name": "Fill", "linked": false, "frames": 1, "visible": false, "opacity": 0.5,
             "color": "#0000ff", "beyond": "showNothing", "originals": 1, "clones": 0, "distantClones": 0},
            {"kind": "reference", "name": "Photo", "linked": false, "frames": 1, "visible": true, "opacity": 0.5,
             "beyond": "showNothing", "originals": 1, "clones": 0, "distantClones": 0},
            {"kind": "audio", "name": "Sound", "linked": false, "frames": 0},
            {"kind": "annotation", "name": "Notes", "linked": false, "frames": 3}
        ],
        "sound": {"bytes": 8, "offsetFrames": 2.5},
        "notes": 1,
        "needsRendering": false,
        "damages": []
    })";
    QJsonObject wanted = QJsonDocument::fromJson(expected).object();
    wanted["file"] = m_place.path("a.mr");
    const QJsonObject actual = jsonOf(sceneOfAllKinds());
    QCOMPARE(actual.keys(), wanted.keys());
    for (const QString &key : wanted.keys())
        QCOMPARE(actual[key], wanted[key]);
}

void tst_ExportInfo::jsonTellsOfDamages()
{
    const QJsonArray damages = jsonOf(damagedScene())["damages"].toArray();
    QCOMPARE(damages.size(), 1);
    QVERIFY(damages.first().toString().startsWith("Line "));
}

void tst_ExportInfo::jsonOfNamesIsWellFormed()
{
    const QJsonObject json = jsonOf(sceneWithLayerName("&quot;\\ &#10; Grün 🌿"));
    QCOMPARE(json["layers"].toArray().first().toObject()["name"].toString(), QString::fromUtf8("\"\\ \n Grün 🌿"));
}

void tst_ExportInfo::tableTellsAllThereIs()
{
    const QString file = m_place.put("a.mr", sceneOfAllKinds());
    const ToolRun run = runTool({"info", file});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray());
    const QByteArray expected =
        "\n"
        "  frame size    16 x 8 pixels\n"
        "  frame rate    12 per second\n"
        "  frames        4\n"
        "  range         2 to 3\n"
        "  active        frame 3 of layer Ink\n"
        "  sound         8 bytes, from frame offset 2.5\n"
        "  notes         1\n"
        "  rendering     not needed\n"
        "  damages       0\n"
        "\n"
        "  layer      colour  opacity visible linked beyond      frames originals clones distant name\n"
        "  stroke     #ff0000 1       yes     yes    freezeLast  4      2         1      1       Ink\n"
        "  stroke     #0000ff 0.5     no      no     showNothing 1      1         0      0       Fill\n"
        "  reference  -       0.5     yes     no     showNothing 1      1         0      0       Photo\n"
        "  audio      -       -       -       no     -           0      -         -      -       Sound\n"
        "  annotation -       -       -       no     -           3      -         -      -       Notes\n";
    QCOMPARE(QString::fromUtf8(run.output), QString::fromUtf8(file.toUtf8() + expected));
}

void tst_ExportInfo::noLineOfTheTableEndsInBlanks()
{
    // The layers for sound and notes that a file lacks have no names.
    const ToolRun run = runTool({"info", m_place.put("a.mr", sceneWithLayerName("A"))});
    QVERIFY2(run.output.contains("  audio ") && !run.output.contains(" \n"), run.output);
}

void tst_ExportInfo::namesCannotSteerTheTerminal()
{
    // A line break, and the one-byte form of what begins a terminal's control sequences.
    const QString file = m_place.put("a.mr", sceneWithLayerName("one&#10;two&#x9b;2J"));
    const QString output = QString::fromUtf8(runTool({"info", file}).output);
    const QChar replaced = QChar::ReplacementCharacter;
    QVERIFY2(output.contains(QString(" one") + replaced + "two" + replaced + "2J\n"), qPrintable(output));
    QVERIFY(!output.contains(QChar(0x9b)));
}

void tst_ExportInfo::controlCharactersOfJsonAreEscaped()
{
    const QString name =
        QString("a") + QChar(0x7e) + QChar(0x7f) + QChar(0x80) + QChar(0x9b) + QChar(0x9f) + QChar(0xa1);
    const QString file = m_place.put("a.mr", sceneWithLayerName(name.toUtf8()));
    const QByteArray output = runTool({"info", "--json", file}).output;
    QVERIFY2(output.contains("\"a~\\u007f\\u0080\\u009b\\u009f\xc2\xa1\""), output);
    const QJsonArray layers = QJsonDocument::fromJson(output)["layers"].toArray();
    QCOMPARE(layers.first()["name"].toString(), name);
}

void tst_ExportInfo::renderingIsNeededWhereThereIsNoOpenGL()
{
    QCOMPARE(jsonOf(sceneToRender())["needsRendering"], QJsonValue(true));
    const ToolRun run = runTool({"info", m_place.put("a.mr", sceneToRender())});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray());
    QVERIFY2(run.output.contains("\n  rendering     needed\n"), run.output);
}

void tst_ExportInfo::renderingIsNotNeededWhereThereIsOpenGL()
{
    const QString file = m_place.put("a.mr", sceneToRender());
    const ToolRun run = runTool({"info", "--json", file}, QProcessEnvironment::systemEnvironment());
    QCOMPARE(QJsonDocument::fromJson(run.output)["needsRendering"], QJsonValue(false));
}

QTEST_MAIN(tst_ExportInfo)
#include "tst_exportinfo.moc"
