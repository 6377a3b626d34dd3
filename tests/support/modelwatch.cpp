#include "support/modelwatch.h"

#include <QAbstractItemModel>
#include <QTest>

#include <algorithm>

namespace TestSupport {

ModelWatch::ModelWatch(QAbstractItemModel *model)
    : m_model(model),
      m_rows(model->rowCount()),
      m_columns(model->columnCount()),
      m_complete(model),
      m_tester(&m_complete, QAbstractItemModelTester::FailureReportingMode::QtTest)
{
    watchBrackets();
    watchData();
}

void ModelWatch::watchBrackets()
{
    using Model = QAbstractItemModel;
    const auto count = [](int first, int last) { return last - first + 1; };
    connect(m_model, &Model::rowsAboutToBeInserted, this, [this] { begin(Rows); });
    connect(m_model, &Model::rowsAboutToBeRemoved, this, [this] { begin(Rows); });
    connect(m_model, &Model::columnsAboutToBeInserted, this, [this] { begin(Columns); });
    connect(m_model, &Model::columnsAboutToBeRemoved, this, [this] { begin(Columns); });
    connect(m_model, &Model::layoutAboutToBeChanged, this, [this] { begin(Layout); });
    connect(m_model, &Model::modelAboutToBeReset, this, [this] { begin(Reset); });

    connect(m_model, &Model::rowsInserted, this,
            [=, this](const QModelIndex &, int first, int last) { end(Rows, count(first, last), 0); });
    connect(m_model, &Model::rowsRemoved, this,
            [=, this](const QModelIndex &, int first, int last) { end(Rows, -count(first, last), 0); });
    connect(m_model, &Model::columnsInserted, this,
            [=, this](const QModelIndex &, int first, int last) { end(Columns, 0, count(first, last)); });
    connect(m_model, &Model::columnsRemoved, this,
            [=, this](const QModelIndex &, int first, int last) { end(Columns, 0, -count(first, last)); });
    connect(m_model, &Model::layoutChanged, this, [this] { end(Layout, m_model->rowCount() - m_rows, 0); });
    connect(m_model, &Model::modelReset, this,
            [this] { end(Reset, m_model->rowCount() - m_rows, m_model->columnCount() - m_columns); });
}

void ModelWatch::watchData()
{
    connect(m_model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &first, const QModelIndex &last) {
        if (!first.isValid() || !last.isValid() || first.model() != m_model || last.model() != m_model ||
            first.row() > last.row() || first.column() > last.column())
            complain(QStringLiteral("data changed where there is none"));
    });
    connect(m_model, &QAbstractItemModel::headerDataChanged, this,
            [this](Qt::Orientation orientation, int first, int last) {
                const int sections = orientation == Qt::Horizontal ? m_model->columnCount() : m_model->rowCount();
                if (first < 0 || first > last || last >= sections)
                    complain(
                        QStringLiteral("header sections %1 to %2 of %3 changed").arg(first).arg(last).arg(sections));
            });
}

void ModelWatch::begin(Change change)
{
    checkCounts(QStringLiteral("before an announcement"));
    if (!m_open.empty())
        complain(QStringLiteral("announcement %1 within announcement %2").arg(change).arg(m_open.back()));
    m_open.push_back(change);
}

void ModelWatch::end(Change change, int rows, int columns)
{
    if (m_open.empty() || m_open.back() != change)
        complain(QStringLiteral("done without announcement: %1").arg(change));
    else
        m_open.pop_back();
    m_rows += rows;
    m_columns += columns;
    // A new layer may be longer than all others, whose rows are announced next.
    if (change != Columns)
        checkCounts(QStringLiteral("when done"));
    else if (m_model->columnCount() != m_columns)
        complain(QStringLiteral("%1 columns instead of %2").arg(m_model->columnCount()).arg(m_columns));
}

void ModelWatch::complain(const QString &what)
{
    if (m_broken.isEmpty())
        m_broken = QString::fromLatin1(m_model->metaObject()->className()) + QStringLiteral(": ") + what;
}

void ModelWatch::checkCounts(const QString &when)
{
    if (m_model->rowCount() == m_rows && m_model->columnCount() == m_columns)
        return;
    // What is still to be announced is no fault of this moment.
    if (when.startsWith(QLatin1String("before")) && m_model->columnCount() == m_columns)
        return;
    complain(QStringLiteral("%1 x %2 instead of %3 x %4 %5")
                 .arg(m_model->rowCount())
                 .arg(m_model->columnCount())
                 .arg(m_rows)
                 .arg(m_columns)
                 .arg(when));
}

QString ModelWatch::broken()
{
    if (!m_open.empty())
        complain(QStringLiteral("announced and never done: %1").arg(m_open.back()));
    checkCounts(QStringLiteral("between edits"));
    checkPersistentIndexes();
    checkIndexes();
    if (QTest::currentTestFailed())
        complain(QStringLiteral("Qt's model tester has failed, see above"));
    return m_broken;
}

void ModelWatch::checkIndexes()
{
    m_held.clear();
    for (int column = -1; column <= m_columns; ++column) {
        for (int row = -1; row <= m_rows; ++row) {
            const QModelIndex index = m_model->index(row, column);
            if (!index.isValid())
                continue;
            checkIndex(index, row, column);
            m_held.emplace_back(index);
        }
    }
}

void ModelWatch::checkIndex(const QModelIndex &index, int row, int column)
{
    if (row < 0 || column < 0 || column >= m_columns)
        complain(QStringLiteral("an index outside of the table"));
    if (index.row() != row || index.column() != column || index.model() != m_model)
        complain(QStringLiteral("the index of another position"));
    if (index.parent().isValid() || m_model->rowCount(index) != 0 || m_model->columnCount(index) != 0)
        complain(QStringLiteral("a cell that is above or below another"));
    if (m_model->index(row, column, index).isValid())
        complain(QStringLiteral("a child of a cell"));
    if (m_model->sibling(row, column, index) != index)
        complain(QStringLiteral("a cell that is not its own sibling"));
}

void ModelWatch::checkPersistentIndexes()
{
    for (const QPersistentModelIndex &held : m_held) {
        if (held.isValid() && m_model->index(held.row(), held.column()) != held)
            complain(QStringLiteral("a persistent index of a position that there is not"));
    }
}

} // namespace TestSupport
