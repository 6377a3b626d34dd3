#pragma once

#include "support/completetable.h"

#include <QAbstractItemModelTester>
#include <QObject>
#include <QPersistentModelIndex>
#include <QString>

#include <vector>

class QAbstractItemModel;
class QModelIndex;

namespace TestSupport {

/// Watches what a table model announces, and holds it against what the model then shows.
///
/// Qt's own tester is attached too, to the table with its gaps filled; what is peculiar to the tables of a scene, which
/// it would not bear, is seen to here.
class ModelWatch : public QObject
{
public:
    /// \a model is not owned and has to stay.
    explicit ModelWatch(QAbstractItemModel *model);

    /// To be asked between edits: are there as many rows and columns as were announced, is everything announced that
    /// was about to be, do all indexes belong together, are persistent ones invalid or where they point to? \return
    /// what is wrong first, since the watch began; empty if nothing is.
    [[nodiscard]] QString broken();

private:
    enum Change { Rows, Columns, Layout, Reset };

    void watchBrackets();
    void watchData();
    void begin(Change change);
    /// The counts may have changed by \a rows and \a columns.
    void end(Change change, int rows, int columns);
    void complain(const QString &what);
    void checkCounts(const QString &when);
    void checkIndexes();
    void checkIndex(const QModelIndex &index, int row, int column);
    void checkPersistentIndexes();

    QAbstractItemModel *m_model;
    int m_rows;
    int m_columns;
    std::vector<Change> m_open; ///< announced and not done yet
    std::vector<QPersistentModelIndex> m_held;
    CompleteTable m_complete;
    QAbstractItemModelTester m_tester;
    QString m_broken;
};

} // namespace TestSupport
