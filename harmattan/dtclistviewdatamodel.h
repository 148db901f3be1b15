#ifndef OBD_DTCLISTVIEWDATAMODEL_H
#define OBD_DTCLISTVIEWDATAMODEL_H

#include <QAbstractListModel>
#include <QString>
#include <QVariantMap>
#include <QVector>

namespace Obd {

// Rows of trouble codes for the QML lists: code, description and category.
class DtcListViewDataModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    // The role numbers the filter settings name: the first user role of the
    // toolkit these screens were first written for was 32, and 32 itself
    // carries no data. Qt 6 leaves 32-35 unused.
    enum Roles { EmptyRole = 32, CodeRole = 33, DescriptionRole = 34, SystemRole = 35,
                 EcuRole = 36, EcuAddressRole = 37 };

    struct Row
    {
        QString code;
        QString description;
        QString system;
        // The ECU that reported it: short name and "0x7E8"; empty for the database.
        QString ecu;
        QString ecuAddress;
    };

    explicit DtcListViewDataModel(QObject* parent = nullptr);

    Q_INVOKABLE void append(const QString& code, const QString& description, const QString& system,
                            const QString& ecu = QString(), const QString& ecuAddress = QString());
    // Many rows in one insertion: the same rows as appending each in order.
    void appendRows(const QVector<Row>& rows);
    Q_INVOKABLE void reset();
    Q_INVOKABLE int rowCount(const QModelIndex& parent) const override;
    Q_INVOKABLE int rowCount() const;
    Q_INVOKABLE QVariant data(const QModelIndex& index, int role) const override;
    Q_INVOKABLE QVariant data(const QModelIndex& index) const;
    Q_INVOKABLE QVariantMap get(int index) const;
    QHash<int, QByteArray> roleNames() const override;

    int count() const;

signals:
    void countChanged();

private:
    QVector<Row> m_rows;
};

} // namespace Obd

#endif
