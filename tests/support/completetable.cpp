#include "support/completetable.h"

#include <algorithm>

namespace TestSupport {

CompleteTable::CompleteTable(QAbstractItemModel *source) : m_source(source)
{
    passOn(source);
    setSourceModel(source);
}

void CompleteTable::passOn(QAbstractItemModel *source)
{
    using Model = QAbstractItemModel;
    connect(source, &Model::rowsAboutToBeInserted, this,
            [this](const QModelIndex &, int first, int last) { beginInsertRows({}, first, last); });
    connect(source, &Model::rowsInserted, this, [this] { endInsertRows(); });
    connect(source, &Model::rowsAboutToBeRemoved, this,
            [this](const QModelIndex &, int first, int last) { beginRemoveRows({}, first, last); });
    connect(source, &Model::rowsRemoved, this, [this] { endRemoveRows(); });
    connect(source, &Model::columnsAboutToBeInserted, this,
            [this](const QModelIndex &, int first, int last) { beginInsertColumns({}, first, last); });
    connect(source, &Model::columnsInserted, this, [this] { endInsertColumns(); });
    connect(source, &Model::columnsAboutToBeRemoved, this,
            [this](const QModelIndex &, int first, int last) { beginRemoveColumns({}, first, last); });
    connect(source, &Model::columnsRemoved, this, [this] { endRemoveColumns(); });
    connect(source, &Model::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(source, &Model::modelReset, this, [this] { endResetModel(); });
    connect(source, &Model::layoutAboutToBeChanged, this, [this] { emit layoutAboutToBeChanged(); });
    connect(source, &Model::layoutChanged, this, [this] {
        dropLostIndexes();
        emit layoutChanged();
    });
    connect(source, &Model::headerDataChanged, this, &Model::headerDataChanged);
    connect(source, &Model::dataChanged, this,
            [this](const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) {
                const QModelIndex first = mapFromSource(topLeft);
                const QModelIndex last = index(std::min(bottomRight.row(), rowCount() - 1), bottomRight.column());
                if (first.isValid())
                    emit dataChanged(first, last, roles);
            });
}

void CompleteTable::dropLostIndexes()
{
    const QModelIndexList held = persistentIndexList();
    for (const QModelIndex &index : held) {
        if (index.row() >= rowCount() || index.column() >= columnCount())
            changePersistentIndex(index, {});
    }
}

int CompleteTable::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_source->rowCount();
}

int CompleteTable::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_source->columnCount();
}

QModelIndex CompleteTable::index(int row, int column, const QModelIndex &parent) const
{
    const bool exists = row >= 0 && column >= 0 && row < rowCount(parent) && column < columnCount(parent);
    return exists ? createIndex(row, column) : QModelIndex();
}

QModelIndex CompleteTable::parent(const QModelIndex &) const
{
    return {};
}

QModelIndex CompleteTable::mapToSource(const QModelIndex &proxyIndex) const
{
    return proxyIndex.isValid() ? m_source->index(proxyIndex.row(), proxyIndex.column()) : QModelIndex();
}

QModelIndex CompleteTable::mapFromSource(const QModelIndex &sourceIndex) const
{
    return sourceIndex.isValid() ? index(sourceIndex.row(), sourceIndex.column()) : QModelIndex();
}

QVariant CompleteTable::data(const QModelIndex &index, int role) const
{
    const QModelIndex source = mapToSource(index);
    return source.isValid() ? m_source->data(source, role) : QVariant();
}

Qt::ItemFlags CompleteTable::flags(const QModelIndex &index) const
{
    const QModelIndex source = mapToSource(index);
    return source.isValid() ? m_source->flags(source) : Qt::ItemFlags(Qt::NoItemFlags);
}

QVariant CompleteTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    return m_source->headerData(section, orientation, role);
}

} // namespace TestSupport
