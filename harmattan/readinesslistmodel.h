#ifndef HARMATTAN_READINESSLISTMODEL_H
#define HARMATTAN_READINESSLISTMODEL_H

#include <QAbstractListModel>
#include <QVector>

namespace Harmattan {

// The readiness rows of every ECU: lamp, code count, monitors, counters.
class ReadinessListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Roles { EcuRole = Qt::UserRole + 1, TitleRole, ValueRole, StateRole };
    // How a row is drawn: a monitor's three states, a plain reading, or a
    // read that failed.
    enum State { Complete = 0, Incomplete = 1, NotSupported = 2, Reading = 3, Unread = 4 };
    Q_ENUM(State)

    struct Row
    {
        QString ecu;
        QString title;
        QString value;
        int state;
    };

    explicit ReadinessListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setRows(const QVector<Row>& rows);
    const QVector<Row>& rows() const { return m_rows; }

private:
    QVector<Row> m_rows;
};

} // namespace Harmattan

#endif
