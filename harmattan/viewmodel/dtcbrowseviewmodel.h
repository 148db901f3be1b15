#ifndef HARMATTAN_DTCBROWSEVIEWMODEL_H
#define HARMATTAN_DTCBROWSEVIEWMODEL_H

#include "dtcfilterviewmodel.h"

namespace Harmattan {

// Browsing the database by category toggles. The toggles survive closing
// the screen.
class DtcBrowseViewModel : public DtcFilterViewModel
{
    Q_OBJECT

public:
    static const char* const PATTERN;

    explicit DtcBrowseViewModel(QObject* parent = nullptr);

    bool body() const { return m_body; }
    bool chassis() const { return m_chassis; }
    bool powertrain() const { return m_powertrain; }
    bool undefined() const { return m_undefined; }

public slots:
    void onBodyChanged(bool checked);
    void onChassisChanged(bool checked);
    void onPowertrainChanged(bool checked);
    void onUndefinedChanged(bool checked);

protected:
    void bindView(QObject* view) override;
    void applyFilter() override;

private:
    bool m_body;
    bool m_chassis;
    bool m_powertrain;
    bool m_undefined;
};

} // namespace Harmattan

#endif
