#pragma once

#include <QAbstractProxyModel>

namespace TestSupport {

/// A table with its gaps filled, so that QAbstractItemModelTester can be attached to it.
///
/// The columns of a scene end where their layers do, or one row behind all rows; the tester takes every position within
/// the counts, and no other, for a valid index. Here positions without an index of the source are valid and empty, and
/// the row behind all rows is left out. All the source announces is passed on as it comes, so the tester judges that.
class CompleteTable : public QAbstractProxyModel
{
public:
    /// \a source is not owned and has to stay.
    explicit CompleteTable(QAbstractItemModel *source);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    [[nodiscard]] QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    [[nodiscard]] QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void passOn(QAbstractItemModel *source);
    void dropLostIndexes();

    QAbstractItemModel *m_source; ///< sourceModel(), which is slow to ask for
};

} // namespace TestSupport
