#ifndef OBD_INFOLISTVIEWDATAMODEL_H
#define OBD_INFOLISTVIEWDATAMODEL_H

#include <QAbstractListModel>
#include <QString>
#include <QVector>

namespace Obd {

// Title and subtitle rows of the information screens.
class InfoListViewDataModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Roles { TitleRole = Qt::UserRole + 1, SubTitleRole };

    explicit InfoListViewDataModel(QObject* parent = nullptr);

    Q_INVOKABLE void append(const QString& title, const QString& subTitle);
    Q_INVOKABLE void reset();
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const;

signals:
    void countChanged();

private:
    struct Row
    {
        QString title;
        QString subTitle;
    };
    QVector<Row> m_rows;
};

} // namespace Obd

#endif
