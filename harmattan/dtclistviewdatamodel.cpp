#include "dtclistviewdatamodel.h"

namespace Obd {

DtcListViewDataModel::DtcListViewDataModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

void DtcListViewDataModel::append(const QString& code, const QString& description,
                                  const QString& system, const QString& ecu, const QString& ecuAddress)
{
    const int row = m_rows.size();
    beginInsertRows(QModelIndex(), row, row);
    m_rows.append(Row{code, description, system, ecu, ecuAddress});
    endInsertRows();
    emit countChanged();
}

void DtcListViewDataModel::appendRows(const QVector<Row>& rows)
{
    if (rows.isEmpty())
        return;
    const int first = m_rows.size();
    beginInsertRows(QModelIndex(), first, first + rows.size() - 1);
    m_rows += rows;
    endInsertRows();
    emit countChanged();
}

void DtcListViewDataModel::reset()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    emit countChanged();
}

int DtcListViewDataModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int DtcListViewDataModel::rowCount() const
{
    return m_rows.size();
}

QVariant DtcListViewDataModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_rows.size())
        return QVariant();
    const Row& row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case CodeRole:
        return row.code;
    case DescriptionRole:
        return row.description;
    case SystemRole:
        return row.system;
    case EcuRole:
        return row.ecu;
    case EcuAddressRole:
        return row.ecuAddress;
    default:
        return QVariant();
    }
}

QVariant DtcListViewDataModel::data(const QModelIndex& index) const
{
    return data(index, Qt::DisplayRole);
}

QVariantMap DtcListViewDataModel::get(int index) const
{
    QVariantMap map;
    if (index < 0 || index >= m_rows.size())
        return map;
    const Row& row = m_rows.at(index);
    map.insert(QStringLiteral("code"), row.code);
    map.insert(QStringLiteral("description"), row.description);
    map.insert(QStringLiteral("system"), row.system);
    map.insert(QStringLiteral("ecu"), row.ecu);
    map.insert(QStringLiteral("ecuAddress"), row.ecuAddress);
    return map;
}

QHash<int, QByteArray> DtcListViewDataModel::roleNames() const
{
    return {{CodeRole, "code"}, {DescriptionRole, "description"}, {SystemRole, "system"},
            {EcuRole, "ecu"}, {EcuAddressRole, "ecuAddress"}};
}

int DtcListViewDataModel::count() const
{
    return m_rows.size();
}

} // namespace Obd
