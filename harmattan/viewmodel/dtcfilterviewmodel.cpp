#include "dtcfilterviewmodel.h"

#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "trlog.h"

#include <QQmlContext>
#include <QSortFilterProxyModel>
#include <QVariant>

namespace Harmattan {

const int DtcFilterViewModel::CODE_ROLE = Obd::DtcListViewDataModel::CodeRole;
const int DtcFilterViewModel::DESCRIPTION_ROLE = Obd::DtcListViewDataModel::DescriptionRole;
const int DtcFilterViewModel::SYSTEM_ROLE = Obd::DtcListViewDataModel::SystemRole;
const int DtcFilterViewModel::EMPTY_ROLE = Obd::DtcListViewDataModel::EmptyRole;

namespace {

// The database as rows, converted once: it never changes during a run.
const QVector<Obd::DtcListViewDataModel::Row>& databaseRows()
{
    static const QVector<Obd::DtcListViewDataModel::Row> rows = [] {
        QVector<Obd::DtcListViewDataModel::Row> result;
        const Obd::DtcReader& reader = Obd::DtcReader::instance();
        const std::vector<std::string> codes = reader.getAllCodes();
        result.reserve(static_cast<int>(codes.size()));
        for (const std::string& code : codes)
            result.append({QString::fromStdString(code),
                           QString::fromStdString(reader.getDescription(code)),
                           QString::fromStdString(reader.getCategory(code)), QString(), QString()});
        return result;
    }();
    return rows;
}

} // namespace

DtcFilterViewModel::DtcFilterViewModel(const QString& contextName, QObject* parent)
    : QObject(parent)
    , m_listModel(new Obd::DtcListViewDataModel(this))
    , m_filterModel(new QSortFilterProxyModel(this))
    , m_contextName(contextName)
{
    m_filterModel->setDynamicSortFilter(false);
    m_filterModel->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_filterModel->setFilterKeyColumn(-1);
    m_filterModel->setFilterRole(CODE_ROLE);
    m_filterModel->setSourceModel(m_listModel);
    connect(m_filterModel, &QSortFilterProxyModel::rowsInserted, this,
            &DtcFilterViewModel::onProxyDataChanged);
    connect(m_filterModel, &QSortFilterProxyModel::rowsRemoved, this,
            &DtcFilterViewModel::onProxyDataChanged);
    connect(m_filterModel, &QSortFilterProxyModel::modelReset, this,
            &DtcFilterViewModel::onProxyDataChanged);
    connect(m_filterModel, &QSortFilterProxyModel::layoutChanged, this,
            &DtcFilterViewModel::onProxyDataChanged);
}

void DtcFilterViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty(m_contextName, m_filterModel);
}

Obd::DtcListViewDataModel* DtcFilterViewModel::listModel() const
{
    return m_listModel;
}

QSortFilterProxyModel* DtcFilterViewModel::filterModel() const
{
    return m_filterModel;
}

void DtcFilterViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &DtcFilterViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(viewShown()), this, SLOT(onViewShown()));
    bindView(m_view);
    fill();
    applyFilter();
    onProxyDataChanged();
}

void DtcFilterViewModel::fill()
{
    // A screen bound before the previous one was destroyed starts afresh too.
    m_listModel->reset();
    const QVector<Obd::DtcListViewDataModel::Row>& rows = databaseRows();
    if (m_view)
        m_view->setProperty("listModelCount", rows.size());
    // One insertion of all rows, in the database's order: the filter model
    // and the list see one change rather than thousands.
    m_listModel->appendRows(rows);
}

void DtcFilterViewModel::onViewShown()
{
    OBD_DEBUG << m_contextName.toStdString() << " shown with " << m_filterModel->rowCount() << " rows";
}

void DtcFilterViewModel::onViewDestroyed()
{
    m_view = nullptr;
    m_listModel->reset();
}

void DtcFilterViewModel::onProxyDataChanged()
{
    if (m_view)
        m_view->setProperty("filteredCount", m_filterModel->rowCount());
}

} // namespace Harmattan
