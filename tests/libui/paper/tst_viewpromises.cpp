#include "libui/paper/viewdrag.h"
#include "libui/paper/viewtransform.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>

using UI::ViewDrag;
using UI::ViewTransform;

namespace {

/// Logical pixels by which a point may miss.
constexpr double tolerance = 0.01;
constexpr int operations = 10'000;

/// A view that random operations are done to; each checks what it promises about the point under the cursor.
class Explorer
{
public:
    explicit Explorer(quint32 seed) : m_random(seed)
    {
        m_view.setUsableRect({0, 20, 1200, 780});
        m_view.setPaperRect({0, 0, 1920, 1080});
    }

    /// \return an empty text, or what went wrong.
    QString step()
    {
        using Operation = void (Explorer::*)();
        constexpr Operation all[] = {&Explorer::pan,        &Explorer::zoom,      &Explorer::setLevel,
                                     &Explorer::rotate,     &Explorer::rotateAt,  &Explorer::mirror,
                                     &Explorer::pinch,      &Explorer::dragPan,   &Explorer::dragZoom,
                                     &Explorer::dragRotate, &Explorer::moveFrame, &Explorer::turnFrame,
                                     &Explorer::putBack,    &Explorer::frameSize, &Explorer::deviceRatio,
                                     &Explorer::resize,     &Explorer::resetOrFit};
        m_error.clear();
        (this->*all[m_random.bounded(int(std::size(all)))])();
        const QPointF anywhere = point();
        expect("inverse", m_view.widgetToPaper().map(anywhere), anywhere);
        const double level = m_view.zoomLevel();
        if (level < (1.0 - 1e-9) / 16.0 || level > 16.0 * (1.0 + 1e-9))
            m_error += QStringLiteral(" zoom level %1").arg(level);
        return m_error;
    }

private:
    QPointF point() { return {m_random.bounded(1200.0), 20.0 + m_random.bounded(780.0)}; }
    double number(double least, double most) { return least + m_random.bounded(most - least); }
    QPointF under(QPointF cursor) const { return m_view.widgetToPaper().map(cursor); }

    /// The point \a onPaper must lie at \a cursor.
    void expect(const char *what, QPointF onPaper, QPointF cursor)
    {
        const QPointF shown = m_view.paperToWidget().map(onPaper);
        if (!(std::hypot(shown.x() - cursor.x(), shown.y() - cursor.y()) <= tolerance))
            m_error += QStringLiteral(" %1: (%2, %3) is not at (%4, %5)")
                           .arg(QString::fromLatin1(what))
                           .arg(shown.x())
                           .arg(shown.y())
                           .arg(cursor.x())
                           .arg(cursor.y());
    }

