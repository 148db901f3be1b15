#include "readinesslistmodel.h"

namespace Harmattan {

ReadinessListModel::ReadinessListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int ReadinessListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant ReadinessListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return QVariant();
    const Row& row = m_rows[index.row()];
    switch (role) {
    case EcuRole:
        return row.ecu;
    case TitleRole:
        return row.title;
    case ValueRole:
        return row.value;
    case StateRole:
        return row.state;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> ReadinessListModel::roleNames() const
{
    return { { EcuRole, "ecu" }, { TitleRole, "title" }, { ValueRole, "value" }, { StateRole, "state" } };
}

void ReadinessListModel::setRows(const QVector<Row>& rows)
{
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

} // namespace Harmattan
