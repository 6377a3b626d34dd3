#pragma once

#include <QList>
#include <QObject>

/// Prints chosen events and where in the widget tree they arrive, for developers.
///
/// The event types come from the environment variable MR_TRACE_EVENTS: numbers of QEvent::Type and ranges of them,
/// separated by commas, for example "2,3,5-12". Installed on the application object it sees every event and
/// consumes none.
class EventTracer : public QObject
{
    Q_OBJECT

public:
    /// Reads MR_TRACE_EVENTS; pieces that are neither a number nor an ascending range are ignored.
    explicit EventTracer(QObject *parent);

    /// The event types to report, in the order given, duplicates included.
    const QList<int> &eventTypes() const { return m_eventTypes; }

    /// \return always false: nothing is ever consumed.
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    QList<int> m_eventTypes;
};
