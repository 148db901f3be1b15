#ifndef HARMATTAN_RESULTLISTMODEL_H
#define HARMATTAN_RESULTLISTMODEL_H

#include <QAbstractListModel>
#include <QVector>

namespace Harmattan {

// Rows of read results under section headings: on-board tests, vehicle
// information and readiness. Limits and unit stay empty where a row has none.
class ResultListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)

public:
    enum Roles { SectionRole = Qt::UserRole + 1, TitleRole, ValueRole, MinimumRole, MaximumRole, UnitRole, StateRole };
    // How a row is drawn: a test's verdict (a monitor's complete or
    // incomplete), a plain reading, a failed read, or a monitor the ECU lacks.
    enum State { Passed = 0, Failed = 1, Reading = 2, Unread = 3, NotSupported = 4 };
    Q_ENUM(State)

    struct Row
    {
        QString section;
        QString title;
        QString value;
        QString minimum;
        QString maximum;
        QString unit;
        int state;
    };

    explicit ResultListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void setRows(const QVector<Row>& rows);
    const QVector<Row>& rows() const { return m_rows; }

signals:
    void countChanged();

private:
    QVector<Row> m_rows;
};

} // namespace Harmattan

#endif
