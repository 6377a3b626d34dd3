#include "libmodel/tools/toolmanager.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QLineF>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>

using Model::Tool;
using TestSupport::PaperStage;

namespace {

/// Logical pixels by which a point may miss.
constexpr double tolerance = 0.01;

/// Random motions of the sheet by real events. Each knows where what was under the pointer has to be afterwards.
class Motions
{
public:
    Motions(PaperStage &stage, quint32 seed) : m_stage(stage), m_random(seed) {}

    /// \return an empty text, or what went wrong.
    QString next()
    {
        const QPointF at = point();
        const QPointF to = point();
        const QPointF held = m_stage.toPaper(at);
        switch (m_random.bounded(10)) {
        case 0: {
            const QPoint offset(m_random.bounded(-40, 40), m_random.bounded(-40, 40));
            m_stage.wheel(at, offset, {0, 120});
            return offset.isNull() ? QString() : missed("wheel", held, at + offset);
        }
        case 1:
            m_stage.wheel(at, {}, {0, m_random.bounded(2) ? 120 : -120}, Qt::ControlModifier);
            return missed("zooming wheel", held, at);
        case 2:
            m_stage.nativeGesture(Qt::BeginNativeGesture, 0.0, at);
            m_stage.nativeGesture(Qt::ZoomNativeGesture, m_random.bounded(0.6) - 0.3, at);
            m_stage.nativeGesture(Qt::RotateNativeGesture, m_random.bounded(60.0) - 30.0, at);
            m_stage.nativeGesture(Qt::EndNativeGesture, 0.0, at);
            return missed("touchpad", held, at);
        case 3:
            drag(Tool::Type::Hand, at, to);
            return missed("hand", held, to);
        case 4:
            drag(Tool::Type::Zoom, at, to);
            return missed("zoom", held, at);
        case 5:
            drag(Tool::Type::Rotate, at, to);
            return missed("rotate", held, swung(at, to));
        case 6: {
            const double middle = m_stage.paper->view().center().x();
            m_stage.paper->setMirrorView(!m_stage.paper->mirrorView());
            return missed("mirror", held, {2.0 * middle - at.x(), at.y()});
        }
        case 7:
            drag(Tool::Type::OffPegs, {250, 200}, to);
            return {};
        case 8:
            drag(Tool::Type::OffPegs, {20, 20}, to);
            return missed("off pegs", held, turned(at, {20, 20}, to));
        default:
            m_stage.paper->resetView();
            return {};
        }
    }

private:
    /// Whole pixels, as a mouse has them.
    QPointF point() { return QPoint(m_random.bounded(10, 490), m_random.bounded(10, 390)); }
    QPointF center() const { return m_stage.paper->view().center(); }

    QString missed(const char *what, QPointF onPaper, QPointF wanted) const
    {
        const QPointF shown = m_stage.toWidget(onPaper);
        if (std::hypot(shown.x() - wanted.x(), shown.y() - wanted.y()) <= tolerance)
            return {};
        return QStringLiteral("%1: (%2, %3) instead of (%4, %5)")
            .arg(QString::fromLatin1(what))
            .arg(shown.x())
            .arg(shown.y())
            .arg(wanted.x())
            .arg(wanted.y());
    }
    void drag(Tool::Type tool, QPointF from, QPointF to)
    {
        m_stage.useTool(tool);
        m_stage.pause(2000);
        m_stage.penLine({from, 0.5 * (from + to), to});
    }
    /// \a from swung about the centre to where \a to is seen.
    QPointF swung(QPointF from, QPointF to) const
    {
        QLineF arm(center(), to);
        arm.setLength(QLineF(center(), from).length());
        return arm.p2();
    }
    /// \a point turned about the centre as \a from was to be seen where \a to is.
    QPointF turned(QPointF point, QPointF from, QPointF to) const
    {
        QLineF arm(center(), point);
        arm.setAngle(arm.angle() + QLineF(center(), from).angleTo(QLineF(center(), to)));
        return arm.p2();
    }

    PaperStage &m_stage;
    QRandomGenerator m_random;
};

} // namespace

/// A point drawn under the cursor lies under the cursor, whatever was done to the view.
class tst_PaperPromises : public QObject
{
    Q_OBJECT

private slots:
    void whatWasDrawnUnderTheCursorStaysThere_data();
    void whatWasDrawnUnderTheCursorStaysThere();
    void sameIsTrueOnDenseScreens_data();
    void sameIsTrueOnDenseScreens();
};

void tst_PaperPromises::whatWasDrawnUnderTheCursorStaysThere_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_PaperPromises::whatWasDrawnUnderTheCursorStaysThere()
{
    QFETCH(quint32, seed);
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
    PaperStage stage;
    QObject::connect(stage.paper.get(), &UI::Paper::offPegsTransformChanged, stage.paper.get(),
                     [&](const QTransform &transform) { stage.scene()->setCurrentDrawingOffPegsTransform(transform); });
    Motions motions(stage, seed);
    for (int i = 0; i < 250; ++i) {
        const QString error = motions.next();
        QVERIFY2(error.isEmpty(), qPrintable(QStringLiteral("seed %1, motion %2: %3").arg(seed).arg(i).arg(error)));
        if (i % 25 != 0)
            continue;
        // And the pen draws where it is.
        stage.useTool(Tool::Type::Pen);
        stage.pause(2000);
        stage.penLine({{240, 190}, {260, 215}});
        const QPointF first = stage.toWidget(stage.strokes.back()->samples().front().point);
        QVERIFY(std::hypot(first.x() - 240, first.y() - 190) <= tolerance);
    }
}

void tst_PaperPromises::sameIsTrueOnDenseScreens_data()
{
    QTest::addColumn<QString>("factor");
    QTest::addRow("1.5") << QStringLiteral("1.5");
    QTest::addRow("2") << QStringLiteral("2");
}

void tst_PaperPromises::sameIsTrueOnDenseScreens()
{
    QFETCH(QString, factor);
    // The factor is read when a program starts.
    QProcess dense;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), factor);
    dense.setProcessEnvironment(environment);
    dense.setProcessChannelMode(QProcess::MergedChannels);
    dense.start(QCoreApplication::applicationFilePath(), {QStringLiteral("whatWasDrawnUnderTheCursorStaysThere")});
    QVERIFY(dense.waitForFinished(60'000));
    const QByteArray output = dense.readAll();
    QVERIFY2(dense.exitStatus() == QProcess::NormalExit && dense.exitCode() == 0, output.constData());
    QVERIFY(output.contains("PASS   : tst_PaperPromises::whatWasDrawnUnderTheCursorStaysThere(seed 1)"));
}

QTEST_MAIN(tst_PaperPromises)
#include "tst_paperpromises.moc"
