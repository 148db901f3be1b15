#include "dtcbrowseviewmodel.h"

#include <QRegularExpression>
#include <QSortFilterProxyModel>

namespace Harmattan {

// One of the letters, three decimal digits, anything. Codes with a
// hexadecimal letter in the digits are not listed, by design.
const char* const DtcBrowseViewModel::PATTERN = "[%1]{1,1}[0-9]{3,3}.*";

DtcBrowseViewModel::DtcBrowseViewModel(QObject* parent)
    : DtcFilterViewModel("dtcBrowseListModel", parent)
    , m_body(true)
    , m_chassis(true)
    , m_powertrain(true)
    , m_undefined(true)
{
    applyFilter();
}

void DtcBrowseViewModel::bindView(QObject* view)
{
    // The screen's toggles show the flags kept from its last visit.
    view->setProperty("bodyChecked", m_body);
    view->setProperty("chassisChecked", m_chassis);
    view->setProperty("powertrainChecked", m_powertrain);
    view->setProperty("undefinedChecked", m_undefined);
    connect(view, SIGNAL(bodyChanged(bool)), this, SLOT(onBodyChanged(bool)));
    connect(view, SIGNAL(chassisChanged(bool)), this, SLOT(onChassisChanged(bool)));
    connect(view, SIGNAL(powertrainChanged(bool)), this, SLOT(onPowertrainChanged(bool)));
    connect(view, SIGNAL(undefinedChanged(bool)), this, SLOT(onUndefinedChanged(bool)));
}

void DtcBrowseViewModel::onBodyChanged(bool checked)
{
    m_body = checked;
    applyFilter();
}

void DtcBrowseViewModel::onChassisChanged(bool checked)
{
    m_chassis = checked;
    applyFilter();
}

void DtcBrowseViewModel::onPowertrainChanged(bool checked)
{
    m_powertrain = checked;
    applyFilter();
}

void DtcBrowseViewModel::onUndefinedChanged(bool checked)
{
    m_undefined = checked;
    applyFilter();
}

void DtcBrowseViewModel::applyFilter()
{
    QSortFilterProxyModel* filter = filterModel();
    if (!m_body && !m_chassis && !m_powertrain && !m_undefined) {
        // The pattern stays; a role without data matches no row.
        filter->setFilterRole(EMPTY_ROLE);
        return;
    }
    QString letters;
    if (m_body)
        letters += QLatin1Char('B');
    if (m_chassis)
        letters += QLatin1Char('C');
    if (m_powertrain)
        letters += QLatin1Char('P');
    // The undefined toggle stands for the network letter.
    if (m_undefined)
        letters += QLatin1Char('U');
    filter->setFilterRole(CODE_ROLE);
    filter->setFilterRegularExpression(
        QRegularExpression(QString::fromLatin1(PATTERN).arg(letters),
                           QRegularExpression::CaseInsensitiveOption));
}

} // namespace Harmattan
