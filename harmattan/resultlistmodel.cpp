#include "resultlistmodel.h"

namespace Harmattan {

ResultListModel::ResultListModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int ResultListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant ResultListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return QVariant();
    const Row& row = m_rows[index.row()];
    switch (role) {
    case SectionRole:
        return row.section;
    case TitleRole:
        return row.title;
    case ValueRole:
        return row.value;
    case MinimumRole:
        return row.minimum;
    case MaximumRole:
        return row.maximum;
    case UnitRole:
        return row.unit;
    case StateRole:
        return row.state;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> ResultListModel::roleNames() const
{
    return { { SectionRole, "section" }, { TitleRole, "title" },     { ValueRole, "value" }, { MinimumRole, "minimum" },
             { MaximumRole, "maximum" }, { UnitRole, "unit" }, { StateRole, "state" } };
}

void ResultListModel::setRows(const QVector<Row>& rows)
{
    const bool resized = rows.size() != m_rows.size();
    beginResetModel();
    m_rows = rows;
    endResetModel();
    if (resized)
        emit countChanged();
}

} // namespace Harmattan