    void pan()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        m_view.panTo(from, to);
        expect("pan", held, to);
    }
    void zoom()
    {
        const QPointF at = point();
        const QPointF held = under(at);
        m_view.zoomAt(at, number(0.3, 3.0));
        expect("zoom", held, at);
    }
    void setLevel()
    {
        const QPointF held = under(m_view.center());
        m_view.setZoomLevel(number(0.05, 20.0));
        expect("level", held, m_view.center());
    }
    void rotate()
    {
        const QPointF held = under(m_view.center());
        if (m_random.bounded(2))
            m_view.rotatePaperTo(number(-180.0, 180.0));
        else
            m_view.rotatePaperToNext(number(-90.0, 90.0));
        expect("rotate", held, m_view.center());
    }
    void rotateAt()
    {
        const QPointF at = point();
        const QPointF held = under(at);
        m_view.rotateAt(at, number(-180.0, 180.0));
        expect("rotate at", held, at);
    }
    void mirror()
    {
        const QPointF at = point();
        const QPointF held = under(at);
        m_view.setMirrored(!m_view.isMirrored());
        expect("mirror", held, {2.0 * m_view.center().x() - at.x(), at.y()});
    }
    void pinch()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        m_view.setFingersDelta({from, number(-90.0, 90.0), number(0.2, 5.0)},
                               {to, number(-90.0, 90.0), number(0.2, 5.0)});
        expect("pinch", held, to);
        m_view.commitDelta();
        expect("settled pinch", held, to);
    }
    void drag(ViewDrag::Kind kind, QPointF from, QPointF to)
    {
        ViewDrag drag(kind, from, m_view.center());
        drag.moveTo(point(), m_view);
        drag.moveTo(to, m_view);
        drag.commit(m_view);
    }
    void dragPan()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        drag(ViewDrag::Kind::Pan, from, to);
        expect("dragged pan", held, to);
    }
    void dragZoom()
    {
        const QPointF from = point();
        const QPointF held = under(from);
        drag(ViewDrag::Kind::Zoom, from, point());
        expect("dragged zoom", held, from);
    }
    /// \a from swung about the view's centre to where \a to is seen from it.
    QPointF swung(QPointF from, QPointF to) const
    {
        QLineF arm(m_view.center(), to);
        arm.setLength(QLineF(m_view.center(), from).length());
        return arm.p2();
    }
    void dragRotate()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        drag(ViewDrag::Kind::Rotate, from, to);
        expect("dragged rotation", held, swung(from, to));
    }
    void moveFrame()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        drag(ViewDrag::Kind::OffPegsPan, from, to);
        expect("off pegs", held, to);
    }
    void turnFrame()
    {
        const QPointF from = point();
        const QPointF to = point();
        const QPointF held = under(from);
        drag(ViewDrag::Kind::OffPegsRotate, from, to);
        expect("turned off pegs", held, swung(from, to));
    }
    void putBack()
    {
        const QPointF at = point();
        const QPointF held = m_view.widgetToDesk().map(at);
        m_view.setOffPegs({});
        expect("put back", held, at);
    }
    /// What the centre shows stays there if the new sheet reaches as far.
    void frameSize()
    {
        const QSizeF size(m_random.bounded(100, 3000), m_random.bounded(100, 3000));
        const QPointF desk = m_view.widgetToDesk().map(m_view.center());
        m_view.setPaperRect({{}, size});
        const QPointF now = m_view.widgetToDesk().map(m_view.center());
        const QPointF wanted(std::clamp(desk.x(), 0.0, size.width()), std::clamp(desk.y(), 0.0, size.height()));
        if (std::hypot(now.x() - wanted.x(), now.y() - wanted.y()) > tolerance)
            m_error += QStringLiteral(" frame size");
    }
    void deviceRatio()
    {
        const double level = m_view.zoomLevel();
        const QPointF held = under(m_view.center());
        constexpr double ratios[] = {1.0, 1.25, 1.5, 2.0, 3.0};
        m_view.setDeviceRatio(ratios[m_random.bounded(5)]);
        expect("device ratio", held, m_view.center());
        if (std::abs(m_view.zoomLevel() - level) > 1e-6)
            m_error += QStringLiteral(" level by device ratio");
    }
    void resize()
    {
        const QPointF held = under(m_view.center());
        m_view.setUsableRect({0, m_random.bounded(60), m_random.bounded(200, 1600), m_random.bounded(200, 1200)});
        expect("resize", held, m_view.center());
    }
    void resetOrFit()
    {
        if (m_random.bounded(2))
            m_view.reset();
        else
            m_view.fit();
    }

    QRandomGenerator m_random;
    ViewTransform m_view;
    QString m_error;
};

} // namespace

/// What every operation on the view promises, after any others.
class tst_ViewPromises : public QObject
{
    Q_OBJECT

private slots:
    void whatIsUnderTheCursorStaysThere_data();
    void whatIsUnderTheCursorStaysThere();
};

void tst_ViewPromises::whatIsUnderTheCursorStaysThere_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 5; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_ViewPromises::whatIsUnderTheCursorStaysThere()
{
    QFETCH(quint32, seed);
    Explorer explorer(seed);
    for (int i = 0; i < operations; ++i) {
        const QString error = explorer.step();
        QVERIFY2(error.isEmpty(), qPrintable(QStringLiteral("seed %1, operation %2:%3").arg(seed).arg(i).arg(error)));
    }
}

QTEST_APPLESS_MAIN(tst_ViewPromises)
#include "tst_viewpromises.moc"
