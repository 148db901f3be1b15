#include "infolistviewdatamodel.h"

namespace Obd {

InfoListViewDataModel::InfoListViewDataModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

void InfoListViewDataModel::append(const QString& title, const QString& subTitle)
{
    const int row = m_rows.size();
    beginInsertRows(QModelIndex(), row, row);
    m_rows.append(Row{title, subTitle});
    endInsertRows();
    emit countChanged();
}

void InfoListViewDataModel::reset()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    emit countChanged();
}

int InfoListViewDataModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant InfoListViewDataModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_rows.size())
        return QVariant();
    const Row& row = m_rows.at(index.row());
    if (role == TitleRole || role == Qt::DisplayRole)
        return row.title;
    if (role == SubTitleRole)
        return row.subTitle;
    return QVariant();
}

QHash<int, QByteArray> InfoListViewDataModel::roleNames() const
{
    return {{TitleRole, "title"}, {SubTitleRole, "subTitle"}};
}

int InfoListViewDataModel::count() const
{
    return m_rows.size();
}

} // namespace Obd
