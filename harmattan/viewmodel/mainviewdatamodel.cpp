#include "mainviewdatamodel.h"

namespace Harmattan {

namespace {

struct Row
{
    const char* title;
    const char* subtitle;
    const char* image;
    int view;
};

const Row ROWS[] = {
    { "Trouble Codes", "Engine Diagnostic Trouble Codes", "qrc:///mil_off.png", 1 },
    { "DTC Database", "Diagnostic Trouble Code Database", "qrc:///search.png", 2 },
    { "Dashboard", "Visual gauges and counters", "qrc:///monitoring.png", 3 },
    { "Information", "Information about scantool, ECU, etc.", "qrc:///information.png", 4 },
};
const int ROW_COUNT = sizeof(ROWS) / sizeof(ROWS[0]);

} // namespace

MainViewDataModel::MainViewDataModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int MainViewDataModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ROW_COUNT;
}

QVariant MainViewDataModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= ROW_COUNT)
        return QVariant();
    const Row& row = ROWS[index.row()];
    switch (role) {
    case TitleRole:
    case Qt::DisplayRole:
        return QString::fromLatin1(row.title);
    case SubtitleRole:
        return QString::fromLatin1(row.subtitle);
    case ImageRole:
        return QString::fromLatin1(row.image);
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> MainViewDataModel::roleNames() const
{
    return { { TitleRole, "title" }, { SubtitleRole, "subtitle" }, { ImageRole, "image" } };
}

int MainViewDataModel::viewForRow(int row)
{
    return row >= 0 && row < ROW_COUNT ? ROWS[row].view : -1;
}

} // namespace Harmattan
