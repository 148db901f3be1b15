#ifndef HARMATTAN_MAINVIEWDATAMODEL_H
#define HARMATTAN_MAINVIEWDATAMODEL_H

#include <QAbstractListModel>

namespace Harmattan {

// The four fixed rows of the main menu.
class MainViewDataModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Roles { TitleRole = Qt::UserRole + 1, SubtitleRole, ImageRole };

    explicit MainViewDataModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    // The view a row opens (1-4), or -1 outside the rows.
    static int viewForRow(int row);
};

} // namespace Harmattan

#endif
